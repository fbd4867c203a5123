#include "Benchmarks.h"
#include "SchemaFile.h"
#include "XmlParsers.h"

#include <ConfigurationFramework/XsdConfigReader.h>
#include <FileHandling/FileName.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Orvant::Benchmarks {

namespace {

XsdConfigReader read(const SchemaFile& schema) {
    XsdConfigReader reader(schema.file());
    reader.readXSD(true);
    return reader;
}

/// The names of all types.
std::vector<std::string> namesOf(const SchemaFile& schema) {
    std::vector<std::string> names;
    for (const auto& [name, type] : read(schema).getXsdTree())
        names.push_back(name);
    return names;
}

void runRead(benchmark::State& state, const SchemaFile& schema) {
    for ([[maybe_unused]] const auto _ : state) {
        std::optional<XsdConfigReader> reader(read(schema));
        const std::size_t found = reader->getXsdTree().size();
        state.PauseTiming();
        if (found != schema.types())
            state.SkipWithError("Types are missing");
        reader.reset();
        state.ResumeTiming();
    }
}

/// @param filter takes the reader
/// @param expected number of types that stay
template <typename Filter>
void runFilters(benchmark::State& state, const SchemaFile& schema, Filter filter,
                std::size_t expected) {
    for ([[maybe_unused]] const auto _ : state) {
        state.PauseTiming();
        std::optional<XsdConfigReader> reader(read(schema));
        state.ResumeTiming();
        filter(*reader);
        const std::size_t kept = reader->getXsdTree().size();
        state.PauseTiming();
        if (kept != expected)
            state.SkipWithError("Kept something else than the types that are needed");
        reader.reset();
        state.ResumeTiming();
    }
}

void runFilter(benchmark::State& state, const SchemaFile& schema) {
    const auto kept = schema.everySecondStation();
    runFilters(
        state, schema, [&](XsdConfigReader& reader) { reader.keepXSDElement(kept); },
        schema.typesOfEverySecondStation());
}

/// As an application does that looks at one type after the other.
void runPruneAttributes(benchmark::State& state, const SchemaFile& schema) {
    const auto names = namesOf(schema);
    runFilters(
        state, schema,
        [&](XsdConfigReader& reader) {
            for (const std::string& name : names)
                reader.keepXSDChildAttributes(name, {});
        },
        schema.types());
}

/// Each call also looks for the types that nothing reaches any more.
void runPruneChildren(benchmark::State& state, const SchemaFile& schema) {
    const auto names = namesOf(schema);
    const std::vector<std::string> kept{"nextStation"};
    runFilters(
        state, schema,
        [&](XsdConfigReader& reader) {
            for (const std::string& name : names)
                reader.keepXSDChildElement(name, kept);
        },
        schema.types());
}

void runWrite(benchmark::State& state, const SchemaFile& schema) {
    XsdConfigReader reader = read(schema);
    for ([[maybe_unused]] const auto _ : state)
        reader.writeXSD(schema.newFile(), true);
    if (std::filesystem::file_size(schema.newFile()) <
        std::filesystem::file_size(schema.file()) / 2)
        state.SkipWithError("Wrote less than what was read");
}

/// Right after reading and filtering: the first time, the file is parsed once more.
void runWritePruned(benchmark::State& state, const SchemaFile& schema) {
    const auto kept = schema.everySecondStation();
    for ([[maybe_unused]] const auto _ : state) {
        state.PauseTiming();
        std::optional<XsdConfigReader> reader(read(schema));
        reader->keepXSDElement(kept);
        state.ResumeTiming();
        reader->writePrunedXSD(schema.newFile());
        state.PauseTiming();
        reader.reset();
        state.ResumeTiming();
    }
    XsdConfigReader written(schema.newFile());
    written.readXSD(true);
    if (written.getXsdTree().size() != schema.typesOfEverySecondStation())
        state.SkipWithError("Wrote something else than the types that are needed");
}

void runReadAny(benchmark::State& state, const SchemaFile& schema) {
    for ([[maybe_unused]] const auto _ : state) {
        XsdConfigReader reader(schema.file());
        reader.readAnyXSD();
        if (reader.getXsdTree().size() != schema.types())
            state.SkipWithError("Types are missing");
    }
}

void runContents(benchmark::State& state, const SchemaFile& schema) {
    XsdConfigReader reader = read(schema);
    std::vector<std::string> names;
    std::size_t expected = 0;
    for (const auto& [name, type] : reader.getXsdTree()) {
        names.push_back(name);
        expected += type->children.size() + type->attributes.size();
    }
    for ([[maybe_unused]] const auto _ : state) {
        std::size_t found = 0;
        for (const std::string& name : names)
            found += reader.getSubTypes(name).size() + reader.getAttributes(name).size();
        if (found != expected)
            state.SkipWithError("Contents are missing");
    }
}

template <std::shared_ptr<void> (*parse)(const std::string&)>
void runParse(benchmark::State& state, const SchemaFile& schema) {
    for ([[maybe_unused]] const auto _ : state)
        if (parse(schema.file()) == nullptr)
            state.SkipWithError("Found an error in a file without errors");
}

template <typename Run>
auto onSchema(Run run) {
    return [run](benchmark::State& state, std::size_t types) { run(state, SchemaFile(types)); };
}

} // namespace

void registerSchemaBenchmarks() {
    for (const std::size_t types : {std::size_t{50}, std::size_t{2'000}}) {
        const auto addOne = [&](const std::string& name, auto run) {
            add("Schema of so many types", name, std::to_string(types),
                [=](benchmark::State& state) { run(state, types); });
        };
        addOne("this library, read", onSchema(runRead));
        addOne("this library, filter", onSchema(runFilter));
        addOne("this library, prune attributes type by type", onSchema(runPruneAttributes));
        addOne("this library, prune children type by type", onSchema(runPruneChildren));
        addOne("this library, write", onSchema(runWrite));
        addOne("this library, write without what was filtered", onSchema(runWritePruned));
        addOne("this library, read as any schema", onSchema(runReadAny));
        addOne("this library, contents of each type", onSchema(runContents));
        addOne("libxml2, parsing only", onSchema(runParse<parseWithLibxml2>));
        addOne("XercesDOMParser, parsing only", onSchema(runParse<parseWithXercesDom>));
    }
    addGrowth("read a schema of that many types", 1'000, onSchema(runRead));
    addGrowth("write a schema of that many types", 1'000, onSchema(runWrite));
    addGrowth("write a schema of that many types without what was filtered", 1'000,
              onSchema(runWritePruned));
    // In memory already: too many for the processor's caches, with either number.
    addGrowth("filter a schema of that many types", 5'000, onSchema(runFilter));
    addGrowth("prune the attributes of that many types, type by type", 200,
              onSchema(runPruneAttributes));
    addGrowth("ask for the contents of that many types", 5'000, onSchema(runContents));
}

} // namespace Orvant::Benchmarks
