#include <ConfigurationFramework/SimpleConfigReaderImpl.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/DomNavigation.h>
#include <ConfigurationFramework/XercesSession.h>

#include <FileHandling/FileUtilities.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <locale>
#include <optional>
#include <sstream>
#include <utility>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/util/XMLException.hpp>

namespace Orvant {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using XmlChString = std::basic_string<XMLCh>;

const Logging s_log("SimpleConfigReader");

ConfigurationAccessResult successIf(bool condition) {
    return condition ? ConfigurationAccessResult::Success : ConfigurationAccessResult::Failure;
}

/// An element's tag and, where one is asked for, its key.
class ElementMatch {
public:
    explicit ElementMatch(const std::string& name)
        : m_name(XercesHelperFunctions::stringToXmlCh(name)) {}
    ElementMatch(const std::string& name, const std::string& key)
        : m_name(XercesHelperFunctions::stringToXmlCh(name)),
          m_key(XercesHelperFunctions::stringToXmlCh(key)) {}

    bool operator()(const DOMElement& element) const {
        return m_name == element.getTagName() && (!m_key || *m_key == element.getAttribute(u"key"));
    }

private:
    XmlChString m_name;
    std::optional<XmlChString> m_key;
};

/// Calls back with each matching child element until the callback returns true.
/// @return the child at which it did, null when it never did
template <typename Callback>
DOMElement* findChild(const DOMElement& parent, const ElementMatch& match, Callback callback) {
    for (DOMNode* node = parent.getFirstChild(); node != nullptr; node = node->getNextSibling()) {
        DOMElement* const element = asElement(node);
        if (element != nullptr && match(*element) && callback(*element))
            return element;
    }
    return nullptr;
}

DOMElement* findChild(const DOMElement& parent, const ElementMatch& match) {
    return findChild(parent, match, [](const DOMElement&) { return true; });
}

/// The first matching element after a node in document order below a root; null at the end.
DOMElement* findNextBelow(const DOMElement& root, const DOMNode& after, const ElementMatch& match) {
    for (DOMNode* node = nextBelow(root, &after); node != nullptr; node = nextBelow(root, node)) {
        DOMElement* const element = asElement(node);
        if (element != nullptr && match(*element))
            return element;
    }
    return nullptr;
}

std::string getKey(const DOMElement& element) {
    return XercesHelperFunctions::xmlChToString(element.getAttribute(u"key"));
}

bool isEditable(const DOMElement& element) {
    return !XercesHelperFunctions::compareXmlCh(element.getAttribute(u"editable"), u"false");
}

/// @return the element's text, null when its first child is not text
std::optional<std::string> requiredText(const DOMElement& element) {
    const DOMNode* const first = element.getFirstChild();
    if (first == nullptr || first->getNodeType() != DOMNode::TEXT_NODE)
        return std::nullopt;
    return XercesHelperFunctions::xmlChToString(first->getNodeValue());
}

/// As requiredText(), but an element without any child has the empty text.
std::optional<std::string> optionalText(const DOMElement& element) {
    return element.getFirstChild() == nullptr ? std::string() : requiredText(element);
}

/// Puts a reader back on its node at the end of the scope.
class NodeRestorer {
public:
    explicit NodeRestorer(DOMElement*& current) : m_current(current), m_saved(current) {}
    NodeRestorer(const NodeRestorer&) = delete;
    NodeRestorer& operator=(const NodeRestorer&) = delete;
    ~NodeRestorer() { m_current = m_saved; }

    DOMElement& saved() const { return *m_saved; }

private:
    DOMElement*& m_current;
    DOMElement* m_saved;
};

/// With the place of its call, which is that of the throw statement.
ConfigException refusedDocument(ConfigException::ExceptionType type,
                                std::source_location place = std::source_location::current()) {
    return ConfigException(type, place);
}

} // namespace

SimpleConfigReaderImpl::SimpleConfigReaderImpl(ConfigReader& reader, const FileName& file,
                                               const std::string& content,
                                               const std::list<std::string>& validVersions)
    : m_reader(reader) {
    init(file, content, validVersions);
}

ConfigurationAccessResult SimpleConfigReaderImpl::makeCurrent(DOMElement* element) {
    if (element != nullptr)
        m_current = element;
    return successIf(element != nullptr);
}

ConfigurationAccessResult SimpleConfigReaderImpl::setCurrentNode(const std::string& name) {
    return makeCurrent(findChild(*m_current, ElementMatch(name)));
}

ConfigurationAccessResult SimpleConfigReaderImpl::setCurrentKeyedNode(const std::string& name,
                                                                      const std::string& key) {
    DOMElement* defaultEntry = nullptr;
    const XmlChString wantedKey = XercesHelperFunctions::stringToXmlCh(key);
    DOMElement* const keyed = findChild(*m_current, ElementMatch(name), [&](DOMElement& element) {
        const XMLCh* const elementKey = element.getAttribute(u"key");
        if (*elementKey == 0)
            defaultEntry = &element;
        return wantedKey == elementKey;
    });
    return makeCurrent(keyed != nullptr ? keyed : defaultEntry);
}

ConfigurationAccessResult SimpleConfigReaderImpl::getBool(const std::string& name, bool& value,
                                                          bool& editable) {
    const DOMElement* const element = findChild(*m_current, ElementMatch(name));
    const auto text = element == nullptr ? std::nullopt : requiredText(*element);
    if (!text)
        return ConfigurationAccessResult::Failure;
    editable = isEditable(*element);
    if (*text != "true" && *text != "false")
        return ConfigurationAccessResult::Failure;
    value = *text == "true";
    return ConfigurationAccessResult::Success;
}

template <typename Number>
ConfigurationAccessResult SimpleConfigReaderImpl::getNumber(const std::string& name, Number& value,
                                                            bool& editable) {
    const DOMElement* const element = findChild(*m_current, ElementMatch(name));
    const auto text = element == nullptr ? std::nullopt : requiredText(*element);
    if (!text)
        return ConfigurationAccessResult::Failure;
    editable = isEditable(*element);
    // The desktop's global locale may write numbers in another way than files do.
    std::istringstream stream(*text);
    stream.imbue(std::locale::classic());
    Number number{};
    if (!(stream >> number))
        return ConfigurationAccessResult::Failure;
    value = number;
    return ConfigurationAccessResult::Success;
}

template ConfigurationAccessResult SimpleConfigReaderImpl::getNumber(const std::string&, int&,
                                                                     bool&);
template ConfigurationAccessResult SimpleConfigReaderImpl::getNumber(const std::string&, double&,
                                                                     bool&);

ConfigurationAccessResult SimpleConfigReaderImpl::getString(std::string& value, bool& editable) {
    editable = isEditable(*m_current);
    auto text = optionalText(*m_current);
    if (!text)
        return ConfigurationAccessResult::Failure;
    value = std::move(*text);
    return ConfigurationAccessResult::Success;
}

ConfigurationAccessResult SimpleConfigReaderImpl::getString(const std::string& name,
                                                            std::string& value, bool& editable) {
    const NodeRestorer restorer(m_current);
    return setCurrentNode(name) == ConfigurationAccessResult::Success
               ? getString(value, editable)
               : ConfigurationAccessResult::Failure;
}

ConfigurationAccessResult
SimpleConfigReaderImpl::getStringVector(const std::string& name, std::vector<std::string>& values,
                                        bool& editable, std::map<std::string, bool>& itemEditable) {
    values.clear();
    itemEditable.clear();
    const DOMElement* const list = findNextBelow(*m_current, *m_current, ElementMatch(name));
    if (list == nullptr)
        return ConfigurationAccessResult::Failure;
    editable = isEditable(*list);
    const ElementMatch isItem("item");
    for (const DOMElement* item = findNextBelow(*list, *list, isItem); item != nullptr;
         item = findNextBelow(*list, *item, isItem)) {
        const auto text = optionalText(*item);
        if (!text)
            return ConfigurationAccessResult::Failure;
        values.push_back(*text);
        itemEditable[*text] = isEditable(*item);
    }
    return ConfigurationAccessResult::Success;
}

ConfigurationAccessResult SimpleConfigReaderImpl::tagExists(const std::string& name) {
    const DOMElement& root = *m_document->getDocumentElement();
    return makeCurrent(findNextBelow(root, root, ElementMatch(name)));
}

ConfigurationAccessResult SimpleConfigReaderImpl::getEditable(bool& editable) {
    editable = isEditable(*m_current);
    return ConfigurationAccessResult::Success;
}

ConfigurationAccessResult SimpleConfigReaderImpl::getKeys(const std::string& name,
                                                          std::set<std::string>& keys) {
    findChild(*m_current, ElementMatch(name), [&](const DOMElement& element) {
        keys.insert(getKey(element));
        return false;
    });
    return ConfigurationAccessResult::Success;
}

ConfigurationAccessResult SimpleConfigReaderImpl::loadFrom(DOMElement* element,
                                                           ConfigurationObject& object) {
    const NodeRestorer restorer(m_current);
    if (element != nullptr) {
        m_current = element;
        object.loadContent(m_reader);
    }
    return successIf(element != nullptr);
}

ConfigurationAccessResult
SimpleConfigReaderImpl::findAndGetClassContents(const std::string& name, const std::string& key,
                                                ConfigurationObject& object) {
    const DOMElement& root = *m_document->getDocumentElement();
    return loadFrom(findNextBelow(root, root, ElementMatch(name, key)), object);
}

ConfigurationAccessResult
SimpleConfigReaderImpl::findAndGetClassContents(const std::string& name,
                                                ConfigurationObject& object) {
    const DOMElement& root = *m_document->getDocumentElement();
    return loadFrom(findNextBelow(root, root, ElementMatch(name)), object);
}

ConfigurationAccessResult SimpleConfigReaderImpl::getClassContents(ConfigurationObject& object) {
    return loadFrom(m_current, object);
}

ConfigurationAccessResult
SimpleConfigReaderImpl::getClassContents(const std::string& name,
                                         const std::vector<std::string>& keys,
                                         std::vector<ConfigurationObject*>& objects) {
    bool allFound = keys.size() <= objects.size();
    for (std::size_t i = 0; i < std::min(keys.size(), objects.size()); ++i) {
        DOMElement* const element = findChild(*m_current, ElementMatch(name, keys[i]));
        if (loadFrom(element, *objects[i]) != ConfigurationAccessResult::Success)
            allFound = false;
    }
    return successIf(allFound);
}

ConfigurationAccessResult SimpleConfigReaderImpl::getClassContents(const std::string& name,
                                                                   const std::string& key,
                                                                   ConfigurationObject& object) {
    const NodeRestorer restorer(m_current);
    const auto result = setCurrentKeyedNode(name, key);
    if (result == ConfigurationAccessResult::Success)
        object.loadContent(m_reader);
    return result;
}

ConfigurationAccessResult SimpleConfigReaderImpl::getClassContents(const std::string& name,
                                                                   ConfigurationObject& object) {
    return loadFrom(findChild(*m_current, ElementMatch(name)), object);
}

ConfigurationAccessResult SimpleConfigReaderImpl::createConfigurationObjects(
    const std::string& name, const std::function<void(std::string)>& callback) {
    const NodeRestorer restorer(m_current);
    bool called = false;
    findChild(restorer.saved(), ElementMatch(name), [&](DOMElement& element) {
        m_current = &element;
        callback(getKey(element));
        called = true;
        return false;
    });
    return successIf(called);
}

// Support finds a refusal in the field's logs by line and column, so each place that reports one
// keeps its number whatever is edited around it. The function is the last of the file because the
// numbers are not those of the text from here on.
void SimpleConfigReaderImpl::init(const FileName& file, const std::string& content,
                                  const std::list<std::string>& validVersions) {
#line 63
    initializeXerces(s_log, std::source_location::current());

    m_parser = std::make_unique<xercesc::XercesDOMParser>();
    m_parser->setErrorHandler(&m_errorHandler);
    m_confinement.apply(*m_parser);

    if (!file.empty()) {
        try {
            if (!FileUtilities::exists(file, false)) {
#line 88
                throw refusedDocument(ConfigException::SourceNotFound);
            }
            parseFile(*m_parser, file);
        } catch (const xercesc::XMLException&) {
#line 95
            throw refusedDocument(ConfigException::InvalidDocument);
        } catch (const xercesc::DOMException&) {
#line 101
            throw refusedDocument(ConfigException::InvalidDocument);
        } catch (const FileNameException&) {
#line 107
            throw refusedDocument(ConfigException::InvalidDocument);
        }
    } else if (!content.empty()) {
        try {
            parseString(*m_parser, content);
        } catch (const xercesc::XMLException&) {
#line 131
            throw refusedDocument(ConfigException::InvalidDocument);
        } catch (const xercesc::DOMException&) {
#line 138
            throw refusedDocument(ConfigException::InvalidDocument);
        }
    } else {
#line 146
        throw refusedDocument(ConfigException::SourceNotFound);
    }

    if (m_errorHandler.getSawErrors()) {
#line 153
        throw refusedDocument(ConfigException::ParserReportedErrors);
    }
    m_document = m_parser->getDocument();
    if (m_document == nullptr) {
#line 161
        throw refusedDocument(ConfigException::InvalidDocument);
    }
    m_current = m_document->getDocumentElement();
    if (m_current == nullptr) {
#line 170
        throw refusedDocument(ConfigException::InvalidDocument);
    }
    if (!ElementMatch("Configuration")(*m_current)) {
#line 176
        throw refusedDocument(ConfigException::InvalidDocument);
    }
    const std::string version =
        XercesHelperFunctions::xmlChToString(m_current->getAttribute(u"version"));
    if (std::ranges::find(validVersions, version) == validVersions.end()) {
#line 185
        throw refusedDocument(ConfigException::InvalidVersion);
    }
}

} // namespace Orvant
