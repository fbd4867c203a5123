#include <ConfigurationFramework/schema/AnySchema.h>

#include <ConfigurationFramework/schema/SchemaNamespaces.h>
#include <ConfigurationFramework/schema/TypeNames.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Orvant {

namespace {

std::string toString(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}
XmlString toXml(std::string_view text) {
    return XercesHelperFunctions::stringToXmlCh(std::string(text));
}

class Translation {
public:
    explicit Translation(xercesc::DOMDocument& document)
        : m_document(document),
          m_target(toString(document.getDocumentElement()->getAttribute(u"targetNamespace"))) {}

    void translate(xercesc::DOMElement& element) {
        const std::vector<std::string> declared = declarePrefixes(element);
        for (xercesc::DOMElement* child = element.getFirstElementChild(); child != nullptr;) {
            // Renaming may put another element in the place of this one.
            xercesc::DOMElement* const next = child->getNextElementSibling();
            translate(*child);
            child = next;
        }
        if (xercesc::XMLString::equals(element.getNamespaceURI(), m_xmlSchema.c_str()))
            rename(element);
        for (const std::string& prefix : declared)
            m_nameSpaces[prefix].pop_back();
    }

private:
    /// @return the prefixes that an element declares, empty for the default namespace
    std::vector<std::string> declarePrefixes(const xercesc::DOMElement& element) {
        std::vector<std::string> prefixes;
        const xercesc::DOMNamedNodeMap& attributes = *element.getAttributes();
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
            const xercesc::DOMNode& attribute = *attributes.item(i);
            if (!xercesc::XMLString::equals(attribute.getNamespaceURI(),
                                            xercesc::XMLUni::fgXMLNSURIName))
                continue;
            prefixes.push_back(
                attribute.getPrefix() == nullptr ? "" : toString(attribute.getLocalName()));
            m_nameSpaces[prefixes.back()].push_back(toString(attribute.getNodeValue()));
        }
        return prefixes;
    }

    void rename(xercesc::DOMElement& element) {
        std::vector<std::pair<XmlString, XmlString>> changed;
        for (const std::string_view name :
             {"name", "type", "base", "use", "minOccurs", "maxOccurs"})
            if (auto value = changedValue(element, name))
                changed.emplace_back(toXml(name), std::move(*value));
        // This sets attributes that have a default to it once more.
        auto& renamed = dynamic_cast<xercesc::DOMElement&>(
            *m_document.renameNode(&element, m_reader.c_str(), element.getLocalName()));
        for (const auto& [name, value] : changed)
            renamed.setAttribute(name.c_str(), value.c_str());
    }

    std::optional<XmlString> changedValue(const xercesc::DOMElement& element,
                                          std::string_view name) const {
        const std::string written = toString(element.getAttribute(toXml(name).c_str()));
        std::string value = TypeNames::collapsed(written);
        if (TypeNames::isTypeName(name))
            value = TypeNames::inSuite(
                value, m_target, [this](std::string_view prefix) { return nameSpaceOf(prefix); });
        return value == written ? std::nullopt : std::optional(toXml(value));
    }

    std::optional<std::string_view> nameSpaceOf(std::string_view prefix) const {
        const auto found = m_nameSpaces.find(std::string(prefix));
        if (found != m_nameSpaces.end() && !found->second.empty())
            return found->second.back();
        return prefix.empty() ? std::optional<std::string_view>("") : std::nullopt;
    }

    xercesc::DOMDocument& m_document;
    std::string m_target;
    /// What each prefix stands for, the innermost declaration last: the DOM would search for it.
    std::unordered_map<std::string, std::vector<std::string>> m_nameSpaces;
    XmlString m_xmlSchema = toXml(SchemaNamespaces::xmlSchema);
    XmlString m_reader = toXml(SchemaNamespaces::reader);
};

} // namespace

void translateForReader(xercesc::DOMDocument& document) {
    Translation(document).translate(*document.getDocumentElement());
}

} // namespace Orvant
