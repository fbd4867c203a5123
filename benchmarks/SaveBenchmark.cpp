#include "Benchmarks.h"
#include "Changes.h"
#include "KConfigPeer.h"
#include "Library.h"
#include "PropertyTreePeer.h"
#include "PugixmlPeer.h"
#include "QSettingsPeer.h"

#include <string>

namespace Orvant::Benchmarks {

namespace {

/// Something that saves, and loads what it saved.
template <typename Store>
struct Saver {
    const char* name;
    Store (*open)(const SettingsFiles&);
    Loaded (*load)(const SettingsFiles&);
    bool isFirst = false; ///< only the first save after a load counts, or else those after it
};

template <typename Store>
Saver<Store> peer(const char* name, Loaded (*load)(const SettingsFiles&)) {
    return {name, [](const SettingsFiles& files) { return Store(files); }, load, false};
}

template <SaveMode mode>
Saver<LibraryStore> library(const char* name, bool isFirst = false) {
    return {name, [](const SettingsFiles& files) { return LibraryStore(files, mode); }, loadInBatch,
            isFirst};
}

/// Changes and saves again and again, over what the last save left.
template <typename Store>
void run(benchmark::State& state, const SettingsFiles& files, const Saver<Store>& saver,
         const Change<Store>& change) {
    const Shape shape = files.shape();
    unsigned int edition = userEdition;
    {
        Store store = saver.open(files);
        if (!saver.isFirst) {
            change.make(store, shape, ++edition);
            if (!store.save())
                state.SkipWithError("Could not save");
        }
        for ([[maybe_unused]] const auto _ : state) {
            change.make(store, shape, ++edition);
            if (!store.save())
                state.SkipWithError("Could not save");
        }
    }
    const double expected = expectedWeight(shape, [&](std::size_t object, std::size_t value) {
        return change.covers(shape, object, value) ? edition : editionIn(object, value);
    });
    if (saver.load(files).weight() != expected)
        state.SkipWithError("Saved something else than was set");
}

template <typename Store>
benchmark::internal::Benchmark* addSave(const std::string& subject, const Saver<Store>& saver,
                                        Shape shape, Place place, const Change<Store>& change) {
    auto* const added = add(subject, saver.name, toString(shape), [=](benchmark::State& state) {
        run(state, SettingsFiles(shape, place), saver, change);
    });
    return saver.isFirst ? added->Iterations(1) : added;
}

template <typename Store>
void addSavesInMemory(const Saver<Store>& saver, Shape shape) {
    for (const Change<Store>& change : changes<Store>)
        addSave(change.subject, saver, shape, Place::Memory, change);
}

/// The wall time counts as well: it has the wait for the disk in it.
template <typename Store>
void addSavesToDisk(const Saver<Store>& saver, Shape shape) {
    for (const Change<Store>& change : changes<Store>)
        addSave(std::string(change.subject) + " to the disk", saver, shape, Place::Disk, change)
            ->MeasureProcessCPUTime()
            ->UseRealTime();
}

} // namespace

void registerSaveBenchmarks() {
    for (const Shape shape : shapes) {
        const auto addSaves = [&](const auto& saver) {
            addSavesInMemory(saver, shape);
            addSavesToDisk(saver, shape);
        };
        addSaves(library<SaveMode::InPlace>("this library, InPlace"));
        addSaves(library<SaveMode::Replace>("this library, Replace"));
        addSaves(library<SaveMode::Merge>("this library, Merge"));
        addSaves(library<SaveMode::Merge>("this library, first Merge after a load", true));
        addSaves(peer<KConfigStore>("KConfig", loadWithKConfig));
        // KConfig does nothing at all as long as nothing was set.
        addSave(undoneChange<KConfigStore>.subject,
                peer<KConfigStore>("KConfig, a value set and set back", loadWithKConfig), shape,
                Place::Memory, undoneChange<KConfigStore>);
        addSaves(peer<QSettingsStore>("QSettings", loadWithQSettings));
        // These two only write over the file.
        addSavesInMemory(peer<PropertyTreeStore>("Boost.PropertyTree", loadWithPropertyTree),
                         shape);
        addSavesInMemory(peer<PugixmlStore>("pugixml by hand", loadWithPugixml), shape);
    }
}

} // namespace Orvant::Benchmarks
