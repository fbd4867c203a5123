#pragma once

#include <ConfigurationFramework/ConfigurationItemBase.h>
#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/ValueRule.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// What a Setting may be declared with, besides its name, description and default.

namespace Orvant {

/// An enumerator with the text that files hold for it.
template <typename E>
struct EnumText {
    E value;                     ///< the enumerator
    std::string_view text;       ///< in files
    std::string_view label = {}; ///< in dialogues; empty: the text
};

template <typename E>
EnumText(E, std::string_view, std::string_view) -> EnumText<E>;
template <typename E>
EnumText(E, std::string_view) -> EnumText<E>;

/// The texts of an enumeration. Specialise it, before a Setting is declared, with a member `texts`:
///
/// @code
/// enum class Unit { Millimetre, Inch };
/// template <> struct Orvant::EnumTexts<Unit> {
///     static constexpr std::array texts = {
///         Orvant::EnumText{Unit::Millimetre, "mm", "Millimetres"},
///         Orvant::EnumText{Unit::Inch, "inch", "Inches"}};
/// };
/// @endcode
///
/// All enumerators that the setting may have are listed, each once, with different texts.
template <typename E>
struct EnumTexts;

/// A type that files hold values of.
template <typename T>
concept StoredType =
    std::same_as<T, bool> || std::same_as<T, int> || std::same_as<T, unsigned int> ||
    std::same_as<T, double> || std::same_as<T, float> || std::same_as<T, std::string> ||
    std::same_as<T, std::vector<std::string>>;

/// An enumeration with texts.
template <typename E>
concept EnumWithTexts = std::is_enum_v<E> && requires {
    { EnumTexts<E>::texts[0] } -> std::convertible_to<EnumText<E>>;
    EnumTexts<E>::texts.size();
};

/// Smallest and largest number that a setting may have, both included.
/// @tparam T type of the numbers; those of a setting of integers have to be integers of its type
template <typename T>
struct Range {
    T minimum; ///< smallest
    T maximum; ///< largest

    /// @return whether a number is in the range; not-a-number is not
    template <typename Number>
    constexpr bool contains(Number number) const {
        if constexpr (std::is_floating_point_v<Number>)
            return number >= static_cast<Number>(minimum) && number <= static_cast<Number>(maximum);
        else if constexpr (std::is_floating_point_v<T>)
            return static_cast<double>(number) >= minimum && static_cast<double>(number) <= maximum;
        else
            return std::cmp_greater_equal(number, minimum) && std::cmp_less_equal(number, maximum);
    }
};

template <typename Minimum, typename Maximum>
Range(Minimum, Maximum) -> Range<std::common_type_t<Minimum, Maximum>>;

/// The only values that a setting may have; of a list, that each item may have.
template <typename T, std::size_t N>
struct OneOf {
    /// @param first,others the values
    template <typename... Others>
    constexpr explicit OneOf(T first, Others... others)
        : values{first, static_cast<T>(others)...} {}

    std::array<T, N> values; ///< all of them
};

template <typename T, typename... Others>
OneOf(T, Others...) -> OneOf<std::common_type_t<T, Others...>, 1 + sizeof...(Others)>;

/// A condition that a setting's values have to meet, with words for those who break it.
/// @tparam Condition takes a value and returns whether it is allowed
template <typename Condition>
struct Check {
    Condition condition; ///< called at declaration, load and set
    std::string text;    ///< completes "it must be", such as "an even number"
};

template <typename Condition>
Check(Condition, const char*) -> Check<Condition>;

/// What a dialogue calls a setting, if that is not its description.
struct Label {
    std::string text; ///< such as "Field of view"
};

/// The type of `hidden`.
struct HiddenSetting {};
/// A setting that no dialogue shows.
inline constexpr HiddenSetting hidden{};

} // namespace Orvant
