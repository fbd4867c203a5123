#include <ConfigurationFramework/DocumentPreparation.h>

#include <ConfigurationFramework/DomNavigation.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include <xercesc/dom/DOMText.hpp>

namespace Orvant {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMText;

void collectEntityReferences(DOMNode& root, std::vector<DOMNode*>& references) {
    for (DOMNode* node = &root; node != nullptr;) {
        const bool isReference = node->getNodeType() == DOMNode::ENTITY_REFERENCE_NODE;
        if (isReference)
            references.push_back(node);
        node = isReference ? nextBehind(root, node) : nextBelow(root, node);
    }
}

void expandEntityReferences(DOMNode& root) {
    std::vector<DOMNode*> references;
    collectEntityReferences(root, references);
    while (!references.empty()) {
        DOMNode* const reference = references.back();
        references.pop_back();
        DOMNode& parent = *reference->getParentNode();
        for (const DOMNode* child = reference->getFirstChild(); child != nullptr;
             child = child->getNextSibling())
            collectEntityReferences(*parent.insertBefore(child->cloneNode(true), reference),
                                    references);
        parent.removeChild(reference);
    }
}

/// Cuts the line break and indentation before a tag, which the printer makes anew.
void cutFormatting(DOMText& text) {
    const std::basic_string_view<XMLCh> content(text.getData());
    const auto lastOther = content.find_last_not_of(formattingSpace);
    if (lastOther == content.npos) {
        text.getParentNode()->removeChild(&text);
        return;
    }
    const auto lineBreak = content.find(u'\n', lastOther);
    if (lineBreak != content.npos)
        text.deleteData(lineBreak, content.size() - lineBreak);
}

bool isText(const DOMNode& node) {
    return node.getNodeType() == DOMNode::TEXT_NODE;
}

/// Whether the printer gives the node a line of its own.
bool hasOwnLine(const DOMNode& node) {
    return node.getNodeType() == DOMNode::ELEMENT_NODE ||
           node.getNodeType() == DOMNode::PROCESSING_INSTRUCTION_NODE;
}

void cutFormattingBetweenLines(DOMElement& root) {
    for (DOMNode* node = &root; node != nullptr; node = nextBelow(root, node)) {
        bool hasLines = false;
        for (const DOMNode* child = node->getFirstChild(); child; child = child->getNextSibling())
            hasLines = hasLines || hasOwnLine(*child);
        if (!hasLines)
            continue;
        for (DOMNode* child = node->getFirstChild(); child != nullptr;) {
            DOMNode* const next = child->getNextSibling();
            if (isText(*child))
                cutFormatting(static_cast<DOMText&>(*child));
            child = next;
        }
    }
}

} // namespace

std::size_t nestingDepth(const DOMNode& root) {
    std::size_t depth = 0;
    std::size_t deepest = 0;
    for (const DOMNode* node = &root;;) {
        if (node->getFirstChild() != nullptr) {
            node = node->getFirstChild();
            deepest = std::max(deepest, ++depth);
            continue;
        }
        for (; node != &root && node->getNextSibling() == nullptr; node = node->getParentNode())
            --depth;
        if (node == &root)
            return deepest;
        node = node->getNextSibling();
    }
}

std::size_t longestRunOfComments(const DOMNode& root) {
    std::size_t longest = 0;
    for (const DOMNode* node = &root; node != nullptr; node = nextBelow(root, node)) {
        std::size_t run = 0;
        for (const DOMNode* child = node->getFirstChild(); child; child = child->getNextSibling()) {
            if (child->getNodeType() == DOMNode::ELEMENT_NODE)
                run = 0;
            else if (child->getNodeType() == DOMNode::COMMENT_NODE)
                longest = std::max(longest, ++run);
        }
    }
    return longest;
}

void prepareForWriting(xercesc::DOMDocument& document) {
    DOMElement& root = *document.getDocumentElement();
    if (nestingDepth(root) > maxWrittenDepth)
        return; // It is never written.
    expandEntityReferences(root);
    cutFormattingBetweenLines(root);
    document.setXmlVersion(u"1.0");
}

} // namespace Orvant
