#include <ConfigurationFramework/ElementWriter.h>

#include <ConfigurationFramework/ConfigWriterImpl.h>
#include <ConfigurationFramework/xml/IndexThreshold.h>
#include <ConfigurationFramework/xml/PlaceRestorer.h>

#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>

#include <algorithm>
#include <source_location>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/util/XMLChar.hpp>

namespace Orvant {

namespace {

const Logging s_log("ConfigWriter");

/// Room for this many is made with the first one.
constexpr std::size_t fewChildren = 8;

bool isSelected(const ChildSelection& selection, const WrittenElement& child) {
    const XmlStringView key = child.id.key ? XmlStringView(*child.id.key) : u"";
    return areSame(child.id.tag, selection.tag) && (!selection.key || areSame(key, *selection.key));
}

/// The tag of a new element, as a DOM takes it.
XmlString toValidTag(const std::string& name) {
    XmlString tag = toTag(name);
    if (!xercesc::XMLChar1_0::isValidName(tag.c_str(), tag.size()))
        throw xercesc::DOMException(xercesc::DOMException::INVALID_CHARACTER_ERR);
    return tag;
}

std::string nameOf(const WrittenElement& element) {
    return XercesHelperFunctions::xmlChToString(element.id.tag.c_str());
}

void setText(WrittenElement& element, XmlString text) {
    element.text = std::move(text);
    element.hasText = true;
}

void removeText(WrittenElement& element) {
    element.text.clear();
    element.hasText = false;
}

/// Adds what fill() leaves out: a writer to a document prints an empty text in its own way.
void addEmptyTexts(xercesc::DOMElement& filled, const WrittenElement& contents) {
    if (contents.hasText && contents.text.empty())
        filled.appendChild(filled.getOwnerDocument()->createTextNode(u""));
    xercesc::DOMElement* child = filled.getFirstElementChild();
    for (const WrittenElement& part : contents.children) {
        addEmptyTexts(*child, part);
        child = child->getNextElementSibling();
    }
}

/// Calls back with elements and all below them in document order, and whether each is one of them,
/// until the callback returns false.
template <typename Visit>
bool visitAll(std::span<const WrittenElement> elements, Visit visit, bool areTop = true) {
    return std::ranges::all_of(elements, [&](const WrittenElement& element) {
        return visit(element, areTop) && visitAll(element.children, visit, false);
    });
}

} // namespace

/// A tag stands for itself, and with a key for the elements that have both.
class ElementWriter::Index {
public:
    bool mayHave(const ChildSelection& selection) const {
        return !m_isUsed || m_ids.contains(selection.key ? withKey(selection.tag, *selection.key)
                                                         : selection.tag);
    }
    /// Adds what is added to the element, once it is used.
    void add(const WrittenElement& child) {
        if (!m_isUsed)
            return;
        m_ids.insert(child.id.tag);
        m_ids.insert(withKey(child.id.tag, child.id.key.value_or(XmlString())));
    }
    /// Is used as soon as there are many.
    void use(const Children& children) {
        if (m_isUsed || children.size() <= mostChildrenWithoutIndex)
            return;
        m_isUsed = true;
        for (const WrittenElement& child : children)
            add(child);
    }

private:
    static XmlString withKey(const XmlString& tag, const XmlString& key) {
        return tag + u'\0' + key;
    }

    bool m_isUsed = false;
    std::unordered_set<XmlString> m_ids;
};

ElementWriter::Place::Place(WrittenElement& current)
    : element(&current), index(std::make_shared<Index>()) {}

ElementWriter::ElementWriter() : m_session(s_log, std::source_location::current()) {}

std::vector<WrittenElement> ElementWriter::takeAll() {
    m_current = Place(m_root);
    removeText(m_root);
    return std::exchange(m_root.children, {});
}

void ElementWriter::setChildren(Children children) {
    m_current.element->children = std::move(children);
    m_current.index->use(m_current.element->children);
}

void ElementWriter::createNode(const std::string& name, const std::string& comment) {
    replace({toValidTag(name), std::nullopt}, {}, name, comment);
}

void ElementWriter::createKeyedNode(const std::string& name, const std::string& key,
                                    const std::string& comment) {
    XmlString tag = toValidTag(name);
    const XmlString keyText = toText(key, name);
    replace({std::move(tag), keyText}, keyText, name, comment);
}

/// Appends an element in place of the selected children.
void ElementWriter::replace(ChildSelection replaced, std::optional<XmlString> key,
                            const std::string& name, const std::string& comment) {
    deleteChildren(replaced);
    Children& children = m_current.element->children;
    if (children.empty())
        children.reserve(fewChildren);
    children.push_back({.id = {std::move(replaced.tag), std::move(key)},
                        .comment = comment.empty() ? XmlString() : toComment(comment, name)});
    m_current.index->add(children.back());
}

void ElementWriter::enterLastChild() {
    m_current = Place(m_current.element->children.back());
}

ConfigurationAccessResult ElementWriter::makeCurrent(const ChildSelection& selection) {
    const auto found = findChild(selection);
    if (found == m_current.element->children.end())
        return ConfigurationAccessResult::Failure;
    m_current = Place(*found);
    return ConfigurationAccessResult::Success;
}

/// @return the first of the selected children
ElementWriter::Children::iterator ElementWriter::findChild(const ChildSelection& selection) {
    Children& children = m_current.element->children;
    return m_current.index->mayHave(selection)
               ? std::ranges::find_if(
                     children,
                     [&](const WrittenElement& child) { return isSelected(selection, child); })
               : children.end();
}

void ElementWriter::deleteChildren(const ChildSelection& selection) {
    removeText(*m_current.element);
    m_current.element->isStrings = false; // others may come to stand beside the items
    Children& children = m_current.element->children;
    if (m_current.index->mayHave(selection))
        std::erase_if(children,
                      [&](const WrittenElement& child) { return isSelected(selection, child); });
    m_current.index->use(children);
}

void ElementWriter::putText(const std::string& name, const std::string& text,
                            const std::string& comment) {
    createNode(name, comment);
    setText(m_current.element->children.back(), toText(text, name));
}

void ElementWriter::putString(const std::string& value) {
    m_current.element->children.clear();
    m_current.element->isStrings = false;
    setText(*m_current.element, toText(value, nameOf(*m_current.element)));
}

void ElementWriter::putStringVector(const std::string& name, const std::vector<std::string>& values,
                                    const std::string& comment) {
    createNode(name, comment);
    WrittenElement& list = m_current.element->children.back();
    list.isStrings = true;
    list.children.reserve(values.size());
    for (const std::string& value : values)
        setText(list.children.emplace_back(WrittenElement{{itemTag, std::nullopt}}),
                toText(value, name));
}

void ElementWriter::putElementUnlessEmpty(const std::string& name,
                                          const std::optional<std::string>& key,
                                          const std::string& comment,
                                          const std::function<void()>& writeContents) {
    WrittenElement element{{toValidTag(name), std::nullopt}};
    keepPlace([&] {
        m_current = Place(element);
        writeContents();
    });
    if (element.children.empty() && !element.hasText)
        return;
    if (key)
        createKeyedNode(name, *key, comment);
    else
        createNode(name, comment);
    WrittenElement& added = m_current.element->children.back();
    element.id = std::move(added.id);
    element.comment = std::move(added.comment);
    added = std::move(element);
}

void ElementWriter::keepPlace(const std::function<void()>& action) {
    const PlaceRestorer restorer(m_current);
    action();
}

std::set<std::string>
ElementWriter::namesHiddenByDescendants(const std::vector<std::string>& names) {
    return hiddenNames(m_current.element->children, names);
}

std::set<std::string> ElementWriter::hiddenNames(std::span<const WrittenElement> children,
                                                 const std::vector<std::string>& names) {
    std::unordered_map<XmlString, std::string> notSeen;
    for (const std::string& name : names)
        notSeen.emplace(XercesHelperFunctions::stringToXmlCh(name), name);
    std::set<std::string> hidden;
    visitAll(children, [&](const WrittenElement& element, bool isChild) {
        const auto seen = notSeen.find(element.id.tag);
        if (seen != notSeen.end()) {
            if (!isChild)
                hidden.insert(seen->second);
            notSeen.erase(seen);
        }
        return !notSeen.empty();
    });
    return hidden;
}

ConfigurationAccessResult ElementWriter::moveToFront(const std::string& name) {
    Children& children = m_current.element->children;
    const auto found = findChild(named(name));
    if (found == children.end())
        return ConfigurationAccessResult::Failure;
    std::rotate(children.begin(), found, std::next(found));
    return ConfigurationAccessResult::Success;
}

PrintedDocument ElementWriter::print() {
    ConfigWriterImpl document("");
    fill(document.root(), m_root);
    addEmptyTexts(document.root(), m_root);
    return document.print();
}

} // namespace Orvant
