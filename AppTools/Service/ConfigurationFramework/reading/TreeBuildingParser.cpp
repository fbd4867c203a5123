#include <ConfigurationFramework/reading/TreeBuildingParser.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/framework/XMLAttDefList.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>

namespace Orvant {

namespace {

std::string toString(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}

} // namespace

void TreeBuildingParser::resetDocument() {
    ConfinedParser::resetDocument();
    m_tree.reset();
    m_version.clear();
    m_names.assign(1, {});
    m_firstText.clear();
    m_inFirstText = false;
}

void TreeBuildingParser::startDocument() {
    ConfinedParser::startDocument();
    m_measure = DocumentMeasure(documentSize());
    m_tree.emplace();
}

DocumentTree::Name TreeBuildingParser::nameOf(const xercesc::XMLElementDecl& declaration) {
    // The scanner has one declaration for each name, declared or not, and numbers them from 1; a
    // declared one and another can have the same number.
    const XMLSize_t number = declaration.getId();
    if (number == m_names.size())
        m_names.resize(number + 1);
    if (number > m_names.size())
        return m_tree->addName(toString(declaration.getFullName()));
    auto& [known, name] = m_names[number];
    if (known != &declaration) {
        name = m_tree->addName(toString(declaration.getFullName()));
        known = &declaration;
    }
    return name;
}

void TreeBuildingParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int,
                                      const XMLCh*,
                                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                      XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    m_measure.startElement(declaration, attributes, attributeCount);
    if (declaration.hasAttDefs())
        checkDefaults(declaration.getAttDefList());
    endFirstText();
    std::string key;
    bool editable = true;
    for (XMLSize_t i = 0; i < attributeCount; ++i) {
        const xercesc::XMLAttr& attribute = *attributes.elementAt(i);
        if (XercesHelperFunctions::compareXmlCh(attribute.getName(), u"key"))
            key = toString(attribute.getValue());
        else if (XercesHelperFunctions::compareXmlCh(attribute.getName(), u"editable"))
            editable = !XercesHelperFunctions::compareXmlCh(attribute.getValue(), u"false");
        else if (isRoot && XercesHelperFunctions::compareXmlCh(attribute.getName(), u"version"))
            m_version = toString(attribute.getValue());
    }
    m_tree->startElement(nameOf(declaration), key, editable);
    if (isEmpty)
        endOpenElement();
}

/// Lets the DOM refuse the names that it does not accept for default attributes.
void TreeBuildingParser::checkDefaults(const xercesc::XMLAttDefList& definitions) {
    for (XMLSize_t i = 0; i < definitions.getAttDefCount(); ++i) {
        const xercesc::XMLAttDef& definition = definitions.getAttDef(i);
        if (definition.getDefaultType() == xercesc::XMLAttDef::Default ||
            definition.getDefaultType() == xercesc::XMLAttDef::Fixed)
            getDocument()->createAttribute(definition.getFullName())->release();
    }
}

void TreeBuildingParser::endElement(const xercesc::XMLElementDecl&, unsigned int, bool,
                                    const XMLCh*) {
    endFirstText();
    endOpenElement();
}

void TreeBuildingParser::endOpenElement() {
    m_measure.endElement();
    m_tree->end();
}

void TreeBuildingParser::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
    ConfinedParser::startEntityReference(declaration);
    endFirstText();
    m_tree->startEntityReference();
}

void TreeBuildingParser::endEntityReference(const xercesc::XMLEntityDecl&) {
    // A first text never begins in a reference.
    m_tree->end();
}

void TreeBuildingParser::docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) {
    m_measure.addText(text, length, isCData);
    if (!m_tree->isOpen())
        return;
    if (isCData) {
        addOtherChild();
        return;
    }
    m_inFirstText = m_inFirstText || m_tree->awaitsFirstChild();
    if (m_inFirstText)
        m_firstText.append(text, length);
}

void TreeBuildingParser::ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) {
    docCharacters(text, length, isCData);
}

void TreeBuildingParser::docComment(const XMLCh* comment) {
    m_measure.addComment(comment);
    addOtherChild();
}

void TreeBuildingParser::docPI(const XMLCh* target, const XMLCh* data) {
    m_measure.addInstruction(target, data);
    ConfinedParser::docPI(target, data); // which refuses some targets
    addOtherChild();
}

void TreeBuildingParser::addOtherChild() {
    endFirstText();
    if (m_tree->isOpen())
        m_tree->addOtherChild();
}

/// Only the end of a text shows that it is complete: it arrives in pieces, and a piece may end
/// within a character.
void TreeBuildingParser::endFirstText() {
    if (!m_inFirstText)
        return;
    m_tree->addFirstText(m_firstText);
    m_firstText.clear();
    m_inFirstText = false;
}

} // namespace Orvant
