#pragma once

#include "Settings.h"

#include <array>

// What is changed between saves. A store has set(object, value, newValue).

namespace Orvant::Benchmarks {

/// Sets the probe to its value of an edition.
template <typename Store>
void changeProbe(Store& store, Shape shape, unsigned int edition) {
    const auto [object, value] = probeOf(shape);
    store.set(object, value, valueOf(object, value, edition));
}

/// Sets a tenth of the values to those of an edition.
template <typename Store>
void changeTenth(Store& store, Shape shape, unsigned int edition) {
    forEachValue(shape, [&](std::size_t object, std::size_t value) {
        if (isOverridden(object, value))
            store.set(object, value, valueOf(object, value, edition));
    });
}

/// What is changed between two saves.
template <typename Store>
struct Change {
    const char* subject; ///< of the benchmark
    void (*make)(Store& store, Shape shape, unsigned int edition);
    bool (*covers)(Shape shape, std::size_t object, std::size_t value);
};

template <typename Store>
inline constexpr Change<Store> oneChange{"Save one changed value", changeProbe<Store>,
                                         [](Shape shape, std::size_t object, std::size_t value) {
                                             return object == probeOf(shape).object &&
                                                    value == probeOf(shape).value;
                                         }};

template <typename Store>
inline constexpr Change<Store> tenthChange{
    "Save a changed tenth of the values", changeTenth<Store>,
    [](Shape, std::size_t object, std::size_t value) { return isOverridden(object, value); }};

template <typename Store>
inline constexpr Change<Store> noChange{"Save without a change", [](Store&, Shape, unsigned int) {},
                                        [](Shape, std::size_t, std::size_t) { return false; }};

/// Undone before the save: a store that only notes that something was set has to look at it.
template <typename Store>
inline constexpr Change<Store> undoneChange{noChange<Store>.subject,
                                            [](Store& store, Shape shape, unsigned int edition) {
                                                const auto [object, value] = probeOf(shape);
                                                changeProbe(store, shape, edition);
                                                changeProbe(store, shape, editionIn(object, value));
                                            },
                                            noChange<Store>.covers};

/// What every store is measured with.
template <typename Store>
inline constexpr std::array changes{oneChange<Store>, tenthChange<Store>, noChange<Store>};

} // namespace Orvant::Benchmarks
