#include <ConfigurationFramework/xsd/ParsingChecks.h>

#include <charconv>
#include <string_view>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNodeList.hpp>
#include <xercesc/dom/DOMText.hpp>

namespace OV_XsdReader {

namespace {

xml_schema::diagnostics diagnosticsOf(const std::string& message) {
    xml_schema::diagnostics diagnostics;
    diagnostics.push_back(xml_schema::error(xml_schema::severity::error, "", 0, 0, message));
    return diagnostics;
}

std::size_t positionOf(const xercesc::DOMElement& element) {
    const xercesc::DOMNodeList& all = *element.getOwnerDocument()->getElementsByTagName(u"*");
    std::size_t position = 0;
    while (all.item(position) != &element)
        ++position;
    return position;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view whiteSpace = " \t\r\n";
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

bool isWholeNumber(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-'))
            return false;
    }
    xml_schema::int_ number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

} // namespace

MisfitElement::MisfitElement(const std::string& message, const xercesc::DOMElement& element)
    : xml_schema::parsing(diagnosticsOf(message)), m_position(positionOf(element)) {}

const std::string& MisfitElement::message() const {
    return diagnostics().front().message();
}

std::string ownText(const xercesc::DOMElement& element) {
    std::string text;
    for (const xercesc::DOMNode* node = element.getFirstChild(); node != nullptr;
         node = node->getNextSibling()) {
        const auto type = node->getNodeType();
        if (type != xercesc::DOMNode::TEXT_NODE && type != xercesc::DOMNode::CDATA_SECTION_NODE)
            continue;
        const auto& part = static_cast<const xercesc::DOMText&>(*node);
        text += xsd::cxx::xml::transcode<char>(part.getData(), part.getLength());
    }
    return text;
}

const xercesc::DOMAttr& wholeNumber(const xercesc::DOMAttr& attribute) {
    const auto value = xsd::cxx::xml::transcode<char>(attribute.getValue());
    if (!isWholeNumber(trimmed(value)))
        throw MisfitElement("minOccurs is not a whole number: " + value,
                            *attribute.getOwnerElement());
    return attribute;
}

const xercesc::DOMElement& notTooDeep(const xercesc::DOMElement& element) {
    int depth = 0;
    for (const xercesc::DOMNode* node = element.getParentNode(); node != nullptr;
         node = node->getParentNode())
        if (++depth > maxDepth)
            throw MisfitElement("a complex type stands more than 512 elements deep", element);
    return element;
}

} // namespace OV_XsdReader
