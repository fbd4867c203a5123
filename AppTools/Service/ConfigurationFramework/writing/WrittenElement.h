#pragma once

#include <ConfigurationFramework/xml/XmlText.h>

#include <compare>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>

namespace Orvant {

/// The tag of the items of a list.
constexpr const XMLCh* itemTag = u"item";

/// What tells the children of an element apart.
struct ElementId {
    XmlString tag;
    std::optional<XmlString> key; ///< attribute key; nothing: it has none

    bool operator==(const ElementId& other) const;
    auto operator<=>(const ElementId& other) const = default;
};

/// An element as an object wrote it, detached from its document.
struct WrittenElement {
    ElementId id;
    XmlString comment = {}; ///< right before it; empty: none
    XmlString text = {};    ///< of an element without child elements
    std::vector<WrittenElement> children = {};
    bool hasText = false;   ///< whether a text was put into it, be that empty; unknown to a copy
    bool isStrings = false; ///< whether it was put as a list
    bool isLocked = false;  ///< whether it gets the lock of the element that it is a copy of
    bool isKept = false;    ///< whether it stays when it is empty

    /// Whether both hold the same. Comments do not count.
    bool operator==(const WrittenElement& other) const;
    /// @return true for an element whose children are merged one by one; false for a value: a text,
    ///         a list, or children that cannot be told apart
    bool isGroup() const;
    /// @return true for what may be a list: items, or nothing at all
    bool isList() const;
};

/// The children of an element, found without a walk over all of them.
class ChildrenById {
public:
    /// @param element must outlive this; null has none
    explicit ChildrenById(const WrittenElement* element);

    /// @return first child with that identity; null when there is none
    const WrittenElement* find(const ElementId& id) const;

private:
    std::map<std::reference_wrapper<const ElementId>, const WrittenElement*, std::less<ElementId>>
        m_children;
};

ElementId identityOf(const xercesc::DOMElement& element);

/// Whether a class that writes what differs writes more than what it writes in full: what changes
/// there is not seen by comparing what it writes in full.
bool hasMore(const WrittenElement& differing, const WrittenElement& full);

/// @return a copy of an element that an object wrote: the copy recurses, and documents of others
///         may be nested deeper than the stack
WrittenElement copyOf(const xercesc::DOMElement& element);

/// Appends an empty element with the comment, key and lock of another.
xercesc::DOMElement& append(xercesc::DOMElement& parent, const WrittenElement& written);

/// Gives an element the contents of another; its attributes stay.
void fill(xercesc::DOMElement& element, const WrittenElement& contents);

/// Moves an element, with its comment, before all that is beside it.
void moveToFront(xercesc::DOMElement& element);

/// @return whether an element is a list with items
bool holdsItems(const xercesc::DOMElement& element);

} // namespace Orvant
