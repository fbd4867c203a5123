#include <ConfigurationFramework/writing/WrittenElement.h>

#include <ConfigurationFramework/writing/ChildElements.h>
#include <ConfigurationFramework/xml/DomWalk.h>
#include <ConfigurationFramework/xml/IndexThreshold.h>

#include <algorithm>
#include <set>

#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

namespace {

bool areToldApart(const std::vector<WrittenElement>& elements) {
    if (elements.size() > mostChildrenWithoutIndex) {
        std::set<ElementId> ids;
        return std::ranges::all_of(
            elements, [&](const auto& element) { return ids.insert(element.id).second; });
    }
    for (auto element = elements.begin(); element != elements.end(); ++element)
        if (std::find_if(elements.begin(), element,
                         [&](const auto& former) { return former.id == element->id; }) != element)
            return false;
    return true;
}

} // namespace

bool ElementId::operator==(const ElementId& other) const {
    return areSame(tag, other.tag) && key.has_value() == other.key.has_value() &&
           (!key || areSame(*key, *other.key));
}

bool WrittenElement::operator==(const WrittenElement& other) const {
    return id == other.id && areSame(text, other.text) && children == other.children;
}

bool WrittenElement::isGroup() const {
    return !children.empty() && !isList() && areToldApart(children);
}

bool WrittenElement::isList() const {
    return isStrings || (text.empty() && children.empty());
}

ChildrenById::ChildrenById(const WrittenElement* element) {
    if (element != nullptr)
        for (const WrittenElement& child : element->children)
            m_children.try_emplace(child.id, &child);
}

const WrittenElement* ChildrenById::find(const ElementId& id) const {
    const auto found = m_children.find(id);
    return found == m_children.end() ? nullptr : found->second;
}

ElementId identityOf(const xercesc::DOMElement& element) {
    ElementId id{element.getTagName(), std::nullopt};
    if (element.hasAttribute(keyAttribute))
        id.key = element.getAttribute(keyAttribute);
    return id;
}

bool hasMore(const WrittenElement& differing, const WrittenElement& full) {
    if (!differing.isGroup())
        return !(differing.children.empty() && differing.text.empty()) && !(differing == full);
    // What differs comes in the order of what is written in full, as a rule.
    auto next = full.children.begin();
    return std::ranges::any_of(differing.children, [&](const WrittenElement& child) {
        const auto isPart = [&](const WrittenElement& part) { return part.id == child.id; };
        auto part = std::find_if(next, full.children.end(), isPart);
        if (part == full.children.end())
            part = std::find_if(full.children.begin(), next, isPart);
        if (part == full.children.end() || !isPart(*part))
            return true;
        next = std::next(part);
        return hasMore(child, *part);
    });
}

WrittenElement copyOf(const xercesc::DOMElement& element) {
    WrittenElement copy{identityOf(element)};
    if (const xercesc::DOMNode* const comment = commentBefore(element))
        copy.comment = comment->getNodeValue();
    for (xercesc::DOMNode* node = element.getFirstChild(); node != nullptr;
         node = node->getNextSibling())
        if (const xercesc::DOMElement* const child = asElement(node))
            copy.children.push_back(copyOf(*child));
    if (copy.children.empty())
        copy.text = element.getTextContent();
    copy.isStrings = !copy.children.empty() &&
                     std::ranges::all_of(copy.children, [](const WrittenElement& child) {
                         return child.id.tag == itemTag && !child.id.key;
                     });
    return copy;
}

xercesc::DOMElement& append(xercesc::DOMElement& parent, const WrittenElement& written) {
    xercesc::DOMDocument& document = *parent.getOwnerDocument();
    xercesc::DOMElement& element = *document.createElement(written.id.tag.c_str());
    if (written.id.key)
        element.setAttribute(keyAttribute, written.id.key->c_str());
    if (written.isLocked)
        element.setAttribute(u"editable", u"false");
    if (!written.comment.empty())
        parent.appendChild(document.createComment(written.comment.c_str()));
    parent.appendChild(&element);
    return element;
}

void fill(xercesc::DOMElement& element, const WrittenElement& contents) {
    while (xercesc::DOMNode* const child = element.getFirstChild())
        element.removeChild(child)->release();
    for (const WrittenElement& child : contents.children)
        fill(append(element, child), child);
    if (!contents.text.empty())
        element.appendChild(element.getOwnerDocument()->createTextNode(contents.text.c_str()));
}

void moveToFront(xercesc::DOMElement& element) {
    xercesc::DOMNode& parent = *element.getParentNode();
    xercesc::DOMNode* const comment = commentBefore(element);
    xercesc::DOMNode* const first = parent.getFirstChild();
    if (first == &element || first == comment)
        return;
    if (comment != nullptr)
        parent.insertBefore(comment, first);
    parent.insertBefore(&element, first);
}

bool holdsItems(const xercesc::DOMElement& element) {
    const xercesc::DOMElement* const first = element.getFirstElementChild();
    return first != nullptr && xercesc::XMLString::equals(first->getTagName(), itemTag);
}

} // namespace Orvant
