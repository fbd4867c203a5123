#include <ConfigurationFramework/writing/EditedDocumentParser.h>

namespace Orvant {

namespace {

bool isBlank(const XMLCh* text, XMLSize_t length) {
    return XmlStringView(text, length).find_first_not_of(formattingSpace) == XmlStringView::npos;
}

} // namespace

void EditedDocumentParser::startDocument() {
    ConfinedParser::startDocument();
    m_measure = DocumentMeasure(documentSize());
}

/// Makes a node of the text that is open, if it has none yet.
/// @param isFormatting true: it stands between lines, which the printer separates anew
void EditedDocumentParser::endText(bool isFormatting) {
    if (!m_space.empty() && !isFormatting)
        ConfinedParser::docCharacters(m_space.c_str(), m_space.size(), false);
    m_space.clear();
    m_isInText = false;
}

void EditedDocumentParser::docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) {
    m_measure.addText(text, length, isCData);
    if (!isCData && !m_isInText && isBlank(text, length)) {
        m_space.append(text, length);
        return;
    }
    endText(false);
    m_isInText = !isCData;
    ConfinedParser::docCharacters(text, length, isCData);
}

void EditedDocumentParser::docComment(const XMLCh* comment) {
    m_measure.addComment(comment);
    endText(m_isBehindLine);
    ConfinedParser::docComment(comment);
}

void EditedDocumentParser::docPI(const XMLCh* target, const XMLCh* data) {
    m_measure.addInstruction(target, data);
    endText(true);
    m_isBehindLine = true;
    ConfinedParser::docPI(target, data);
}

void EditedDocumentParser::startElement(const xercesc::XMLElementDecl& declaration,
                                        unsigned int uri, const XMLCh* prefix,
                                        const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                        XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    m_measure.startElement(declaration, attributes, attributeCount);
    endText(true);
    m_isBehindLine = false;
    ConfinedParser::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty,
                                 isRoot);
}

void EditedDocumentParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                      bool isRoot, const XMLCh* prefix) {
    m_measure.endElement();
    endText(m_isBehindLine);
    m_isBehindLine = true;
    ConfinedParser::endElement(declaration, uri, isRoot, prefix);
}

} // namespace Orvant
