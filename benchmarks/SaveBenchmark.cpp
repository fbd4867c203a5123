#include "Benchmarks.h"
#include "Changes.h"
#include "KConfigPeer.h"
#include "Library.h"
#include "PropertyTreePeer.h"
#include "PugixmlPeer.h"
#include "QSettingsPeer.h"

namespace Orvant::Benchmarks {

namespace {

/// Changes and saves again and again, over what the last save left.
/// @param change sets values of a store to those of an edition
template <typename Store>
void run(benchmark::State& state, Shape shape, void (*change)(Store&, Shape, unsigned int)) {
    const SettingsFiles files(shape);
    Store store(files);
    unsigned int edition = userEdition;
    for ([[maybe_unused]] const auto _ : state) {
        change(store, shape, ++edition);
        if (!store.save())
            state.SkipWithError("Could not save");
    }
}

template <typename Store>
void addSaves(const char* name, Shape shape) {
    add("Save one changed value", name, toString(shape),
        [=](benchmark::State& state) { run<Store>(state, shape, changeProbe<Store>); });
    add("Save a changed tenth of the values", name, toString(shape),
        [=](benchmark::State& state) { run<Store>(state, shape, changeTenth<Store>); });
}

} // namespace

void registerSaveBenchmarks() {
    for (const Shape shape : shapes) {
        addSaves<LibraryStore>(thisLibrary, shape);
        addSaves<KConfigStore>("KConfig", shape);
        addSaves<QSettingsStore>("QSettings", shape);
        addSaves<PropertyTreeStore>("Boost.PropertyTree", shape);
        addSaves<PugixmlStore>("pugixml by hand", shape);
    }
}

} // namespace Orvant::Benchmarks
