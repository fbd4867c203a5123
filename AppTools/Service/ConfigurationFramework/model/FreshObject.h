#pragma once

#include <memory>
#include <stdexcept>

namespace Orvant {

/// @return a new object of the same class with its defaults
/// @throws std::logic_error when the factory of the object returns null
template <typename Object>
std::unique_ptr<Object> makeFresh(const Object& object) {
    std::unique_ptr<Object> fresh(object.createConfigurationObject());
    if (fresh == nullptr)
        throw std::logic_error("createConfigurationObject() of the configuration object \"" +
                               object.getName() + "\" returned null");
    return fresh;
}

} // namespace Orvant
