#include <ConfigurationFramework/reading/LocatedDocument.h>

#include <ConfigurationFramework/reading/TreeBuildingParser.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/framework/XMLEntityDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

namespace {

using Attributes = xercesc::RefVectorOf<xercesc::XMLAttr>;

std::string toString(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}

DocumentPlace placeOf(XMLFileLoc line, XMLFileLoc column) {
    return {static_cast<unsigned int>(line), static_cast<unsigned int>(column)};
}

/// Keeps the first error.
class FirstError : public xercesc::ErrorHandler {
public:
    std::optional<LocatedDocument::Error> take() { return std::move(m_error); }

    void warning(const xercesc::SAXParseException&) override {}
    void error(const xercesc::SAXParseException& exception) override { keep(exception); }
    void fatalError(const xercesc::SAXParseException& exception) override { keep(exception); }
    void resetErrors() override {}

private:
    void keep(const xercesc::SAXParseException& exception) {
        if (!m_error)
            m_error = {placeOf(exception.getLineNumber(), exception.getColumnNumber()),
                       toString(exception.getMessage())};
    }

    std::optional<LocatedDocument::Error> m_error;
};

/// Records where elements begin. The scanner tells only where the start tag ends; but whatever
/// comes before a tag ends where the tag begins, and the scanner reports that, too.
class LocatingParser : public TreeBuildingParser {
public:
    using TreeBuildingParser::TreeBuildingParser;

    std::vector<LocatedDocument::Item>& items() { return m_items; }
    DocumentPlace here() const {
        const xercesc::Locator& locator = *getScanner()->getLocator();
        return placeOf(locator.getLineNumber(), locator.getColumnNumber());
    }

    void resetDocument() override {
        TreeBuildingParser::resetDocument();
        m_items.clear();
        m_open.clear();
        m_references = 0;
        m_last = {1, 1};
    }
    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                 const XMLCh* actualEncoding) override {
        TreeBuildingParser::XMLDecl(version, encoding, standalone, actualEncoding);
        mark();
    }
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                      const XMLCh* prefix, const Attributes& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override {
        TreeBuildingParser::startElement(declaration, uri, prefix, attributes, attributeCount,
                                         isEmpty, isRoot);
        LocatedDocument::Item item{toString(declaration.getFullName()), parent(), m_last};
        for (XMLSize_t i = 0; i < attributeCount; ++i)
            if (XercesHelperFunctions::compareXmlCh(attributes.elementAt(i)->getName(),
                                                    u"editable"))
                item.editable = toString(attributes.elementAt(i)->getValue());
        open(std::move(item));
        if (isEmpty)
            m_open.pop_back();
        mark();
    }
    void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                    const XMLCh* prefix) override {
        TreeBuildingParser::endElement(declaration, uri, isRoot, prefix);
        m_open.pop_back();
        mark();
    }
    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override {
        TreeBuildingParser::startEntityReference(declaration);
        if (m_references == 0) {
            // The scanner stands after the reference: "&", the name, and ";".
            m_last = here();
            m_last.column -= static_cast<unsigned int>(std::min<XMLSize_t>(
                xercesc::XMLString::stringLen(declaration.getName()) + 2, m_last.column - 1));
        }
        ++m_references;
        open({"", parent(), m_last});
    }
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override {
        TreeBuildingParser::endEntityReference(declaration);
        --m_references;
        m_open.pop_back();
        mark();
    }
    void endIntSubset() override {
        TreeBuildingParser::endIntSubset();
        mark();
    }
    void docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) override {
        TreeBuildingParser::docCharacters(text, length, isCData);
        addText(text, length);
        mark();
    }
    void docComment(const XMLCh* comment) override {
        TreeBuildingParser::docComment(comment);
        mark();
    }
    void docPI(const XMLCh* target, const XMLCh* data) override {
        TreeBuildingParser::docPI(target, data);
        mark();
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
    void mark() {
        if (m_references == 0)
            m_last = here();
    }

    std::vector<LocatedDocument::Item> m_items;
    std::vector<DocumentTree::Element> m_open;
    std::size_t m_references = 0; ///< that are open
    DocumentPlace m_last;         ///< where the last thing in the document ended
};

/// @return what made the parser give up; nothing if it did not
std::optional<std::string> parse(ParserConfinement& confinement, LocatingParser& parser,
                                 const std::string& bytes) {
    try {
        confinement.parseBytes(parser, bytes);
        return std::nullopt;
    } catch (const xercesc::XMLException& e) {
        return toString(e.getMessage());
    } catch (const xercesc::DOMException& e) {
        return toString(e.getMessage());
    }
}

} // namespace

LocatedDocument::LocatedDocument(const std::string& bytes) {
    FirstError errors;
    ParserConfinement confinement(ParserConfinement::configurations);
    const auto parser = confinement.makeParser<LocatingParser>();
    parser->setErrorHandler(&errors);
    const auto problem = parse(confinement, *parser, bytes);
    m_error = errors.take();
    if (!m_error && problem)
        m_error = {{}, *problem};
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
