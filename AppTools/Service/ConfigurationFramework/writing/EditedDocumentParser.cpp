#include <ConfigurationFramework/writing/EditedDocumentParser.h>

#include <algorithm>
#include <cstddef>

#include <xercesc/dom/DOMText.hpp>

namespace Orvant {

namespace {

using xercesc::DOMNode;

/// @return length of a text without the line break and indentation at its end
std::size_t lengthBeforeFormatting(XmlStringView text) {
    const auto lastOther = text.find_last_not_of(formattingSpace);
    return lastOther == text.npos ? 0 : std::min(text.find(u'\n', lastOther), text.size());
}

void cutFormatting(DOMNode& parent) {
    for (DOMNode* node = parent.getFirstChild(); node != nullptr;) {
        DOMNode* const next = node->getNextSibling();
        if (node->getNodeType() == DOMNode::TEXT_NODE) {
            auto& text = static_cast<xercesc::DOMText&>(*node);
            if (const auto length = lengthBeforeFormatting(text.getData()); length == 0)
                parent.removeChild(node)->release();
            else if (length < text.getLength())
                text.deleteData(length, text.getLength() - length);
        }
        node = next;
    }
}

} // namespace

void EditedDocumentParser::startDocument() {
    ConfinedParser::startDocument();
    m_measure = DocumentMeasure(documentSize());
}

void EditedDocumentParser::endDocument() {
    ConfinedParser::endDocument();
    getDocument()->setXmlVersion(u"1.0");
    m_text.clear();
    m_text.shrink_to_fit();
}

/// Makes a node of the text that has ended, if anything of it is left.
void EditedDocumentParser::endText() {
    if (m_hasLines)
        m_text.resize(lengthBeforeFormatting(m_text));
    if (!m_text.empty())
        ConfinedParser::docCharacters(m_text.c_str(), m_text.size(), false);
    m_text.clear();
}

/// Prepares for a child with a line of its own.
void EditedDocumentParser::startLine() {
    // Only now is it known that the text before the leading comments is formatting.
    if (!m_hasLines)
        cutFormatting(*fCurrentParent);
    m_hasLines = true;
    endText();
}

void EditedDocumentParser::docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) {
    m_measure.addText(text, length, isCData);
    if (!isCData) {
        m_text.append(text, length);
        return;
    }
    endText();
    ConfinedParser::docCharacters(text, length, isCData);
}

void EditedDocumentParser::docComment(const XMLCh* comment) {
    m_measure.addComment(comment);
    endText();
    ConfinedParser::docComment(comment);
}

void EditedDocumentParser::docPI(const XMLCh* target, const XMLCh* data) {
    m_measure.addInstruction(target, data);
    startLine();
    ConfinedParser::docPI(target, data);
}

void EditedDocumentParser::startElement(const xercesc::XMLElementDecl& declaration,
                                        unsigned int uri, const XMLCh* prefix,
                                        const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                        XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    m_measure.startElement(declaration, attributes, attributeCount);
    startLine();
    m_hasLines = false;
    ConfinedParser::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty,
                                 isRoot);
}

void EditedDocumentParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                      bool isRoot, const XMLCh* prefix) {
    m_measure.endElement();
    endText();
    m_hasLines = true;
    ConfinedParser::endElement(declaration, uri, isRoot, prefix);
}

} // namespace Orvant
