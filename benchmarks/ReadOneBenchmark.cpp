#include "Benchmarks.h"
#include "KConfigPeer.h"
#include "Library.h"
#include "PropertyTreePeer.h"
#include "PugixmlPeer.h"
#include "QSettingsPeer.h"

namespace Orvant::Benchmarks {

namespace {

void run(benchmark::State& state, int (*read)(const SettingsFiles&), Shape shape) {
    const SettingsFiles& files = sharedFiles(shape);
    const auto [object, value] = probeOf(shape);
    const Value expected =
        valueOf(object, value, isOverridden(object, value) ? userEdition : systemEdition);
    for ([[maybe_unused]] const auto _ : state)
        if (read(files) != std::get<int>(expected))
            state.SkipWithError("Read something else than the files hold");
}

} // namespace

void registerReadOneBenchmarks() {
    for (const Shape shape : shapes) {
        const auto addRead = [&](const char* name, auto read) {
            add("Read one value", name, toString(shape),
                [=](benchmark::State& state) { run(state, read, shape); });
        };
        addRead(thisLibrary, readOne);
        addRead("KConfig", readOneWithKConfig);
        addRead("QSettings", readOneWithQSettings);
        addRead("Boost.PropertyTree", readOneWithPropertyTree);
        addRead("pugixml by hand", readOneWithPugixml);
    }
}

} // namespace Orvant::Benchmarks
