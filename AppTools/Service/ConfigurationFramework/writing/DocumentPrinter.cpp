#include <ConfigurationFramework/writing/DocumentPrinter.h>

#include <ConfigurationFramework/xml/DomWalk.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <algorithm>

#include <xercesc/dom/DOMText.hpp>

namespace Orvant {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMText;

/// Cuts the line break and indentation before a tag, which the printer makes anew.
void cutFormatting(DOMText& text) {
    const XmlStringView content(text.getData());
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

/// Most comments below an element without another element between them.
std::size_t longestRunOfComments(const DOMNode& element) {
    std::size_t longest = 0;
    std::size_t run = 0;
    for (const DOMNode* child = element.getFirstChild(); child; child = child->getNextSibling()) {
        if (child->getNodeType() == DOMNode::ELEMENT_NODE)
            run = 0;
        else if (child->getNodeType() == DOMNode::COMMENT_NODE)
            longest = std::max(longest, ++run);
    }
    return longest;
}

} // namespace

PrintedLayout layoutOf(const DOMElement& root) {
    constexpr std::size_t step = 2; // of the printer, for each level
    PrintedLayout layout;
    std::size_t depth = 1;
    const DOMNode* node = &root;
    while (true) {
        ++layout.nodes;
        const bool isElement = node->getNodeType() == DOMNode::ELEMENT_NODE;
        if (isElement) {
            layout.depth = std::max(layout.depth, depth);
            layout.commentsInARow = std::max(layout.commentsInARow, longestRunOfComments(*node));
        }
        // Both tags of an element can have a line of their own.
        layout.indentation += (isElement ? 2 : 1) * step * (depth - 1);
        if (node->getFirstChild() != nullptr) {
            node = node->getFirstChild();
            ++depth;
            continue;
        }
        for (; node != &root && node->getNextSibling() == nullptr; node = node->getParentNode())
            --depth;
        if (node == &root)
            return layout;
        node = node->getNextSibling();
    }
}

void prepareForWriting(xercesc::DOMDocument& document) {
    cutFormattingBetweenLines(*document.getDocumentElement());
    document.setXmlVersion(u"1.0");
}

} // namespace Orvant
