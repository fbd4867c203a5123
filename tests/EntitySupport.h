#pragma once

#include <cstddef>
#include <string>

namespace Orvant::Support {

inline std::string repeated(const std::string& text, std::size_t times) {
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        result += text;
    return result;
}

/// @return elements within one another, the innermost with this content
inline std::string nested(std::size_t depth, const std::string& innermost) {
    return repeated("<n>", depth) + innermost + repeated("</n>", depth);
}

/// Declares entities e0 to e6, each of which holds its predecessor ten times.
/// @param kind      what comes before the names: "" or "% "
/// @param reference start of a reference
inline std::string nestedEntities(const std::string& kind, const std::string& reference,
                                  const std::string& innermost) {
    std::string declarations = "<!ENTITY " + kind + "e0 '" + innermost + "'>";
    for (int level = 1; level <= 6; ++level) {
        const std::string predecessor = reference + "e" + std::to_string(level - 1) + ";";
        declarations += "<!ENTITY " + kind + "e" + std::to_string(level) + " '" +
                        repeated(predecessor, 10) + "'>";
    }
    return declarations;
}

} // namespace Orvant::Support
