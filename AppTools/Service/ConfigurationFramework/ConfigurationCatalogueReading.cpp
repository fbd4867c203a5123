#include <ConfigurationFramework/ConfigurationCatalogueReading.h>

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/ConfigurationCatalogueFormat.h>
#include <ConfigurationFramework/xml/XercesSession.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>

#include <list>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Orvant {

namespace {

const Logging s_log("ConfigurationCatalogue");

/// Deepest nesting of elements: objects are made and destroyed by recursion.
constexpr std::size_t maxDepth = 500;

std::string toUtf8(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}

/// The attributes of an element, with the defaults of the grammar.
class Attributes {
public:
    explicit Attributes(const xercesc::Attributes& attributes) : m_attributes(attributes) {}

    std::optional<std::string> find(const XMLCh* name) const {
        const XMLCh* const value = m_attributes.getValue(name);
        return value == nullptr ? std::nullopt : std::optional(toUtf8(value));
    }
    std::string get(const XMLCh* name) const { return find(name).value_or(""); }
    bool isTrue(const XMLCh* name) const {
        const std::string text = get(name);
        return text == "true" || text == "1";
    }

private:
    const xercesc::Attributes& m_attributes;
};

/// Makes a catalogue of what the parser reports of a document that follows the grammar.
class CatalogueHandler : public xercesc::DefaultHandler {
public:
    explicit CatalogueHandler(const FileName& file) : m_file(file) {}

    ConfigurationCatalogue take() { return std::move(catalogue()); }

    void setDocumentLocator(const xercesc::Locator* locator) override { m_locator = locator; }
    void startDTD(const XMLCh*, const XMLCh*, const XMLCh*) override {
        fail("a catalogue has no document type declaration");
    }
    void startElement(const XMLCh*, const XMLCh* name, const XMLCh*,
                      const xercesc::Attributes& attributes) override {
        if (++m_depth > maxDepth)
            fail("it is nested too deeply");
        guard([&] { start(toUtf8(name), Attributes(attributes)); });
    }
    void endElement(const XMLCh*, const XMLCh* name, const XMLCh*) override {
        --m_depth;
        guard([&] { end(toUtf8(name)); });
    }
    void characters(const XMLCh* text, XMLSize_t length) override { m_text.append(text, length); }
    void error(const xercesc::SAXParseException& exception) override { fail(exception); }
    void fatalError(const xercesc::SAXParseException& exception) override { fail(exception); }

private:
    using Object = ConfigurationObjectDescription;

    template <typename Function>
    void guard(Function function) {
        try {
            function();
        } catch (const std::invalid_argument& e) {
            fail(e.what());
        }
    }
    [[noreturn]] void fail(const std::string& reason) const {
        throw ConfigurationCatalogueError(
            m_file, static_cast<unsigned int>(m_locator->getLineNumber()),
            static_cast<unsigned int>(m_locator->getColumnNumber()), reason);
    }
    [[noreturn]] void fail(const xercesc::SAXParseException& exception) const {
        throw ConfigurationCatalogueError(
            m_file, static_cast<unsigned int>(exception.getLineNumber()),
            static_cast<unsigned int>(exception.getColumnNumber()), toUtf8(exception.getMessage()));
    }

    void start(const std::string& name, const Attributes& attributes);
    void startObject(const std::string& name, const Attributes& attributes);
    void startValue(const Attributes& attributes);
    void setFiles(const Attributes& attributes);
    void addFormerly(const Attributes& attributes);
    void end(const std::string& name);
    void endObject();
    void endValue();

    /// Made when everything is known that it is made of.
    ConfigurationCatalogue& catalogue() {
        if (!m_catalogue)
            m_catalogue.emplace(m_application, m_acceptedVersions, m_writtenVersion);
        return *m_catalogue;
    }
    template <typename Item>
    static void takeItem(const Attributes& attributes, Item& item) {
        item.description = attributes.get(u"description");
        item.persistence = valueOf(persistenceWords, attributes.get(u"persistence"));
        item.products = static_cast<ConfigurationItemBase::ProductType>(
            std::stoul(attributes.get(u"products")));
        item.isEditable = attributes.isTrue(u"editable");
    }

    const FileName& m_file;
    const xercesc::Locator* m_locator = nullptr;
    std::size_t m_depth = 0;
    XmlString m_text;
    std::string m_application;
    std::list<std::string> m_acceptedVersions;
    std::string m_writtenVersion;
    std::optional<ConfigurationCatalogue> m_catalogue;
    std::vector<Object::Child> m_objects; ///< that are open, the outermost first
    bool m_isKeyed = false;               ///< the outermost
    ConfigurationValueDescription m_value;
};

void CatalogueHandler::start(const std::string& name, const Attributes& attributes) {
    if (name == "catalogue") {
        m_application = attributes.get(u"application");
        m_writtenVersion = attributes.get(u"writtenVersion");
    } else if (name == "accepts") {
        m_acceptedVersions.push_back(attributes.get(u"version"));
    } else if (name == "files") {
        setFiles(attributes);
    } else if (name == "formerly") {
        addFormerly(attributes);
    } else if (name == "value") {
        startValue(attributes);
    } else if (name == "choice") {
        const std::string text = attributes.get(u"text");
        m_value.constraint.choices.push_back({text, attributes.find(u"label").value_or(text)});
    } else if (name == "default" || name == "item") {
        m_text.clear();
    } else {
        startObject(name, attributes);
    }
}

void CatalogueHandler::setFiles(const Attributes& attributes) {
    catalogue().setFiles(attributes.get(u"system"), attributes.get(u"user"));
}

void CatalogueHandler::addFormerly(const Attributes& attributes) {
    const std::string path = attributes.get(u"path");
    const auto now = attributes.find(u"now");
    const auto text = attributes.find(u"text");
    const auto nowText = attributes.find(u"nowText");
    if (now && !text && !nowText)
        catalogue().addFormerPath(path, *now);
    else if (!now && text && nowText)
        catalogue().addFormerText(path, *text, *nowText);
    else
        throw std::invalid_argument("it says neither what a name nor what a text is now");
}

void CatalogueHandler::startObject(const std::string& name, const Attributes& attributes) {
    if (m_objects.empty())
        m_isKeyed = attributes.isTrue(u"keyed");
    Object::Child& child = m_objects.emplace_back();
    child.isKind = name == "kind";
    child.key = attributes.find(u"key");
    child.object.name = attributes.get(u"name");
    if (name != "inline" && !isXmlName(child.object.name))
        throw std::invalid_argument('"' + child.object.name +
                                    "\" cannot be the name of an element");
    takeItem(attributes, child.object);
}

void CatalogueHandler::startValue(const Attributes& attributes) {
    m_value = {};
    takeItem(attributes, m_value);
    m_value.name = attributes.get(u"name");
    m_value.type = valueOf(typeWords, attributes.get(u"type"));
    m_value.visibility = valueOf(visibilityWords, attributes.get(u"visibility"));
    m_value.constraint = {.label = attributes.find(u"label").value_or(m_value.description),
                          .minimum = attributes.find(u"minimum"),
                          .maximum = attributes.find(u"maximum"),
                          .condition = attributes.get(u"condition")};
}

void CatalogueHandler::end(const std::string& name) {
    if (name == "catalogue")
        (void)catalogue();
    else if (name == "value")
        endValue();
    else if (name == "item" || (name == "default" && !m_value.isList()))
        m_value.defaultTexts.push_back(toUtf8(std::exchange(m_text, {}).c_str()));
    else if (name == "object" || name == "kind" || name == "inline")
        endObject();
}

void CatalogueHandler::endValue() {
    (void)m_value.makeValue(); // refuses what contradicts itself
    m_objects.back().object.values.push_back(std::move(m_value));
}

void CatalogueHandler::endObject() {
    Object::Child child = std::move(m_objects.back());
    m_objects.pop_back();
    if (!m_objects.empty()) {
        m_objects.back().object.children.push_back(std::move(child));
        return;
    }
    const std::string name = child.object.name;
    catalogue().add({std::move(child.object), m_isKeyed}, name);
}

xercesc::MemBufInputSource sourceOf(std::string_view bytes, const XMLCh* name) {
    return {reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(), name};
}

/// @return a parser that opens nothing but what it is given, and validates that
std::unique_ptr<xercesc::SAX2XMLReader> makeParser(xercesc::DefaultHandler& handler) {
    using xercesc::XMLUni;
    std::unique_ptr<xercesc::SAX2XMLReader> parser(xercesc::XMLReaderFactory::createXMLReader());
    parser->setFeature(XMLUni::fgXercesDisableDefaultEntityResolution, true);
    parser->setFeature(XMLUni::fgXercesLoadExternalDTD, false);
    const auto grammar = sourceOf(catalogueGrammar, u"ConfigurationCatalogue.xsd");
    parser->loadGrammar(grammar, xercesc::Grammar::SchemaGrammarType, true);
    parser->setFeature(XMLUni::fgXercesUseCachedGrammarInParse, true);
    parser->setFeature(XMLUni::fgXercesLoadSchema, false);
    parser->setFeature(XMLUni::fgSAX2CoreValidation, true);
    parser->setFeature(XMLUni::fgXercesDynamic, false);
    parser->setContentHandler(&handler);
    parser->setErrorHandler(&handler);
    parser->setLexicalHandler(&handler);
    return parser;
}

} // namespace

ConfigurationCatalogue readCatalogue(const FileName& file, const std::string& bytes) {
    const XercesSession session(s_log, std::source_location::current());
    CatalogueHandler handler(file);
    try {
        const auto parser = makeParser(handler);
        parser->parse(sourceOf(bytes, u"catalogue"));
    } catch (const xercesc::XMLException& e) {
        throw ConfigurationCatalogueError(file, static_cast<unsigned int>(e.getSrcLine()), 0,
                                          toUtf8(e.getMessage()));
    } catch (const xercesc::OutOfMemoryException&) {
        throw std::bad_alloc();
    }
    return handler.take();
}

} // namespace Orvant
