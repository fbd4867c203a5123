#include <ConfigurationFramework/schema/LineRewriting.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace Orvant::LineRewriting {

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

/// Skips the attributes of a start tag, up to the '>', or the '/' of an empty element.
void skipAttributes(std::string_view& text) {
    while (!text.empty() && text.front() != '>' && text.front() != '/') {
        const char next = text.front();
        text.remove_prefix(1);
        if (next == '"' || next == '\'')
            skipThrough(text, std::string_view(&next, 1));
    }
}

/// Skips a name and the white space behind it.
/// @return the name
std::string_view skipName(std::string_view& text) {
    const std::string_view name = text.substr(0, text.find_first_of(" \t\r/>"));
    text.remove_prefix(name.size());
    skipWhiteSpace(text);
    return name;
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

/// The end tag of a line without any other, but for a start tag that it ends.
struct LoneEndTag {
    std::size_t prefix;                     ///< where its prefix stands
    std::optional<std::size_t> startPrefix; ///< where that of the start tag stands, if there is one
};

std::optional<LoneEndTag> findLoneEndTag(std::string_view line, std::string_view prefix) {
    std::string_view rest = line;
    const auto position = [&line, &rest] { return line.size() - rest.size(); };
    LoneEndTag tag;
    skipText(rest);
    std::string_view startName;
    if (!rest.starts_with("</")) {
        if (!skip(rest, "<"))
            return std::nullopt;
        tag.startPrefix = position();
        if (!skip(rest, prefix))
            return std::nullopt;
        startName = skipName(rest);
        skipAttributes(rest);
        if (!skip(rest, ">"))
            return std::nullopt;
        skipText(rest);
    }
    if (!skip(rest, "</"))
        return std::nullopt;
    tag.prefix = position();
    if (!skip(rest, prefix))
        return std::nullopt;
    const std::string_view name = skipName(rest);
    if ((tag.startPrefix && name != startName) || !skip(rest, ">"))
        return std::nullopt;
    skipText(rest);
    return rest.empty() ? std::optional(tag) : std::nullopt;
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

std::string replacePrefix(const std::string& line, std::string_view from, std::string_view to) {
    const auto endTag = findLoneEndTag(line, from);
    if (!endTag || endTag->startPrefix.value_or(line.find(from)) != line.find(from))
        return replaceFirst(line, from, to);
    const std::string withEndTag = std::string(line).replace(endTag->prefix, from.size(), to);
    return endTag->startPrefix ? replaceFirst(withEndTag, from, to) : withEndTag;
}

std::string endLineOfDocumentation(const std::string& line) {
    return replaceFirst(line, "</p1:documentation> ", "</p1:documentation>\n ");
}

} // namespace Orvant::LineRewriting
