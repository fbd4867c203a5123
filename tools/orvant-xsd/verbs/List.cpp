#include "verbs/Verbs.h"

#include "CommandLine.h"

#include <fmt/core.h>

namespace Orvant::Tool {

namespace {

/// As the document has it; what XML Schema takes where it gives none.
std::string maxOccursOf(const XsdChildElementProperty& child) {
    return child.maxOccurs == XsdChildElementProperty().maxOccurs ? "1" : child.maxOccurs;
}

/// @return how many there may be; empty: exactly one
std::string countText(const XsdChildElementProperty& child) {
    const std::string least = std::to_string(child.minOccurs);
    const std::string most = maxOccursOf(child);
    if (most == "unbounded")
        return child.minOccurs == 0 ? "any number" : "at least " + least;
    if (least == most)
        return least == "1" ? "" : "exactly " + least;
    if (child.minOccurs == 0)
        return most == "1" ? "optional" : "up to " + most;
    return least + " to " + most;
}

std::string lineOf(const XsdChildElementProperty& child) {
    const std::string count = countText(child);
    return fmt::format("  {}{}{}{}{}", child.name, child.type.empty() ? "" : ": ", child.type,
                       count.empty() ? "" : ", ", count);
}

void print(SchemaFile& schema, const Output& output) {
    const auto printLine = [&](const std::string& line) { output.print(oneLine(line) + '\n'); };
    for (const auto& [name, type] : schema.reader().getRootelements())
        printLine(fmt::format("{}: {}", name, type));
    for (const auto& [name, type] : schema.reader().getXsdTree()) {
        output.print(fmt::format("\n{}\n", output.styled(oneLine(name), fmt::emphasis::bold)));
        for (const auto& child : type->children)
            printLine(lineOf(*child));
        for (const std::string& attribute : type->attributes)
            printLine("  @" + attribute);
    }
}

nlohmann::ordered_json jsonOf(const XsdChildElementProperty& child) {
    return {{"name", child.name},
            {"type", child.type},
            {"minOccurs", child.minOccurs},
            {"maxOccurs", maxOccursOf(child)}};
}

nlohmann::ordered_json jsonOf(const std::string& name, const XsdElementProperty& type) {
    auto children = nlohmann::ordered_json::array();
    for (const auto& child : type.children)
        children.push_back(jsonOf(*child));
    return {{"name", name}, {"children", children}, {"attributes", type.attributes}};
}

nlohmann::ordered_json jsonOf(SchemaFile& schema) {
    auto roots = nlohmann::ordered_json::array();
    for (const auto& [name, type] : schema.reader().getRootelements())
        roots.push_back({{"name", name}, {"type", type}});
    auto types = nlohmann::ordered_json::array();
    for (const auto& [name, type] : schema.reader().getXsdTree())
        types.push_back(jsonOf(name, *type));
    return {{"file", schema.name()}, {"rootElements", roots}, {"types", types}};
}

ExitCode list(SchemaFile& schema, const Output& output) {
    if (output.isJson())
        output.print(jsonOf(schema));
    else
        print(schema, output);
    return ExitCode::Clean;
}

} // namespace

void addList(CommandLine& commandLine) {
    commandLine.addVerb("list", "List root elements, and types with their children and attributes",
                        list);
}

} // namespace Orvant::Tool
