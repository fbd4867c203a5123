#pragma once

#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/DocumentMeasure.h>
#include <ConfigurationFramework/xml/XmlText.h>

namespace Orvant {

/// Parser for a document that is edited and printed any number of times. It refuses what takes too
/// much memory, and leaves out what the printer adds again: the line breaks and indentation before
/// the tags and instructions that have lines of their own. Otherwise they would grow with each
/// printing.
///
/// The document becomes one of XML 1.0, since no XML declaration is printed.
class EditedDocumentParser : public ConfinedParser {
public:
    using ConfinedParser::ConfinedParser;

    void startDocument() override;
    void endDocument() override;
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override;
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;

private:
    void endText();
    void startLine();

    DocumentMeasure m_measure;
    XmlString m_text;        ///< not yet made into a node
    bool m_hasLines = false; ///< the open element has a child with a line of its own
};

} // namespace Orvant
