#pragma once

#include <ConfigurationFramework/Settings.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace Orvant::Support {

enum class Unit { Millimetre, Inch, Mile };

} // namespace Orvant::Support

/// A mile has none.
template <>
struct Orvant::EnumTexts<Orvant::Support::Unit> {
    static constexpr std::array texts = {
        Orvant::EnumText{Orvant::Support::Unit::Millimetre, "mm", "Millimetres"},
        Orvant::EnumText{Orvant::Support::Unit::Inch, "inch"}};
};

namespace Orvant::Support {

/// @return the message of the exception that an action throws; fails the test when it throws none
template <typename Exception, typename Action>
std::string messageOf(Action action) {
    try {
        action();
    } catch (const Exception& exception) {
        return exception.what();
    }
    ADD_FAILURE() << "nothing was thrown";
    return "";
}

} // namespace Orvant::Support
