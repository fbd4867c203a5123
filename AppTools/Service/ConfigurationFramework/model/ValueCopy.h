#pragma once

#include <typeinfo>

namespace Orvant {

/// Makes a value a copy of another if both are of exactly this class: a derived class may hold more
/// than it inherits.
/// @return false when they are not, and nothing was done
template <typename Class, typename Value>
bool copyAs(const Value& original, Value& value) {
    if (typeid(original) != typeid(Class) || typeid(value) != typeid(Class))
        return false;
    static_cast<Class&>(value) = static_cast<const Class&>(original);
    return true;
}

/// Takes the value of another, or none if the other has none.
template <typename Value>
void adoptState(Value& value, const Value& other) {
    if (other.hasValue())
        value.adoptValue(&other);
    else
        value.resetValue();
}

} // namespace Orvant
