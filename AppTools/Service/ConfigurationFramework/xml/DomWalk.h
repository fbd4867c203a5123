#pragma once

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

/// The node after another, in document order, below a root; null at the end.
inline xercesc::DOMNode* nextBelow(const xercesc::DOMNode& root, const xercesc::DOMNode* node) {
    if (xercesc::DOMNode* const child = node->getFirstChild())
        return child;
    for (; node != &root; node = node->getParentNode())
        if (xercesc::DOMNode* const sibling = node->getNextSibling())
            return sibling;
    return nullptr;
}

} // namespace Orvant
