#include "common/Output.h"

#include <boost/locale/utf.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace Orvant::Tool {

namespace {

namespace utf = boost::locale::utf;

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

std::string escapedByte(char byte) {
    return fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
}

/// Terminals obey these, beginning a line being the least of it.
bool isControl(utf::code_point character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

std::string escapedControl(utf::code_point control) {
    switch (control) {
    case '\n':
        return "\\n";
    case '\t':
        return "\\t";
    case '\r':
        return "\\r";
    default:
        return control < 0x80 ? escapedByte(static_cast<char>(control))
                              : fmt::format("\\u{:04x}", control);
    }
}

/// Removes what only changes colours.
std::string withoutStyles(std::string text) {
    for (std::size_t start = text.find("\x1b["); start != std::string::npos;
         start = text.find("\x1b[", start))
        text.erase(start, text.find('m', start) - start + 1);
    return text;
}

} // namespace

Output::Output(const OutputOptions& options)
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
    const char* const end = text.data() + text.size();
    for (const char* next = text.data(); next != end;) {
        const char* const first = next;
        const auto codePoint = utf::utf_traits<char>::decode(next, end);
        if (codePoint == utf::illegal || codePoint == utf::incomplete) {
            line += escapedByte(*first);
            next = first + 1; // the byte that broke the sequence may be valid by itself
        } else if (isControl(codePoint)) {
            line += escapedControl(codePoint);
        } else {
            line.append(first, next);
        }
    }
    return line;
}

std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(std::ranges::count_if(withoutStyles(text), beginsCharacter));
}

} // namespace Orvant::Tool
