#include "Benchmarks.h"
#include "Library.h"
#include "PropertyTreePeer.h"
#include "PugixmlPeer.h"
#include "QSettingsPeer.h"
#include "XmlParsers.h"

namespace Orvant::Benchmarks {

namespace {

template <std::shared_ptr<void> (*parse)(const std::string&)>
bool parsesUserFile(const SettingsFiles& files) {
    return parse(files.userXml()) != nullptr;
}

void run(benchmark::State& state, bool (*check)(const SettingsFiles&), Shape shape) {
    const SettingsFiles& files = sharedFiles(shape);
    for ([[maybe_unused]] const auto _ : state)
        if (!check(files))
            state.SkipWithError("Found an error in a file without errors");
}

} // namespace

void registerCheckBenchmarks() {
    for (const Shape shape : shapes) {
        const auto addCheck = [&](const char* name, auto check) {
            add("Open and check the user file", name, toString(shape),
                [=](benchmark::State& state) { run(state, check, shape); });
        };
        addCheck(thisLibrary, checkUserFile);
        addCheck("QSettings", checkWithQSettings);
        addCheck("Boost.PropertyTree", checkWithPropertyTree);
        addCheck("pugixml", parsesUserFile<parseWithPugixml>);
        addCheck("libxml2", parsesUserFile<parseWithLibxml2>);
        addCheck("XercesDOMParser", parsesUserFile<parseWithXercesDom>);
    }
}

} // namespace Orvant::Benchmarks
