#include <ConfigurationFramework/schema/DocumentTags.h>

#include <ConfigurationFramework/schema/ContentParser.h>
#include <ConfigurationFramework/schema/MeasuringParser.h>
#include <ConfigurationFramework/xml/ByteOrderMark.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/PlaceTracking.h>

#include <GeneralServices/XercesHelperFunctions.h>
#include <Transcoding/Transcode.h>

#include <string_view>

#include <xercesc/util/XMLExceptMsgs.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Orvant {

namespace {

std::string toString(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}

/// @return what comes before the first byte that is not UTF-8
std::string_view upToNoUtf8(std::string_view text) {
    const char* const end = text.data() + text.size();
    for (const char* position = text.data(); position != end;) {
        const char* const first = position;
        // A U+FFFD of the text has three bytes; one that stands for a bad byte has one.
        if (takeCodePoint(position, end) == replacementCharacter && position - first == 1)
            return {text.data(), first};
    }
    return text;
}

/// @return where a text in UTF-8 ends; lines are what Xerces counts
DocumentPlace endOf(std::string_view text) {
    DocumentPlace place{1, 1};
    for (auto end = text.find_first_of("\r\n"); end != std::string_view::npos;
         end = text.find_first_of("\r\n")) {
        text.remove_prefix(end);
        text.remove_prefix(text.starts_with("\r\n") ? 2 : 1);
        ++place.line;
    }
    place.column += static_cast<unsigned int>(transcode<XMLCh>(text).size());
    return place;
}

std::string hexadecimal(unsigned char byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    return {digits[byte / 16U], digits[byte % 16U]};
}

/// Replaces the place of an error by that of the first byte that is not UTF-8: Xerces decodes far
/// ahead of what it has scanned.
void placeNoUtf8(std::string_view bytes, DocumentError& error) {
    const std::string_view text = withoutByteOrderMark(bytes);
    const std::string_view valid = upToNoUtf8(text);
    if (valid.size() == text.size())
        return;
    error = {
        endOf(valid),
        "the byte 0x" + hexadecimal(static_cast<unsigned char>(text[valid.size()])) +
            " is not UTF-8: save the file in UTF-8, or let its XML declaration tell its encoding"};
}

/// Records the tags.
template <typename Parser>
class TagParser : public PlaceTracking<Parser> {
    using Base = PlaceTracking<Parser>;

public:
    TagParser(ParserConfinement& confinement, const std::string& bytes,
              std::optional<std::size_t> wanted, DocumentTags& tags)
        : Base(confinement), m_bytes(bytes), m_wanted(wanted), m_tags(tags) {
        this->setCalculateSrcOfs(true);
    }

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override {
        const DocumentPlace place = Base::last();
        if (isRoot)
            m_tags.root = rootTag(place, declaration, attributes, attributeCount);
        if (m_elements++ == m_wanted)
            m_tags.element = place;
        if (!isEmpty)
            m_tags.open.push_back({toString(declaration.getFullName()), place});
        Base::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty, isRoot);
    }
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override {
        m_tags.open.pop_back();
        Base::endElement(declaration, uri, isRoot, prefix);
    }
    void error(unsigned int code, const XMLCh* domain, xercesc::XMLErrorReporter::ErrTypes type,
               const XMLCh* text, const XMLCh* systemId, const XMLCh* publicId, XMLFileLoc line,
               XMLFileLoc column) override {
        using xercesc::XMLExcepts;
        m_isNoUtf8 = m_isNoUtf8.value_or(
            xercesc::XMLString::equals(domain, xercesc::XMLUni::fgExceptDomain) &&
            code >= XMLExcepts::UTF8_FormatError && code <= XMLExcepts::UTF8_Exceeds_BytesLimit);
        Base::error(code, domain, type, text, systemId, publicId, line, column);
    }

    /// @return whether the first error is a byte that is not UTF-8
    bool isNoUtf8() const { return m_isNoUtf8.value_or(false); }

private:
    RootTag rootTag(const DocumentPlace& place, const xercesc::XMLElementDecl& declaration,
                    const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t attributeCount) const {
        RootTag tag{place, toString(declaration.getFullName()), {}, {}};
        for (XMLSize_t i = 0; i < attributeCount; ++i)
            tag.attributes.emplace_back(toString(attributes.elementAt(i)->getName()),
                                        toString(attributes.elementAt(i)->getValue()));
        // The scanner stands after the tag, which holds no other '<'.
        const std::string_view text = withoutByteOrderMark(m_bytes).substr(
            0, static_cast<std::size_t>(this->getScanner()->getSrcOffset()));
        const auto begin = text.rfind('<');
        if (begin != std::string_view::npos && text.substr(begin + 1).starts_with(tag.name))
            tag.text = text.substr(begin);
        return tag;
    }

    const std::string& m_bytes;
    std::optional<std::size_t> m_wanted;
    std::size_t m_elements = 0;
    std::optional<bool> m_isNoUtf8; ///< nothing before the first error
    DocumentTags& m_tags;
};

template <typename Parser>
void parse(const std::string& bytes, bool withNamespaces, std::optional<std::size_t> wanted,
           DocumentTags& tags) {
    ParserConfinement confinement(ParserConfinement::schemas);
    TagParser<Parser> parser(confinement, bytes, wanted, tags);
    parser.setDoNamespaces(withNamespaces);
    tags.error = findFirstError(confinement, parser, bytes);
    tags.last = parser.last();
    if (tags.error && parser.isNoUtf8())
        placeNoUtf8(bytes, *tags.error);
    if (tags.error && confinement.exceeded() != nullptr)
        tags.error = {tags.last, std::string("a limit is exceeded: ") + confinement.exceeded()};
}

} // namespace

std::string RootTag::localName() const {
    return name.substr(name.find(':') + 1);
}

std::string RootTag::nameSpace() const {
    const auto colon = name.find(':');
    const std::string declaration =
        colon == std::string::npos ? "xmlns" : "xmlns:" + name.substr(0, colon);
    for (const auto& [attribute, value] : attributes)
        if (attribute == declaration)
            return value;
    return {};
}

DocumentTags::DocumentTags(const std::string& bytes, Pass pass, std::optional<std::size_t> wanted) {
    if (pass == Pass::Measuring)
        parse<MeasuringParser>(bytes, false, wanted, *this);
    else
        parse<ContentParser>(bytes, true, wanted, *this);
}

} // namespace Orvant
