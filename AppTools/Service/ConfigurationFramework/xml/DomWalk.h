#pragma once

#include <cstddef>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>

// Walks follow links and do not recurse: a document may be nested deeper than the stack allows.

namespace Orvant {

/// @return the node as an element, null when it is none
inline xercesc::DOMElement* asElement(xercesc::DOMNode* node) {
    return node != nullptr && node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE
               ? static_cast<xercesc::DOMElement*>(node)
               : nullptr;
}

/// The comment right before an element, which belongs to it; null when there is none.
inline xercesc::DOMNode* commentBefore(const xercesc::DOMElement& element) {
    xercesc::DOMNode* const previous = element.getPreviousSibling();
    return previous != nullptr && previous->getNodeType() == xercesc::DOMNode::COMMENT_NODE
               ? previous
               : nullptr;
}

/// Visits the nodes below an element in document order. It remembers the way back: a node takes
/// long to tell its parent.
class DomWalk {
public:
    explicit DomWalk(const xercesc::DOMNode& root) : m_root(root) {}

    /// @return the next node; null at the end
    xercesc::DOMNode* next() {
        xercesc::DOMNode* node =
            m_path.empty() ? m_root.getFirstChild() : m_path.back()->getFirstChild();
        for (; node == nullptr && !m_path.empty(); m_path.pop_back())
            node = m_path.back()->getNextSibling();
        if (node != nullptr)
            m_path.push_back(node);
        return node;
    }
    /// @return levels from the root to the node that was returned last; 1 for a child
    std::size_t depth() const { return m_path.size(); }

private:
    const xercesc::DOMNode& m_root;
    std::vector<xercesc::DOMNode*> m_path; ///< to the node that was returned last
};

} // namespace Orvant
