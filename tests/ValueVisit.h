#pragma once

#include <ConfigurationFramework/ConfigurationValue.h>

#include <string>
#include <type_traits>
#include <vector>

namespace Orvant::Support {

/// Calls back with a value as the type that it has.
/// @param value   const or not
/// @param visitor takes a ConfigurationValue<T>& of every type
template <typename Value, typename Visitor>
decltype(auto) visitValue(Value& value, Visitor visitor) {
    const auto visitAs = [&]<typename T>(std::type_identity<T>) -> decltype(auto) {
        using Typed = std::conditional_t<std::is_const_v<Value>, const ConfigurationValue<T>,
                                         ConfigurationValue<T>>;
        return visitor(dynamic_cast<Typed&>(value));
    };
    switch (value.getValueType()) {
    case ConfigurationValueBase::BoolValue:
        return visitAs(std::type_identity<bool>());
    case ConfigurationValueBase::IntValue:
        return visitAs(std::type_identity<int>());
    case ConfigurationValueBase::UnsignedIntValue:
        return visitAs(std::type_identity<unsigned int>());
    case ConfigurationValueBase::DoubleValue:
        return visitAs(std::type_identity<double>());
    case ConfigurationValueBase::FloatValue:
        return visitAs(std::type_identity<float>());
    case ConfigurationValueBase::StringValue:
        return visitAs(std::type_identity<std::string>());
    case ConfigurationValueBase::StringVectorValue:
        break;
    }
    return visitAs(std::type_identity<std::vector<std::string>>());
}

} // namespace Orvant::Support
