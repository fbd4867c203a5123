#include <ConfigurationFramework/ConfigWriterImpl.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/files/FileSaving.h>
#include <ConfigurationFramework/writing/DocumentPrinter.h>
#include <ConfigurationFramework/writing/EditedDocumentParser.h>
#include <ConfigurationFramework/xml/DomWalk.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <FileHandling/FileName.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>

#include <source_location>
#include <system_error>
#include <utility>

#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Orvant {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

const Logging s_log("ConfigWriter");

constexpr const XMLCh* configurationTag = u"Configuration";
constexpr const XMLCh* versionAttribute = u"version";
constexpr const XMLCh* keyAttribute = u"key";

/// Up to here, comparing one child after the other is faster than an index.
constexpr std::size_t mostChildrenWithoutIndex = 32;

struct SerializerRelease {
    void operator()(xercesc::DOMLSSerializer* serializer) const { serializer->release(); }
};
struct OutputRelease {
    void operator()(xercesc::DOMLSOutput* output) const { output->release(); }
};

/// Takes what is printed.
class StringTarget : public xercesc::XMLFormatTarget {
public:
    explicit StringTarget(std::size_t expectedSize) { m_text.reserve(expectedSize); }
    void writeChars(const XMLByte* bytes, XMLSize_t count, xercesc::XMLFormatter*) override {
        m_text.append(reinterpret_cast<const char*>(bytes), count);
    }
    std::string takeText() { return std::move(m_text); }

private:
    std::string m_text;
};

void logError(const std::string& message,
              const std::source_location& place = std::source_location::current()) {
    s_log.logERROR(message, place.file_name(), place.function_name(), place.line());
}

/// A text made fit for the document; what had to be replaced is logged.
XmlString checked(XmlText text, const std::string& elementName) {
    if (text.changed)
        logError("Characters that XML cannot hold were replaced by U+FFFD in the element \"" +
                 elementName + '"');
    return std::move(text.text);
}

/// @param key null: any
bool matches(const DOMElement& element, const XmlString& name, const XmlString* key) {
    return name == element.getTagName() &&
           (key == nullptr || *key == element.getAttribute(keyAttribute));
}

/// @return false when XML cannot hold what stands in the node
bool writeNode(xercesc::DOMLSSerializer& serializer, const DOMNode& node,
               xercesc::DOMLSOutput& output) try {
    return serializer.write(&node, &output);
} catch (const xercesc::DOMException&) {
    return false;
}

xercesc::DOMImplementation& domImplementation() {
    return *xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
}

} // namespace

ConfigWriterImpl::ConfigWriterImpl(const std::string& version)
    : m_session(s_log, std::source_location::current()),
      m_newDocument(domImplementation().createDocument()),
      m_document(m_newDocument.get()) {
    m_current = m_document->createElement(configurationTag);
    m_current->setAttribute(versionAttribute, checked(toXmlText(version), "Configuration").c_str());
    m_document->appendChild(m_current);
}

ConfigWriterImpl::ConfigWriterImpl(const FileName& file, const std::string& content)
    : m_session(s_log, std::source_location::current()),
      m_parser(m_confinement.makeParser<EditedDocumentParser>()) {
    load(file, content);
    prepareForWriting(*m_document);
}

void ConfigWriterImpl::load(const FileName& file, const std::string& content) {
    if (file.empty() && content.empty())
        throw ConfigException(ConfigException::SourceNotFound);
    try {
        if (file.empty())
            m_confinement.parseString(*m_parser, content);
        else
            m_confinement.parseFile(*m_parser, file);
    } catch (const xercesc::XMLException&) {
        throw ConfigException(ConfigException::InvalidDocument);
    } catch (const xercesc::DOMException&) {
        throw ConfigException(ConfigException::InvalidDocument);
    } catch (const FileNameException&) {
        throw ConfigException(ConfigException::InvalidDocument);
    }
    // Without an error handler a broken document gives a tree that ends at the error. Going on from
    // there would cut the user's file off.
    if (m_parser->getErrorCount() != 0)
        throw ConfigException(ConfigException::InvalidDocument);
    m_document = m_parser->getDocument();
    if (m_document == nullptr)
        throw ConfigException(ConfigException::InvalidDocument);
    m_current = m_document->getDocumentElement();
    if (m_current == nullptr)
        throw ConfigException(ConfigException::InvalidDocument);
    if (!matches(*m_current, configurationTag, nullptr))
        throw ConfigException(ConfigException::InvalidDocument);
}

void ConfigWriterImpl::createNode(const std::string& name, const std::string& comment) {
    appendElement(name, std::nullopt, comment);
}

void ConfigWriterImpl::createKeyedNode(const std::string& name, const std::string& key,
                                       const std::string& comment) {
    appendElement(name, key, comment);
}

DOMElement& ConfigWriterImpl::createElement(const std::string& name) {
    const XmlText tag = toXmlText(name);
    if (tag.changed)
        throw xercesc::DOMException(xercesc::DOMException::INVALID_CHARACTER_ERR);
    return *m_document->createElement(tag.text.c_str());
}

DOMElement& ConfigWriterImpl::appendElement(const std::string& name, const Key& key,
                                            const std::string& comment) {
    // Made before anything is deleted: an invalid name is refused here.
    DOMElement& element = createElement(name);
    replaceBy(element, name, key, comment);
    return element;
}

void ConfigWriterImpl::appendElement(DOMElement& element, const std::string& comment) {
    replaceBy(element, XercesHelperFunctions::xmlChToString(element.getTagName()), std::nullopt,
              comment);
}

/// Appends an element in place of the children of its name or, if it has a key, of name and key.
void ConfigWriterImpl::replaceBy(DOMElement& element, const std::string& name, const Key& key,
                                 const std::string& comment) {
    const XmlString keyText = key ? checked(toXmlText(*key), name) : XmlString();
    if (key)
        element.setAttribute(keyAttribute, keyText.c_str());
    deleteChildren(name, key);
    if (!comment.empty())
        m_current->appendChild(
            m_document->createComment(checked(toXmlComment(comment), name).c_str()));
    m_current->appendChild(&element);
    if (ChildElements* const index = currentIndex())
        index->add(element, keyText);
}

ConfigurationAccessResult ConfigWriterImpl::setCurrentNode(const std::string& name) {
    return makeCurrent(name, nullptr);
}

ConfigurationAccessResult ConfigWriterImpl::setCurrentKeyedNode(const std::string& name,
                                                                const std::string& key) {
    return makeCurrent(name, &key);
}

ConfigurationAccessResult ConfigWriterImpl::makeCurrent(const std::string& name,
                                                        const std::string* key) {
    const XmlString wantedName = XercesHelperFunctions::stringToXmlCh(name);
    const auto wantedKey = key == nullptr ? std::nullopt : std::optional(toXmlText(*key).text);
    DOMElement* const found = findChild(wantedName, wantedKey ? &*wantedKey : nullptr);
    if (found == nullptr)
        return ConfigurationAccessResult::Failure;
    m_current = found;
    return ConfigurationAccessResult::Success;
}

/// The first child of a name and, if it is not null, of a key; null when there is none.
DOMElement* ConfigWriterImpl::findChild(const XmlString& name, const XmlString* key) {
    if (const ChildElements* const index = currentIndex())
        return index->find(name, key);
    for (DOMNode* node = m_current->getFirstChild(); node != nullptr;
         node = node->getNextSibling()) {
        DOMElement* const element = asElement(node);
        if (element != nullptr && matches(*element, name, key))
            return element;
    }
    return nullptr;
}

/// The index of the current element's children; null while it has none.
ChildElements* ConfigWriterImpl::currentIndex() {
    const auto found = m_indexes.find(m_current);
    return found == m_indexes.end() ? nullptr : &found->second;
}

void ConfigWriterImpl::deleteNodes(const std::string& name, const std::string& key) {
    deleteChildren(name, key.empty() ? std::nullopt : Key(key));
}

void ConfigWriterImpl::deleteKeyedNode(const std::string& name, const std::string& key) {
    deleteChildren(name, key);
}

void ConfigWriterImpl::deleteChildren(const std::string& name, const Key& key) {
    const XmlString nameToDelete = XercesHelperFunctions::stringToXmlCh(name);
    const XmlString keyText = key ? toXmlText(*key).text : XmlString();
    const XmlString* const keyToDelete = key ? &keyText : nullptr;
    if (ChildElements* const index = currentIndex()) {
        for (DOMElement* element : index->take(nameToDelete, keyToDelete))
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
        else if (element != nullptr && matches(*element, nameToDelete, keyToDelete))
            deleteElement(*element);
        else if (element != nullptr)
            kept.push_back(element);
        node = next;
    }
    if (walked <= mostChildrenWithoutIndex)
        return;
    ChildElements& index = m_indexes[m_current];
    for (DOMElement* element : kept)
        index.add(*element, element->getAttribute(keyAttribute));
}

/// The comment right before an element, which belongs to it; null when there is none.
DOMNode* ConfigWriterImpl::commentOf(const DOMElement& element) {
    DOMNode* const previous = element.getPreviousSibling();
    return previous != nullptr && previous->getNodeType() == DOMNode::COMMENT_NODE ? previous
                                                                                   : nullptr;
}

/// Deletes a child of the current element, with its comment.
void ConfigWriterImpl::deleteElement(DOMElement& element) {
    if (DOMNode* const comment = commentOf(element))
        m_current->removeChild(comment);
    m_current->removeChild(&element);
}

std::set<std::string>
ConfigWriterImpl::namesHiddenByDescendants(const std::vector<std::string>& names) const {
    std::unordered_map<XmlString, std::string> notSeen;
    for (const std::string& name : names)
        notSeen.emplace(XercesHelperFunctions::stringToXmlCh(name), name);
    std::set<std::string> hidden;
    for (DOMNode* node = nextBelow(*m_current, m_current); node != nullptr && !notSeen.empty();
         node = nextBelow(*m_current, node)) {
        const DOMElement* const element = asElement(node);
        const auto seen = element == nullptr ? notSeen.end() : notSeen.find(element->getTagName());
        if (seen == notSeen.end())
            continue;
        if (element->getParentNode() != m_current)
            hidden.insert(seen->second);
        notSeen.erase(seen);
    }
    return hidden;
}

ConfigurationAccessResult ConfigWriterImpl::moveToFront(const std::string& name) {
    // The first of its namesakes stays it, so an index of the children stays right.
    DOMElement* const element = findChild(XercesHelperFunctions::stringToXmlCh(name), nullptr);
    if (element == nullptr)
        return ConfigurationAccessResult::Failure;
    DOMNode* const comment = commentOf(*element);
    DOMNode* const first = m_current->getFirstChild();
    if (first == element || first == comment)
        return ConfigurationAccessResult::Success;
    if (comment != nullptr)
        m_current->insertBefore(comment, first);
    m_current->insertBefore(element, first);
    return ConfigurationAccessResult::Success;
}

void ConfigWriterImpl::appendText(DOMElement& element, const std::string& text) {
    const std::string name = XercesHelperFunctions::xmlChToString(element.getTagName());
    element.appendChild(m_document->createTextNode(checked(toXmlText(text), name).c_str()));
}

void ConfigWriterImpl::putText(const std::string& name, const std::string& text,
                               const std::string& comment) {
    appendText(appendElement(name, std::nullopt, comment), text);
}

void ConfigWriterImpl::putString(const std::string& value) {
    const std::string name = XercesHelperFunctions::xmlChToString(m_current->getTagName());
    m_current->setTextContent(checked(toXmlText(value), name).c_str());
    m_indexes.erase(m_current);
}

void ConfigWriterImpl::putStringVector(const std::string& name,
                                       const std::vector<std::string>& values,
                                       const std::string& comment) {
    DOMElement& list = appendElement(name, std::nullopt, comment);
    for (const std::string& value : values) {
        DOMElement& item = *m_document->createElement(u"item");
        list.appendChild(&item);
        item.appendChild(m_document->createTextNode(checked(toXmlText(value), name).c_str()));
    }
}

ConfigWriterImpl::Printed ConfigWriterImpl::print() const {
    const DOMElement* const root = m_document->getDocumentElement();
    const PrintedLayout layout = layoutOf(*root);
    if (layout.depth > maxWrittenDepth || layout.indentation > maxWrittenIndentation)
        return {"", "The document is nested too deeply to be written"};
    if (layout.commentsInARow > maxCommentsInARow)
        return {"", "The document has too many comments in a row to be written"};
    const std::unique_ptr<xercesc::DOMLSSerializer, SerializerRelease> serializer(
        domImplementation().createLSSerializer());
    xercesc::DOMConfiguration& configuration = *serializer->getDomConfig();
    if (configuration.canSetParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true))
        configuration.setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
    if (configuration.canSetParameter(xercesc::XMLUni::fgDOMWRTBOM, true))
        configuration.setParameter(xercesc::XMLUni::fgDOMWRTBOM, false);
    configuration.setParameter(xercesc::XMLUni::fgDOMXMLDeclaration, false);
    // The DTD that declares default attributes is not written, so they are.
    if (configuration.canSetParameter(xercesc::XMLUni::fgDOMWRTDiscardDefaultContent, false))
        configuration.setParameter(xercesc::XMLUni::fgDOMWRTDiscardDefaultContent, false);

    // Not by way of a string of Xerces', which takes four times the memory.
    constexpr std::size_t usualNode = 16;
    StringTarget target(layout.indentation + layout.nodes * usualNode);
    const std::unique_ptr<xercesc::DOMLSOutput, OutputRelease> output(
        domImplementation().createLSOutput());
    output->setEncoding(u"UTF-8");
    output->setByteStream(&target);
    if (!writeNode(*serializer, *root, *output))
        return {"", "The document holds something that XML cannot express"};
    std::string text = target.takeText();
    text.erase(0, text.find('<'));
    return {std::move(text), ""};
}

bool ConfigWriterImpl::saveToFile(const FileName& file) {
    try {
        auto [text, problem] = print();
        if (problem.empty())
            if (const std::error_code error = saveInPlace(file, text))
                problem = error.message();
        m_saveProblem = std::move(problem);
    } catch (const FileNameException& e) {
        m_saveProblem = e.what();
    }
    return m_saveProblem.empty();
}

} // namespace Orvant
