#pragma once

#include <string_view>

namespace Orvant {

/// @return a document without its byte order mark, which Xerces counts in no position
inline std::string_view withoutByteOrderMark(std::string_view document) {
    using namespace std::string_view_literals;
    // That of UTF-32 begins like that of UTF-16.
    for (const std::string_view mark :
         {"\xEF\xBB\xBF"sv, "\xFF\xFE\0\0"sv, "\0\0\xFE\xFF"sv, "\xFF\xFE"sv, "\xFE\xFF"sv})
        if (document.starts_with(mark))
            return document.substr(mark.size());
    return document;
}

} // namespace Orvant
