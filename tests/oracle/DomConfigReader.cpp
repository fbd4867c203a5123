#include "DomConfigReader.h"

#include <ConfigurationFramework/ConfigurationObject.h>
#include <GeneralServices/XercesHelperFunctions.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <locale>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace Orvant::Support {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using Elements = std::vector<DOMElement*>;

constexpr auto success = ConfigurationAccessResult::Success;
constexpr auto failure = ConfigurationAccessResult::Failure;

Elements descendants(const DOMElement& element, const std::string& name) {
    const auto tag = XercesHelperFunctions::stringToXmlCh(name);
    xercesc::DOMNodeList& list = *element.getElementsByTagName(tag.c_str());
    Elements found;
    for (XMLSize_t i = 0; i < list.getLength(); ++i)
        found.push_back(static_cast<DOMElement*>(list.item(i)));
    return found;
}

Elements children(const DOMElement& element, const std::string& name) {
    Elements found;
    for (DOMElement* descendant : descendants(element, name))
        if (descendant->getParentNode() == &element)
            found.push_back(descendant);
    return found;
}

DOMElement* first(const Elements& elements) {
    return elements.empty() ? nullptr : elements[0];
}

std::string attribute(const DOMElement& element, const XMLCh* name) {
    return XercesHelperFunctions::xmlChToString(element.getAttribute(name));
}

std::string keyOf(const DOMElement& element) {
    return attribute(element, u"key");
}

DOMElement* withKey(const Elements& elements, const std::string& key) {
    for (DOMElement* element : elements)
        if (keyOf(*element) == key)
            return element;
    return nullptr;
}

bool editableOf(const DOMElement& element) {
    return attribute(element, u"editable") != "false";
}

/// Puts an element's text into `text`.
/// @return false when its first child is not a text
bool readText(const DOMElement& element, bool required, std::string& text) {
    const DOMNode* const child = element.getFirstChild();
    if (child == nullptr)
        return !required;
    if (child->getNodeType() != DOMNode::TEXT_NODE)
        return false;
    text = XercesHelperFunctions::xmlChToString(child->getNodeValue());
    return true;
}

template <typename Number>
ConfigurationAccessResult readNumber(DOMElement* element, Number& value, bool& editable,
                                     std::ios::fmtflags notation = {}) {
    std::string text;
    if (element == nullptr || !readText(*element, true, text))
        return failure;
    editable = editableOf(*element);
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    stream.setf(notation);
    Number number{};
    if (!(stream >> number))
        return failure;
    value = number;
    return success;
}

} // namespace

struct DomConfigReader::Dom {
    xercesc::XercesDOMParser parser;
    DOMElement* root = nullptr;
    DOMElement* current = nullptr;

    ConfigurationAccessResult moveTo(DOMElement* element) {
        if (element != nullptr)
            current = element;
        return element != nullptr ? success : failure;
    }

    ConfigurationAccessResult load(DOMElement* element, ConfigurationObject& object,
                                   ConfigReader& reader) {
        DOMElement* const saved = current;
        const auto result = moveTo(element);
        if (result == success)
            object.loadContent(reader);
        current = saved;
        return result;
    }
};

DomConfigReader::DomConfigReader(const std::string& document) {
    xercesc::XMLPlatformUtils::Initialize();
    m_dom = std::make_unique<Dom>();
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(document.data()),
                                            document.size(), u"oracle");
    m_dom->parser.parse(source);
    if (m_dom->parser.getErrorCount() != 0)
        throw std::runtime_error("not well-formed");
    m_dom->root = m_dom->current = m_dom->parser.getDocument()->getDocumentElement();
}

DomConfigReader::~DomConfigReader() {
    m_dom.reset();
    xercesc::XMLPlatformUtils::Terminate();
}

std::string DomConfigReader::version() const {
    return attribute(*m_dom->root, u"version");
}

ConfigurationAccessResult DomConfigReader::setCurrentNode(const std::string& name) {
    return m_dom->moveTo(first(children(*m_dom->current, name)));
}

ConfigurationAccessResult DomConfigReader::setCurrentKeyedNode(const std::string& name,
                                                               const std::string& key) {
    const Elements candidates = children(*m_dom->current, name);
    DOMElement* found = withKey(candidates, key);
    if (found == nullptr)
        found = withKey({candidates.rbegin(), candidates.rend()}, "");
    return m_dom->moveTo(found);
}

ConfigurationAccessResult DomConfigReader::getString(std::string& value, bool& editable) {
    editable = editableOf(*m_dom->current);
    std::string text;
    if (!readText(*m_dom->current, false, text))
        return failure;
    value = text;
    return success;
}

ConfigurationAccessResult DomConfigReader::findAndGetClassContents(const std::string& name,
                                                                   const std::string& key,
                                                                   ConfigurationObject& object) {
    return m_dom->load(withKey(descendants(*m_dom->root, name), key), object, *this);
}

ConfigurationAccessResult DomConfigReader::findAndGetClassContents(const std::string& name,
                                                                   ConfigurationObject& object) {
    return m_dom->load(first(descendants(*m_dom->root, name)), object, *this);
}

ConfigurationAccessResult DomConfigReader::getClassContents(ConfigurationObject& object) {
    return m_dom->load(m_dom->current, object, *this);
}

ConfigurationAccessResult
DomConfigReader::getClassContents(const std::string& name, const std::vector<std::string>& keys,
                                  std::vector<ConfigurationObject*>& objects) {
    auto result = success;
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (m_dom->load(withKey(children(*m_dom->current, name), keys[i]), *objects[i], *this) ==
            failure)
            result = failure;
    return result;
}

ConfigurationAccessResult DomConfigReader::getClassContents(const std::string& name,
                                                            const std::string& key,
                                                            ConfigurationObject& object) {
    DOMElement* const saved = m_dom->current;
    const auto result = setCurrentKeyedNode(name, key);
    if (result == success)
        object.loadContent(*this);
    m_dom->current = saved;
    return result;
}

ConfigurationAccessResult DomConfigReader::getClassContents(const std::string& name,
                                                            ConfigurationObject& object) {
    return m_dom->load(first(children(*m_dom->current, name)), object, *this);
}

ConfigurationAccessResult DomConfigReader::getBool(const std::string& name, bool& value,
                                                   bool& editable) {
    DOMElement* const element = first(children(*m_dom->current, name));
    std::string text;
    if (element == nullptr || !readText(*element, true, text))
        return failure;
    editable = editableOf(*element);
    if (text != "true" && text != "false")
        return failure;
    value = text == "true";
    return success;
}

ConfigurationAccessResult DomConfigReader::getInt(const std::string& name, int& value,
                                                  bool& editable) {
    return readNumber(first(children(*m_dom->current, name)), value, editable);
}

ConfigurationAccessResult DomConfigReader::getUnsignedInt(const std::string& name,
                                                          unsigned int& value, bool& editable) {
    int number = 0;
    const auto result = getInt(name, number, editable);
    value = static_cast<unsigned int>(number);
    return result;
}

ConfigurationAccessResult DomConfigReader::getDouble(const std::string& name, double& value,
                                                     bool& editable) {
    return readNumber(first(children(*m_dom->current, name)), value, editable);
}

ConfigurationAccessResult DomConfigReader::getDoubleScientific(const std::string& name, const int&,
                                                               double& value, bool& editable) {
    return readNumber(first(children(*m_dom->current, name)), value, editable,
                      std::ios::scientific);
}

ConfigurationAccessResult DomConfigReader::getFloat(const std::string& name, float& value,
                                                    bool& editable) {
    double number = 0.0;
    const auto result = getDouble(name, number, editable);
    value = static_cast<float>(number);
    return result;
}

ConfigurationAccessResult DomConfigReader::getString(const std::string& name, std::string& value,
                                                     bool& editable) {
    DOMElement* const saved = m_dom->current;
    const auto result = setCurrentNode(name) == success ? getString(value, editable) : failure;
    m_dom->current = saved;
    return result;
}

ConfigurationAccessResult
DomConfigReader::getStringVector(const std::string& name, std::vector<std::string>& values,
                                 bool& editable, std::map<std::string, bool>& itemEditable) {
    values.clear();
    itemEditable.clear();
    const DOMElement* const list = first(descendants(*m_dom->current, name));
    if (list == nullptr)
        return failure;
    editable = editableOf(*list);
    for (const DOMElement* item : descendants(*list, "item")) {
        std::string text;
        if (!readText(*item, false, text))
            return failure;
        values.push_back(text);
        itemEditable[text] = editableOf(*item);
    }
    return success;
}

ConfigurationAccessResult DomConfigReader::tagExists(const std::string& name) {
    return m_dom->moveTo(first(descendants(*m_dom->root, name)));
}

ConfigurationAccessResult DomConfigReader::getEditable(bool& editable) {
    editable = editableOf(*m_dom->current);
    return success;
}

ConfigurationAccessResult DomConfigReader::getKeys(const std::string& name,
                                                   std::set<std::string>& keys) {
    for (const DOMElement* element : children(*m_dom->current, name))
        keys.insert(keyOf(*element));
    return success;
}

ConfigurationAccessResult
DomConfigReader::createConfigurationObjects(const std::string& name,
                                            std::function<void(std::string)> callback) {
    DOMElement* const saved = m_dom->current;
    const Elements elements = children(*saved, name);
    for (DOMElement* element : elements) {
        m_dom->current = element;
        callback(keyOf(*element));
    }
    m_dom->current = saved;
    return elements.empty() ? failure : success;
}

} // namespace Orvant::Support
