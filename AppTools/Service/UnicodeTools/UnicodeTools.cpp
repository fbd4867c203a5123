#include <UnicodeTools/UnicodeTools.h>

#include <Transcoding/Transcode.h>

namespace Orvant {

std::wstring UnicodeTools::utf8_to_wstring(const std::string& text) {
    return transcode<wchar_t>(std::string_view(text));
}

} // namespace Orvant
