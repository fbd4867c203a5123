#pragma once

#include <VersionControl/Export.h>

#include <cstdint>

namespace Orvant {

/// What is known about the running build.
///
/// @code
/// BuildInformation::setProductType(2); // the host application is the suite's product 2
/// @endcode
class ORVANT_VERSIONCONTROL_EXPORT BuildInformation {
public:
    /// Number of a product of the suite, 0 to 5; other numbers name no product.
    using ProductType = std::int32_t;

    /// @return the product of the running build: what setProductType was last given, otherwise what
    ///         the build was configured with (ORVANT_BUILD_PRODUCT), otherwise 0
    static ProductType getProductType();

    /// Sets which product the host application is. May be called from any thread.
    static void setProductType(ProductType product);
};

} // namespace Orvant
