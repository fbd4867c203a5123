#include <ConfigurationFramework/writing/ElementMerge.h>

#include <ConfigurationFramework/writing/ChildElements.h>
#include <ConfigurationFramework/xml/DomWalk.h>

#include <functional>
#include <map>
#include <optional>
#include <set>

#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMText.hpp>

namespace Orvant {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

const ElementId& idOf(const ElementChange& change) {
    const WrittenElement* const any = change.now != nullptr    ? change.now
                                      : change.base != nullptr ? change.base
                                                               : change.stored;
    return any->id;
}

bool isChanged(const ElementChange& change) {
    const auto& [base, now, stored] = change;
    if (base == nullptr || now == nullptr || !(*base == *now))
        return true;
    return stored != nullptr && hasMore(*stored, *now);
}

/// Whether the change is made child by child.
bool isGroup(const ElementChange& change) {
    bool group = false;
    for (const WrittenElement* element : {change.base, change.now, change.stored}) {
        if (element == nullptr || (element->children.empty() && element->text.empty()))
            continue;
        if (!element->isGroup())
            return false;
        group = true;
    }
    return group;
}

const std::vector<WrittenElement>& childrenOf(const WrittenElement* element) {
    static const std::vector<WrittenElement> none;
    return element == nullptr ? none : element->children;
}

/// The children that are added, changed or gone, in the order in which they are written.
std::vector<ElementChange> changesWithin(const ElementChange& change) {
    const ChildrenById baseById(change.base);
    const ChildrenById storedById(change.stored);
    std::vector<ElementChange> changes;
    std::set<const WrittenElement*> seen;
    const auto add = [&](const ElementChange& child) {
        seen.insert({child.base, child.stored});
        if (isChanged(child))
            changes.push_back(child);
    };
    for (const WrittenElement& now : childrenOf(change.now))
        add({baseById.find(now.id), &now, storedById.find(now.id)});
    for (const WrittenElement& base : childrenOf(change.base))
        if (!seen.contains(&base))
            add({&base, nullptr, storedById.find(base.id)});
    for (const WrittenElement& stored : childrenOf(change.stored))
        if (!seen.contains(&stored))
            add({nullptr, nullptr, &stored});
    return changes;
}

/// Removes an element with its comment.
void removeElement(DOMElement& element) {
    DOMNode& parent = *element.getParentNode();
    if (DOMNode* const comment = commentBefore(element))
        parent.removeChild(comment)->release();
    parent.removeChild(&element)->release();
}

/// The child elements of one element, found as readers find them.
class Siblings {
public:
    explicit Siblings(DOMElement& parent) {
        for (DOMNode* node = parent.getFirstChild(); node != nullptr; node = node->getNextSibling())
            if (DOMElement* const element = asElement(node))
                add(*element);
    }
    void add(DOMElement& element) { m_children.add(element); }

    /// @param areKeyed whether the tag's elements are told apart by keys
    DOMElement* find(const ElementId& id, bool areKeyed) const {
        return m_children.find(selectionOf(id, areKeyed));
    }
    /// Removes an element with all that would be found in its place.
    void remove(const DOMElement& element, bool areKeyed) {
        for (DOMElement* namesake : m_children.take(selectionOf(identityOf(element), areKeyed)))
            removeElement(*namesake);
    }

private:
    /// Asked for a tag without a key, readers take the first element of the tag.
    static ChildSelection selectionOf(const ElementId& id, bool areKeyed) {
        return {id.tag, areKeyed ? id.key.value_or(XmlString()) : id.key};
    }

    ChildElements m_children;
};

/// Goes only as deep as the contents: a document may be nested deeper than the stack.
bool holds(DOMElement& element, const WrittenElement& contents) {
    auto expected = contents.children.begin();
    for (DOMElement* child = element.getFirstElementChild(); child != nullptr;
         child = child->getNextElementSibling(), ++expected)
        if (expected == contents.children.end() || expected->id != identityOf(*child) ||
            !holds(*child, *expected))
            return false;
    return expected == contents.children.end() &&
           (!contents.children.empty() || contents.text == element.getTextContent());
}

/// Makes a change to a value, as a whole.
std::size_t replaceValue(DOMElement& parent, Siblings& siblings, DOMElement* present,
                         const ElementChange& change) {
    if (change.stored == nullptr) {
        if (present == nullptr)
            return 0;
        siblings.remove(*present, idOf(change).key.has_value());
        return 1;
    }
    if (present == nullptr) {
        DOMElement& added = append(parent, *change.stored);
        siblings.add(added);
        fill(added, *change.stored);
        return 1;
    }
    if (holds(*present, *change.stored))
        return 0;
    fill(*present, *change.stored);
    return 1;
}

/// The tags whose elements are told apart by keys.
std::set<XmlString> keyedTagsOf(const ElementChange& change) {
    std::set<XmlString> tags;
    for (const WrittenElement* element : {change.base, change.now, change.stored})
        if (element != nullptr)
            for (const WrittenElement& child : element->children)
                if (child.id.key)
                    tags.insert(child.id.tag);
    return tags;
}

/// The elements that are the first of their tag below another, but not among its children.
std::map<XmlString, DOMElement*> firstInChildren(DOMElement& element) {
    std::set<XmlString> seen;
    std::map<XmlString, DOMElement*> deeper;
    DomWalk walk(element);
    while (DOMNode* const node = walk.next())
        if (DOMElement* const found = asElement(node);
            found != nullptr && seen.insert(found->getTagName()).second && walk.depth() > 1)
            deeper.emplace(found->getTagName(), found);
    return deeper;
}

/// A list is read from the first element with its tag at any depth. Where a child's would be taken
/// for it, it goes to the front. An empty one may be no list at all; it stays unless it would be
/// read with the items of another.
void keepListsReadable(DOMElement& group, const ElementChange& change) {
    std::optional<std::map<XmlString, DOMElement*>> hiding;
    for (const WrittenElement& list : childrenOf(change.now)) {
        if (!list.isList())
            continue;
        if (!hiding)
            hiding = firstInChildren(group);
        const auto found = hiding->find(list.id.tag);
        if (found == hiding->end() || (list.children.empty() && !holdsItems(*found->second)))
            continue;
        hiding.reset(); // elements stand elsewhere from here on
        DOMElement* present = Siblings(group).find(list.id, false);
        if (present == nullptr)
            present = &append(group, list);
        if (!holds(*present, list))
            fill(*present, list);
        moveToFront(*present);
    }
}

bool isRoot(const DOMElement& element) {
    return element.getOwnerDocument()->getDocumentElement() == &element;
}

std::size_t mergeGroup(DOMElement& parent, Siblings& siblings, DOMElement* present,
                       const ElementChange& change) {
    if (present == nullptr && change.stored == nullptr)
        return 0;
    const bool isNew = present == nullptr;
    if (isNew) {
        present = &append(parent, *change.stored);
        siblings.add(*present);
    }
    const bool tellsOfChild =
        idOf(change).key &&
        (!isRoot(parent) || (change.stored != nullptr && change.stored->isKept));
    // Where others added a child of the same key, only what differs from its start is a change.
    const bool isAddedTwice = !isNew && tellsOfChild && change.base == nullptr;
    const ElementChange added{nullptr, change.stored, change.stored};
    const std::size_t count = mergeChanges(*present, isAddedTwice ? added : change);
    if (count != 0)
        keepListsReadable(*present, change);
    // Without contents, its element still tells the object of the child.
    if (change.stored != nullptr && tellsOfChild)
        return count + (isNew ? 1 : 0);
    // Any other that was emptied, or was made and stayed empty, is removed.
    if ((isNew || count != 0) && !present->hasChildNodes()) {
        // Under the same name others may have elements with keys.
        siblings.remove(*present, true);
    }
    return count;
}

} // namespace

std::size_t mergeChanges(DOMElement& element, const ElementChange& change) {
    const std::set<XmlString> keyedTags = keyedTagsOf(change);
    Siblings siblings(element);
    std::size_t count = 0;
    for (const ElementChange& child : changesWithin(change)) {
        DOMElement* const present = siblings.find(idOf(child), keyedTags.contains(idOf(child).tag));
        const bool isGone = child.now == nullptr && child.stored == nullptr;
        count += !isGone && isGroup(child) ? mergeGroup(element, siblings, present, child)
                                           : replaceValue(element, siblings, present, child);
    }
    return count;
}

} // namespace Orvant
