#include "Benchmarks.h"
#include "Library.h"

#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <FileHandling/FileName.h>

#include <optional>
#include <set>
#include <string>

// Each operation on an input and on one ten times as large.

namespace Orvant::Benchmarks {

namespace {

void runLoad(benchmark::State& state, Shape shape) {
    const SettingsFiles files(shape);
    for ([[maybe_unused]] const auto _ : state) {
        std::optional<Loaded> loaded(loadInBatch(files));
        state.PauseTiming();
        loaded.reset();
        state.ResumeTiming();
    }
}

/// @param save saves what one value has changed of
template <typename Save>
void runSave(benchmark::State& state, Shape shape, Save save) {
    const SettingsFiles files(shape);
    LibraryStore store(files);
    const auto [object, value] = probeOf(shape);
    unsigned int edition = userEdition;
    for ([[maybe_unused]] const auto _ : state) {
        store.set(object, value, valueOf(object, value, ++edition));
        if (!save(store, files))
            state.SkipWithError("Could not save");
    }
}

bool saveDifferences(LibraryStore& store, const SettingsFiles&) {
    return store.save();
}

bool saveInFull(LibraryStore& store, const SettingsFiles& files) {
    return store.saveInFull(files.newXml());
}

std::string asDocument(const std::string& content) {
    return std::string("<Configuration version=\"") + documentVersion + "\">" + content +
           "</Configuration>";
}

SimpleConfigReader open(const std::string& document) {
    return SimpleConfigReader(FileName(), document, {documentVersion});
}

/// An object with nothing in it: what is measured is how it is found.
class EmptyObject : public ConfigurationObject {
public:
    EmptyObject() : ConfigurationObject("Plotter", "", LoadAndSave, AllProducts) {}
    ConfigurationObject* createConfigurationObject() const override { return new EmptyObject; }
};

std::string keyed(std::size_t count) {
    std::string content;
    for (std::size_t i = 0; i < count; ++i)
        content += "<Plotter key=\"" + objectName(i) + "\"><Paper>A4</Paper></Plotter>";
    return asDocument(content);
}

void runGetKeys(benchmark::State& state, std::size_t count) {
    auto reader = open(keyed(count));
    for ([[maybe_unused]] const auto _ : state) {
        std::set<std::string> keys;
        reader.getKeys("Plotter", keys);
        if (keys.size() != count)
            state.SkipWithError("Keys are missing");
    }
}

void runKeyedLookUps(benchmark::State& state, std::size_t count) {
    auto reader = open(keyed(count));
    EmptyObject object;
    for ([[maybe_unused]] const auto _ : state)
        for (std::size_t i = 0; i < count; ++i)
            if (reader.getClassContents("Plotter", objectName(i), object) !=
                ConfigurationAccessResult::Success)
                state.SkipWithError("A key is missing");
}

void runTagExists(benchmark::State& state, std::size_t count) {
    std::string content;
    for (std::size_t i = 0; i < count; ++i)
        content += '<' + objectName(i) + "/>";
    auto reader = open(asDocument(content));
    for ([[maybe_unused]] const auto _ : state)
        for (std::size_t i = 0; i < count; ++i)
            if (reader.tagExists(objectName(i)) != ConfigurationAccessResult::Success)
                state.SkipWithError("A tag is missing");
}

std::string nested(std::size_t depth) {
    std::string begin;
    std::string end;
    for (std::size_t i = 0; i < depth; ++i) {
        begin += "<Assembly>";
        end += "</Assembly>";
    }
    return asDocument(begin + "<Part>bolt</Part>" + end);
}

void runDeepRead(benchmark::State& state, std::size_t depth) {
    const std::string document = nested(depth);
    for ([[maybe_unused]] const auto _ : state) {
        auto reader = open(document);
        for (std::size_t i = 0; i < depth; ++i)
            reader.setCurrentNode("Assembly");
        std::string text;
        bool editable = true;
        if (reader.getString("Part", text, editable) != ConfigurationAccessResult::Success)
            state.SkipWithError("Cannot read so deep");
    }
}

/// Without writing: indented, the text of a document grows as the square of its depth.
void runDeepEdit(benchmark::State& state, std::size_t depth) {
    const std::string document = nested(depth);
    for ([[maybe_unused]] const auto _ : state) {
        ConfigWriter writer(FileName(), document);
        for (std::size_t i = 0; i < depth; ++i)
            writer.setCurrentNode("Assembly");
        writer.putString("Part", "nut", "");
        if (writer.setCurrentNode("Part") != ConfigurationAccessResult::Success)
            state.SkipWithError("Cannot edit so deep");
    }
}

template <typename Run>
void addPair(const std::string& what, std::size_t size, Run run) {
    for (const std::size_t count : {size, 10 * size})
        add("Growth", what, std::to_string(count),
            [=](benchmark::State& state) { run(state, count); });
}

} // namespace

void registerGrowthBenchmarks() {
    addPair("load objects of 20 values", 1'000,
            [](auto& state, std::size_t count) { runLoad(state, {count, 20}); });
    addPair("load an object of that many values", 1'000,
            [](auto& state, std::size_t count) { runLoad(state, {1, count}); });
    addPair("save one change in objects of 20 values", 1'000,
            [](auto& state, std::size_t count) { runSave(state, {count, 20}, saveDifferences); });
    addPair("save one change in an object of that many values", 1'000,
            [](auto& state, std::size_t count) { runSave(state, {1, count}, saveDifferences); });
    addPair("save objects of 20 values in full", 1'000,
            [](auto& state, std::size_t count) { runSave(state, {count, 20}, saveInFull); });
    // So few that ten times as many are still near the processor.
    addPair("getKeys", 100, runGetKeys);
    addPair("find as many objects by key", 100, runKeyedLookUps);
    addPair("tagExists for as many tags", 100, runTagExists);
    addPair("read a document of that depth", 1'000, runDeepRead);
    // A document deeper than 1,000 the writer would not write.
    addPair("edit a document of that depth", 99, runDeepEdit);
}

} // namespace Orvant::Benchmarks
