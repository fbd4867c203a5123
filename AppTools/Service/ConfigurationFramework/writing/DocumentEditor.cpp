#include <ConfigurationFramework/writing/DocumentEditor.h>

#include <ConfigurationFramework/xml/DomWalk.h>
#include <ConfigurationFramework/xml/IndexThreshold.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::XMLString;

constexpr const XMLCh* lockedText = u"false";

ChildSelection selectionOf(const ElementId& id) {
    return {id.tag, id.key.value_or(XmlString())};
}

/// The identity by which an element is found.
ElementId addressOf(const DOMElement& element) {
    ElementId id = identityOf(element);
    if (id.key && id.key->empty())
        id.key.reset();
    return id;
}

DocumentEditor::Path parentOf(const DocumentEditor::Path& path) {
    return {path.begin(), std::prev(path.end())};
}

/// Whether a node is part of what an element holds, and no remark.
bool isContent(const DOMNode& node) {
    return node.getNodeType() != DOMNode::COMMENT_NODE &&
           node.getNodeType() != DOMNode::PROCESSING_INSTRUCTION_NODE;
}

std::vector<DOMNode*> nodesIn(const DOMElement& element) {
    std::vector<DOMNode*> nodes;
    for (DOMNode* node = element.getFirstChild(); node != nullptr; node = node->getNextSibling())
        nodes.push_back(node);
    return nodes;
}

std::vector<DOMNode*> contentOf(const DOMElement& element) {
    std::vector<DOMNode*> content = nodesIn(element);
    std::erase_if(content, [](const DOMNode* node) { return !isContent(*node); });
    return content;
}

DOMElement* asItem(DOMNode* node) {
    DOMElement* const element = asElement(node);
    return element != nullptr && XMLString::equals(element->getTagName(), itemTag) ? element
                                                                                   : nullptr;
}

/// Whether an element holds just a text, so that readers see it.
bool holds(const DOMElement& element, const XmlString& text) {
    return textOf(element) == text && contentOf(element).size() == (text.empty() ? 0 : 1);
}

bool holds(const DOMElement& list, const std::vector<XmlString>& items) {
    return std::ranges::equal(contentOf(list), items, [](DOMNode* node, const XmlString& text) {
        const DOMElement* const item = asItem(node);
        return item != nullptr && textOf(*item) == text;
    });
}

/// Moves what is left in an element to the front of it: readers take nothing but an element without
/// any child for an empty text.
void moveRemarksOut(DOMElement& element) {
    DOMNode* const comment = commentBefore(element);
    DOMNode* const front = comment == nullptr ? &element : comment;
    for (DOMNode* remark : nodesIn(element))
        element.getParentNode()->insertBefore(remark, front);
}

void replaceText(DOMElement& element, const XmlString& text) {
    for (DOMNode* node : contentOf(element))
        element.removeChild(node);
    if (text.empty())
        moveRemarksOut(element);
    else
        element.insertBefore(element.getOwnerDocument()->createTextNode(text.c_str()),
                             element.getFirstChild());
}

/// Puts an item after another, with the comment right before it. It stays where it is if only
/// comments are between them.
/// @param previous null for the first
void place(DOMElement& list, DOMElement& item, const DOMNode* previous) {
    DOMNode* const next = previous == nullptr ? list.getFirstChild() : previous->getNextSibling();
    const DOMNode* following = next;
    while (following != nullptr && !isContent(*following))
        following = following->getNextSibling();
    if (following == &item)
        return;
    if (DOMNode* const comment = commentBefore(item))
        list.insertBefore(comment, next);
    list.insertBefore(&item, next);
}

/// Items that stay keep their attributes and comments.
void replaceItems(DOMElement& list, const std::vector<XmlString>& texts) {
    std::multimap<XmlString, DOMElement*> former;
    for (DOMNode* node : contentOf(list)) {
        DOMElement* const item = asItem(node);
        if (const auto text = item == nullptr ? std::nullopt : textOf(*item))
            former.emplace(*text, item);
        else
            list.removeChild(node);
    }
    std::vector<DOMElement*> items;
    for (const XmlString& text : texts) {
        const auto found = former.find(text); // the first of those that are the same
        items.push_back(found == former.end() ? nullptr : found->second);
        if (found != former.end())
            former.erase(found);
    }
    for (const auto& [text, item] : former)
        list.removeChild(item);
    const DOMNode* previous = nullptr;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i] == nullptr) {
            items[i] = list.getOwnerDocument()->createElement(itemTag);
            replaceText(*items[i], texts[i]);
        }
        place(list, *items[i], previous);
        previous = items[i];
    }
}

/// @return the element; Xerces may have made another one
DOMElement& rename(DOMElement& element, const ElementId& id) {
    DOMElement& renamed =
        *asElement(element.getOwnerDocument()->renameNode(&element, nullptr, id.tag.c_str()));
    if (id.key)
        renamed.setAttribute(keyAttribute, id.key->c_str());
    else
        renamed.removeAttribute(keyAttribute);
    return renamed;
}

/// What readers take for a list of that tag.
const DOMElement* firstBelow(const DOMElement& element, const XmlString& tag) {
    DomWalk walk(element);
    while (DOMNode* const node = walk.next())
        if (const DOMElement* const found = asElement(node);
            found != nullptr && tag == found->getTagName())
            return found;
    return nullptr;
}

} // namespace

std::optional<XmlString> textOf(const DOMElement& element) {
    const DOMNode* const first = element.getFirstChild();
    if (first == nullptr)
        return XmlString();
    if (first->getNodeType() != DOMNode::TEXT_NODE)
        return std::nullopt;
    return first->getNodeValue();
}

std::vector<XmlString> itemsOf(const DOMElement& list) {
    std::vector<XmlString> items;
    for (DOMNode* node = list.getFirstChild(); node != nullptr; node = node->getNextSibling()) {
        const DOMElement* const item = asItem(node);
        if (item == nullptr)
            continue;
        auto text = textOf(*item);
        if (!text)
            break;
        items.push_back(std::move(*text));
    }
    return items;
}

DOMElement* DocumentEditor::find(const Path& path) {
    DOMElement* element = &m_root;
    for (auto id = path.begin(); id != path.end() && element != nullptr; ++id)
        element = findChild(*element, *id);
    return element;
}

DOMElement* DocumentEditor::findChild(DOMElement& parent, const ElementId& id) {
    const ChildSelection selection = selectionOf(id);
    if (const auto index = m_indexes.find(&parent); index != m_indexes.end())
        return index->second.find(selection);
    std::uint32_t passed = 0;
    for (DOMElement* child = parent.getFirstElementChild(); child != nullptr;
         child = child->getNextElementSibling()) {
        if (selection.includes(*child))
            return child;
        if (++passed > mostChildrenWithoutIndex)
            return makeIndex(parent).find(selection);
    }
    return nullptr;
}

ChildElements& DocumentEditor::makeIndex(DOMElement& parent) {
    ChildElements& index = m_indexes[&parent];
    for (DOMElement* child = parent.getFirstElementChild(); child != nullptr;
         child = child->getNextElementSibling())
        index.add(*child);
    return index;
}

void DocumentEditor::addToIndex(const DOMElement& parent, DOMElement& child) {
    if (const auto index = m_indexes.find(&parent); index != m_indexes.end())
        index->second.add(child);
}

/// Takes the elements with one path out of the index.
std::vector<DOMElement*> DocumentEditor::take(DOMElement& parent, const ElementId& id) {
    const ChildSelection selection = selectionOf(id);
    if (const auto index = m_indexes.find(&parent); index != m_indexes.end())
        return index->second.take(selection);
    std::vector<DOMElement*> taken;
    for (DOMElement* child = parent.getFirstElementChild(); child != nullptr;
         child = child->getNextElementSibling())
        if (selection.includes(*child))
            taken.push_back(child);
    return taken;
}

void DocumentEditor::forEachBelow(const Path& path,
                                  const std::function<void(const ElementId&, std::size_t)>& visit) {
    DOMElement* const top = find(path);
    if (top == nullptr)
        return;
    constexpr auto none = std::numeric_limits<std::size_t>::max();
    std::vector<DOMElement*> parents{top};
    std::size_t depthOfSkipped = none; // of the element whose contents are passed over
    DomWalk walk(*top);
    while (DOMNode* const node = walk.next()) {
        DOMElement* const child = asElement(node);
        if (child == nullptr || walk.depth() > depthOfSkipped)
            continue;
        parents.resize(walk.depth());
        const ElementId id = addressOf(*child);
        const bool isItem =
            id.tag == itemTag && !id.key && child->getFirstElementChild() == nullptr;
        const bool isSeen = !isItem && findChild(*parents.back(), id) == child;
        depthOfSkipped = isSeen ? none : walk.depth();
        if (!isSeen)
            continue;
        parents.push_back(child);
        visit(id, walk.depth());
    }
}

/// @param isNew set to whether the element was missing
DOMElement& DocumentEditor::make(const Path& path, const XmlString& comment, bool& isNew) {
    DOMElement* element = &m_root;
    isNew = false;
    for (const ElementId& id : path) {
        DOMElement* child = findChild(*element, id);
        isNew = child == nullptr;
        if (isNew) {
            child = &append(*element, {id, &id == &path.back() ? comment : XmlString()});
            addToIndex(*element, *child);
        }
        element = child;
    }
    return *element;
}

bool DocumentEditor::setText(const Path& path, const XmlString& text, const XmlString& comment) {
    bool isNew = false;
    DOMElement& element = make(path, comment, isNew);
    if (!isNew && holds(element, text))
        return false;
    replaceText(element, text);
    m_indexes.erase(&element);
    if (isNew)
        keepListsReadable(path);
    return true;
}

bool DocumentEditor::setItems(const Path& path, const std::vector<XmlString>& items,
                              const XmlString& comment) {
    bool isNew = false;
    DOMElement& list = make(path, comment, isNew);
    const bool isChanged = isNew || !holds(list, items);
    if (isChanged) {
        replaceItems(list, items);
        m_indexes.erase(&list);
    }
    return keepListsReadable(path, &list) || isChanged;
}

bool DocumentEditor::lock(const Path& path) {
    bool isNew = false;
    DOMElement& element = make(path, {}, isNew);
    if (XMLString::equals(element.getAttribute(lockAttribute), lockedText))
        return false;
    element.setAttribute(lockAttribute, lockedText);
    if (isNew)
        keepListsReadable(path);
    return true;
}

bool DocumentEditor::unlock(const Path& path) {
    DOMElement* const element = find(path);
    if (element == nullptr || !element->hasAttribute(lockAttribute))
        return false;
    element->removeAttribute(lockAttribute);
    return true;
}

bool DocumentEditor::remove(const Path& path, const XmlString& comment) {
    DOMElement* const parent = find(parentOf(path));
    if (parent == nullptr)
        return false;
    const auto elements = take(*parent, path.back());
    for (DOMElement* element : elements) {
        DOMNode* const before = commentBefore(*element);
        if (before != nullptr && !comment.empty() && comment == before->getNodeValue())
            parent->removeChild(before);
        parent->removeChild(element);
    }
    return !elements.empty();
}

bool DocumentEditor::move(const Path& from, const Path& to) {
    DOMElement* const parent = find(parentOf(from));
    if (parent == nullptr || findChild(*parent, from.back()) == nullptr || find(to) != nullptr)
        return false;
    bool isNew = false;
    DOMElement& target = make(parentOf(to), {}, isNew);
    for (DOMElement* element : take(*parent, from.back())) {
        if (parent != &target) {
            if (DOMNode* const comment = commentBefore(*element))
                target.appendChild(comment);
            target.appendChild(element);
        }
        addToIndex(target, rename(*element, to.back()));
    }
    Path path = to;
    keepListsReadable(path);
    if (parent != &target)
        forEachBelow(to, [&](const ElementId& id, std::size_t depth) {
            path.resize(to.size() + depth - 1);
            path.push_back(id);
            keepListsReadable(path);
        });
    return true;
}

/// A list is read from the first element with its tag at any depth. Where one of a path would be
/// taken for it, it goes to the front.
/// @param written a list even if it has no items
/// @return false when nothing had to be done
bool DocumentEditor::keepListsReadable(const Path& path, const DOMElement* written) {
    bool isChanged = false;
    DOMElement* parent = &m_root;
    for (auto child = path.begin(); child != path.end(); ++child) {
        for (auto hiding = child; hiding != path.end(); ++hiding) {
            DOMElement* const list = findChild(*parent, {hiding->tag, std::nullopt});
            if (list == nullptr || !(list == written || holdsItems(*list)) ||
                firstBelow(*parent, hiding->tag) == list)
                continue;
            moveToFront(*list);
            isChanged = true;
        }
        parent = findChild(*parent, *child);
    }
    return isChanged;
}

} // namespace Orvant
