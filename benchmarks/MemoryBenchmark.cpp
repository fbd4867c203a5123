#include "Benchmarks.h"
#include "Contestants.h"
#include "MemoryMeter.h"
#include "XmlParsers.h"

#include <ConfigurationFramework/SimpleConfigReader.h>
#include <FileHandling/FileName.h>

#include <optional>

namespace Orvant::Benchmarks {

namespace {

void runLoad(benchmark::State& state, Loaded (*load)(const SettingsFiles&), Shape shape) {
    const SettingsFiles files(shape); // Not the shared ones: a peer may have cached them.
    const auto values = static_cast<double>(shape.objects * shape.values);
    for ([[maybe_unused]] const auto _ : state) {
        std::optional<Loaded> loaded;
        const MemoryMeter meter;
        loaded.emplace(load(files));
        state.counters["peak bytes per value"] = static_cast<double>(meter.peak()) / values;
        state.counters["allocations per value"] = static_cast<double>(meter.allocations()) / values;
    }
}

std::shared_ptr<void> openReader(const std::string& file) {
    return std::make_shared<SimpleConfigReader>(FileName(file), "",
                                                std::list<std::string>{documentVersion});
}

void runOpen(benchmark::State& state, std::shared_ptr<void> (*open)(const std::string&),
             Shape shape) {
    const SettingsFiles& files = sharedFiles(shape);
    for ([[maybe_unused]] const auto _ : state) {
        std::shared_ptr<void> opened;
        const MemoryMeter meter;
        opened = open(files.systemXml());
        state.counters["held bytes"] = static_cast<double>(meter.held());
    }
}

} // namespace

void registerMemoryBenchmarks() {
    // Counted, not timed: once is enough.
    const auto addOnce = [](const char* subject, const char* name, Shape shape, auto run) {
        add(subject, name, toString(shape), run)->Iterations(1)->Repetitions(1);
    };
    for (const Shape shape : shapes) {
        for (const Contestant& contestant : contestants())
            addOnce(
                "Memory of a load", contestant.name, shape,
                [&, shape](benchmark::State& state) { runLoad(state, contestant.load, shape); });
        const auto addOpen = [&](const char* name, auto open) {
            addOnce("Memory held by the open system file", name, shape,
                    [=](benchmark::State& state) { runOpen(state, open, shape); });
        };
        addOpen(thisLibrary, openReader);
        addOpen("XercesDOMParser", parseWithXercesDom);
    }
}

} // namespace Orvant::Benchmarks
