#pragma once

#include <ConfigurationFramework/Export.h>

#include <optional>
#include <string>
#include <vector>

namespace Orvant {

/// One of the values that a setting may have.
struct ConfigurationChoice {
    std::string text;  ///< as files hold it
    std::string label; ///< as a dialogue shows it
};

/// What a dialogue calls a value, and which values a load and Setting::set() take. Texts are as
/// files hold them, but numbers have all their digits, and unsigned ones no sign.
///
/// @code
/// const ConfigurationConstraint constraint = value.getConstraint();
/// std::cout << constraint.label;
/// if (constraint.isLimited())
///     std::cout << ", " << constraint.describe();
/// @endcode
struct ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ConfigurationConstraint {
    std::string label;                       ///< what a dialogue calls the value
    std::optional<std::string> minimum = {}; ///< smallest number; nothing: any
    std::optional<std::string> maximum = {}; ///< largest number; nothing: any
    /// What the value, or each item of a list, may be; empty: anything.
    std::vector<ConfigurationChoice> choices = {};
    /// What else is asked of the value, in words that complete "it must be"; empty: nothing.
    std::string condition = {};

    /// @return whether there is a rule at all
    bool isLimited() const;
    /// @return the rule in words that complete "it must be", such as "from 1 to 170"; empty without
    ///         one
    std::string describe() const;
};

} // namespace Orvant
