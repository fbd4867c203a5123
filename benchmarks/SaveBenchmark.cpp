#include "Benchmarks.h"
#include "KConfigPeer.h"
#include "Library.h"
#include "QSettingsPeer.h"

namespace Orvant::Benchmarks {

namespace {

/// Changes and saves again and again, over what the last save has left.
/// @param change sets values of a store to those of an edition
template <typename Store, typename Change>
void run(benchmark::State& state, Shape shape, Change change) {
    const SettingsFiles files(shape);
    Store store(files);
    unsigned int edition = userEdition;
    for ([[maybe_unused]] const auto _ : state) {
        change(store, ++edition);
        if (!store.save())
            state.SkipWithError("Could not save");
    }
}

template <typename Store>
void addSaves(const char* name, Shape shape) {
    const auto put = [](Store& store, std::size_t object, std::size_t value, unsigned edition) {
        store.set(object, value, valueOf(object, value, edition));
    };
    add("Save one changed value", name, toString(shape), [=](benchmark::State& state) {
        run<Store>(state, shape, [=](Store& store, unsigned edition) {
            const auto [object, value] = probeOf(shape);
            put(store, object, value, edition);
        });
    });
    add("Save a changed tenth of the values", name, toString(shape), [=](benchmark::State& state) {
        run<Store>(state, shape, [=](Store& store, unsigned edition) {
            forEachValue(shape, [&](std::size_t object, std::size_t value) {
                if (isOverridden(object, value))
                    put(store, object, value, edition);
            });
        });
    });
}

} // namespace

void registerSaveBenchmarks() {
    for (const Shape shape : shapes) {
        addSaves<LibraryStore>(thisLibrary, shape);
        addSaves<KConfigStore>("KConfig", shape);
        addSaves<QSettingsStore>("QSettings", shape);
    }
}

} // namespace Orvant::Benchmarks
