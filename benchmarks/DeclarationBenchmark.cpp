#include "Benchmarks.h"
#include "MemoryMeter.h"

#include <ConfigurationFramework/Settings.h>

#include <memory>
#include <string>
#include <vector>

namespace Orvant::Benchmarks {

namespace {

enum class Unit { Millimetre, Inch };

} // namespace

} // namespace Orvant::Benchmarks

template <>
struct Orvant::EnumTexts<Orvant::Benchmarks::Unit> {
    static constexpr std::array texts = {
        EnumText{Benchmarks::Unit::Millimetre, "mm", "Millimetres"},
        EnumText{Benchmarks::Unit::Inch, "inch", "Inches"}};
};

namespace Orvant::Benchmarks {

namespace {

constexpr const char* read = "Read a declared setting, a million times";
constexpr const char* declare = "Declare settings";
constexpr std::size_t reads = 1'000'000;

struct Members {
    double zoom = 1.5;
    Unit unit = Unit::Inch;
};

struct Declared : Settings<Declared> {
    Declared() : Settings("View", "The view") {}
    Setting<double> zoom{this, "Zoom", "Zoom factor at start", 1.5};
    Setting<Unit> unit{this, "LengthUnit", "Unit of lengths", Unit::Inch};
    Setting<bool> showGrid{this, "ShowGrid", "Whether the grid is drawn", true};
    Setting<int> copies{this, "Copies", "Copies of each sheet", 1};
    Setting<std::string> paper{this, "Paper", "Size of the paper", "A4"};
};

class ByHand : public ConfigurationObject {
public:
    ByHand() : ConfigurationObject("View", "The view", LoadAndSave, AllProducts) {
        add("Zoom", "Zoom factor at start", 1.5);
        add("LengthUnit", "Unit of lengths", std::string("inch"));
        add("ShowGrid", "Whether the grid is drawn", true);
        add("Copies", "Copies of each sheet", 1);
        add("Paper", "Size of the paper", std::string("A4"));
    }
    ConfigurationObject* createConfigurationObject() const override { return new ByHand; }

private:
    template <typename T>
    void add(const char* name, const char* description, const T& defaultValue) {
        addConfigurationValue(new ConfigurationValue<T>(name, description, defaultValue, Visible,
                                                        LoadAndSave, AllProducts));
    }
};

template <typename Get>
void readOften(benchmark::State& state, Get get) {
    for ([[maybe_unused]] const auto _ : state)
        for (std::size_t i = 0; i < reads; ++i) {
            benchmark::ClobberMemory(); // read anew each time
            benchmark::DoNotOptimize(get());
        }
}

template <typename Object>
void makeOften(benchmark::State& state) {
    constexpr std::size_t count = 1'000;
    for ([[maybe_unused]] const auto _ : state)
        for (std::size_t i = 0; i < count; ++i)
            benchmark::DoNotOptimize(std::make_unique<Object>());
}

/// Counted for the second object: what all of a class share was made with the first.
template <typename Object>
void countAllocations(benchmark::State& state) {
    const Object first;
    for ([[maybe_unused]] const auto _ : state) {
        std::unique_ptr<Object> object;
        const MemoryMeter meter;
        object = std::make_unique<Object>();
        state.counters["allocations per object"] = static_cast<double>(meter.allocations());
    }
}

} // namespace

void registerDeclarationBenchmarks() {
    const std::string size = std::to_string(reads);
    const auto addRead = [&](const char* name, auto get) {
        add(read, name, size, [=](benchmark::State& state) { readOften(state, get); });
    };
    const auto declared = std::make_shared<Declared>();
    const auto byHand = std::make_shared<ByHand>();
    const auto members = std::make_shared<Members>();
    addRead(thisLibrary, [=] { return declared->zoom.get(); });
    addRead("a member", [=] { return members->zoom; });
    addRead("an object's value, found by name and cast", [=] {
        return dynamic_cast<ConfigurationValue<double>&>(*byHand->getConfigurationValue("Zoom"))
            .getValue();
    });
    addRead("an enumeration", [=] { return declared->unit.get(); });

    add(declare, thisLibrary, "1000x5", makeOften<Declared>);
    add(declare, "by hand", "1000x5", makeOften<ByHand>);
    add("Memory of a declaration", thisLibrary, "1x5", countAllocations<Declared>)
        ->Iterations(1)
        ->Repetitions(1);
    add("Memory of a declaration", "by hand", "1x5", countAllocations<ByHand>)
        ->Iterations(1)
        ->Repetitions(1);
}

} // namespace Orvant::Benchmarks
