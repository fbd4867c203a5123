#pragma once

#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <string_view>

namespace Orvant::Support {

/// What is written of a schema, and what stays in it although it is removed.
struct Pruned {
    std::string text;
    Strings stayed;
};

inline Pruned prunedBy(XsdConfigReader& reader) {
    std::ostringstream out;
    Strings stayed = reader.writePrunedXSD(out);
    return {out.str(), std::move(stayed)};
}

/// @return all that a reader answers
inline std::string answersOf(XsdConfigReader& reader) {
    std::string answers;
    for (const auto& [name, type] : reader.getXsdTree()) {
        answers += name + " (" + type->name + ")\n";
        for (const auto& child : type->children)
            answers += "  " + child->name + ": " + child->type + ' ' +
                       std::to_string(child->minOccurs) + ".." + child->maxOccurs + '\n';
        for (const std::string& attribute : type->attributes)
            answers += "  @" + attribute + '\n';
    }
    for (const auto& [name, type] : reader.getRootelements())
        answers += "root " + name + ": " + type + '\n';
    return answers;
}

/// @return what a schema of the suite holds
inline std::string linesOf(const std::string& schema) {
    constexpr std::string_view end = "\n</xs:schema>\n";
    EXPECT_TRUE(schema.starts_with(suiteHeader) && schema.ends_with(end)) << schema;
    const std::string lines =
        schema.substr(suiteHeader.size(), schema.size() - suiteHeader.size() - end.size());
    return lines.starts_with('\n') ? lines.substr(1) : lines;
}

/// Reads a schema of the suite that holds these lines, and filters it.
/// @return the lines that are then written
template <typename Filter>
Pruned pruned(const std::string& lines, Filter filter) {
    const TemporaryDirectory directory;
    ReaderOfSchema reader(directory, lines);
    filter(reader);
    Pruned result = prunedBy(reader);
    result.text = linesOf(result.text);
    return result;
}

/// @return a filter that keeps these types
inline auto keeping(const Strings& types) {
    return [types](XsdConfigReader& reader) { reader.keepXSDElement(types); };
}
/// @return a filter that keeps these children of a type
inline auto keepingChildren(const std::string& type, const Strings& names) {
    return [type, names](XsdConfigReader& reader) { reader.keepXSDChildElement(type, names); };
}
/// @return a filter that keeps these attributes of a type
inline auto keepingAttributes(const std::string& type, const Strings& names) {
    return [type, names](XsdConfigReader& reader) { reader.keepXSDChildAttributes(type, names); };
}

} // namespace Orvant::Support
