#include <ConfigurationFramework/schema/LineRewriting.h>

#include <ConfigurationFramework/schema/SchemaNamespaces.h>

#include <algorithm>

namespace Orvant::LineRewriting {

namespace {

constexpr std::string_view modelSchemaTag = "<p1:schema xmlns:p1=\"";
constexpr std::string_view whiteSpace = " \t\r";

Attributes schemaAttributes(std::string_view nameSpace, bool withPrefix) {
    const std::string uri(nameSpace);
    Attributes attributes{{"xmlns:xs", std::string(SchemaNamespaces::xmlSchema)}};
    if (withPrefix)
        attributes.emplace_back("xmlns:ov", uri);
    attributes.emplace_back("xmlns", uri);
    attributes.emplace_back("targetNamespace", uri);
    attributes.emplace_back("elementFormDefault", "qualified");
    return attributes;
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

/// Skips a name and the white space after it.
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

/// What a line consists of, besides text.
enum class Content {
    Element, ///< both tags of an element that holds nothing but text
    EndTag,
    Other,
};

/// A line with a prefix in its tags.
struct ClassifiedLine {
    Content content;
    std::size_t endTagPrefix = 0; ///< position of the end tag's prefix, if it has one
};

/// @return Other also for an element whose start tag does not hold the first occurrence of the
///         prefix, and for tags without the prefix
ClassifiedLine classify(std::string_view line, std::string_view prefix) {
    constexpr ClassifiedLine other{Content::Other};
    ClassifiedLine result{Content::EndTag};
    std::string_view rest = line;
    std::string_view startName;
    const auto position = [&line, &rest] { return line.size() - rest.size(); };
    skipText(rest);
    if (!rest.starts_with("</")) {
        result.content = Content::Element;
        if (!skip(rest, "<") || position() != line.find(prefix))
            return other;
        rest.remove_prefix(prefix.size());
        startName = skipName(rest);
        skipAttributes(rest);
        if (!skip(rest, ">"))
            return other;
        skipText(rest);
    }
    if (!skip(rest, "</"))
        return other;
    result.endTagPrefix = position();
    if (!skip(rest, prefix))
        return other;
    const std::string_view endName = skipName(rest);
    if (result.content == Content::Element && endName != startName)
        return other;
    if (!skip(rest, ">"))
        return other;
    skipText(rest);
    return rest.empty() ? result : other;
}

} // namespace

std::string startTag(std::string_view element, const Attributes& attributes) {
    std::string tag = "<";
    tag += element;
    for (const auto& [name, value] : attributes)
        tag.append(" ").append(name).append("=\"").append(value).append("\"");
    return tag + '>';
}

Attributes suiteAttributes(bool withPrefix) {
    return schemaAttributes(SchemaNamespaces::suite, withPrefix);
}

std::string suiteHeader(bool withPrefix) {
    return startTag("xs:schema", suiteAttributes(withPrefix));
}

std::string readerHeader() {
    return startTag("schema", schemaAttributes(SchemaNamespaces::reader, true));
}

std::string modelHeader() {
    return std::string(modelSchemaTag).append(SchemaNamespaces::reader).append("\">");
}

std::string emptyModelHeader() {
    return std::string(modelSchemaTag).append(SchemaNamespaces::reader).append("\"/>");
}

std::string rewriteForReader(const std::string& line) {
    static const std::string s_withPrefix = suiteHeader(true);
    static const std::string s_withoutPrefix = suiteHeader(false);
    static const std::string s_reader = readerHeader();
    std::string rewritten = replaceFirst(line, s_withPrefix, s_reader);
    rewritten = replaceFirst(rewritten, s_withoutPrefix, s_reader);
    rewritten = replaceFirst(rewritten, removedImport, "");
    rewritten = replacePrefix(rewritten, "xs:", "");
    return replacePrefix(rewritten, "ov:", "");
}

std::string rewrittenForReader(std::string_view file) {
    std::string rewritten;
    rewritten.reserve(file.size() + 1);
    while (!file.empty()) {
        const auto end = std::min(file.find('\n'), file.size());
        rewritten.append(rewriteForReader(std::string(file.substr(0, end)))).append(1, '\n');
        file.remove_prefix(std::min(end + 1, file.size()));
    }
    return rewritten;
}

std::string replaceFirst(const std::string& line, std::string_view from, std::string_view to) {
    const auto at = line.find(from);
    return at == std::string::npos ? line : std::string(line).replace(at, from.size(), to);
}

std::string replacePrefix(const std::string& line, std::string_view from, std::string_view to) {
    const ClassifiedLine classified = classify(line, from);
    const auto withEndTag = [&] {
        return std::string(line).replace(classified.endTagPrefix, from.size(), to);
    };
    switch (classified.content) {
    case Content::Element:
        return replaceFirst(withEndTag(), from, to);
    case Content::EndTag:
        return withEndTag();
    case Content::Other:
        break;
    }
    return replaceFirst(line, from, to);
}

bool isRestored(std::string_view attribute, std::string_view value) {
    const std::string written = std::string(attribute).append("=\"").append(value).append("\"");
    return std::ranges::find(restoredNames, written, &Restored::first) != restoredNames.end();
}

std::string endLineOfDocumentation(const std::string& line) {
    const std::string ended = replaceFirst(line, "</p1:documentation> ", "</p1:documentation>\n ");
    return replaceFirst(ended, "</p1:documentation><", "</p1:documentation>\n<");
}

} // namespace Orvant::LineRewriting
