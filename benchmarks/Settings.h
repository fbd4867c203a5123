#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

// The settings that are measured: objects with the same values, the seven types in turn.

namespace Orvant::Benchmarks {

using Texts = std::vector<std::string>;
using Value = std::variant<bool, int, unsigned int, float, double, std::string, Texts>;

/// @param makeEntry called as makeEntry<T>() for each type of a variant, in its order
/// @return what the calls return: a table to look up what to do with the n-th type
template <typename Variant, typename MakeEntry>
constexpr auto forEachType(MakeEntry makeEntry) {
    return [&]<std::size_t... type>(std::index_sequence<type...>) {
        return std::array {
            makeEntry.template operator()<std::variant_alternative_t<type, Variant>>()...
        };
    }(std::make_index_sequence<std::variant_size_v<Variant>>());
}

/// How many objects there are, and how many values each has.
struct Shape {
    std::size_t objects;
    std::size_t values;
};

inline constexpr std::array shapes{Shape{60, 15}, Shape{1'000, 20}, Shape{5'000, 40}};

/// @return the shape as at the end of benchmarks' names: "1000x20"
std::string toString(Shape shape);

const std::string& objectName(std::size_t object);
const std::string& valueName(std::size_t value);

/// What a value is set to, different in each edition.
/// @param edition `systemEdition`, `userEdition`, or a higher number for a later change
Value valueOf(std::size_t object, std::size_t value, unsigned int edition);
inline constexpr unsigned int systemEdition = 0;
inline constexpr unsigned int userEdition = 1;

/// Which tenth of the values the user's layer sets.
enum class Override {
    TenthOfEachObject, ///< what is meant where nothing else is said
    TenthOfObjects,    ///< all values of these, none of the others
};

/// @return true for the values that the user's layer sets
constexpr bool isOverridden(std::size_t object, std::size_t value,
                            Override override = Override::TenthOfEachObject) {
    return (override == Override::TenthOfObjects ? object : object + value) % 10 == 0;
}

/// The value that is read or changed when only one is, an int.
struct Probe {
    std::size_t object;
    std::size_t value;
};
constexpr Probe probeOf(Shape shape) {
    return {shape.objects / 2, 1};
}

/// Calls back with each object and value.
template <typename Callback>
void forEachValue(Shape shape, Callback callback) {
    for (std::size_t object = 0; object < shape.objects; ++object)
        for (std::size_t value = 0; value < shape.values; ++value)
            callback(object, value);
}

/// @name Weights: two loads of the same settings weigh the same
/// @{
template <typename Number>
    requires std::is_arithmetic_v<Number>
double weightOf(Number number) {
    return static_cast<double>(number);
}
template <typename Text>
    requires requires(const Text& text) { text.size(); }
double weightOf(const Text& text) {
    return static_cast<double>(text.size());
}
/// @param editionOf takes an object and a value
template <typename EditionOf>
double expectedWeight(Shape shape, EditionOf editionOf) {
    double sum = 0.0;
    forEachValue(shape, [&](std::size_t object, std::size_t value) {
        std::visit([&](const auto& held) { sum += weightOf(held); },
                   valueOf(object, value, editionOf(object, value)));
    });
    return sum;
}
/// The edition of a value in both layers, the user's over the system's.
constexpr unsigned int editionIn(std::size_t object, std::size_t value,
                                 Override override = Override::TenthOfEachObject) {
    return isOverridden(object, value, override) ? userEdition : systemEdition;
}
/// @}

} // namespace Orvant::Benchmarks
