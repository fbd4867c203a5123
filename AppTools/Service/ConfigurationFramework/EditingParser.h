#pragma once

#include <cstddef>
#include <string>

#include <xercesc/parsers/XercesDOMParser.hpp>

namespace Orvant {

/// The parser of a document that is edited: makes no nodes of line breaks and indentation, and
/// refuses what entity references make too large for the memory, and elements that are nested too
/// deeply within one, which Xerces walks by recursion, so that the stack would overflow.
class EditingParser : public xercesc::XercesDOMParser {
public:
    using XercesDOMParser::XercesDOMParser;

    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override;
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;

    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;

private:
    void goDeeper();
    bool startsWithSpace(const XMLCh* text, XMLSize_t length) const;
    void endText(bool isFormatting);

    std::size_t m_openReferences = 0;
    std::size_t m_depth = 0;      ///< of references and of elements within them
    std::size_t m_textLength = 0; ///< of all text in references

    std::u16string m_space;      ///< text with nothing else so far, of which no node is made yet
    bool m_isInText = false;     ///< a node was made of what came last
    bool m_isBehindLine = false; ///< the open element has a child with a line of its own
};

} // namespace Orvant
