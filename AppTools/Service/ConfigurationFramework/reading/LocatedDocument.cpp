#include <ConfigurationFramework/reading/LocatedDocument.h>

#include <ConfigurationFramework/reading/TreeBuildingParser.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/PlaceTracking.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <utility>

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/framework/XMLEntityDecl.hpp>

namespace Orvant {

namespace {

using Attributes = xercesc::RefVectorOf<xercesc::XMLAttr>;

std::string toString(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}

/// Records where elements begin, and all their texts.
class LocatingParser : public PlaceTracking<TreeBuildingParser> {
public:
    using PlaceTracking::PlaceTracking;

    std::vector<LocatedDocument::Item>& items() { return m_items; }

    void resetDocument() override {
        PlaceTracking::resetDocument();
        m_items.clear();
        m_open.clear();
    }
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const Attributes& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override {
        LocatedDocument::Item item{toString(declaration.getFullName()), parent(), last()};
        PlaceTracking::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty,
                                    isRoot);
        for (XMLSize_t i = 0; i < attributeCount; ++i)
            if (XercesHelperFunctions::compareXmlCh(attributes.elementAt(i)->getName(),
                                                    u"editable"))
                item.editable = toString(attributes.elementAt(i)->getValue());
        open(std::move(item));
        if (isEmpty)
            m_open.pop_back();
    }
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override {
        PlaceTracking::endElement(declaration, uri, isRoot, prefix);
        m_open.pop_back();
    }
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override {
        PlaceTracking::startEntityReference(declaration);
        open({"", parent(), last()});
    }
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override {
        PlaceTracking::endEntityReference(declaration);
        m_open.pop_back();
    }
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override {
        PlaceTracking::docCharacters(text, length, isCData);
        addText(text, length);
    }

private:
    DocumentTree::Element parent() const {
        return m_open.empty() ? DocumentTree::none : m_open.back();
    }
    void open(LocatedDocument::Item item) {
        m_open.push_back(static_cast<DocumentTree::Element>(m_items.size()));
        m_items.push_back(std::move(item));
    }
    /// Adds a text to the element that it stands in, perhaps by a reference.
    void addText(const XMLCh* text, XMLSize_t length) {
        DocumentTree::Element element = parent();
        while (element != DocumentTree::none && m_items[element].tag.empty())
            element = m_items[element].parent;
        if (element != DocumentTree::none)
            m_items[element].text.append(text, length);
    }

    std::vector<LocatedDocument::Item> m_items;
    std::vector<DocumentTree::Element> m_open;
};

} // namespace

LocatedDocument::LocatedDocument(const std::string& bytes) {
    ParserConfinement confinement(ParserConfinement::configurations);
    const auto parser = confinement.makeParser<LocatingParser>();
    m_error = findFirstError(confinement, *parser, bytes);
    if (!m_error && (parser->getTree() == nullptr || parser->getTree()->empty()))
        m_error = {{}, "there is no document"};
    if (m_error)
        return;
    m_tree = std::move(*parser->getTree());
    m_items = std::move(parser->items());
    m_version = parser->getVersion();
    if (!m_tree.hasName(DocumentTree::root, "Configuration"))
        m_error = {m_items.front().place,
                   "the root element is \"" + m_items.front().tag + "\", not \"Configuration\""};
}

std::string LocatedDocument::name(DocumentTree::Element element) const {
    const std::string& key = m_tree.key(element);
    return m_items[element].tag + (key.empty() ? "" : '[' + key + ']');
}

std::string LocatedDocument::path(DocumentTree::Element element) const {
    std::string path = name(element);
    while ((element = m_items[element].parent) != DocumentTree::root)
        if (!m_items[element].tag.empty()) // a reference to an entity has none
            path.insert(0, name(element) + '/');
    return path;
}

std::string LocatedDocument::textCutOff(DocumentTree::Element element) const {
    const auto seen = m_tree.text(element);
    const std::string text = toString(m_items[element].text.c_str());
    if (!seen || text.find_first_not_of(" \t\r\n", seen->size()) == std::string::npos)
        return {};
    return text.substr(seen->size());
}

} // namespace Orvant
