#include <ConfigurationFramework/source/SourceDocument.h>

#include <ConfigurationFramework/xml/XercesSession.h>

#include <Logging/Logging.h>

#include <gmock/gmock.h>

#include <source_location>
#include <string>
#include <vector>

namespace Orvant {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const Logging s_log("SourceDocumentTest");

class SourceDocumentTest : public testing::Test {
protected:
    /// @return the text of each node, in document order
    std::vector<std::string> texts(const std::string& bytes) {
        parse(bytes);
        std::vector<std::string> texts;
        for (const SourceDocument::Node& node : m_document->nodes())
            texts.push_back(bytes.substr(node.begin, node.end - node.begin));
        return texts;
    }
    void parse(const std::string& bytes) {
        m_document = SourceDocument::parse(bytes);
        ASSERT_TRUE(m_document.has_value());
    }
    const SourceDocument::Node& node(SourceDocument::Index index) { return (*m_document)[index]; }

    XercesSession m_session{s_log, std::source_location::current()};
    std::optional<SourceDocument> m_document;
};

std::string utf16(const std::string& ascii) {
    std::string bytes = "\xFF\xFE";
    for (const char c : ascii)
        bytes.append(1, c).append(1, '\0');
    return bytes;
}

TEST_F(SourceDocumentTest, NodesHaveTheirPlacesInTheBytes) {
    EXPECT_THAT(texts("<?xml version=\"1.0\"?>\n<!-- a -->\n<?b c?><d e='f'>\n <g/><!-- h --> "
                      "<i>j</i>\n</d>\n<!-- k -->"),
                ElementsAre("<!-- a -->", "<?b c?>", "<d e='f'>\n <g/><!-- h --> <i>j</i>\n</d>",
                            "<g/>", "<!-- h -->", "<i>j</i>", "<!-- k -->"));
}

TEST_F(SourceDocumentTest, PlacesAreRightInEveryEncoding) {
    EXPECT_THAT(texts("<d>\r\n \xC3\xA4 <g n='\xE2\x82\xAC'/>\r\n\xF0\x9F\x98\x80<h/></d>"),
                ElementsAre(testing::_, "<g n='\xE2\x82\xAC'/>", "<h/>"));
    EXPECT_THAT(texts("\xEF\xBB\xBF<d><g/></d>"), ElementsAre("<d><g/></d>", "<g/>"));
    EXPECT_THAT(texts("<?xml version='1.0' encoding='ISO-8859-1'?><d>\xE4<g/>\xE4</d>"),
                ElementsAre("<d>\xE4<g/>\xE4</d>", "<g/>"));
    const auto wide = texts(utf16("<d>\n<g/> <h/></d>"));
    EXPECT_EQ(wide.at(1), utf16("<g/>").substr(2));
    EXPECT_EQ(wide.at(2), utf16("<h/>").substr(2));
}

TEST_F(SourceDocumentTest, PlacesAreRightThroughoutALongFile) {
    std::string longText = "<d>";
    for (int i = 0; i < 20'000; ++i)
        longText += "<e a='\xC3\xA4'/>\r\n";
    longText += "</d>";
    for (const std::string start : {"", "\xEF\xBB\xBF"}) {
        const auto all = texts(start + longText);
        ASSERT_EQ(all.size(), 20'001U);
        for (std::size_t i = 1; i < all.size(); ++i)
            ASSERT_EQ(all[i], "<e a='\xC3\xA4'/>") << i << ' ' << start.size();
    }
    std::string ascii = "<d>";
    for (int i = 0; i < 20'000; ++i)
        ascii += "<e a='b'/>\r\n";
    for (const std::string& text : texts(utf16(ascii + "</d>")))
        ASSERT_TRUE(text.starts_with("<")) << text;
}

TEST_F(SourceDocumentTest, WhatIsBetweenNodesIsKnown) {
    parse("<d> <a/><b/>\n<c/>\n\n  <d/>text<e/>&#32;<f/><![CDATA[ ]]><g/></d>");
    const auto breaks = [&](SourceDocument::Index i) { return node(i).breaksBefore; };
    EXPECT_EQ(breaks(1), 0U);
    EXPECT_EQ(node(1).gap, 3U);
    EXPECT_EQ(node(1).begin, 4U);
    EXPECT_EQ(node(2).gap, node(2).begin);
    EXPECT_EQ(breaks(3), 1U);
    EXPECT_EQ(breaks(4), 2U);
    EXPECT_FALSE(node(4).followsText);
    EXPECT_EQ(node(4).begin - node(4).gap, 4U);
    EXPECT_TRUE(node(5).followsText);
    EXPECT_FALSE(node(6).followsText);
    EXPECT_TRUE(node(7).followsText);
}

TEST_F(SourceDocumentTest, ElementsOfAnEntityAreMarked) {
    const std::string bytes =
        "<!DOCTYPE d [<!ENTITY e '<x><y/></x>'>\n<!ATTLIST z w CDATA 'v'>]>\n<d>\n&e;<z/></d>";
    const auto all = texts(bytes);
    EXPECT_FALSE(node(0).inEntity);
    EXPECT_TRUE(node(1).inEntity);
    EXPECT_TRUE(node(2).inEntity);
    EXPECT_FALSE(node(3).inEntity);
    EXPECT_EQ(all.at(3), "<z/>");
    EXPECT_EQ(all.at(0), "<d>\n&e;<z/></d>");
    EXPECT_EQ(*m_document->attribute(3, "w"), "v");
}

TEST_F(SourceDocumentTest, PrefixesAreResolvedWhereTheyStand) {
    parse("<d xmlns:p='one'><e xmlns:p='two'><f/></e><g xmlns='three'/></d>");
    EXPECT_EQ(m_document->nameSpaceOf("p", 2), "two");
    EXPECT_EQ(m_document->nameSpaceOf("p", 3), "one");
    EXPECT_EQ(m_document->nameSpaceOf("", 3), "three");
    EXPECT_EQ(m_document->nameSpaceOf("", 2), "");
    EXPECT_EQ(m_document->nameSpaceOf("q", 2), std::nullopt);
}

TEST_F(SourceDocumentTest, ChildrenAreDirectlyWithin) {
    parse("<d><a><b/></a><!-- c --><e/></d>");
    std::vector<SourceDocument::Index> found;
    for (const auto child : m_document->children(0))
        found.push_back(child);
    EXPECT_THAT(found, ElementsAre(1, 3, 4));
}

TEST_F(SourceDocumentTest, PlacesOfLinesAreThoseOfTheBegin) {
    parse("<d>\n  <a\n  b=''/>\n <c/></d>");
    EXPECT_EQ(node(1).line, 2U);
    EXPECT_EQ(node(1).column, 3U);
    EXPECT_EQ(node(2).line, 4U);
    EXPECT_EQ(node(2).column, 2U);
}

} // namespace
} // namespace Orvant
