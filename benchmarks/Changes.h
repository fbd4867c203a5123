#pragma once

#include "Settings.h"

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

} // namespace Orvant::Benchmarks
