#pragma once

#include <ConfigurationFramework/xml/XmlText.h>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>

namespace Orvant {

/// The attribute that tells elements of the same tag apart.
constexpr const XMLCh* keyAttribute = u"key";

/// Which children of an element are meant.
struct ChildSelection {
    XmlString tag;
    /// An element without a key counts as one with an empty key. std::nullopt means any key.
    std::optional<XmlString> key;

    bool includes(const xercesc::DOMElement& child) const;
};

/// The child elements of one element, found by tag and key without a walk over all of them.
class ChildElements {
public:
    /// Adds a child after all that were added before.
    void add(xercesc::DOMElement& child);

    /// @return the first of the selected children; null when there is none
    xercesc::DOMElement* find(const ChildSelection& selection) const;

    /// Removes the selected children.
    /// @return the children, in order
    std::vector<xercesc::DOMElement*> take(const ChildSelection& selection);

private:
    using Position = std::size_t;
    struct Namesakes {
        std::map<Position, xercesc::DOMElement*> elements;
        std::unordered_map<XmlString, std::set<Position>> byKey;
    };

    std::unordered_map<XmlString, Namesakes> m_namesakes;
    Position m_next = 0;
};

} // namespace Orvant
