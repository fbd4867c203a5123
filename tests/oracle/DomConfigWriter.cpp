#include "DomConfigWriter.h"

#include <ValueVisit.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <GeneralServices/XercesHelperFunctions.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <functional>
#include <locale>
#include <map>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Orvant::Support {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using Objects = std::vector<const ConfigurationObject*>;

std::basic_string<XMLCh> wide(const std::string& text) {
    return XercesHelperFunctions::stringToXmlCh(text);
}

std::string narrow(const XMLCh* text) {
    return XercesHelperFunctions::xmlChToString(text);
}

bool isElement(const DOMNode& node) {
    return node.getNodeType() == DOMNode::ELEMENT_NODE;
}

std::string keyOf(const DOMNode& element) {
    return narrow(static_cast<const DOMElement&>(element).getAttribute(u"key"));
}

template <typename Number>
std::string numberText(Number number, std::ios::fmtflags notation = {}, int precision = 6) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.setf(notation);
    out.precision(precision);
    out << number;
    return out.str();
}

/// A hyphen that another or the end follows gets a blank: XML has no such comments.
std::string commentText(const std::string& comment) {
    std::string text;
    for (std::size_t i = 0; i < comment.size(); ++i) {
        text += comment[i];
        if (comment[i] == '-' && (i + 1 == comment.size() || comment[i + 1] == '-'))
            text += ' ';
    }
    return text;
}

Objects childrenOf(const ConfigurationObject& object) {
    return {object.beginObjectIterator(), object.endObjectIterator()};
}

/// @return what stands for an item of an object in another: the one at its position, if that has
///         its name, else the first of its name; null when there is none
template <typename Item>
const Item* counterpart(const Item& item, std::size_t position,
                        const std::vector<const Item*>& others) {
    if (position < others.size() && others[position]->getName() == item.getName())
        return others[position];
    for (const Item* other : others)
        if (other->getName() == item.getName())
            return other;
    return nullptr;
}

/// Whether an object with its reference has something for the user's file.
bool isWorthSaving(const ConfigurationObject& object, const ConfigurationObject& reference) {
    const auto values = object.getConfigurationValues();
    const auto others = reference.getConfigurationValues();
    if (values.size() != others.size() ||
        object.getConfigurationObjectsSize() != reference.getConfigurationObjectsSize())
        return true;
    for (std::size_t i = 0; i < values.size(); ++i)
        if (!values[i]->comapreValue(others[i]) && values[i]->isSavable() && others[i]->isSavable())
            return true;
    return object.getConfigurationObjectsSize() != 0;
}

std::unique_ptr<ConfigurationObject> referenceOf(const ConfigurationObject& object,
                                                 ConfigReader& reader) {
    std::unique_ptr<ConfigurationObject> reference(object.createConfigurationObject());
    reader.getClassContents(object.getName(), *reference);
    return reference;
}

/// Adds the lists that stand in the element of an object: its own and those of nameless children.
void addLists(const ConfigurationObject& object,
              std::vector<const ConfigurationValueBase*>& lists) {
    if (!object.writesContent())
        return;
    for (const ConfigurationValueBase* value : object.getConfigurationValues())
        if (value->getValueType() == ConfigurationValueBase::StringVectorValue &&
            value->isWrittenByCurrentProduct())
            lists.push_back(value);
    for (const ConfigurationObject* child : childrenOf(object))
        if (child->getName().empty())
            addLists(*child, lists);
}

class XercesUse {
public:
    XercesUse() { xercesc::XMLPlatformUtils::Initialize(); }
    XercesUse(const XercesUse&) = delete;
    XercesUse& operator=(const XercesUse&) = delete;
    ~XercesUse() { xercesc::XMLPlatformUtils::Terminate(); }
};

} // namespace

struct DomConfigWriter::Dom {
    const XercesUse xerces;
    std::unique_ptr<xercesc::XercesDOMParser> parser;
    xercesc::DOMDocument* document = nullptr;
    DOMElement* current = nullptr;

    void parse(const std::string& text) {
        parser = std::make_unique<xercesc::XercesDOMParser>();
        // What entities stand for is written: the declarations are not.
        parser->setCreateEntityReferenceNodes(false);
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()),
                                                text.size(), u"oracle");
        parser->parse(source);
        if (parser->getErrorCount() != 0)
            throw std::runtime_error("not well-formed");
        document = parser->getDocument();
        // A new element has no attribute but its key, whatever a DTD declares.
        if (xercesc::DOMDocumentType* const type = document->getDoctype())
            document->removeChild(type);
        current = document->getDocumentElement();
    }

    DOMElement& make(const std::string& name) {
        return *document->createElement(wide(name).c_str());
    }

    /// @return first child of the current element for which a condition holds; null: none
    DOMElement* find(const std::string& name, const std::function<bool(const DOMNode&)>& holds) {
        for (DOMNode* child = current->getFirstChild(); child; child = child->getNextSibling())
            if (isElement(*child) && narrow(child->getNodeName()) == name && holds(*child))
                return static_cast<DOMElement*>(child);
        return nullptr;
    }

    /// Deletes texts, and elements of a name for which a condition holds with their comments.
    void remove(const std::string& name, const std::function<bool(const DOMNode&)>& holds) {
        for (DOMNode* child = current->getFirstChild(); child != nullptr;) {
            DOMNode* const next = child->getNextSibling();
            DOMNode* const previous = child->getPreviousSibling();
            if (child->getNodeType() == DOMNode::TEXT_NODE) {
                current->removeChild(child);
            } else if (isElement(*child) && narrow(child->getNodeName()) == name && holds(*child)) {
                if (previous != nullptr && previous->getNodeType() == DOMNode::COMMENT_NODE)
                    current->removeChild(previous);
                current->removeChild(child);
            }
            child = next;
        }
    }

    void append(DOMElement& element, const std::string& comment) {
        if (!comment.empty())
            current->appendChild(document->createComment(wide(commentText(comment)).c_str()));
        current->appendChild(&element);
    }

    void appendText(DOMElement& element, const std::string& text) {
        element.appendChild(document->createTextNode(wide(text).c_str()));
    }

    /// Does something with another current element.
    template <typename Action>
    void in(DOMElement& element, Action action) {
        DOMElement* const former = std::exchange(current, &element);
        action();
        current = former;
    }

    DOMElement* last() { return static_cast<DOMElement*>(current->getLastChild()); }

    /// @return whether the first element of a name below the current element is not its child
    bool isHidden(const std::string& name) {
        const DOMNode* const first = current->getElementsByTagName(wide(name).c_str())->item(0);
        return first != nullptr && first->getParentNode() != current;
    }

    void moveToFront(const std::string& name) {
        DOMElement* const element = find(name, [](const DOMNode&) { return true; });
        if (element == nullptr)
            return;
        DOMNode* comment = element->getPreviousSibling();
        if (comment != nullptr && comment->getNodeType() != DOMNode::COMMENT_NODE)
            comment = nullptr;
        current->insertBefore(element, current->getFirstChild());
        if (comment != nullptr)
            current->insertBefore(comment, element);
    }
};

DomConfigWriter::DomConfigWriter(From from, const std::string& text)
    : m_dom(std::make_unique<Dom>()) {
    if (from == From::Document) {
        m_dom->parse(text);
        return;
    }
    m_dom->document =
        xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS")->createDocument();
    m_dom->current = &m_dom->make("Configuration");
    m_dom->current->setAttribute(u"version", wide(text).c_str());
    m_dom->document->appendChild(m_dom->current);
}

DomConfigWriter::~DomConfigWriter() {
    if (m_dom->parser == nullptr)
        m_dom->document->release();
}

void DomConfigWriter::createNode(const std::string& name, const std::string& comment) {
    deleteNodes(name, "");
    m_dom->append(m_dom->make(name), comment);
}

void DomConfigWriter::createKeyedNode(const std::string& name, const std::string& key,
                                      const std::string& comment) {
    // Unlike in deleteNodes(), an empty key stands for the children without one.
    m_dom->remove(name, [&](const DOMNode& child) { return keyOf(child) == key; });
    DOMElement& element = m_dom->make(name);
    element.setAttribute(u"key", wide(key).c_str());
    m_dom->append(element, comment);
}

void DomConfigWriter::createNodeAndMakeCurrent(const std::string& name,
                                               const std::string& comment) {
    createNode(name, comment);
    setCurrentNode(name);
}

void DomConfigWriter::createKeyedNodeAndMakeCurrent(const std::string& name, const std::string& key,
                                                    const std::string& comment) {
    createKeyedNode(name, key, comment);
    setCurrentKeyedNode(name, key);
}

ConfigurationAccessResult DomConfigWriter::setCurrentNode(const std::string& name) {
    DOMElement* const found = m_dom->find(name, [](const DOMNode&) { return true; });
    if (found == nullptr)
        return ConfigurationAccessResult::Failure;
    m_dom->current = found;
    return ConfigurationAccessResult::Success;
}

ConfigurationAccessResult DomConfigWriter::setCurrentKeyedNode(const std::string& name,
                                                               const std::string& key) {
    DOMElement* const found =
        m_dom->find(name, [&](const DOMNode& child) { return keyOf(child) == key; });
    if (found == nullptr)
        return ConfigurationAccessResult::Failure;
    m_dom->current = found;
    return ConfigurationAccessResult::Success;
}

void DomConfigWriter::deleteNodes(const std::string& name, const std::string& key) {
    m_dom->remove(name, [&](const DOMNode& child) { return key.empty() || keyOf(child) == key; });
}

void DomConfigWriter::putString(const std::string& name, const std::string& value,
                                const std::string& comment) {
    createNode(name, comment);
    m_dom->appendText(*m_dom->last(), value);
}

void DomConfigWriter::putString(const std::string& value) {
    m_dom->current->setTextContent(wide(value).c_str());
}

void DomConfigWriter::putInt(const std::string& name, int value, const std::string& comment) {
    putString(name, numberText(value), comment);
}

void DomConfigWriter::putUnsignedInt(const std::string& name, unsigned int value,
                                     const std::string& comment) {
    putInt(name, static_cast<int>(value), comment);
}

void DomConfigWriter::putFloat(const std::string& name, float value, const std::string& comment) {
    putDouble(name, value, comment);
}

void DomConfigWriter::putDouble(const std::string& name, double value, const std::string& comment) {
    putString(name, numberText(value), comment);
}

void DomConfigWriter::putBool(const std::string& name, bool value, const std::string& comment) {
    putString(name, value ? "true" : "false", comment);
}

void DomConfigWriter::putStringVector(const std::string& name,
                                      const std::vector<std::string>& values,
                                      const std::string& comment) {
    createNode(name, comment);
    DOMElement& list = *m_dom->last();
    for (const std::string& value : values) {
        DOMElement& item = m_dom->make("item");
        m_dom->appendText(item, value);
        list.appendChild(&item);
    }
}

void DomConfigWriter::putValue(const std::string& name, float value, int,
                               const std::string& comment) {
    putValue(name, static_cast<double>(value), 1, comment);
}

void DomConfigWriter::putValue(const std::string& name, double value, int format,
                               const std::string& comment) {
    putString(name, format == 0 ? numberText(value) : numberText(value, std::ios::scientific, 10),
              comment);
}

void DomConfigWriter::put(const ConfigurationValueBase& value) {
    if (!value.isWrittenByCurrentProduct())
        return;
    visitValue(value, [&]<typename T>(const ConfigurationValue<T>& typed) {
        const auto& [name, comment] = std::tie(value.getName(), value.getDescription());
        if constexpr (std::is_same_v<T, bool>)
            putBool(name, typed.getValue(), comment);
        else if constexpr (std::is_same_v<T, int>)
            putInt(name, typed.getValue(), comment);
        else if constexpr (std::is_same_v<T, unsigned int>)
            putUnsignedInt(name, typed.getValue(), comment);
        else if constexpr (std::is_same_v<T, double>)
            putDouble(name, typed.getValue(), comment);
        else if constexpr (std::is_same_v<T, float>)
            putFloat(name, typed.getValue(), comment);
        else if constexpr (std::is_same_v<T, std::string>)
            putString(name, typed.getValue(), comment);
        else
            putStringVector(name, typed.getValue(), comment);
    });
}

void DomConfigWriter::putClassContents(const ConfigurationObject& object) {
    if (!object.writesContent())
        return;
    for (const ConfigurationValueBase* value : object.getConfigurationValues())
        put(*value);
    for (const ConfigurationObject* child : childrenOf(object)) {
        if (child->getName().empty())
            putClassContents(*child);
        else if (child->writesContent()) // else what stands in the file stays
            putClassContents(child->getName(), *child, child->getDescription());
    }
    keepListsReadable(object);
}

void DomConfigWriter::putClassContents(const std::string& name, const ConfigurationObject& object,
                                       const std::string& comment) {
    createNode(name, comment);
    m_dom->in(*m_dom->last(), [&] { putClassContents(object); });
}

void DomConfigWriter::putClassContents(const std::string& name, const std::string& key,
                                       const ConfigurationObject& object,
                                       const std::string& comment) {
    createKeyedNode(name, key, comment);
    m_dom->in(*m_dom->last(), [&] { putClassContents(object); });
}

void DomConfigWriter::putOnlyDifferentClassContents(const std::string& name,
                                                    const ConfigurationObject& object,
                                                    ConfigReader& reader,
                                                    const std::string& comment) {
    deleteNodes(name, "");
    const auto reference = referenceOf(object, reader);
    if (!isWorthSaving(object, *reference))
        return;
    createNode(name, comment);
    m_dom->in(*m_dom->last(), [&] { putDifferences(object, reference.get()); });
}

void DomConfigWriter::putOnlyDifferentClassContents(const std::string& name, const std::string& key,
                                                    const ConfigurationObject& object,
                                                    ConfigReader& reader,
                                                    const std::string& comment) {
    m_dom->remove(name, [&](const DOMNode& child) { return keyOf(child) == key; });
    const auto reference = referenceOf(object, reader);
    if (!isWorthSaving(object, *reference))
        return;
    createKeyedNode(name, key, comment);
    m_dom->in(*m_dom->last(), [&] { putDifferences(object, reference.get()); });
}

/// As the header of ConfigurationObject::saveDifferentConfigurationValues() has it.
/// @param reference null: everything differs
void DomConfigWriter::putDifferences(const ConfigurationObject& object,
                                     const ConfigurationObject* reference) {
    if (!object.writesContent())
        return;
    const auto values = object.getConfigurationValues();
    const auto others = reference == nullptr ? std::vector<const ConfigurationValueBase*>()
                                             : reference->getConfigurationValues();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ConfigurationValueBase* const other = counterpart(*values[i], i, others);
        if (other == nullptr || !values[i]->comapreValue(other))
            put(*values[i]);
    }
    const Objects children = childrenOf(object);
    const Objects otherChildren = reference == nullptr ? Objects() : childrenOf(*reference);
    for (std::size_t i = 0; i < children.size(); ++i)
        putChildDifferences(*children[i], counterpart(*children[i], i, otherChildren));
    keepListsReadable(object);
}

void DomConfigWriter::putChildDifferences(const ConfigurationObject& child,
                                          const ConfigurationObject* reference) {
    if (child.getName().empty()) {
        putDifferences(child, reference);
        return;
    }
    if (!child.writesContent())
        return;
    DOMElement& element = m_dom->make(child.getName());
    m_dom->in(element, [&] { putDifferences(child, reference); });
    // Without differences the child has no element, and what stands in the file stays.
    if (!element.hasChildNodes())
        return;
    deleteNodes(child.getName(), "");
    m_dom->append(element, child.getDescription());
}

/// A list is looked for at every depth: one that would be found in a child is written in front of
/// all, even if it does not differ. One list may hide another by its items, so this is repeated.
void DomConfigWriter::keepListsReadable(const ConfigurationObject& object) {
    std::vector<const ConfigurationValueBase*> lists;
    addLists(object, lists);
    for (std::size_t round = 0; round < lists.size(); ++round) {
        std::map<std::string, bool> hidden;
        for (const ConfigurationValueBase* list : lists)
            hidden[list->getName()] = m_dom->isHidden(list->getName());
        for (auto list = lists.rbegin(); list != lists.rend(); ++list) {
            const std::string& name = (*list)->getName();
            if (!std::exchange(hidden[name], false))
                continue;
            if (m_dom->find(name, [](const DOMNode&) { return true; }) == nullptr)
                put(**list);
            m_dom->moveToFront(name);
        }
    }
}

std::string DomConfigWriter::getAsString() {
    xercesc::DOMImplementation& implementation =
        *xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
    const std::unique_ptr<xercesc::DOMLSSerializer, void (*)(xercesc::DOMLSSerializer*)> serializer(
        implementation.createLSSerializer(),
        [](xercesc::DOMLSSerializer* released) { released->release(); });
    xercesc::DOMConfiguration& configuration = *serializer->getDomConfig();
    configuration.setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
    configuration.setParameter(xercesc::XMLUni::fgDOMXMLDeclaration, false);
    // The declarations of default attributes are not written, so they are.
    configuration.setParameter(xercesc::XMLUni::fgDOMWRTDiscardDefaultContent, false);
    XMLCh* printed = serializer->writeToString(m_dom->document->getDocumentElement());
    const std::string text = narrow(printed);
    xercesc::XMLString::release(&printed);
    return text.substr(text.find('<'));
}

namespace {

/// @return a text without the line break at its end and the blanks around it
std::string withoutIndentation(const std::string& text) {
    const auto last = text.find_last_not_of(" \t\r\n");
    return last == text.npos ? "" : text.substr(0, text.find('\n', last));
}

void describe(const DOMNode& node, std::size_t depth, std::string& out) {
    const std::string indentation = '\n' + std::string(2 * depth, ' ');
    out += indentation + narrow(node.getNodeName());
    const xercesc::DOMNamedNodeMap* const attributes = node.getAttributes();
    for (XMLSize_t i = 0; i < attributes->getLength(); ++i)
        out += ' ' + narrow(attributes->item(i)->getNodeName()) + "='" +
               narrow(attributes->item(i)->getNodeValue()) + '\'';
    bool hasLines = false;
    for (const DOMNode* child = node.getFirstChild(); child; child = child->getNextSibling())
        hasLines = hasLines || isElement(*child) ||
                   child->getNodeType() == DOMNode::PROCESSING_INSTRUCTION_NODE;
    for (const DOMNode* child = node.getFirstChild(); child; child = child->getNextSibling()) {
        if (isElement(*child)) {
            describe(*child, depth + 1, out);
            continue;
        }
        const std::string text = narrow(child->getNodeValue());
        const bool isText = child->getNodeType() == DOMNode::TEXT_NODE;
        const std::string shown = isText && hasLines ? withoutIndentation(text) : text;
        if (!isText || !shown.empty())
            out += indentation + "  " + narrow(child->getNodeName()) + '"' + shown + '"';
    }
}

} // namespace

std::string describeConfiguration(const std::string& document) {
    const XercesUse xerces;
    xercesc::XercesDOMParser parser;
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(document.data()),
                                            document.size(), u"oracle");
    parser.parse(source);
    if (parser.getErrorCount() != 0)
        return "not well-formed";
    std::string description;
    describe(*parser.getDocument()->getDocumentElement(), 0, description);
    return description;
}

} // namespace Orvant::Support
