#include <ConfigurationFramework/writing/DocumentPrinter.h>

#include <ConfigurationFramework/xml/DomWalk.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Orvant {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

/// Deepest nesting of elements that is printed: the printer visits them by recursion.
constexpr std::size_t maxDepth = 4'000;
/// Maximum indentation that is printed, that of one chain of maxDepth elements. It grows with the
/// depth of every element and would fill the disk.
constexpr std::size_t maxIndentation = 2 * maxDepth * maxDepth;
/// Maximum number of comments without an element between them that are printed.
constexpr std::size_t maxCommentsInARow = 10'000;
/// Maximum number of steps of the printer beside comments: as many as maxCommentsInARow comments
/// take. It looks for an element beside each and passes everything else on the way, which would
/// take minutes.
constexpr std::size_t maxStepsBesideComments = maxCommentsInARow * maxCommentsInARow;

/// How a document is laid out when it is printed.
struct Layout {
    std::size_t nodes = 0;
    std::size_t depth = 0;               ///< of elements, 1 for a root without children
    std::size_t indentation = 0;         ///< number of blanks at most
    std::size_t stepsBesideComments = 0; ///< from comments to the elements beside them
};

/// Steps from all comments below an element to the elements beside them.
std::size_t stepsBesideComments(const DOMNode& element) {
    std::size_t steps = 0;
    std::size_t nodes = 0;
    std::size_t comments = 0;
    for (const DOMNode* child = element.getFirstChild(); child; child = child->getNextSibling()) {
        ++nodes;
        if (child->getNodeType() == DOMNode::COMMENT_NODE)
            ++comments;
        if (child->getNodeType() == DOMNode::ELEMENT_NODE || child->getNextSibling() == nullptr) {
            steps += comments * (nodes - (child->getNodeType() == DOMNode::ELEMENT_NODE ? 1 : 0));
            nodes = comments = 0;
        }
    }
    return steps;
}

void addTo(Layout& layout, const DOMNode& node, std::size_t depth) {
    constexpr std::size_t step = 2; // of the printer, per level
    ++layout.nodes;
    const bool isElement = node.getNodeType() == DOMNode::ELEMENT_NODE;
    if (isElement) {
        layout.depth = std::max(layout.depth, depth);
        layout.stepsBesideComments += stepsBesideComments(node);
    }
    // Both tags of an element can have a line of their own.
    layout.indentation += (isElement ? 2 : 1) * step * (depth - 1);
}

Layout layoutOf(const DOMElement& root) {
    Layout layout;
    addTo(layout, root, 1);
    DomWalk walk(root);
    while (const DOMNode* const node = walk.next())
        addTo(layout, *node, walk.depth() + 1);
    return layout;
}

struct SerializerRelease {
    void operator()(xercesc::DOMLSSerializer* serializer) const { serializer->release(); }
};
using Serializer = std::unique_ptr<xercesc::DOMLSSerializer, SerializerRelease>;

struct OutputRelease {
    void operator()(xercesc::DOMLSOutput* output) const { output->release(); }
};
using Output = std::unique_ptr<xercesc::DOMLSOutput, OutputRelease>;

/// Receives what is printed. A Xerces string would take four times the memory.
class StringTarget : public xercesc::XMLFormatTarget {
public:
    explicit StringTarget(std::size_t expectedSize) { m_text.reserve(expectedSize); }
    void writeChars(const XMLByte* bytes, XMLSize_t count, xercesc::XMLFormatter*) override {
        m_text.append(reinterpret_cast<const char*>(bytes), count);
    }
    std::string takeText() { return std::move(m_text); }

private:
    std::string m_text;
};

Serializer makeSerializer(xercesc::DOMImplementation& implementation) {
    Serializer serializer(implementation.createLSSerializer());
    xercesc::DOMConfiguration& configuration = *serializer->getDomConfig();
    if (configuration.canSetParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true))
        configuration.setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
    if (configuration.canSetParameter(xercesc::XMLUni::fgDOMWRTBOM, true))
        configuration.setParameter(xercesc::XMLUni::fgDOMWRTBOM, false);
    configuration.setParameter(xercesc::XMLUni::fgDOMXMLDeclaration, false);
    // The DTD that declares default attributes is not written, so the attributes are.
    if (configuration.canSetParameter(xercesc::XMLUni::fgDOMWRTDiscardDefaultContent, false))
        configuration.setParameter(xercesc::XMLUni::fgDOMWRTDiscardDefaultContent, false);
    return serializer;
}

/// @return nothing when XML cannot hold what is in the element
std::optional<std::string> serialize(const DOMElement& root, std::size_t expectedSize) {
    xercesc::DOMImplementation& implementation = *root.getOwnerDocument()->getImplementation();
    const Serializer serializer = makeSerializer(implementation);
    StringTarget target(expectedSize);
    const Output output(implementation.createLSOutput());
    output->setEncoding(u"UTF-8");
    output->setByteStream(&target);
    try {
        return serializer->write(&root, output.get()) ? std::optional(target.takeText())
                                                      : std::nullopt;
    } catch (const xercesc::DOMException&) { // of a text that XML cannot hold
        return std::nullopt;
    }
}

} // namespace

PrintedDocument printDocument(const xercesc::DOMDocument& document) {
    const DOMElement& root = *document.getDocumentElement();
    const Layout layout = layoutOf(root);
    if (layout.depth > maxDepth || layout.indentation > maxIndentation)
        return {.problem = "The document is nested too deeply to be written"};
    if (layout.stepsBesideComments > maxStepsBesideComments)
        return {.problem = "The document has too many comments in a row to be written"};
    constexpr std::size_t usualNode = 16;
    auto text = serialize(root, layout.indentation + layout.nodes * usualNode);
    if (!text)
        return {.problem = "The document holds something that XML cannot express"};
    text->erase(0, text->find('<')); // the printer begins with a line break
    return {std::move(*text), "", layout.nodes};
}

DocumentSurroundings surroundingsOf(const xercesc::DOMDocument& document) {
    const auto textOf = XercesHelperFunctions::xmlChToString;
    DocumentSurroundings surroundings;
    std::string* side = &surroundings.before;
    for (const DOMNode* node = document.getFirstChild(); node; node = node->getNextSibling()) {
        if (node->getNodeType() == DOMNode::ELEMENT_NODE)
            side = &surroundings.after;
        else if (node->getNodeType() == DOMNode::COMMENT_NODE)
            *side += "<!--" + textOf(node->getNodeValue()) + "-->\n";
        else if (node->getNodeType() == DOMNode::PROCESSING_INSTRUCTION_NODE)
            *side +=
                "<?" + textOf(node->getNodeName()) + ' ' + textOf(node->getNodeValue()) + "?>\n";
    }
    return surroundings;
}

} // namespace Orvant
