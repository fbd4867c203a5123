#include <ConfigurationFramework/EditingParser.h>

#include <ConfigurationFramework/DocumentPreparation.h>

#include <xercesc/util/RuntimeException.hpp>

namespace Orvant {

namespace {

constexpr std::size_t maxReferencedText = 10'000'000;

} // namespace

void EditingParser::goDeeper() {
    // The scanner makes a parse error of it.
    if (++m_depth > maxWrittenDepth)
        ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::Out_Of_Memory);
}

/// Whether a text is blank so far. What stands in an entity is not looked at: it has a node of its
/// own, and where that goes is seen when all are there.
bool EditingParser::startsWithSpace(const XMLCh* text, XMLSize_t length) const {
    return !m_isInText && m_openReferences == 0 &&
           std::u16string_view(text, length).find_first_not_of(formattingSpace) ==
               std::u16string_view::npos;
}

/// Makes a node of the text that is open, if it has none yet.
/// @param isFormatting true: it stands between lines, which the printer separates anew
void EditingParser::endText(bool isFormatting) {
    if (!m_space.empty() && !isFormatting)
        XercesDOMParser::docCharacters(m_space.c_str(), m_space.size(), false);
    m_space.clear();
    m_isInText = false;
}

void EditingParser::docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) {
    if (m_openReferences > 0)
        m_textLength += length;
    if (m_textLength > maxReferencedText)
        ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::Out_Of_Memory);
    if (!isCData && startsWithSpace(text, length)) {
        m_space.append(text, length);
        return;
    }
    endText(false);
    m_isInText = !isCData;
    XercesDOMParser::docCharacters(text, length, isCData);
}

void EditingParser::docComment(const XMLCh* comment) {
    endText(m_isBehindLine);
    XercesDOMParser::docComment(comment);
}

void EditingParser::docPI(const XMLCh* target, const XMLCh* data) {
    endText(true);
    m_isBehindLine = true;
    XercesDOMParser::docPI(target, data);
}

void EditingParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                 const XMLCh* prefix,
                                 const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                 XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    endText(true);
    m_isBehindLine = isEmpty;
    if (m_openReferences > 0)
        goDeeper();
    XercesDOMParser::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty,
                                  isRoot);
}

void EditingParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                               bool isRoot, const XMLCh* prefix) {
    endText(m_isBehindLine);
    m_isBehindLine = true;
    XercesDOMParser::endElement(declaration, uri, isRoot, prefix);
    if (m_openReferences > 0)
        --m_depth;
}

void EditingParser::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
    endText(m_isBehindLine);
    ++m_openReferences;
    goDeeper();
    XercesDOMParser::startEntityReference(declaration);
}

void EditingParser::endEntityReference(const xercesc::XMLEntityDecl& declaration) {
    endText(m_isBehindLine);
    XercesDOMParser::endEntityReference(declaration);
    --m_openReferences;
    --m_depth;
}

} // namespace Orvant
