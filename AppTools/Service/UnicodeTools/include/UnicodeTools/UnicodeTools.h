#pragma once

#include <UnicodeTools/Export.h>

#include <string>

namespace Orvant {

/// Conversions between the suite's UTF-8 strings and wide strings.
///
/// @code
/// const std::wstring wide = UnicodeTools::utf8_to_wstring("Größe");
/// @endcode
class ORVANT_UNICODETOOLS_EXPORT UnicodeTools {
public:
    /// @param text UTF-8
    /// @return the text in the platform's wide encoding (UTF-32 where wchar_t has 4 bytes, UTF-16
    ///         where it has 2); bytes that are not UTF-8 become U+FFFD
    static std::wstring utf8_to_wstring(const std::string& text);
};

} // namespace Orvant
