#pragma once

#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/DocumentMeasure.h>
#include <ConfigurationFramework/xml/XmlText.h>

namespace Orvant {

/// The parser of a document that is edited: makes no nodes of line breaks and indentation, and
/// refuses what takes too much memory.
class EditedDocumentParser : public ConfinedParser {
public:
    using ConfinedParser::ConfinedParser;

    void startDocument() override;
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override;
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;

private:
    void endText(bool isFormatting);

    DocumentMeasure m_measure;
    XmlString m_space;           ///< text with nothing else so far, of which no node is made yet
    bool m_isInText = false;     ///< a node was made of what came last
    bool m_isBehindLine = false; ///< the open element has a child with a line of its own
};

} // namespace Orvant
