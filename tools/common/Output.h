#pragma once

#include "common/OutputOptions.h"

#include <fmt/color.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Orvant::Tool {

/// What goes to standard output.
class Output {
public:
    /// @param options must outlive this
    explicit Output(const OutputOptions& options);

    /// @return whether a program reads what is printed
    bool isJson() const { return m_options.json; }
    /// @return whether only the exit code is to tell what was found
    bool isQuiet() const { return m_options.quiet; }
    /// @return a text that terminals show in a style, where that is wanted
    std::string styled(const std::string& text, const fmt::text_style& style) const;
    /// Prints a text as it is.
    void print(const std::string& text) const;
    /// Prints a document, with a line break at its end.
    void print(const nlohmann::ordered_json& document) const;
    /// Prints rows with their columns below each other.
    /// @param rows texts in UTF-8; the last one of a row may be of any width
    void printTable(const std::vector<std::vector<std::string>>& rows) const;

private:
    const OutputOptions& m_options;
    bool m_isColored;
};

/// Makes a text of a file fit for a line on a terminal.
/// @return it with control characters and bytes that are not UTF-8 shown as in C
std::string oneLine(const std::string& text);

/// @return how many columns a terminal needs for a text in UTF-8, as far as characters take one
std::size_t widthOf(const std::string& text);

} // namespace Orvant::Tool
