#include <ConfigurationFramework/reading/LocatedDocument.h>

#include <ConfigurationFramework/ConfigWriter.h>
#include <Transcoding/Transcode.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace Orvant {
namespace {

using Places = std::vector<std::string>;

class LocatedDocuments : public testing::Test {
protected:
    ConfigWriter m_xerces{""}; // keeps it initialised
};

/// A line for each item: tag (empty for a reference), line and column.
Places placesIn(const std::string& bytes) {
    const LocatedDocument document(bytes);
    EXPECT_FALSE(document.error()) << document.error()->message;
    Places places;
    for (const LocatedDocument::Item& item : document.items())
        places.push_back(item.tag + ' ' + std::to_string(item.place.line) + ':' +
                         std::to_string(item.place.column));
    return places;
}

/// Line, column and message of the error.
std::string errorIn(const std::string& bytes) {
    const LocatedDocument document(bytes);
    if (!document.error())
        return "none";
    return std::to_string(document.error()->place.line) + ':' +
           std::to_string(document.error()->place.column) + ' ' + document.error()->message;
}

/// What placesIn() has to give: of each start tag that is named, in order, where it stands.
Places searched(const std::u16string& text, const std::vector<std::string>& tags) {
    Places places;
    std::size_t line = 1;
    std::size_t lineBegin = 0;
    std::size_t i = 0;
    for (const std::string& tag : tags) {
        const std::size_t position = text.find(transcode<char16_t>(std::string_view("<" + tag)), i);
        for (; i <= position; ++i)
            if (text[i] == u'\n' || (text[i] == u'\r' && text[i + 1] != u'\n')) {
                ++line;
                lineBegin = i + 1;
            }
        places.push_back(tag + ' ' + std::to_string(line) + ':' +
                         std::to_string(position - lineBegin + 1));
    }
    return places;
}

void expectFound(const std::string& text, const std::vector<std::string>& tags) {
    EXPECT_EQ(searched(transcode<char16_t>(std::string_view(text)), tags), placesIn(text)) << text;
}

TEST_F(LocatedDocuments, KnowWhereElementsBegin) {
    EXPECT_EQ((Places{"Configuration 1:1", "a 2:3", "b 3:11"}),
              placesIn("<Configuration>\n  <a\n   x='>'/><b></b></Configuration>"));
    expectFound("<Configuration><a/><b> t\n  <c k='>'/></b>\n<d></d></Configuration>",
                {"Configuration", "a", "b", "c", "d"});
    expectFound("<Configuration><a\n x='1'\n y='2'\n/><b><c/></b></Configuration>",
                {"Configuration", "a", "b", "c"});
}

TEST_F(LocatedDocuments, MayHoldAnythingBeforeAnElement) {
    for (const char* prolog :
         {"<?xml version='1.0'?>", "<?xml version='1.0'?>\n", "<!-- c -->", "<?p d?>\n ",
          "<!DOCTYPE Configuration [<!ENTITY e 'x'>]>\n", "<!DOCTYPE Configuration>\n"})
        expectFound(std::string(prolog) + "<Configuration>\n<a/></Configuration>",
                    {"Configuration", "a"});
    for (const char* content :
         {"\t", "text", "&lt;", "&#65;", "&#65; &amp;x", "<!-- < -->", "<!--\n--> ", "<?p <?>",
          "<?p?>\n", "<![CDATA[<]]>", "<![CDATA[\n]]>", "]] >"})
        expectFound("<Configuration>" + std::string(content) + "<a/>" + content + "<b>" + content +
                        "</b>" + content + "<c></c></Configuration>",
                    {"Configuration", "a", "b", "c"});
}

TEST_F(LocatedDocuments, MayBeLong) {
    std::string text = "<Configuration>";
    std::vector<std::string> tags{"Configuration"};
    std::mt19937 random(1);
    for (int i = 0; i < 3000; ++i) {
        text += std::string(random() % 60, ' ') + (random() % 3 == 0 ? "\n" : "\u00E4");
        text += "<a>" + std::string(random() % 500 == 0 ? 40'000 : 3, 'x') + "</a>";
        tags.emplace_back("a");
    }
    expectFound(text + "</Configuration>", tags);
}

TEST_F(LocatedDocuments, CountColumnsInUtf16) {
    EXPECT_EQ((Places{"Configuration 1:1", "a 1:17", "b 1:23"}),
              placesIn("<Configuration>\u00E4<a/>\U0001F600<b/></Configuration>"));
}

TEST_F(LocatedDocuments, MayHaveAnyLineEnds) {
    for (const char* end : {"\n", "\r\n", "\r"})
        expectFound("<Configuration>" + std::string(end) + end + " <a>" + end + "</a><b/>" + end +
                        "</Configuration>",
                    {"Configuration", "a", "b"});
}

TEST_F(LocatedDocuments, MayBeInAnyEncoding) {
    const std::u16string text =
        u"\uFEFF<?xml version='1.0' encoding='UTF-16'?>\n<Configuration>\n\u00E4\U0001F600"
        u"<a/></Configuration>";
    const std::string bytes(reinterpret_cast<const char*>(text.data()), 2 * text.size());
    EXPECT_EQ((Places{"Configuration 2:1", "a 3:4"}), placesIn(bytes));
    EXPECT_EQ((Places{"Configuration 2:1", "a 2:17"}),
              placesIn("<?xml version='1.0' encoding='ISO-8859-1'?>\n"
                       "<Configuration>\xE4<a/></Configuration>"));
    EXPECT_EQ((Places{"Configuration 1:1", "a 1:16"}),
              placesIn("\xEF\xBB\xBF<Configuration><a/></Configuration>"));
}

TEST_F(LocatedDocuments, PlaceWhatComesFromAnEntityAtItsReference) {
    const std::string doctype = "<!DOCTYPE Configuration [<!ENTITY e '<a/>\n<b/>'>"
                                "<!ENTITY nested 'x\n&e;<c/>'>]>\n";
    EXPECT_EQ((Places{"Configuration 4:1", "v 5:1", " 5:6", "a 5:6", "b 5:6", "w 5:13"}),
              placesIn(doctype + "<Configuration>\n<v>xy&e;</v><w/></Configuration>"));
    EXPECT_EQ(
        (Places{"Configuration 5:1", " 5:16", " 5:16", "a 5:16", "b 5:16", "c 5:16", "w 5:24"}),
        placesIn("<!-- c -->\n" + doctype + "<Configuration>&nested;<w/></Configuration>"));
}

TEST_F(LocatedDocuments, AgreeWithTheTree) {
    LocatedDocument document("<!DOCTYPE Configuration [<!ENTITY e '<a key=\"1\"/>'>]>"
                             "<Configuration version='7'><v><a key='2'/></v>&e;<a key='3'/>"
                             "</Configuration>");
    EXPECT_EQ("7", document.version());
    DocumentTree& tree = document.tree();
    const auto& items = document.items();
    for (const char* key : {"1", "2", "3"}) {
        const DocumentTree::Element element = tree.findInDocument("a", key);
        ASSERT_LT(element, items.size());
        EXPECT_EQ("a", items[element].tag);
    }
    EXPECT_EQ("v", items[items[tree.findInDocument("a", "2")].parent].tag);
    EXPECT_EQ("", items[items[tree.findInDocument("a", "1")].parent].tag);
    EXPECT_EQ(DocumentTree::root, items[tree.findInDocument("a", "3")].parent);
    EXPECT_EQ(DocumentTree::none, items.front().parent);
}

TEST_F(LocatedDocuments, KeepWhatAnAttributeReallySays) {
    const LocatedDocument document("<!DOCTYPE Configuration [<!ATTLIST d editable CDATA 'no'>]>"
                                   "<Configuration><a editable='True'/><b editable=''/><c/><d/>"
                                   "<e editable='false'/></Configuration>");
    std::vector<std::string> texts;
    for (const LocatedDocument::Item& item : document.items())
        texts.push_back(item.editable.value_or("none"));
    EXPECT_EQ((std::vector<std::string>{"none", "True", "", "none", "no", "false"}), texts);
}

TEST_F(LocatedDocuments, KnowTheTextThatReadersDoNotSee) {
    const LocatedDocument document(
        "<!DOCTYPE Configuration [<!ENTITY e '\u00E4&n;'><!ENTITY n '<in>i</in>n'>]><Configuration>"
        "<a>whole</a><b>x<!-- -->y<![CDATA[z]]></b><c>\U0001F600&e;</c><d>x<?p?> \n</d>"
        "<e><!-- -->unseen</e><f>x<g>y</g> z</f><h/></Configuration>");
    ASSERT_FALSE(document.error());
    std::vector<std::string> texts;
    for (DocumentTree::Element element = 1; element < document.items().size(); ++element)
        if (!document.items()[element].tag.empty())
            texts.push_back(document.items()[element].tag + ' ' + document.textCutOff(element));
    EXPECT_EQ((std::vector<std::string>{"a ", "b yz", "c \u00E4n", "in ", "d ", "e ", "f  z", "g ",
                                        "h "}),
              texts);
}

TEST_F(LocatedDocuments, TellThePathsOfElements) {
    const LocatedDocument document("<!DOCTYPE Configuration [<!ENTITY e '<c/>'>]><Configuration>"
                                   "<a key='1'><b key=''/>&e;</a></Configuration>");
    EXPECT_EQ("a[1]", document.path(1));
    EXPECT_EQ("a[1]/b", document.path(2));
    EXPECT_EQ("a[1]/c", document.path(4));
}

TEST_F(LocatedDocuments, TellTheFirstError) {
    EXPECT_EQ("none", errorIn("<Configuration/>"));
    EXPECT_TRUE(errorIn("<Configuration>\n <a></b></Configuration></c>").starts_with("2:"));
    EXPECT_NE(std::string::npos, errorIn("<Configuration>\n <a></b></Configuration>").find("'a'"));
    EXPECT_TRUE(errorIn("").find(' ') + 1 < errorIn("").size());
    EXPECT_TRUE(errorIn("<Configuration>\n\n<a>").starts_with("3:"));
    EXPECT_EQ("2:1 the root element is \"Settings\", not \"Configuration\"",
              errorIn("<!-- c -->\n<Settings/>"));
}

TEST_F(LocatedDocuments, TellWhatEndsTheParserWithoutAPlace) {
    // The name of the document type is none that a DOM accepts.
    const std::string error = errorIn("<!DOCTYPE a:b:c><Configuration/>");
    EXPECT_NE("none", error);
    EXPECT_NE("", error.substr(error.find(' ') + 1));
}

} // namespace
} // namespace Orvant
