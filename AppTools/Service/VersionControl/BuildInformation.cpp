#include <VersionControl/BuildInformation.h>

#include <atomic>

namespace Orvant {

namespace {

std::atomic<BuildInformation::ProductType> s_product{ORVANT_BUILD_PRODUCT};

} // namespace

BuildInformation::ProductType BuildInformation::getProductType() {
    return s_product;
}

void BuildInformation::setProductType(ProductType product) {
    s_product = product;
}

} // namespace Orvant
