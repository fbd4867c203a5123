#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Orvant::Tool {

/// @param text UTF-8
/// @return the text for an attribute in double quotes or an element, in XML or HTML: blanks and
///         line breaks read as they are
std::string escaped(const std::string& text);

/// Text of an XML document, an element or comment a line.
class MarkupText {
public:
    using Attributes = std::vector<std::pair<std::string, std::string>>;

    /// Adds the start of an element; what is added until close() is in it.
    void open(const std::string& tag, const Attributes& attributes = {});
    void close();
    void addEmpty(const std::string& tag, const Attributes& attributes = {});
    void addElement(const std::string& tag, const std::string& text);
    /// @param text of any characters; what XML does not allow in comments is set apart by blanks
    void addComment(const std::string& text);
    /// Adds what a schema says to people.
    void addDocumentation(const std::string& text);
    /// Adds text that is markup itself.
    /// @{
    void addLine(const std::string& line);
    void addLines(const std::string& lines);
    /// @}

    const std::string& text() const { return m_text; }

private:
    std::string m_text;
    std::vector<std::string> m_open;
};

} // namespace Orvant::Tool
