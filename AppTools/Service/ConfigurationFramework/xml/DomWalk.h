#pragma once

#include <xercesc/dom/DOMElement.hpp>

// Walks go by links, without recursion: a document may be nested deeper than the stack.

namespace Orvant {

/// @return the node as an element, null when it is none
inline xercesc::DOMElement* asElement(xercesc::DOMNode* node) {
    return node != nullptr && node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE
               ? static_cast<xercesc::DOMElement*>(node)
               : nullptr;
}

/// The node after another and all below that, in document order below a root; null at the end.
inline xercesc::DOMNode* nextBehind(const xercesc::DOMNode& root, const xercesc::DOMNode* node) {
    for (; node != &root; node = node->getParentNode())
        if (xercesc::DOMNode* const sibling = node->getNextSibling())
            return sibling;
    return nullptr;
}

/// The node after another in document order below a root; null at the end.
inline xercesc::DOMNode* nextBelow(const xercesc::DOMNode& root, const xercesc::DOMNode* node) {
    xercesc::DOMNode* const child = node->getFirstChild();
    return child != nullptr ? child : nextBehind(root, node);
}

} // namespace Orvant
