#pragma once

#include <boost/locale/utf.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace Orvant {

constexpr boost::locale::utf::code_point replacementCharacter = 0xFFFD;

/// Reads one code point from the front of a text, U+FFFD for an ill-formed code unit.
/// @param position where to read, before `end`; moved past what was read
/// @param end      end of the text
template <typename Char>
boost::locale::utf::code_point takeCodePoint(const Char*& position, const Char* end) {
    const Char* const first = position;
    const auto codePoint = boost::locale::utf::utf_traits<Char>::decode(position, end);
    if (codePoint != boost::locale::utf::illegal && codePoint != boost::locale::utf::incomplete)
        return codePoint;
    // The decoder has consumed the unit that broke the sequence, which may be valid by itself.
    position = first + 1;
    return replacementCharacter;
}

/// Converts between UTF-8, UTF-16 and UTF-32, told apart by the size of the character type.
/// @param result what the text is appended to, with U+FFFD for each ill-formed code unit
template <typename To, typename From>
void appendTranscoded(std::basic_string<To>& result, std::basic_string_view<From> text) {
    const From* const end = text.data() + text.size();
    // Most texts are pure ASCII, which is the same in all the encoding forms.
    const From* position =
        std::find_if(text.data(), end, [](From unit) { return unit < 0 || unit > 0x7F; });
    const auto length = result.size();
    result.resize(length + static_cast<std::size_t>(position - text.data()));
    std::transform(text.data(), position, result.data() + length,
                   [](From unit) { return static_cast<To>(unit); });
    while (position != end)
        boost::locale::utf::utf_traits<To>::encode(takeCodePoint(position, end),
                                                   std::back_inserter(result));
}

/// appendTranscoded() to an empty text.
template <typename To, typename From>
std::basic_string<To> transcode(std::basic_string_view<From> text) {
    std::basic_string<To> result;
    result.reserve(text.size());
    appendTranscoded(result, text);
    return result;
}

} // namespace Orvant
