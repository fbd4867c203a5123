#include <ConfigurationFramework/writing/EditedDocumentParser.h>

#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/xml/DomWalk.h>

#include <TestSupport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/dom/DOMText.hpp>

namespace Orvant {
namespace {

using xercesc::DOMNode;
using Random = std::mt19937;

const std::string prolog = "<!DOCTYPE Configuration ["
                           "<!ENTITY text 'a text'><!ENTITY blank ' '><!ENTITY empty ''>"
                           "<!ENTITY element '<E> <F/> </E>'><!ENTITY line '&#10;'>"
                           "<!ENTITY both ' t <E/>&text;'><!ATTLIST A key CDATA 'default'>]>";

/// Adds what a document may hold between two tags.
void addContent(std::u32string& document, int depth, Random& random) {
    static const std::array<std::u32string, 22> s_pieces{
        U"\n",         U"\n  ",      U" ",
        U"\t",         U"\r\n",      U"\r",
        U"text",       U" text \n ", U"\u00E4",
        U"&amp;",      U"&#10;",     U"&#32;",
        U"&text;",     U"&blank;",   U"&empty;",
        U"&element;",  U"&line;",    U"&both;",
        U"<!-- c -->", U"<?p d?>",   U"<![CDATA[ ]]>",
        U"<G/>"};
    for (auto count = random() % 6; count > 0; --count) {
        if (depth > 0 && random() % 3 == 0) {
            const std::u32string name(1, U"ABC"[random() % 3]);
            document += U"<" + name + (random() % 4 == 0 ? U" key='k'>" : U">");
            addContent(document, depth - 1, random);
            document += U"</" + name + U">";
        } else {
            document += s_pieces[random() % s_pieces.size()];
            if (random() % 500 == 0) // so long that the parser reports it in pieces
                document += std::u32string(16'380 + random() % 10, U'x') + std::u32string(9, U'\n');
        }
    }
}

/// A document in one of the encodings that the parser detects.
std::string encoded(std::u32string_view text, unsigned int encoding) {
    static const std::array<std::string, 4> s_names{"UTF-8", "ISO-8859-1", "UTF-16LE", "UTF-16BE"};
    std::u32string whole = U"<?xml version='1.0' encoding='";
    whole.append(s_names[encoding].begin(), s_names[encoding].end()).append(U"'?>").append(text);
    std::string bytes;
    for (const char32_t character : whole) {
        const char low = static_cast<char>(character);
        if (encoding == 0 && character > 0x7F)
            bytes.append({static_cast<char>(0xC0 | character >> 6),
                          static_cast<char>(0x80 | (character & 0x3F))});
        else if (encoding < 2)
            bytes += low;
        else if (encoding == 2)
            bytes.append({low, '\0'});
        else
            bytes.append({'\0', low});
    }
    return bytes;
}

std::string toString(const XMLCh* text) {
    return text == nullptr ? "" : std::string(text, text + std::char_traits<XMLCh>::length(text));
}

/// All that a document holds, node by node.
void describe(const DOMNode& node, std::string& description) {
    description += '(' + std::to_string(node.getNodeType()) + toString(node.getNodeName()) + '=' +
                   toString(node.getNodeValue());
    if (const auto* const attributes = node.getAttributes())
        for (XMLSize_t i = 0; i < attributes->getLength(); ++i)
            description += '@' + toString(attributes->item(i)->getNodeName()) + '=' +
                           toString(attributes->item(i)->getNodeValue());
    for (const DOMNode* child = node.getFirstChild(); child; child = child->getNextSibling())
        describe(*child, description);
    description += ')';
}

/// Whether the printer gives the node a line of its own.
bool hasOwnLine(const DOMNode& node) {
    return node.getNodeType() == DOMNode::ELEMENT_NODE ||
           node.getNodeType() == DOMNode::PROCESSING_INSTRUCTION_NODE;
}

/// Cuts the line break and indentation at the end of a text beside lines.
void cutFormatting(xercesc::DOMText& text) {
    const std::u16string content = text.getData();
    const auto lastOther = content.find_last_not_of(u" \t\r\n");
    if (lastOther == content.npos)
        text.getParentNode()->removeChild(&text);
    else if (const auto lineBreak = content.find(u'\n', lastOther); lineBreak != content.npos)
        text.setData(content.substr(0, lineBreak).c_str());
}

/// Cuts the formatting of a whole document.
void cutFormatting(DOMNode& root) {
    DomWalk walk(root);
    for (DOMNode* node = &root; node != nullptr; node = walk.next()) {
        std::vector<DOMNode*> children;
        for (DOMNode* child = node->getFirstChild(); child; child = child->getNextSibling())
            children.push_back(child);
        if (std::ranges::none_of(children, [](const DOMNode* child) { return hasOwnLine(*child); }))
            continue;
        for (DOMNode* child : children)
            if (child->getNodeType() == DOMNode::TEXT_NODE)
                cutFormatting(static_cast<xercesc::DOMText&>(*child));
    }
}

/// A document as a parser leaves it.
/// @param finish does the rest to the root
template <typename Parser, typename Finish>
std::string parsed(const std::string& bytes, Finish finish) {
    ParserConfinement confinement(ParserConfinement::configurations);
    const auto parser = confinement.makeParser<Parser>();
    confinement.parseBytes(*parser, bytes);
    if (parser->getErrorCount() > 0)
        return "broken";
    DOMNode& root = *parser->getDocument()->getDocumentElement();
    finish(root);
    std::string description;
    describe(root, description);
    return description;
}

TEST(EditedDocumentParser, LeavesOutTheFormattingAlone) {
    const ConfigWriter xerces("1.0"); // keeps Xerces initialised
    Random random(5);
    int withText = 0;
    for (int i = 0; i < 2'000; ++i) {
        std::u32string document(prolog.begin(), prolog.end());
        document += U"<Configuration>";
        addContent(document, 4, random);
        document += U"</Configuration>";
        const std::string bytes = encoded(document, random() % 4);
        const std::string expected =
            parsed<ConfinedParser>(bytes, [](DOMNode& root) { cutFormatting(root); });
        ASSERT_NE("broken", expected) << bytes;
        ASSERT_EQ(expected, parsed<EditedDocumentParser>(bytes, [](DOMNode&) {})) << bytes;
        withText += expected.find("text") != std::string::npos ? 1 : 0;
    }
    EXPECT_GT(withText, 200) << "The documents hold too little";
}

} // namespace
} // namespace Orvant
