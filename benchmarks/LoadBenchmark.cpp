#include "Benchmarks.h"
#include "Contestants.h"
#include "Library.h"

#include <optional>

namespace Orvant::Benchmarks {

namespace {

using Load = Loaded (*)(const SettingsFiles&);

void runLoad(benchmark::State& state, Load load, Shape shape, Override override) {
    const SettingsFiles& files = sharedFiles(shape, override);
    const double expected =
        expectedWeight(shape, [override](std::size_t object, std::size_t value) {
            return editionIn(object, value, override);
        });
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
    const auto addLoad = [](const char* name, Load load, Shape shape,
                            Override override = Override::TenthOfEachObject) {
        const bool isOfObjects = override == Override::TenthOfObjects;
        return add(isOfObjects ? "Load, a tenth of the objects overridden" : "Load", name,
                   toString(shape),
                   [=](benchmark::State& state) { runLoad(state, load, shape, override); });
    };
    for (const Shape shape : shapes) {
        for (const Contestant& contestant : contestants())
            for (const Override override : {Override::TenthOfEachObject, Override::TenthOfObjects})
                addLoad(contestant.name, contestant.load, shape, override);
        add("Load", "this library, of that making the objects", toString(shape),
            [=](benchmark::State& state) { runDeclare(state, shape); });
    }
    const char* const oneByOne = "this library, one by one";
    addLoad(oneByOne, loadOneByOne, shapes.front());
    // Every call reads both files: one iteration takes long enough to be measured.
    addLoad(oneByOne, loadOneByOne, shapes[1])->Iterations(1)->Repetitions(3);
}

} // namespace Orvant::Benchmarks
