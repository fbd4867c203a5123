// Any bytes as a schema file: what is read and written is read as the same schema, and written
// again it is the same file. Without what was filtered, it is still such a file, and without a
// filter the same bytes. What cannot be read has a reason.

#include "FuzzTarget.h"

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/XsdConfigReader.h>
#include <TestSupport.h>

#include <optional>
#include <sstream>

namespace Orvant::Fuzzing {

namespace {

std::string answersOf(XsdConfigReader& reader) {
    std::ostringstream answers;
    for (const auto& [name, type] : reader.getXsdTree()) {
        answers << "type " << name << " named " << type->name << '\n';
        for (const auto& child : type->children)
            answers << "  child " << child->name << ": " << child->type << ' ' << child->minOccurs
                    << ".." << child->maxOccurs << '\n';
        for (const std::string& attribute : reader.getAttributes(name))
            answers << "  attribute " << attribute << '\n';
    }
    for (const auto& [name, type] : reader.getRootelements())
        answers << "root " << name << ": " << type << '\n';
    return answers.str();
}

enum class Dialect : std::uint8_t { Suite, Reader, Any };

bool read(XsdConfigReader& reader, Dialect dialect) {
    try {
        if (dialect == Dialect::Any)
            reader.readAnyXSD();
        else
            reader.readXSD(dialect == Dialect::Suite);
        require(!reader.getReadProblem(), "what can be read has no problem");
        return true;
    } catch (const ConfigException&) {
        require(reader.getReadProblem() && !reader.getReadProblem()->message.empty(),
                "what cannot be read has a problem");
        return false;
    }
}

/// @return the file that is written; nothing for a schema that XML cannot hold
std::optional<std::string> written(XsdConfigReader& reader, const FileName& file, bool fixOutput) {
    try {
        reader.writeXSD(file, fixOutput);
        return Support::readFile(file);
    } catch (const ConfigException&) {
        return std::nullopt;
    } catch (const xml_schema::serialization&) {
        return std::nullopt;
    }
}

/// Reads with a filter for half of the types what a file holds, and writes it as it stands.
void readAndPrune(const FileName& file, Dialect dialect,
                  const Support::TemporaryDirectory& folder) {
    XsdConfigReader reader(file);
    if (!read(reader, dialect))
        return;
    for (const XsdLoss& loss : reader.getLosses())
        require(!loss.construct.empty() && !loss.effect.empty(), "a loss is told");
    const FileName pruned = folder.file("pruned.xsd");
    require(reader.writePrunedXSD(pruned).empty(), "without a filter, nothing is filtered");
    require(Support::readFile(file) == Support::readFile(pruned),
            "without a filter, the file is written as it stands", Support::readFile(file),
            Support::readFile(pruned));
    std::vector<std::string> kept;
    for (const auto& [name, type] : reader.getXsdTree()) {
        if (kept.size() % 2 == 0)
            kept = reader.getTypesUsedBy(name);
        reader.keepXSDChildElement(name, {});
        reader.keepXSDChildAttributes(name, {});
    }
    reader.keepXSDElement(kept);
    try {
        reader.writePrunedXSD(pruned);
    } catch (const ConfigException&) {
        return; // well-formed only once it is rewritten
    }
    XsdConfigReader again(pruned);
    require(dialect == Dialect::Suite || read(again, dialect), "a pruned file can be read",
            Support::readFile(file), Support::readFile(pruned));
}

void readAndWrite(const FileName& file, Dialect dialect,
                  const Support::TemporaryDirectory& folder) {
    XsdConfigReader reader(file);
    if (!read(reader, dialect))
        return;
    const std::string schema = answersOf(reader);
    // What makes it a file of the suite again goes by lines and knows only the suite's.
    (void)written(reader, folder.file("suite.xsd"), true);

    const FileName first = folder.file("first.xsd");
    const auto bytes = written(reader, first, false);
    if (!bytes)
        return;
    XsdConfigReader again(first);
    require(read(again, Dialect::Reader), "what is written can be read", *bytes);
    require(schema == answersOf(again), "what is written is the same schema", schema,
            answersOf(again), *bytes);
    const auto bytesAgain = written(again, folder.file("second.xsd"), false);
    require(bytes == bytesAgain, "what is written again is the same file", *bytes,
            bytesAgain.value_or("nothing"));
}

} // namespace

void runTarget(std::span<const std::uint8_t> input) {
    static const Support::TemporaryDirectory folder;
    const FileName file = folder.file("schema.xsd", std::string(input.begin(), input.end()));
    for (const Dialect dialect : {Dialect::Suite, Dialect::Reader, Dialect::Any}) {
        readAndWrite(file, dialect, folder);
        readAndPrune(file, dialect, folder);
    }
}

} // namespace Orvant::Fuzzing
