#include <ConfigurationFramework/SchemaText.h>

#include <gtest/gtest.h>

namespace Orvant::SchemaText {
namespace {

TEST(ReplaceFirst, ReplacesTheFirstOccurrenceAlone) {
    EXPECT_EQ("[bab", replaceFirst("abab", "a", "["));
    EXPECT_EQ("ab", replaceFirst("ab", "c", "["));
    EXPECT_EQ("b", replaceFirst("ab", "a", ""));
    EXPECT_EQ("", replaceFirst("", "a", "["));
    EXPECT_EQ("x--y", replaceFirst("x-y", "-", "--"));
}

TEST(ReplaceFirst, InsertsAtTheStartForNothing) {
    EXPECT_EQ("[ab", replaceFirst("ab", "", "["));
    EXPECT_EQ("[", replaceFirst("", "", "["));
}

std::string replaced(const std::string& line) {
    return replacePrefixOfEndTag(line, "p:", "q:");
}

TEST(ReplacePrefixOfEndTag, ReplacesItInALineThatIsOneElementWithText) {
    EXPECT_EQ("<p:a>text</q:a>", replaced("<p:a>text</p:a>"));
    EXPECT_EQ(" \t<p:a></q:a> \r", replaced(" \t<p:a></p:a> \r"));
    EXPECT_EQ("<p:a\t>p:</q:a >", replaced("<p:a\t>p:</p:a >"));
    EXPECT_EQ("<p:a b='>' c=\"</p:a>\">x</q:a>", replaced("<p:a b='>' c=\"</p:a>\">x</p:a>"));
    EXPECT_EQ("<p:a>x<![CDATA[<b></p:a>]]>y</q:a>", replaced("<p:a>x<![CDATA[<b></p:a>]]>y</p:a>"));
    EXPECT_EQ("<p:a><!-- </p:a> --><?b </p:a>?></q:a>",
              replaced("<p:a><!-- </p:a> --><?b </p:a>?></p:a>"));
}

class OtherLine : public testing::TestWithParam<const char*> {};

TEST_P(OtherLine, StaysAsItIs) {
    EXPECT_EQ(GetParam(), replaced(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    ReplacePrefixOfEndTag, OtherLine,
    testing::Values("", " ", "text", "<", "<p:", "<p:a", "<p:a>", "<p:a>text", "<p:a/>",
                    "<p:a b=\"", "<p:a b=\"c", "</p:a>", "text</p:a>", "x<p:a>text</p:a>",
                    "<p:a>text</p:a>x", "<p:a>text</p:a><p:b/>", "<p:a><p:b/></p:a>",
                    "<p:a><p:b>text</p:b></p:a>", "<p:a>text</p:ab>", "<p:ab>text</p:a>",
                    "<p:a>text</a>", "<a>text</p:a>", "<a>text</a>", "<o:a>text</o:a>",
                    "<p:a>text</p:a", "<p:a>text</p:a x>", "<p:a>text</p:", "<p:a>text</",
                    "<p:a><![CDATA[", "<p:a><!--</p:a>", "<p:a b=\"c\"/></p:a>"));

TEST(SchemaHeaders, AreStartTagsOnOneLine) {
    EXPECT_EQ("<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
              "xmlns:ov=\"http://www.orvant.com/OV_QLV100\" "
              "xmlns=\"http://www.orvant.com/OV_QLV100\" "
              "targetNamespace=\"http://www.orvant.com/OV_QLV100\" "
              "elementFormDefault=\"qualified\">",
              suiteHeader(true));
    EXPECT_EQ("<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
              "xmlns=\"http://www.orvant.com/OV_QLV100\" "
              "targetNamespace=\"http://www.orvant.com/OV_QLV100\" "
              "elementFormDefault=\"qualified\">",
              suiteHeader(false));
    EXPECT_EQ("<schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
              "xmlns:ov=\"http://www.orvant.com/OV_XsdReader\" "
              "xmlns=\"http://www.orvant.com/OV_XsdReader\" "
              "targetNamespace=\"http://www.orvant.com/OV_XsdReader\" "
              "elementFormDefault=\"qualified\">",
              readerHeader());
    EXPECT_EQ("<p1:schema xmlns:p1=\"http://www.orvant.com/OV_XsdReader\">", modelHeader());
    EXPECT_EQ("<p1:schema xmlns:p1=\"http://www.orvant.com/OV_XsdReader\"/>", emptyModelHeader());
}

} // namespace
} // namespace Orvant::SchemaText
