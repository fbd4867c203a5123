#pragma once

#include <ConfigurationFramework/xml/XmlText.h>

#include <cstddef>
#include <map>
#include <set>
#include <unordered_map>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>

namespace Orvant {

/// The child elements of one element by tag, and by tag and key (an absent key counts as empty), so
/// that elements with many children are edited without a walk over all of them for each.
class ChildElements {
public:
    /// Adds a child behind all that were added before.
    void add(xercesc::DOMElement& child, const XmlString& key);

    /// @return the first child of that tag and, if it is not null, that key; null when there is
    /// none
    xercesc::DOMElement* find(const XmlString& name, const XmlString* key) const;

    /// Takes the children of that tag and, if it is not null, that key out of the index.
    /// @return the children, in order
    std::vector<xercesc::DOMElement*> take(const XmlString& name, const XmlString* key);

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
