#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Orvant::Fuzzing {

/// @return what is between lines that hold just %%, so many parts; what an input lacks is empty
inline std::vector<std::string> partsOf(std::span<const std::uint8_t> input, std::size_t count) {
    const std::string separator = "\n%%\n";
    std::string rest(input.begin(), input.end());
    std::vector<std::string> parts;
    while (parts.size() + 1 < count) {
        const auto end = rest.find(separator);
        parts.push_back(rest.substr(0, end));
        rest = end == rest.npos ? "" : rest.substr(end + separator.size());
    }
    parts.push_back(rest);
    return parts;
}

/// Takes what an operation needs off the front of an input.
class Operations {
public:
    explicit Operations(const std::string& bytes) : m_bytes(bytes) {}

    bool atEnd() const { return m_next >= m_bytes.size(); }
    /// @return a number below a bound; a printable character stands for its number after '0'
    std::size_t takeNumber(std::size_t bound) {
        return atEnd() ? 0 : static_cast<std::uint8_t>(m_bytes[m_next++] - '0') % bound;
    }
    /// @return what is before the next semicolon
    std::string takeText() {
        const auto end = std::min(m_bytes.find(';', m_next), m_bytes.size());
        const std::string text = m_bytes.substr(m_next, end - m_next);
        m_next = std::min(end + 1, m_bytes.size());
        return text;
    }

private:
    std::string m_bytes;
    std::size_t m_next = 0;
};

} // namespace Orvant::Fuzzing
