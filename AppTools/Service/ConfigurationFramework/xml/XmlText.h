#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include <xercesc/util/XercesDefs.hpp>

namespace Orvant {

static_assert(std::is_same_v<XMLCh, char16_t>,
              "Xerces-C++ must be built with char16_t as its character type, which is its default");

/// Text as Xerces stores it, in UTF-16.
using XmlString = std::basic_string<XMLCh>;
using XmlStringView = std::basic_string_view<XMLCh>;

/// Whether two texts are the same. Their own comparison goes unit by unit.
inline bool areSame(XmlStringView first, XmlStringView second) {
    return first.size() == second.size() &&
           std::memcmp(first.data(), second.data(), first.size() * sizeof(XMLCh)) == 0;
}

/// What line breaks and indentation are made of.
constexpr const XMLCh* formattingSpace = u" \t\r\n";

/// Text that an XML 1.0 document can hold.
struct XmlText {
    XmlString text;
    bool changed = false; ///< whether part of the original had to be replaced
};

/// Makes text fit for a document: U+FFFD replaces each character outside the production Char of XML
/// 1.0, section 2.2, and each byte that is not UTF-8.
/// @param text UTF-8
XmlText toXmlText(std::string_view text);

/// Makes text fit for a comment: like toXmlText(), and with a blank after each hyphen that is
/// followed by another hyphen or the end (XML 1.0, section 2.5).
/// @param text UTF-8
XmlText toXmlComment(std::string_view text);

/// @return whether a text is another one once it is in a document, as toXmlText() makes it
/// @param text UTF-8
bool isInDocument(std::string_view text, XmlStringView inDocument);

/// @return whether an element can have the name (XML 1.0, production Name)
/// @param name UTF-8
bool isXmlName(std::string_view name);

/// @return the text in UTF-8 as it reads after going through a document
/// @param text UTF-8
std::string throughDocument(const std::string& text);

} // namespace Orvant
