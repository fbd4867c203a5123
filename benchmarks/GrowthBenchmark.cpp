#include "Benchmarks.h"
#include "Changes.h"
#include "Library.h"
#include "TemporaryDirectory.h"
#include "XmlParsers.h"

#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <FileHandling/FileName.h>

#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

// Each operation on an input and on one ten times as large. In parentheses: what an operation
// cannot do without, for comparison.

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

/// @param change sets values of a store to those of an edition
/// @param save saves what has changed
template <typename Change, typename Save>
void runSave(benchmark::State& state, Shape shape, Change change, Save save,
             SaveMode mode = SaveMode::InPlace) {
    const SettingsFiles files(shape);
    LibraryStore store(files, mode);
    unsigned int edition = userEdition;
    for ([[maybe_unused]] const auto _ : state) {
        change(store, shape, ++edition);
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

/// Names of one length, whatever their number, in an order that is not sorted.
std::vector<std::string> scatteredNames(std::size_t count) {
    constexpr std::size_t step = 7'919; // a prime: no name comes twice
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i)
        names.push_back("Plot" + std::to_string(100'000 + i * step % count));
    return names;
}

/// An empty object: only finding it is measured.
class EmptyObject : public ConfigurationObject {
public:
    EmptyObject() : ConfigurationObject("Plotter", "", LoadAndSave, AllProducts) {}
    ConfigurationObject* createConfigurationObject() const override { return new EmptyObject; }
};

std::string keyed(const std::vector<std::string>& keys) {
    std::string content;
    for (const std::string& key : keys)
        content += "<Plotter key=\"" + key + "\"><Paper>A4</Paper></Plotter>";
    return asDocument(content);
}

std::string named(const std::vector<std::string>& names) {
    std::string content;
    for (const std::string& name : names)
        content.append("<").append(name).append(">1</").append(name).append(">");
    return asDocument(content);
}

void runGetKeys(benchmark::State& state, std::size_t count) {
    auto reader = open(keyed(scatteredNames(count)));
    for ([[maybe_unused]] const auto _ : state) {
        std::set<std::string> keys;
        reader.getKeys("Plotter", keys);
        if (keys.size() != count)
            state.SkipWithError("Keys are missing");
    }
}

/// getKeys() answers sorted keys.
void runSortKeys(benchmark::State& state, std::size_t count) {
    const auto names = scatteredNames(count);
    for ([[maybe_unused]] const auto _ : state)
        benchmark::DoNotOptimize(std::set<std::string>(names.begin(), names.end()));
}

void runHashLookUps(benchmark::State& state, std::size_t count) {
    const auto names = scatteredNames(count);
    const std::unordered_set<std::string> set(names.begin(), names.end());
    for ([[maybe_unused]] const auto _ : state)
        for (const std::string& name : names)
            if (!set.contains(name))
                state.SkipWithError("A name is missing");
}

/// @param document makes the document of the names
/// @param lookUp looks up a name in a reader
template <typename Document, typename LookUp>
void runLookUps(benchmark::State& state, std::size_t count, Document document, LookUp lookUp) {
    const auto names = scatteredNames(count);
    auto reader = open(document(names));
    for ([[maybe_unused]] const auto _ : state)
        for (const std::string& name : names)
            if (lookUp(reader, name) != ConfigurationAccessResult::Success)
                state.SkipWithError("Something was not found");
}

ConfigurationAccessResult tagExists(SimpleConfigReader& reader, const std::string& name) {
    return reader.tagExists(name);
}

ConfigurationAccessResult getByName(SimpleConfigReader& reader, const std::string& name) {
    int number = 0;
    bool editable = true;
    return reader.getInt(name, number, editable);
}

ConfigurationAccessResult getByKey(SimpleConfigReader& reader, const std::string& key) {
    EmptyObject object;
    return reader.getClassContents("Plotter", key, object);
}

ConfigurationAccessResult getKeysOf(SimpleConfigReader& reader, const std::string& name) {
    std::set<std::string> keys;
    return reader.getKeys(name, keys);
}

/// @param edit changes what has a name in a writer
template <typename Document, typename Edit>
void runEdits(benchmark::State& state, std::size_t count, Document document, Edit edit) {
    const auto names = scatteredNames(count);
    const std::string text = document(names);
    for ([[maybe_unused]] const auto _ : state) {
        ConfigWriter writer(FileName(), text);
        for (const std::string& name : names)
            edit(writer, name);
    }
}

void putByName(ConfigWriter& writer, const std::string& name) {
    writer.putInt(name, 2, "");
}

void putByKey(ConfigWriter& writer, const std::string& key) {
    writer.createKeyedNode("Plotter", key, "");
}

/// The writer edits a DOM.
void runDomParse(benchmark::State& state, std::size_t count) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("named.xml");
    std::ofstream(file) << named(scatteredNames(count));
    for ([[maybe_unused]] const auto _ : state)
        if (parseWithXercesDom(file) == nullptr)
            state.SkipWithError("Found an error in a file without errors");
}

/// So many branches that the depth takes the time.
constexpr std::size_t branches = 100;

std::string nested(std::size_t depth) {
    std::string branch;
    for (std::size_t i = 0; i < depth; ++i)
        branch += "<Assembly>";
    branch += "<Part>bolt</Part>";
    for (std::size_t i = 0; i < depth; ++i)
        branch += "</Assembly>";
    std::string content;
    for (std::size_t i = 0; i < branches; ++i)
        content += branch;
    return asDocument(content);
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

} // namespace

void registerGrowthBenchmarks() {
    // Opening a document takes little time compared with each of these.
    addGrowth("load objects of 20 values", 1'000,
              [](auto& state, std::size_t count) { runLoad(state, {count, 20}); });
    addGrowth("load an object of that many values", 1'000,
              [](auto& state, std::size_t count) { runLoad(state, {1, count}); });
    addGrowth("save one change in objects of 20 values", 1'000, [](auto& state, std::size_t count) {
        runSave(state, {count, 20}, changeProbe<LibraryStore>, saveDifferences);
    });
    addGrowth("save a changed tenth of objects of 20 values", 1'000,
              [](auto& state, std::size_t count) {
                  runSave(state, {count, 20}, changeTenth<LibraryStore>, saveDifferences);
              });
    addGrowth("save one change in an object of that many values", 1'000,
              [](auto& state, std::size_t count) {
                  runSave(state, {1, count}, changeProbe<LibraryStore>, saveDifferences);
              });
    addGrowth("merge one change into objects of 20 values", 1'000,
              [](auto& state, std::size_t count) {
                  runSave(state, {count, 20}, changeProbe<LibraryStore>, saveDifferences,
                          SaveMode::Merge);
              });
    addGrowth("merge one change into an object of that many values", 1'000,
              [](auto& state, std::size_t count) {
                  runSave(state, {1, count}, changeProbe<LibraryStore>, saveDifferences,
                          SaveMode::Merge);
              });
    addGrowth("save objects of 20 values in full", 1'000, [](auto& state, std::size_t count) {
        runSave(state, {count, 20}, changeProbe<LibraryStore>, saveInFull);
    });
    // In memory already, from here on.
    addGrowth("find and read as many values by name", 1'000,
              [](auto& state, std::size_t count) { runLookUps(state, count, named, getByName); });
    addGrowth("find as many objects by name and key", 1'000,
              [](auto& state, std::size_t count) { runLookUps(state, count, keyed, getByKey); });
    addGrowth("tagExists for as many tags", 1'000,
              [](auto& state, std::size_t count) { runLookUps(state, count, named, tagExists); });
    addGrowth("(find as many names in a std::unordered_set)", 1'000, runHashLookUps);
    addGrowth("getKeys of as many keys", 1'000, runGetKeys);
    addGrowth("getKeys of as many tags", 1'000,
              [](auto& state, std::size_t count) { runLookUps(state, count, named, getKeysOf); });
    addGrowth("(put as many keys into a std::set)", 1'000, runSortKeys);
    // From text again.
    addGrowth("find and replace as many objects by name and key", 1'000,
              [](auto& state, std::size_t count) { runEdits(state, count, keyed, putByKey); });
    addGrowth("find and replace as many values by name", 1'000,
              [](auto& state, std::size_t count) { runEdits(state, count, named, putByName); });
    addGrowth("(XercesDOMParser, parsing as many values)", 1'000, runDomParse);
    addGrowth("read a document of that depth", 1'000, runDeepRead);
    // Ten times as deep, it is still within the 4,000 levels that the writer writes.
    addGrowth("edit a document of that depth", 99, runDeepEdit);
}

} // namespace Orvant::Benchmarks
