#include "Benchmarks.h"
#include "Contestants.h"
#include "Library.h"

#include <optional>

namespace Orvant::Benchmarks {

namespace {

void runLoad(benchmark::State& state, Loaded (*load)(const SettingsFiles&), Shape shape) {
    const SettingsFiles& files = sharedFiles(shape);
    const double expected = expectedWeight(shape);
    for ([[maybe_unused]] const auto _ : state) {
        std::optional<Loaded> loaded(load(files));
        state.PauseTiming();
        if (loaded->weight && loaded->weight() != expected)
            state.SkipWithError("Loaded something else than the files hold");
        loaded.reset();
        state.ResumeTiming();
    }
}

void runDeclare(benchmark::State& state, Shape shape) {
    for ([[maybe_unused]] const auto _ : state) {
        auto declared = declare(shape);
        state.PauseTiming();
        declared.clear();
        state.ResumeTiming();
    }
}

} // namespace

void registerLoadBenchmarks() {
    const auto addLoad = [](const char* name, auto load, Shape shape) {
        add("Load", name, toString(shape),
            [=](benchmark::State& state) { runLoad(state, load, shape); });
    };
    for (const Shape shape : shapes) {
        for (const Contestant& contestant : contestants())
            addLoad(contestant.name, contestant.load, shape);
        add("Load", "this library, of that making the objects", toString(shape),
            [=](benchmark::State& state) { runDeclare(state, shape); });
    }
    addLoad("this library, one by one", loadOneByOne, shapes.front());
}

} // namespace Orvant::Benchmarks
