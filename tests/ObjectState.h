#pragma once

#include <ConfigurationFramework/ConfigurationObject.h>

#include <map>
#include <ostream>
#include <string>

namespace Orvant::Support {

/// What a user sees of one value.
struct ValueState {
    std::string text;
    bool locked = false; ///< by itself or with an object around it

    bool operator==(const ValueState&) const = default;
};

inline void PrintTo(const ValueState& state, std::ostream* out) {
    *out << '"' << state.text << '"' << (state.locked ? " locked" : "");
}

/// By path: View/Camera/FieldOfView. A nameless child has an empty name in it.
using ObjectState = std::map<std::string, ValueState>;

/// So many digits tell all numbers apart.
constexpr int allDigits = 17;
/// So many digits of a number are written to a file.
constexpr int writtenDigits = 6;

/// @return the effective value as a text; the items of a list in brackets
std::string textOf(const ConfigurationValueBase& value, int digits);

/// @return the states of all values of an object and its children
ObjectState stateOf(const ConfigurationObject& object, int digits = allDigits);

} // namespace Orvant::Support
