#include <ConfigurationFramework/writing/ElementMerge.h>

#include <ConfigurationFramework/xml/ConfinedParsing.h>
#include <ConfigurationFramework/xml/XercesSession.h>

#include <ConfigurationFramework/writing/DocumentPrinter.h>
#include <ConfigurationFramework/writing/EditedDocumentParser.h>

#include <Logging/Logging.h>

#include <TestSupport.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <source_location>
#include <string>

namespace Orvant {
namespace {

using Support::withoutFormatting;

const Logging s_log("ElementMergeTest");

/// A parsed document.
class Document {
public:
    explicit Document(const std::string& text)
        : m_parser(m_confinement.makeParser<EditedDocumentParser>()) {
        m_confinement.parseBytes(*m_parser, text);
    }
    xercesc::DOMElement& root() { return *m_parser->getDocument()->getDocumentElement(); }
    std::string text() { return withoutFormatting(printDocument(*m_parser->getDocument()).text); }

private:
    XercesSession m_session{s_log, std::source_location::current()};
    ParserConfinement m_confinement{ParserConfinement::configurations};
    std::unique_ptr<EditedDocumentParser> m_parser;
};

std::optional<WrittenElement> element(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    return copyOf(Document(text).root());
}

/// What becomes of an element that changed from `base` to `now`, of which `stored` is stored.
std::string merged(const std::string& target, const std::string& base, const std::string& now,
                   const std::string& stored, std::size_t expectedCount) {
    const auto in = [](const std::string& contents) { return element("<r>" + contents + "</r>"); };
    const auto b = in(base);
    const auto n = in(now);
    const auto s = in(stored);
    Document document("<r>" + target + "</r>");
    EXPECT_EQ(expectedCount, mergeChanges(document.root(), {&*b, &*n, &*s}));
    const std::string text = document.text();
    return text == "<r/>" ? "" : text.substr(3, text.size() - 7);
}

/// What becomes of it where everything is stored.
std::string merged(const std::string& target, const std::string& base, const std::string& now,
                   std::size_t expectedCount = 1) {
    return merged(target, base, now, now, expectedCount);
}

TEST(ElementMerge, ReplacesAChangedValue) {
    EXPECT_EQ("<a>3</a><b>9</b>",
              merged("<a>8</a><b>9</b>", "<a>1</a><b>2</b>", "<a>3</a><b>2</b>"));
}

TEST(ElementMerge, CountsNothingWhereTheDocumentHoldsTheChangeAlready) {
    EXPECT_EQ("<a>3</a>", merged("<a>3</a>", "<a>1</a>", "<a>3</a>", 0));
    EXPECT_EQ("<l><item>3</item></l>",
              merged("<l><item>3</item></l>", "<l/>", "<l><item>3</item></l>", 0));
}

TEST(ElementMerge, RemovesWhatIsNotStoredAnyMoreWithItsComment) {
    EXPECT_EQ("<b/>", merged("<!--of a--><a>8</a><b/>", "<a>1</a>", "<a>3</a>", "", 1));
    EXPECT_EQ("<b/>", merged("<b/>", "<a>1</a>", "<a>3</a>", "", 0));
}

TEST(ElementMerge, AddsAValueWithItsComment) {
    EXPECT_EQ("<b/><!--of a--><a>3</a>", merged("<b/>", "", "<!--of a--><a>3</a>"));
}

TEST(ElementMerge, KeepsAttributesAndOrder) {
    EXPECT_EQ("<a x=\"y\">3</a><b/>", merged("<a x=\"y\">8</a><b/>", "<a>1</a>", "<a>3</a>"));
}

TEST(ElementMerge, MergesGroupsAtAnyDepth) {
    EXPECT_EQ("<g><h><a>3</a><b>9</b></h></g>",
              merged("<g><h><a>8</a><b>9</b></h></g>", "<g><h><a>1</a><b>2</b></h></g>",
                     "<g><h><a>3</a><b>2</b></h></g>"));
}

TEST(ElementMerge, RemovesAGroupThatHoldsNothingAnyMore) {
    EXPECT_EQ("", merged("<g><a>8</a></g>", "<g><a>1</a></g>", "<g><a>3</a></g>", "", 1));
    EXPECT_EQ("<g><b/></g>",
              merged("<g><a>8</a><b/></g>", "<g><a>1</a></g>", "<g><a>3</a></g>", "", 1));
}

TEST(ElementMerge, MakesNoGroupForNothing) {
    EXPECT_EQ("", merged("", "<g><a>1</a><b>2</b></g>", "<g><a>3</a><b>2</b></g>", "<g/>", 0));
}

TEST(ElementMerge, RemovesAGroupThatIsGoneWithAllThatOthersWroteIntoIt) {
    EXPECT_EQ("<g key=\"2\"><a>1</a></g>",
              merged("<g key=\"1\"><a>8</a><b/></g><g key=\"2\"><a>1</a></g>",
                     "<g key=\"1\"><a>1</a></g><g key=\"2\"><a>1</a></g>",
                     "<g key=\"2\"><a>1</a></g>"));
}

TEST(ElementMerge, TellsKeyedElementsApart) {
    EXPECT_EQ("<g><a>0</a></g><g key=\"1\"><a>8</a></g><g key=\"2\"><a>3</a></g>",
              merged("<g><a>0</a></g><g key=\"1\"><a>8</a></g><g key=\"2\"><a>9</a></g>",
                     "<g key=\"1\"><a>1</a></g><g key=\"2\"><a>1</a></g>",
                     "<g key=\"1\"><a>1</a></g><g key=\"2\"><a>3</a></g>"));
}

TEST(ElementMerge, FindsAnElementWithoutKeyAsReadersDo) {
    // The first of its name, where none is told apart by a key ...
    EXPECT_EQ("<a key=\"x\">3</a><a>9</a>",
              merged("<a key=\"x\">8</a><a>9</a>", "<a>1</a>", "<a>3</a>"));
    // ... and else the one without a key.
    EXPECT_EQ("<g key=\"1\"><a>1</a></g><g><a>3</a></g>",
              merged("<g key=\"1\"><a>1</a></g><g><a>8</a></g>",
                     "<g key=\"1\"><a>1</a></g><g><a>1</a></g>",
                     "<g key=\"1\"><a>1</a></g><g><a>3</a></g>"));
}

TEST(ElementMerge, ReplacesListsAndWhatCannotBeToldApartAsAWhole) {
    EXPECT_EQ("<l><item>1</item><item>3</item></l>",
              merged("<l><item>8</item></l>", "<l><item>1</item></l>",
                     "<l><item>1</item><item>3</item></l>"));
    EXPECT_EQ("<l/>", merged("<l><item>8</item></l>", "<l><item>1</item></l>", "<l/>"));
    EXPECT_EQ("<t><p>1</p><p>3</p></t>",
              merged("<t><p>1</p><p>8</p><p>9</p></t>", "<t><p>1</p><p>2</p></t>",
                     "<t><p>1</p><p>3</p></t>"));
}

TEST(ElementMerge, ReplacesWhatIsNestedDeeperThanTheStack) {
    std::string nested;
    for (int i = 0; i < 100'000; ++i)
        nested += "<x>";
    for (int i = 0; i < 100'000; ++i)
        nested += "</x>";
    EXPECT_EQ("<a>3</a>", merged("<a>" + nested + "</a>", "<a>1</a>", "<a>3</a>"));
}

TEST(ElementMerge, PutsWhatIsWrittenAmongDifferencesOnly) {
    EXPECT_EQ("<a>1</a><m>3</m>",
              merged("<a>1</a><m>8</m>", "<a>1</a>", "<a>1</a>", "<m>3</m>", 1));
}

TEST(ElementMerge, PutsAListInFrontOfAChildThatHasOneOfTheName) {
    EXPECT_EQ("<g><l><item>1</item></l><h><l><item>3</item></l></h></g>",
              merged("<g><h><l><item>2</item></l></h></g>",
                     "<g><l><item>1</item></l><h><l><item>2</item></l></h></g>",
                     "<g><l><item>1</item></l><h><l><item>3</item></l></h></g>",
                     "<g><h><l><item>3</item></l></h></g>", 1));
}

TEST(ElementMerge, GivesAListThatWouldBeReadFromAChildItsItems) {
    EXPECT_EQ("<g><l><item>2</item></l><h><l><item>2</item></l></h><a>3</a></g>",
              merged("<g><h><l><item>2</item></l></h><l><item>1</item></l><a>1</a></g>",
                     "<g><l><item>2</item></l><h><l><item>2</item></l></h><a>1</a></g>",
                     "<g><l><item>2</item></l><h><l><item>2</item></l></h><a>3</a></g>"));
}

TEST(ElementMerge, MergesItemsThatAreToldApartByKeys) {
    EXPECT_EQ("<t><item key=\"1\">3</item><item key=\"2\">9</item><Theirs/></t>",
              merged("<t><item key=\"1\">1</item><item key=\"2\">9</item><Theirs/></t>",
                     "<t><item key=\"1\">1</item><item key=\"2\">2</item></t>",
                     "<t><item key=\"1\">3</item><item key=\"2\">2</item></t>"));
}

TEST(WrittenElement, IsTheSameWithAnotherComment) {
    EXPECT_EQ(element("<r><!--x--><a>1</a></r>"), element("<r><a>1</a></r>"));
    EXPECT_NE(element("<r><a>1</a></r>"), element("<r><a>2</a></r>"));
    EXPECT_NE(element("<r><a key=\"1\"/></r>"), element("<r><a/></r>"));
}

} // namespace
} // namespace Orvant
