#include "Output.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <unistd.h>

namespace Orvant::Tool {

namespace {

/// Colours are for eyes (https://no-color.org).
bool isColored(const std::string& wish) {
    if (wish != "auto")
        return wish == "always";
    const char* const refused = std::getenv("NO_COLOR"); // NOLINT(concurrency-mt-unsafe)
    return (refused == nullptr || *refused == '\0') && isatty(STDOUT_FILENO) == 1;
}

/// Whether a byte of UTF-8 begins a character.
bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

/// Removes what only changes colours.
std::string withoutStyles(std::string text) {
    for (std::size_t start = text.find("\x1b["); start != std::string::npos;
         start = text.find("\x1b[", start))
        text.erase(start, text.find('m', start) - start + 1);
    return text;
}

} // namespace

Output::Output(const Options& options)
    : m_options(options), m_isColored(isColored(options.color)) {}

std::string Output::styled(const std::string& text, const fmt::text_style& style) const {
    return m_isColored ? fmt::format(style, "{}", text) : text;
}

void Output::print(const std::string& text) const {
    if (!m_options.quiet)
        std::fwrite(text.data(), 1, text.size(), stdout);
}

void Output::print(const nlohmann::ordered_json& document) const {
    constexpr int indentation = 2;
    // What files hold need not be UTF-8.
    print(document.dump(indentation, ' ', false, nlohmann::ordered_json::error_handler_t::replace) +
          '\n');
}

void Output::printTable(const std::vector<std::vector<std::string>>& rows) const {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i + 1 < row.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(row[i]));
    }
    constexpr std::size_t gap = 3;
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size())
                line.append(widths[i] - widthOf(row[i]) + gap, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        print(line + '\n');
    }
}

std::string oneLine(const std::string& text) {
    std::string line;
    for (const char character : text)
        line += character == '\n'   ? "\\n"
                : character == '\t' ? "\\t"
                : character == '\r' ? "\\r"
                                    : std::string(1, character);
    return line;
}

std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(std::ranges::count_if(withoutStyles(text), beginsCharacter));
}

} // namespace Orvant::Tool
