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

void EditingParser::docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) {
    if (m_openReferences > 0)
        m_textLength += length;
    if (m_textLength > maxReferencedText)
        ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::Out_Of_Memory);
    XercesDOMParser::docCharacters(text, length, isCData);
}

void EditingParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                 const XMLCh* prefix,
                                 const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                 XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    if (m_openReferences > 0)
        goDeeper();
    XercesDOMParser::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty,
                                  isRoot);
}

void EditingParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                               bool isRoot, const XMLCh* prefix) {
    XercesDOMParser::endElement(declaration, uri, isRoot, prefix);
    if (m_openReferences > 0)
        --m_depth;
}

void EditingParser::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
    ++m_openReferences;
    goDeeper();
    XercesDOMParser::startEntityReference(declaration);
}

void EditingParser::endEntityReference(const xercesc::XMLEntityDecl& declaration) {
    XercesDOMParser::endEntityReference(declaration);
    --m_openReferences;
    --m_depth;
}

} // namespace Orvant
