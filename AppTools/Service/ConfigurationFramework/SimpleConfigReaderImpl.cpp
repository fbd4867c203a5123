#include <ConfigurationFramework/SimpleConfigReaderImpl.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/reading/TreeBuildingParser.h>
#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/NumberText.h>
#include <ConfigurationFramework/xml/PlaceRestorer.h>
#include <ConfigurationFramework/xml/XercesSession.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <FileHandling/FileUtilities.h>
#include <GeneralServices/XmlErrorHandler.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <optional>
#include <utility>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/util/XMLException.hpp>

namespace Orvant {

namespace {

using Element = DocumentTree::Element;

const Logging s_log("SimpleConfigReader");

ConfigurationAccessResult successIf(bool condition) {
    return condition ? ConfigurationAccessResult::Success : ConfigurationAccessResult::Failure;
}

/// The text of an element, empty if it has no child; nothing if its first child is not text.
std::optional<std::string> optionalText(const DocumentTree& tree, Element element) {
    if (!tree.hasChildren(element))
        return std::string();
    const auto text = tree.text(element);
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

/// Has the place of its call, which is that of the throw statement. GCC counts the column up to the
/// parenthesis after the name: it changes with the name and with the indentation of the call.
ConfigException refusedDocument(ConfigException::ExceptionType type,
                                std::source_location place = std::source_location::current()) {
    return ConfigException(type, place);
}

} // namespace

SimpleConfigReaderImpl::SimpleConfigReaderImpl(ConfigReader& reader, const FileName& file,
                                               const std::string& content,
                                               const std::list<std::string>& validVersions,
                                               std::string* bytes)
    : m_reader(reader) {
    init(file, content, validVersions, bytes);
}

SimpleConfigReaderImpl::SimpleConfigReaderImpl(ConfigReader& reader,
                                               std::shared_ptr<ParsedDocument> document)
    : m_reader(reader),
      m_document(std::move(document)),
      m_tree(&m_document->tree),
      m_current(DocumentTree::root) {}

ConfigurationAccessResult SimpleConfigReaderImpl::makeCurrent(Element element) {
    if (element != DocumentTree::none)
        m_current = element;
    return successIf(element != DocumentTree::none);
}

ConfigurationAccessResult SimpleConfigReaderImpl::setCurrentNode(const std::string& name) {
    return makeCurrent(findChild(name));
}

ConfigurationAccessResult SimpleConfigReaderImpl::setCurrentKeyedNode(const std::string& name,
                                                                      const std::string& key) {
    return makeCurrent(findChild(name, key));
}

/// The text of a child, with its lock; nothing, and no lock, if its first child is not text.
std::optional<std::string_view> SimpleConfigReaderImpl::requiredText(const std::string& name,
                                                                     bool& editable) {
    const Element element = m_tree->findChild(m_current, name);
    const auto text = element == DocumentTree::none ? std::nullopt : m_tree->text(element);
    if (text)
        editable = m_tree->isEditable(element);
    return text;
}

ConfigurationAccessResult SimpleConfigReaderImpl::getBool(const std::string& name, bool& value,
                                                          bool& editable) {
    const auto text = requiredText(name, editable);
    if (text != "true" && text != "false")
        return ConfigurationAccessResult::Failure;
    value = text == "true";
    return ConfigurationAccessResult::Success;
}

template <typename Number>
ConfigurationAccessResult SimpleConfigReaderImpl::getNumber(const std::string& name, Number& value,
                                                            bool& editable) {
    const auto text = requiredText(name, editable);
    return successIf(text && extractNumber(*text, value));
}

template ConfigurationAccessResult SimpleConfigReaderImpl::getNumber(const std::string&, int&,
                                                                     bool&);
template ConfigurationAccessResult SimpleConfigReaderImpl::getNumber(const std::string&, double&,
                                                                     bool&);

ConfigurationAccessResult SimpleConfigReaderImpl::getString(std::string& value, bool& editable) {
    editable = m_tree->isEditable(m_current);
    auto text = optionalText(*m_tree, m_current);
    if (!text)
        return ConfigurationAccessResult::Failure;
    value = std::move(*text);
    return ConfigurationAccessResult::Success;
}

ConfigurationAccessResult SimpleConfigReaderImpl::getString(const std::string& name,
                                                            std::string& value, bool& editable) {
    const PlaceRestorer restorer(m_current);
    return setCurrentNode(name) == ConfigurationAccessResult::Success
               ? getString(value, editable)
               : ConfigurationAccessResult::Failure;
}

ConfigurationAccessResult
SimpleConfigReaderImpl::getStringVector(const std::string& name, std::vector<std::string>& values,
                                        bool& editable, std::map<std::string, bool>* itemEditable) {
    values.clear();
    if (itemEditable != nullptr)
        itemEditable->clear();
    const Element list = m_tree->findBelow(m_current, name);
    if (list == DocumentTree::none)
        return ConfigurationAccessResult::Failure;
    editable = m_tree->isEditable(list);
    return successIf(m_tree->forEachBelow(list, "item", [&](Element item) {
        auto text = optionalText(*m_tree, item);
        if (!text)
            return false;
        values.push_back(std::move(*text));
        if (itemEditable != nullptr)
            (*itemEditable)[values.back()] = m_tree->isEditable(item);
        return true;
    }));
}

ConfigurationAccessResult SimpleConfigReaderImpl::tagExists(const std::string& name) {
    return makeCurrent(m_tree->findBelow(DocumentTree::root, name));
}

ConfigurationAccessResult SimpleConfigReaderImpl::getEditable(bool& editable) {
    editable = m_tree->isEditable(m_current);
    return ConfigurationAccessResult::Success;
}

ConfigurationAccessResult SimpleConfigReaderImpl::getKeys(const std::string& name,
                                                          std::set<std::string>& keys) {
    m_tree->forEachChild(m_current, name,
                         [&](Element element) { keys.insert(m_tree->key(element)); });
    return ConfigurationAccessResult::Success;
}

ConfigurationAccessResult SimpleConfigReaderImpl::loadFrom(Element element,
                                                           ConfigurationObject& object) {
    const PlaceRestorer restorer(m_current);
    const auto result = makeCurrent(element);
    if (result == ConfigurationAccessResult::Success)
        object.loadContent(m_reader);
    return result;
}

Element SimpleConfigReaderImpl::findAnywhere(const std::string& name, const std::string& key) {
    return m_tree->findInDocument(name, throughDocument(key));
}

Element SimpleConfigReaderImpl::findAnywhere(const std::string& name) {
    return m_tree->findBelow(DocumentTree::root, name);
}

Element SimpleConfigReaderImpl::findChild(const std::string& name, const std::string& key) {
    const Element keyed = m_tree->findChild(m_current, name, throughDocument(key));
    return keyed != DocumentTree::none ? keyed : m_tree->findChildWithoutKey(m_current, name);
}

Element SimpleConfigReaderImpl::findChild(const std::string& name) {
    return m_tree->findChild(m_current, name);
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
        const Element element = m_tree->findChild(m_current, name, throughDocument(keys[i]));
        if (loadFrom(element, *objects[i]) != ConfigurationAccessResult::Success)
            allFound = false;
    }
    return successIf(allFound);
}

ConfigurationAccessResult SimpleConfigReaderImpl::createConfigurationObjects(
    const std::string& name, const std::function<void(std::string)>& callback) {
    const PlaceRestorer restorer(m_current);
    bool called = false;
    m_tree->forEachChild(m_current, name, [&](Element element) {
        m_current = element;
        callback(m_tree->key(element));
        called = true;
    });
    return successIf(called);
}

// Support finds a refusal in customers' logs by line and column, so each place that reports one
// keeps both whatever is edited around it: the line by the directive above it, the column by the
// length of the name refusedDocument and the depth of the blocks around the throw. The function is
// the last in the file because the line numbers from here on are not those of the text.
void SimpleConfigReaderImpl::init(const FileName& file, const std::string& content,
                                  const std::list<std::string>& validVersions, std::string* bytes) {
#line 63
    initializeXerces(s_log, std::source_location::current());

    XmlErrorHandler errors;
    ParserConfinement confinement(ParserConfinement::configurations);
    const auto parser = confinement.makeParser<TreeBuildingParser>();
    parser->setErrorHandler(&errors);
    std::string read; // of a file

    if (!file.empty()) {
        try {
            if (!FileUtilities::exists(file, false)) {
#line 88
                throw refusedDocument(ConfigException::SourceNotFound);
            }
            read = confinement.parseFile(*parser, file);
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
            confinement.parseString(*parser, content);
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

    if (errors.getSawErrors()) {
#line 153
        throw refusedDocument(ConfigException::ParserReportedErrors);
    }
    m_tree = parser->getTree();
    if (m_tree == nullptr) {
#line 161
        throw refusedDocument(ConfigException::InvalidDocument);
    }
    if (m_tree->empty()) {
#line 170
        throw refusedDocument(ConfigException::InvalidDocument);
    }
    m_current = DocumentTree::root;
    if (!m_tree->hasName(m_current, "Configuration")) {
#line 176
        throw refusedDocument(ConfigException::InvalidDocument);
    }
    if (std::ranges::find(validVersions, parser->getVersion()) == validVersions.end()) {
#line 185
        throw refusedDocument(ConfigException::InvalidVersion);
    }
    m_document = std::make_shared<ParsedDocument>(std::move(*m_tree), parser->getVersion());
    m_tree = &m_document->tree;
    if (bytes != nullptr)
        *bytes = std::move(read);
}

} // namespace Orvant
