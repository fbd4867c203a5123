#include <ConfigurationFramework/schema/LineRewriting.h>

#include <gtest/gtest.h>

namespace Orvant::LineRewriting {
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
    return replacePrefix(line, "p:", "q:");
}

struct Line {
    const char* before;
    const char* after;
};

class LineWithPrefixes : public testing::TestWithParam<Line> {};

TEST_P(LineWithPrefixes, KeepsItsTagsInStep) {
    EXPECT_EQ(GetParam().after, replaced(GetParam().before));
}

INSTANTIATE_TEST_SUITE_P(
    BothTagsOfAnElementWithText, LineWithPrefixes,
    testing::Values(
        Line{"<p:a>text</p:a>", "<q:a>text</q:a>"}, Line{" \t<p:a></p:a> \r", " \t<q:a></q:a> \r"},
        Line{"<p:a\t>p:</p:a >", "<q:a\t>p:</q:a >"},
        Line{"<p:a b='>' c=\"</p:a>\">x</p:a>", "<q:a b='>' c=\"</p:a>\">x</q:a>"},
        Line{"<p:a>x<![CDATA[<b></p:a>]]>y</p:a>", "<q:a>x<![CDATA[<b></p:a>]]>y</q:a>"},
        Line{"<p:a><!-- </p:a> --><?b </p:a>?></p:a>", "<q:a><!-- </p:a> --><?b </p:a>?></q:a>"},
        Line{"<p:a>text</p:a> <!-- <p:b> --> <?c </p:c>?>",
             "<q:a>text</q:a> <!-- <p:b> --> <?c </p:c>?>"},
        Line{"<!-- <b> --> <?c d?><![CDATA[</e>]]><p:a>text</p:a>",
             "<!-- <b> --> <?c d?><![CDATA[</e>]]><q:a>text</q:a>"},
        Line{"x<p:a>text</p:a>y p:", "x<q:a>text</q:a>y p:"},
        Line{"<p:a>text</p:a><!-- p:", "<q:a>text</q:a><!-- p:"}));

INSTANTIATE_TEST_SUITE_P(NeitherTagBehindAnotherOccurrence, LineWithPrefixes,
                         testing::Values(Line{"<!-- p: --><p:a>text</p:a>",
                                              "<!-- q: --><p:a>text</p:a>"},
                                         Line{"p:x<p:a>p:</p:a>", "q:x<p:a>p:</p:a>"}));

INSTANTIATE_TEST_SUITE_P(AnEndTagBehindText, LineWithPrefixes,
                         testing::Values(Line{"</p:a>", "</q:a>"}, Line{"text</p:a>", "text</q:a>"},
                                         Line{" p: p: text</p:a >", " p: p: text</q:a >"},
                                         Line{"p:<!-- p: --><![CDATA[p:]]><?b p:?></p:a>",
                                              "p:<!-- p: --><![CDATA[p:]]><?b p:?></q:a>"},
                                         Line{"p:]]></p:a> <!-- p: -->",
                                              "p:]]></q:a> <!-- p: -->"}));

INSTANTIATE_TEST_SUITE_P(
    TheFirstOccurrenceOfOtherLines, LineWithPrefixes,
    testing::Values(
        Line{"", ""}, Line{"text", "text"}, Line{"<p:", "<q:"}, Line{"<p:a>", "<q:a>"},
        Line{"p: <p:a/>", "q: <p:a/>"}, Line{"<p:a/>", "<q:a/>"}, Line{"<p:a b=\"", "<q:a b=\""},
        Line{"<p:a>text</p:a><p:b/>", "<q:a>text</p:a><p:b/>"},
        Line{"<p:a><p:b/></p:a>", "<q:a><p:b/></p:a>"},
        Line{"<p:a><p:b>text</p:b></p:a>", "<q:a><p:b>text</p:b></p:a>"},
        Line{"p:</p:a></p:b>", "q:</p:a></p:b>"}, Line{"p:</p:a><p:b>", "q:</p:a><p:b>"},
        Line{"<p:a>text</p:ab>", "<q:a>text</p:ab>"}, Line{"<p:ab>text</p:a>", "<q:ab>text</p:a>"},
        Line{"<p:a>text</a>", "<q:a>text</a>"}, Line{"<a>text</p:a>", "<a>text</q:a>"},
        Line{"<a>p:</a>", "<a>q:</a>"}, Line{"p:</a>", "q:</a>"},
        Line{"<o:a>text p:</o:a>", "<o:a>text q:</o:a>"}, Line{"<p:a>text</p:a", "<q:a>text</p:a"},
        Line{"<p:a>text</p:a x>", "<q:a>text</p:a x>"}, Line{"<p:a>text</p:", "<q:a>text</p:"},
        Line{"<p:a>text</", "<q:a>text</"}, Line{"<p:a><![CDATA[", "<q:a><![CDATA["},
        Line{"<p:a><!--</p:a>", "<q:a><!--</p:a>"},
        Line{"<p:a b=\"c\"/></p:a>", "<q:a b=\"c\"/></p:a>"},
        Line{"<!-- p: </p:a>", "<!-- q: </p:a>"}));

TEST(EndLineOfDocumentation, BreaksTheLineBehindTheEndTag) {
    EXPECT_EQ("</p1:documentation>\n    </p1:annotation>",
              endLineOfDocumentation("</p1:documentation>    </p1:annotation>"));
    EXPECT_EQ("</p1:documentation>\n</p1:annotation>",
              endLineOfDocumentation("</p1:documentation></p1:annotation>"));
    EXPECT_EQ("a</p1:documentation>", endLineOfDocumentation("a</p1:documentation>"));
}

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
} // namespace Orvant::LineRewriting
