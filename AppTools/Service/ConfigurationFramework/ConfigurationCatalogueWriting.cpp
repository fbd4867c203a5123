#include <ConfigurationFramework/ConfigurationCatalogueWriting.h>

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/ConfigurationCatalogueFormat.h>
#include <ConfigurationFramework/writing/DocumentPrinter.h>
#include <ConfigurationFramework/xml/XercesSession.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <Logging/Logging.h>

#include <memory>
#include <stdexcept>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMText.hpp>

namespace Orvant {

namespace {

using xercesc::DOMElement;

const Logging s_log("ConfigurationCatalogue");

struct DocumentRelease {
    void operator()(xercesc::DOMDocument* document) const { document->release(); }
};

/// An element that is being filled.
class Element {
public:
    explicit Element(DOMElement& element) : m_element(element) {}

    Element append(const XMLCh* tag) {
        DOMElement* const child =
            m_element.getOwnerDocument()->createElementNS(catalogueNamespace, tag);
        m_element.appendChild(child);
        return Element(*child);
    }
    void set(const XMLCh* name, const std::string& value) {
        m_element.setAttribute(name, toXmlText(value).text.c_str());
    }
    void setUnless(const std::string& usual, const XMLCh* name, const std::string& value) {
        if (value != usual)
            set(name, value);
    }
    void set(const XMLCh* name, const std::optional<std::string>& value) {
        if (value)
            set(name, *value);
    }
    void setText(const std::string& text) {
        m_element.appendChild(
            m_element.getOwnerDocument()->createTextNode(toXmlText(text).text.c_str()));
    }

private:
    DOMElement& m_element;
};

void putItem(Element element, const std::string& description,
             ConfigurationItemBase::Persistence persistence,
             ConfigurationItemBase::ProductType products, bool isEditable) {
    element.setUnless("", u"description", description);
    element.setUnless("LoadAndSave", u"persistence", wordOf(persistenceWords, persistence));
    element.setUnless("63", u"products", std::to_string(products));
    if (!isEditable)
        element.set(u"editable", std::string("false"));
}

void put(Element element, const ConfigurationValueDescription& value) {
    element.set(u"name", value.name);
    element.set(u"type", std::string(wordOf(typeWords, value.type)));
    putItem(element, value.description, value.persistence, value.products, value.isEditable);
    element.setUnless(value.description, u"label", value.constraint.label);
    element.setUnless("Visible", u"visibility", wordOf(visibilityWords, value.visibility));
    element.set(u"minimum", value.constraint.minimum);
    element.set(u"maximum", value.constraint.maximum);
    element.setUnless("", u"condition", value.constraint.condition);
    Element defaultValue = element.append(u"default");
    for (const std::string& text : value.defaultTexts)
        (value.isList() ? defaultValue.append(u"item") : defaultValue).setText(text);
    for (const auto& [text, label] : value.constraint.choices) {
        Element choice = element.append(u"choice");
        choice.set(u"text", text);
        choice.setUnless(text, u"label", label);
    }
}

void put(Element element, const ConfigurationObjectDescription& object) {
    element.setUnless("", u"name", object.name);
    putItem(element, object.description, object.persistence, object.products, object.isEditable);
    for (const ConfigurationValueDescription& value : object.values)
        put(element.append(u"value"), value);
    for (const auto& [child, isKind, key] : object.children) {
        Element inner = element.append(isKind               ? u"kind"
                                       : child.name.empty() ? u"inline"
                                                            : u"object");
        inner.set(u"key", key);
        put(inner, child);
    }
}

void put(Element element, const StandardConfigurationFiles& files) {
    if (!files.system.empty())
        element.set(u"system", files.system.toString());
    element.set(u"user", files.user.toString());
}

void put(Element element, const ConfigurationCatalogue& catalogue) {
    element.set(u"format", std::string("1"));
    element.set(u"application", catalogue.getApplication());
    element.set(u"writtenVersion", catalogue.getWrittenVersion());
    for (const std::string& version : catalogue.getAcceptedVersions())
        element.append(u"accepts").set(u"version", version);
    if (const auto& files = catalogue.getFiles())
        put(element.append(u"files"), *files);
    for (const auto& [object, isKeyed] : catalogue.getEntries()) {
        Element entry = element.append(u"object");
        if (isKeyed)
            entry.set(u"keyed", std::string("true"));
        put(entry, object);
    }
    for (const auto& [formerPath, path] : catalogue.getFormerPaths()) {
        Element formerly = element.append(u"formerly");
        formerly.set(u"path", formerPath);
        formerly.set(u"now", path);
    }
    for (const auto& [path, formerText, text] : catalogue.getFormerTexts()) {
        Element formerly = element.append(u"formerly");
        formerly.set(u"path", path);
        formerly.set(u"text", formerText);
        formerly.set(u"nowText", text);
    }
}

} // namespace

std::string writeCatalogue(const ConfigurationCatalogue& catalogue) {
    const XercesSession session(s_log, std::source_location::current());
    const std::unique_ptr<xercesc::DOMDocument, DocumentRelease> document(
        xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS")->createDocument(
            catalogueNamespace, u"catalogue", nullptr));
    put(Element(*document->getDocumentElement()), catalogue);
    const PrintedDocument printed = printDocument(*document);
    if (!printed.problem.empty())
        throw std::invalid_argument(printed.problem);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + printed.text + '\n';
}

} // namespace Orvant
