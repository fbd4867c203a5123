#include <ConfigurationFramework/SchemaText.h>

#include <algorithm>
#include <array>
#include <utility>

namespace Orvant::SchemaText {

namespace {

constexpr std::string_view suiteNamespace = "http://www.orvant.com/OV_QLV100";
constexpr std::string_view readerNamespace = ORVANT_READER_NAMESPACE;
constexpr std::string_view modelSchemaTag = "<p1:schema xmlns:p1=\"";
constexpr std::string_view whiteSpace = " \t\r";

std::string schemaTag(std::string_view element, std::string_view nameSpace, bool withPrefix) {
    std::string tag = "<";
    tag += element;
    const auto add = [&tag](std::string_view name, std::string_view value) {
        tag.append(" ").append(name).append("=\"").append(value).append("\"");
    };
    add("xmlns:xs", "http://www.w3.org/2001/XMLSchema");
    if (withPrefix)
        add("xmlns:ov", nameSpace);
    add("xmlns", nameSpace);
    add("targetNamespace", nameSpace);
    add("elementFormDefault", "qualified");
    return tag + '>';
}

bool skip(std::string_view& text, std::string_view expected) {
    if (!text.starts_with(expected))
        return false;
    text.remove_prefix(expected.size());
    return true;
}

void skipWhiteSpace(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
}

/// Skips through the next `end`, or all of the text.
void skipThrough(std::string_view& text, std::string_view end) {
    const auto at = text.find(end);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + end.size());
}

/// Skips the rest of a start tag.
/// @return false when it is the tag of an empty element, or does not end
bool skipAttributes(std::string_view& text) {
    while (!text.empty()) {
        const char next = text.front();
        text.remove_prefix(1);
        if (next == '"' || next == '\'')
            skipThrough(text, std::string_view(&next, 1));
        else if (next == '>')
            return true;
        else if (next == '/')
            return false;
    }
    return false;
}

/// Skips text, and what belongs to no element: CDATA sections, comments, instructions.
void skipText(std::string_view& text) {
    using Markup = std::pair<std::string_view, std::string_view>;
    static constexpr std::array<Markup, 3> s_noElements = {
        {{"<![CDATA[", "]]>"}, {"<!--", "-->"}, {"<?", "?>"}}};
    while (true) {
        text.remove_prefix(std::min(text.find('<'), text.size()));
        const auto markup =
            std::find_if(s_noElements.begin(), s_noElements.end(),
                         [&text](const Markup& kind) { return text.starts_with(kind.first); });
        if (markup == s_noElements.end())
            return;
        skipThrough(text, markup->second);
    }
}

} // namespace

std::string suiteHeader(bool withPrefix) {
    return schemaTag("xs:schema", suiteNamespace, withPrefix);
}

std::string readerHeader() {
    return schemaTag("schema", readerNamespace, true);
}

std::string modelHeader() {
    return std::string(modelSchemaTag).append(readerNamespace).append("\">");
}

std::string emptyModelHeader() {
    return std::string(modelSchemaTag).append(readerNamespace).append("\"/>");
}

std::string replaceFirst(const std::string& line, std::string_view from, std::string_view to) {
    const auto at = line.find(from);
    return at == std::string::npos ? line : std::string(line).replace(at, from.size(), to);
}

std::string replacePrefixOfEndTag(const std::string& line, std::string_view from,
                                  std::string_view to) {
    std::string_view rest = line;
    skipWhiteSpace(rest);
    if (!skip(rest, "<") || !skip(rest, from))
        return line;
    const std::string_view name = rest.substr(0, rest.find_first_of(" \t\r/>"));
    if (!skipAttributes(rest))
        return line;
    skipText(rest);
    if (!skip(rest, "</"))
        return line;
    const auto prefixAt = line.size() - rest.size();
    if (!skip(rest, from) || !skip(rest, name))
        return line;
    skipWhiteSpace(rest);
    if (!skip(rest, ">"))
        return line;
    skipWhiteSpace(rest);
    return rest.empty() ? std::string(line).replace(prefixAt, from.size(), to) : line;
}

} // namespace Orvant::SchemaText
