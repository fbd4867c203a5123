#include <ConfigurationFramework/writing/WrittenElement.h>

#include <ConfigurationFramework/writing/ChildElements.h>
#include <ConfigurationFramework/xml/DomWalk.h>

#include <algorithm>
#include <map>
#include <set>

#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMText.hpp>

namespace Orvant {

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

ElementId identityOf(const xercesc::DOMElement& element) {
    ElementId id{element.getTagName(), std::nullopt};
    if (element.hasAttribute(keyAttribute))
        id.key = element.getAttribute(keyAttribute);
    return id;
}

bool hasMore(const WrittenElement& differing, const WrittenElement& full) {
    if (!differing.isGroup())
        return !(differing.children.empty() && differing.text.empty()) && !(differing == full);
    std::map<ElementId, const WrittenElement*> parts;
    for (const WrittenElement& part : full.children)
        parts.emplace(part.id, &part);
    return std::ranges::any_of(differing.children, [&](const WrittenElement& child) {
        const auto part = parts.find(child.id);
        return part == parts.end() || hasMore(child, *part->second);
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
    return copy;
}

xercesc::DOMElement& append(xercesc::DOMElement& parent, const ElementId& id,
                            const XmlString& comment) {
    xercesc::DOMDocument& document = *parent.getOwnerDocument();
    xercesc::DOMElement& element = *document.createElement(id.tag.c_str());
    if (id.key)
        element.setAttribute(keyAttribute, id.key->c_str());
    if (!comment.empty())
        parent.appendChild(document.createComment(comment.c_str()));
    parent.appendChild(&element);
    return element;
}

void fill(xercesc::DOMElement& element, const WrittenElement& contents) {
    while (xercesc::DOMNode* const child = element.getFirstChild())
        element.removeChild(child)->release();
    for (const WrittenElement& child : contents.children)
        fill(append(element, child.id, child.comment), child);
    if (!contents.text.empty())
        element.appendChild(element.getOwnerDocument()->createTextNode(contents.text.c_str()));
}

} // namespace Orvant
