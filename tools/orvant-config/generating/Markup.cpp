#include "generating/Markup.h"

#include <sstream>

namespace Orvant::Tool {

namespace {

std::string startOf(const std::string& tag, const MarkupText::Attributes& attributes) {
    std::string start = '<' + tag;
    for (const auto& [name, value] : attributes)
        start += ' ' + name + "=\"" + escaped(value) + '"';
    return start;
}

} // namespace

std::string escaped(const std::string& text) {
    std::string result;
    result.reserve(text.size());
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\t':
        case '\n':
        case '\r':
            result += "&#" + std::to_string(static_cast<int>(character)) + ';';
            break;
        default:
            result += character;
        }
    }
    return result;
}

void MarkupText::open(const std::string& tag, const Attributes& attributes) {
    addLine(startOf(tag, attributes) + '>');
    m_open.push_back(tag);
}

void MarkupText::close() {
    const std::string tag = std::move(m_open.back());
    m_open.pop_back();
    addLine("</" + tag + '>');
}

void MarkupText::addEmpty(const std::string& tag, const Attributes& attributes) {
    addLine(startOf(tag, attributes) + "/>");
}

void MarkupText::addElement(const std::string& tag, const std::string& text) {
    addLine('<' + tag + '>' + escaped(text) + "</" + tag + '>');
}

void MarkupText::addComment(const std::string& text) {
    std::string apart;
    for (const char character : text) {
        if (character == '-' && apart.ends_with('-'))
            apart += ' ';
        apart += character;
    }
    addLine("<!-- " + apart + " -->");
}

void MarkupText::addDocumentation(const std::string& text) {
    open("xs:annotation");
    addElement("xs:documentation", text);
    close();
}

void MarkupText::addLine(const std::string& line) {
    m_text.append(2 * m_open.size(), ' ') += line + '\n';
}

void MarkupText::addLines(const std::string& lines) {
    std::istringstream stream(lines);
    for (std::string line; std::getline(stream, line);)
        addLine(line);
}

} // namespace Orvant::Tool
