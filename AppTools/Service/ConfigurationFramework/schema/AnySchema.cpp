#include <ConfigurationFramework/schema/AnySchema.h>

#include <ConfigurationFramework/schema/SchemaNamespaces.h>
#include <ConfigurationFramework/schema/TypeNames.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/util/XMLString.hpp>

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

    /// Ends with the element itself: its name is what the prefixes within it are resolved by.
    void translate(xercesc::DOMElement& element) const {
        for (xercesc::DOMElement* child = element.getFirstElementChild(); child != nullptr;) {
            // Renaming may put another element in the place of this one.
            xercesc::DOMElement* const next = child->getNextElementSibling();
            translate(*child);
            child = next;
        }
        if (!xercesc::XMLString::equals(element.getNamespaceURI(), m_xmlSchema.c_str()))
            return;
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

private:
    std::optional<XmlString> changedValue(const xercesc::DOMElement& element,
                                          std::string_view name) const {
        const std::string written = toString(element.getAttribute(toXml(name).c_str()));
        std::string value = TypeNames::collapsed(written);
        if (TypeNames::isTypeName(name))
            value = inSuite(value, element);
        return value == written ? std::nullopt : std::optional(toXml(value));
    }

    std::string inSuite(const std::string& name, const xercesc::DOMElement& element) const {
        std::string nameSpace;
        return TypeNames::inSuite(
            name, m_target, [&](std::string_view prefix) -> std::optional<std::string_view> {
                const XMLCh* const uri =
                    element.lookupNamespaceURI(prefix.empty() ? nullptr : toXml(prefix).c_str());
                if (uri == nullptr)
                    return prefix.empty() ? std::optional<std::string_view>("") : std::nullopt;
                nameSpace = toString(uri);
                return nameSpace;
            });
    }

    xercesc::DOMDocument& m_document;
    std::string m_target;
    XmlString m_xmlSchema = toXml(SchemaNamespaces::xmlSchema);
    XmlString m_reader = toXml(SchemaNamespaces::reader);
};

} // namespace

void translateForReader(xercesc::DOMDocument& document) {
    Translation(document).translate(*document.getDocumentElement());
}

} // namespace Orvant
