#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Orvant {

/// Which values of a type are allowed, and what a dialogue calls them.
///
/// @code
/// ValueRule<double> angle;
/// angle.minimum = 1.0;
/// angle.maximum = 170.0;
/// if (!angle.allows(entered))
///     complain();
/// @endcode
///
/// @tparam T type of a ConfigurationValue
template <typename T>
struct ValueRule {
    /// What choices are made of: T, or an item of a list.
    using Item = std::conditional_t<std::is_same_v<T, std::vector<std::string>>, std::string, T>;

    std::string label;                                 ///< empty: the value's description
    std::optional<T> minimum;                          ///< of numbers; nothing: any
    std::optional<T> maximum;                          ///< of numbers; nothing: any
    std::vector<std::pair<Item, std::string>> choices; ///< with their labels; empty: anything
    std::vector<std::int64_t> codes;                   ///< of the choices, for the application
    std::function<bool(const T&)> condition;           ///< empty: anything
    std::string conditionText;                         ///< completes "it must be"

    /// @return whether the value is within the limits, one of the choices (of a list: each item),
    ///         and meets the condition. Not-a-number is outside of all limits.
    /// @throws what the condition throws
    bool allows(const T& value) const {
        return isWithinLimits(value) && isChosen(value) && (!condition || condition(value));
    }

private:
    bool isWithinLimits(const T& value) const {
        if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>)
            return (!minimum || value >= *minimum) && (!maximum || value <= *maximum);
        else
            return true;
    }
    bool isOneOf(const Item& item) const {
        if (choices.empty())
            return true;
        for (const auto& [choice, choiceLabel] : choices)
            if (choice == item)
                return true;
        return false;
    }
    bool isChosen(const T& value) const {
        if constexpr (std::is_same_v<T, Item>) {
            return isOneOf(value);
        } else {
            for (const Item& item : value)
                if (!isOneOf(item))
                    return false;
            return true;
        }
    }
};

} // namespace Orvant
