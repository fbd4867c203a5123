#include <ConfigurationFramework/xml/XmlText.h>

#include <Transcoding/Transcode.h>

#include <algorithm>

#include <xercesc/util/XMLChar.hpp>

namespace Orvant {

namespace {

using boost::locale::utf::code_point;

bool isXmlCharacter(code_point c) {
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) ||
           (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

/// Whether a text is all of characters that are the same in every encoding form.
bool isPlain(std::string_view text) {
    return std::ranges::all_of(text, [](unsigned char c) { return c >= 0x20 && c < 0x80; });
}

/// Whether a text is a name of ASCII letters, digits and the like.
bool isPlainName(std::string_view name) {
    const auto isLetter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
    };
    return !name.empty() && isLetter(name.front()) && std::ranges::all_of(name, [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

} // namespace

XmlText toXmlText(std::string_view text) {
    if (isPlain(text)) // as most are
        return {XmlString(text.begin(), text.end())};
    XmlText result;
    result.text.reserve(text.size());
    const char* const end = text.data() + text.size();
    for (const char* position = text.data(); position != end;) {
        const char* const first = position;
        code_point c = takeCodePoint(position, end);
        // A U+FFFD of the original has three bytes; one that stands for a bad byte has one.
        if (!isXmlCharacter(c) || (c == replacementCharacter && position - first == 1)) {
            c = replacementCharacter;
            result.changed = true;
        }
        boost::locale::utf::utf_traits<XMLCh>::encode(c, std::back_inserter(result.text));
    }
    return result;
}

XmlText toXmlComment(std::string_view text) {
    if (text.find('-') == text.npos)
        return toXmlText(text);
    std::string separated;
    for (std::size_t i = 0; i < text.size(); ++i) {
        separated += text[i];
        const bool hyphenOrEndFollows = i + 1 == text.size() || text[i + 1] == '-';
        if (text[i] == '-' && hyphenOrEndFollows)
            separated += ' ';
    }
    return toXmlText(separated);
}

bool isInDocument(std::string_view text, XmlStringView inDocument) {
    return isPlain(text) ? std::ranges::equal(text, inDocument)
                         : toXmlText(text).text == inDocument;
}

bool isXmlName(std::string_view name) {
    if (isPlainName(name)) // as most are
        return true;
    const XmlText text = toXmlText(name);
    return !text.changed && xercesc::XMLChar1_0::isValidName(text.text.c_str(), text.text.size());
}

std::string throughDocument(const std::string& text) {
    return transcode<char>(XmlStringView(toXmlText(text).text));
}

} // namespace Orvant
