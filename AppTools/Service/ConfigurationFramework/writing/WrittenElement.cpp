#include <ConfigurationFramework/writing/WrittenElement.h>

#include <ConfigurationFramework/writing/ChildElements.h>
#include <ConfigurationFramework/xml/DomWalk.h>

#include <algorithm>
#include <set>

namespace Orvant {

namespace {

/// The tag of the items of a list.
constexpr const XMLCh* itemTag = u"item";

} // namespace

const WrittenElement* WrittenElement::find(const ElementId& child, std::size_t expected) const {
    if (expected < children.size() && children[expected].id == child)
        return &children[expected];
    const auto found = std::ranges::find(children, child, &WrittenElement::id);
    return found == children.end() ? nullptr : &*found;
}

bool WrittenElement::operator==(const WrittenElement& other) const {
    return id == other.id && text == other.text && children == other.children;
}

bool WrittenElement::isGroup() const {
    std::set<ElementId> ids;
    for (const WrittenElement& child : children)
        if (!ids.insert(child.id).second)
            return false;
    return !isList() && !children.empty();
}

bool WrittenElement::isList() const {
    return text.empty() && std::ranges::all_of(children, [](const WrittenElement& child) {
               return child.id.tag == itemTag;
           });
}

WrittenElement copyOf(const xercesc::DOMElement& element) {
    WrittenElement copy{{element.getTagName(), std::nullopt}};
    if (element.hasAttribute(keyAttribute))
        copy.id.key = element.getAttribute(keyAttribute);
    if (const xercesc::DOMNode* const comment = commentBefore(element))
        copy.comment = comment->getNodeValue();
    for (xercesc::DOMNode* node = element.getFirstChild(); node != nullptr;
         node = node->getNextSibling())
        if (const xercesc::DOMElement* const child = asElement(node))
            copy.children.push_back(copyOf(*child));
    if (copy.children.empty())
        copy.text = element.getTextContent();
    return copy;
}

} // namespace Orvant
