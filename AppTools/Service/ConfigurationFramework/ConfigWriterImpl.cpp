#include <ConfigurationFramework/ConfigWriterImpl.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/reading/ParsedDocument.h>
#include <ConfigurationFramework/writing/EditedDocumentParser.h>
#include <ConfigurationFramework/writing/WrittenElement.h>
#include <ConfigurationFramework/xml/DomWalk.h>
#include <ConfigurationFramework/xml/IndexThreshold.h>
#include <ConfigurationFramework/xml/PlaceRestorer.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <FileHandling/FileName.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>

#include <source_location>
#include <system_error>
#include <utility>

#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

const Logging s_log("ConfigWriter");

constexpr const XMLCh* configurationTag = u"Configuration";
constexpr const XMLCh* versionAttribute = u"version";

/// A document with no more nodes than this is within all limits for opening.
constexpr std::size_t mostNodesWithinAllBounds = 50'000;

} // namespace

ConfigWriterImpl::ConfigWriterImpl(const std::string& version)
    : m_session(s_log, std::source_location::current()),
      m_newDocument(
          xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS")->createDocument()),
      m_document(m_newDocument.get()) {
    m_current = m_document->createElement(configurationTag);
    m_document->appendChild(m_current);
    setVersion(version);
}

ConfigWriterImpl::ConfigWriterImpl()
    : m_session(s_log, std::source_location::current()),
      m_parser(m_confinement.makeParser<EditedDocumentParser>()) {}

ConfigWriterImpl::ConfigWriterImpl(const FileName& file, const std::string& content)
    : ConfigWriterImpl() {
    if (file.empty() && content.empty())
        throw ConfigException(ConfigException::SourceNotFound);
    load([&] {
        if (file.empty())
            m_confinement.parseString(*m_parser, content);
        else
            m_confinement.parseFile(*m_parser, file);
    });
}

std::unique_ptr<ConfigWriterImpl> ConfigWriterImpl::openBytes(const std::string& bytes) {
    std::unique_ptr<ConfigWriterImpl> impl(new ConfigWriterImpl);
    impl->load([&] { impl->m_confinement.parseBytes(*impl->m_parser, bytes); });
    return impl;
}

std::unique_ptr<ConfigWriter> ConfigWriterImpl::open(const std::string& bytes) {
    return makeWriter(openBytes(bytes));
}

ConfigWriterImpl& ConfigWriterImpl::of(const ConfigWriter& writer) {
    return dynamic_cast<ConfigWriterImpl&>(WriterTarget::of(writer));
}

std::string ConfigWriterImpl::version() const {
    return XercesHelperFunctions::xmlChToString(
        m_document->getDocumentElement()->getAttribute(versionAttribute));
}

void ConfigWriterImpl::setVersion(const std::string& version) {
    root().setAttribute(versionAttribute, toText(version, "Configuration").c_str());
}

/// @param parse has the parser parse the document
template <typename Parse>
void ConfigWriterImpl::load(Parse parse) {
    try {
        parse();
    } catch (const xercesc::XMLException&) {
        throw ConfigException(ConfigException::InvalidDocument);
    } catch (const xercesc::DOMException&) {
        throw ConfigException(ConfigException::InvalidDocument);
    } catch (const FileNameException&) {
        throw ConfigException(ConfigException::InvalidDocument);
    }
    // Without an error handler, a broken document gives a tree that ends at the error. Saving that
    // would truncate the user's file.
    if (m_parser->getErrorCount() != 0)
        throw ConfigException(ConfigException::InvalidDocument);
    m_document = m_parser->getDocument();
    if (m_document == nullptr)
        throw ConfigException(ConfigException::InvalidDocument);
    m_current = m_document->getDocumentElement();
    if (m_current == nullptr)
        throw ConfigException(ConfigException::InvalidDocument);
    if (!xercesc::XMLString::equals(m_current->getTagName(), configurationTag))
        throw ConfigException(ConfigException::InvalidDocument);
}

DOMElement& ConfigWriterImpl::createElement(const std::string& name) {
    return *m_document->createElement(toTag(name).c_str());
}

void ConfigWriterImpl::createNode(const std::string& name, const std::string& comment) {
    appendElement(name, comment);
}

void ConfigWriterImpl::createKeyedNode(const std::string& name, const std::string& key,
                                       const std::string& comment) {
    appendKeyedElement(createElement(name), key, comment);
}

DOMElement& ConfigWriterImpl::appendElement(const std::string& name, const std::string& comment) {
    // Made before anything is deleted: an invalid name is refused here.
    DOMElement& element = createElement(name);
    appendElement(element, comment);
    return element;
}

void ConfigWriterImpl::appendElement(DOMElement& element, const std::string& comment) {
    replaceBy(element, {element.getTagName(), std::nullopt}, comment);
}

void ConfigWriterImpl::appendKeyedElement(DOMElement& element, const std::string& key,
                                          const std::string& comment) {
    const XmlString keyText =
        toText(key, XercesHelperFunctions::xmlChToString(element.getTagName()));
    element.setAttribute(keyAttribute, keyText.c_str());
    replaceBy(element, {element.getTagName(), keyText}, comment);
}

/// Appends an element in place of the selected children.
void ConfigWriterImpl::replaceBy(DOMElement& element, const ChildSelection& replaced,
                                 const std::string& comment) {
    deleteChildren(replaced);
    if (!comment.empty()) {
        const std::string name = XercesHelperFunctions::xmlChToString(element.getTagName());
        m_current->appendChild(m_document->createComment(toComment(comment, name).c_str()));
    }
    m_current->appendChild(&element);
    if (ChildElements* const index = currentIndex())
        index->add(element);
}

void ConfigWriterImpl::enterLastChild() {
    m_current = asElement(m_current->getLastChild());
}

ConfigurationAccessResult ConfigWriterImpl::makeCurrent(const ChildSelection& selection) {
    DOMElement* const found = findChild(selection);
    if (found == nullptr)
        return ConfigurationAccessResult::Failure;
    m_current = found;
    return ConfigurationAccessResult::Success;
}

/// The first of the selected children; null when there is none.
DOMElement* ConfigWriterImpl::findChild(const ChildSelection& selection) {
    if (const ChildElements* const index = currentIndex())
        return index->find(selection);
    for (DOMNode* node = m_current->getFirstChild(); node != nullptr;
         node = node->getNextSibling()) {
        DOMElement* const element = asElement(node);
        if (element != nullptr && selection.includes(*element))
            return element;
    }
    return nullptr;
}

/// The index of the current element's children; null while it has none.
ChildElements* ConfigWriterImpl::currentIndex() {
    const auto found = m_indexes.find(m_current);
    return found == m_indexes.end() ? nullptr : &found->second;
}

bool ConfigWriterImpl::deleteObject(const std::string& name,
                                    const std::optional<std::string>& key) {
    const ChildSelection selection = key ? keyed(name, *key) : named(name);
    const bool isThere = findChild(selection) != nullptr;
    deleteChildren(selection);
    return isThere;
}

void ConfigWriterImpl::deleteChildren(const ChildSelection& selection) {
    if (ChildElements* const index = currentIndex()) {
        for (DOMElement* element : index->take(selection))
            deleteElement(*element);
        return;
    }
    std::vector<DOMElement*> kept;
    std::size_t walked = 0;
    for (DOMNode* node = m_current->getFirstChild(); node != nullptr; ++walked) {
        DOMNode* const next = node->getNextSibling();
        DOMElement* const element = asElement(node);
        if (node->getNodeType() == DOMNode::TEXT_NODE)
            m_current->removeChild(node);
        else if (element != nullptr && selection.includes(*element))
            deleteElement(*element);
        else if (element != nullptr)
            kept.push_back(element);
        node = next;
    }
    if (walked <= mostChildrenWithoutIndex)
        return;
    ChildElements& index = m_indexes[m_current];
    for (DOMElement* element : kept)
        index.add(*element);
}

/// Deletes a child of the current element, with its comment.
void ConfigWriterImpl::deleteElement(DOMElement& element) {
    if (DOMNode* const comment = commentBefore(element))
        m_current->removeChild(comment);
    m_current->removeChild(&element);
}

std::set<std::string>
ConfigWriterImpl::namesHiddenByDescendants(const std::vector<std::string>& names) {
    std::unordered_map<XmlString, std::string> notSeen;
    for (const std::string& name : names)
        notSeen.emplace(XercesHelperFunctions::stringToXmlCh(name), name);
    std::set<std::string> hidden;
    DomWalk walk(*m_current);
    for (DOMNode* node = walk.next(); node != nullptr && !notSeen.empty(); node = walk.next()) {
        const DOMElement* const element = asElement(node);
        const auto seen = element == nullptr ? notSeen.end() : notSeen.find(element->getTagName());
        if (seen == notSeen.end())
            continue;
        if (walk.depth() > 1)
            hidden.insert(seen->second);
        notSeen.erase(seen);
    }
    return hidden;
}

ConfigurationAccessResult ConfigWriterImpl::moveToFront(const std::string& name) {
    // It stays the first of its name, so an index of the children stays right.
    DOMElement* const element = findChild(named(name));
    if (element == nullptr)
        return ConfigurationAccessResult::Failure;
    Orvant::moveToFront(*element);
    return ConfigurationAccessResult::Success;
}

void ConfigWriterImpl::appendText(DOMElement& element, const std::string& text) {
    const std::string name = XercesHelperFunctions::xmlChToString(element.getTagName());
    element.appendChild(m_document->createTextNode(toText(text, name).c_str()));
}

void ConfigWriterImpl::putText(const std::string& name, const std::string& text,
                               const std::string& comment) {
    appendText(appendElement(name, comment), text);
}

void ConfigWriterImpl::putElementUnlessEmpty(const std::string& name,
                                             const std::optional<std::string>& key,
                                             const std::string& comment,
                                             const std::function<void()>& writeContents) {
    DOMElement& element = createElement(name);
    keepPlace([&] {
        m_current = &element;
        writeContents();
    });
    if (!element.hasChildNodes())
        return;
    if (key)
        appendKeyedElement(element, *key, comment);
    else
        appendElement(element, comment);
}

void ConfigWriterImpl::keepPlace(const std::function<void()>& action) {
    const PlaceRestorer restorer(m_current);
    action();
}

void ConfigWriterImpl::putString(const std::string& value) {
    const std::string name = XercesHelperFunctions::xmlChToString(m_current->getTagName());
    m_current->setTextContent(toText(value, name).c_str());
    m_indexes.erase(m_current);
}

void ConfigWriterImpl::putStringVector(const std::string& name,
                                       const std::vector<std::string>& values,
                                       const std::string& comment) {
    DOMElement& list = appendElement(name, comment);
    for (const std::string& value : values) {
        DOMElement& item = *m_document->createElement(u"item");
        list.appendChild(&item);
        item.appendChild(m_document->createTextNode(toText(value, name).c_str()));
    }
}

PrintedDocument ConfigWriterImpl::print() {
    PrintedDocument printed = printDocument(*m_document);
    // What readers, and the next writer, do not open would be lost.
    if (printed.nodes > mostNodesWithinAllBounds && parseDocument(printed.text) == nullptr)
        return {.problem = "The document is too large to be opened again"};
    return printed;
}

} // namespace Orvant
