#include <ConfigurationFramework/source/SourceParser.h>

#include <ConfigurationFramework/schema/SchemaNamespaces.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <Transcoding/Transcode.h>

#include <algorithm>

#include <xercesc/framework/XMLEntityDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;

std::string toString(const XMLCh* text) {
    const XmlStringView units(text);
    if (std::ranges::all_of(units, [](XMLCh unit) { return unit < 0x80; }))
        return {units.begin(), units.end()}; // nearly every name
    return transcode<char>(units);
}

bool isDeclaration(const xercesc::XMLAttr& attribute) {
    return xercesc::XMLString::equals(attribute.getPrefix(), u"xmlns") ||
           xercesc::XMLString::equals(attribute.getQName(), u"xmlns");
}

} // namespace

SourceParser::SourceParser(ParserConfinement& confinement) : ConfinedParser(confinement) {
    setDoNamespaces(true);
    setCalculateSrcOfs(true);
}

void SourceParser::resetDocument() {
    ConfinedParser::resetDocument();
    m_document = {};
    m_open.clear();
    m_nameSpaces.clear();
    m_references = 0;
    m_last = {};
    m_tokenEnd = 0;
    m_breaks = 0;
    m_hasText = false;
}

void SourceParser::XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                           const XMLCh* actualEncoding) {
    ConfinedParser::XMLDecl(version, encoding, standalone, actualEncoding);
    endToken();
}

void SourceParser::doctypeDecl(const xercesc::DTDElementDecl&, const XMLCh*, const XMLCh*, bool,
                               bool) {
    m_document.m_doctype = {static_cast<Index>(m_document.m_nodes.size()), m_last.line};
    endToken();
}

void SourceParser::endIntSubset() {
    ConfinedParser::endIntSubset();
    endToken();
}

void SourceParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                const XMLCh*,
                                const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    const auto element = static_cast<Index>(m_document.m_nodes.size());
    if (isRoot)
        m_document.m_root = element;
    add(SourceDocument::Kind::Element);
    m_document.m_nodes[element].name = toString(declaration.getBaseName());
    m_document.m_nodes[element].nameSpace = nameSpaceOf(uri);
    addAttributes(attributes, attributeCount);
    if (isEmpty)
        endNode(element);
    else
        m_open.push_back(element);
    endToken();
}

void SourceParser::addAttributes(const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                 XMLSize_t attributeCount) {
    const auto element = static_cast<Index>(m_document.m_nodes.size() - 1);
    SourceDocument::Node& node = m_document.m_nodes.back();
    node.firstAttribute = static_cast<std::uint32_t>(m_document.m_attributes.size());
    node.attributeCount = static_cast<std::uint32_t>(attributeCount);
    if (node.parent != SourceDocument::none)
        node.scope = m_document.m_nodes[node.parent].scope;
    for (XMLSize_t i = 0; i < attributeCount; ++i) {
        const xercesc::XMLAttr& attribute = *attributes.elementAt(i);
        const bool declares = isDeclaration(attribute);
        if (declares)
            node.scope = element;
        const XMLCh* const prefix = attribute.getPrefix();
        m_document.m_attributes.push_back({toString(attribute.getQName()),
                                           toString(attribute.getValue()),
                                           prefix != nullptr && *prefix != 0, declares});
    }
}

void SourceParser::endElement(const xercesc::XMLElementDecl&, unsigned int, bool, const XMLCh*) {
    const Index element = m_open.back();
    m_open.pop_back();
    endToken();
    endNode(element);
}

void SourceParser::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
    ConfinedParser::startEntityReference(declaration);
    ++m_references;
}

void SourceParser::endEntityReference(const xercesc::XMLEntityDecl& declaration) {
    ConfinedParser::endEntityReference(declaration);
    --m_references;
    endToken();
}

void SourceParser::docCharacters(const XMLCh* text, XMLSize_t length, bool isCData) {
    const XmlStringView units(text, length);
    m_breaks += static_cast<unsigned int>(std::ranges::count(units, u'\n'));
    m_hasText = m_hasText || isCData || m_references > 0 ||
                units.find_first_not_of(formattingSpace) != XmlStringView::npos;
    moveOn();
}

void SourceParser::ignorableWhitespace(const XMLCh* text, XMLSize_t length, bool isCData) {
    docCharacters(text, length, isCData);
}

void SourceParser::docComment(const XMLCh*) {
    add(SourceDocument::Kind::Comment);
    endNode(static_cast<Index>(m_document.m_nodes.size() - 1));
    endToken();
}

void SourceParser::docPI(const XMLCh*, const XMLCh*) {
    add(SourceDocument::Kind::Instruction);
    endNode(static_cast<Index>(m_document.m_nodes.size() - 1));
    endToken();
}

/// Adds a node that begins where the last thing ended.
void SourceParser::add(SourceDocument::Kind kind) {
    SourceDocument::Node& node = m_document.m_nodes.emplace_back();
    node.kind = kind;
    node.inEntity = m_references > 0;
    node.followsText = m_hasText;
    node.breaksBefore = m_breaks;
    node.line = m_last.line;
    node.column = m_last.column;
    node.begin = m_last.offset;
    node.gap = m_tokenEnd;
    if (!m_open.empty())
        node.parent = m_open.back();
}

/// Ends a node at the place where the scanner is.
void SourceParser::endNode(Index node) {
    moveOn();
    m_document.m_nodes[node].end = m_last.offset;
    m_document.m_nodes[node].next = static_cast<Index>(m_document.m_nodes.size());
}

void SourceParser::endToken() {
    moveOn();
    m_tokenEnd = m_last.offset;
    m_breaks = 0;
    m_hasText = false;
}

void SourceParser::moveOn() {
    if (m_references > 0)
        return; // the scanner is in another text
    const xercesc::Locator& locator = *getScanner()->getLocator();
    m_last = {getScanner()->getSrcOffset(), static_cast<unsigned int>(locator.getLineNumber()),
              static_cast<unsigned int>(locator.getColumnNumber())};
}

SourceDocument::Namespace SourceParser::nameSpaceOf(unsigned int uri) {
    const auto known =
        std::ranges::find(m_nameSpaces, uri, [](const auto& pair) { return pair.first; });
    if (known != m_nameSpaces.end())
        return known->second;
    const std::string text = toString(getScanner()->getURIText(uri));
    const auto nameSpace = text.empty() ? SourceDocument::Namespace::None
                           : text == SchemaNamespaces::xmlSchema
                               ? SourceDocument::Namespace::XmlSchema
                           : text == SchemaNamespaces::reader ? SourceDocument::Namespace::Reader
                                                              : SourceDocument::Namespace::Other;
    m_nameSpaces.emplace_back(uri, nameSpace);
    return nameSpace;
}

} // namespace Orvant
