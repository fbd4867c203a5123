#include <ConfigurationFramework/xml/XmlText.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Orvant {
namespace {

void expectSame(const XmlString& expected, bool changed, const XmlText& actual) {
    EXPECT_EQ(expected, actual.text);
    EXPECT_EQ(changed, actual.changed) << testing::PrintToString(expected);
}

TEST(XmlText, HoldsEachByteThatIsACharacterAsItIs) {
    for (unsigned int byte = 0; byte < 256; ++byte) {
        const bool isCharacter =
            (byte >= 0x20 && byte <= 0x7F) || byte == '\t' || byte == '\n' || byte == '\r';
        const XmlString expected(1, isCharacter ? static_cast<XMLCh>(byte) : u'\uFFFD');
        const std::string text(1, static_cast<char>(byte));
        expectSame(expected, !isCharacter, toXmlText(text));
        expectSame(u"ab" + expected, !isCharacter, toXmlText("ab" + text));
        expectSame(expected + u"ab", !isCharacter, toXmlText(text + "ab"));
    }
}

TEST(XmlText, HoldsCharactersOfSeveralBytes) {
    expectSame(u"", false, toXmlText(""));
    expectSame(u"a\u00E4b", false,
               toXmlText("a\xC3\xA4"
                         "b"));
    expectSame(u"\U0001F600", false, toXmlText("\xF0\x9F\x98\x80"));
    expectSame(std::u16string(1, u'\x80'), false, toXmlText("\xC2\x80"));
    expectSame(u"\uFFFD", false, toXmlText("\xEF\xBF\xBD"));
    expectSame(u"\uFFFD", true, toXmlText("\xEF\xBF\xBE"));
    expectSame(u"\x7F\uFFFD ~", true, toXmlText("\x7F\x1F ~"));
}

TEST(XmlText, SeparatesHyphensInCommentsOnly) {
    for (const std::string& text : std::vector<std::string>{"-", "--", "---", "a-", "-->"})
        expectSame(XmlString(text.begin(), text.end()), false, toXmlText(text));
    expectSame(u"", false, toXmlComment(""));
    expectSame(u"- ", false, toXmlComment("-"));
    expectSame(u"- - ", false, toXmlComment("--"));
    expectSame(u"- - - ", false, toXmlComment("---"));
    expectSame(u"a- ", false, toXmlComment("a-"));
    expectSame(u"-a-b", false, toXmlComment("-a-b"));
    expectSame(u"a- -b- ", false, toXmlComment("a--b-"));
    expectSame(u"a b", false, toXmlComment("a b"));
}

TEST(XmlText, ReplacesInCommentsWhatTextsCannotHold) {
    for (const std::string& hyphen : std::vector<std::string>{"", "-"}) {
        const XmlString sameHyphen(hyphen.begin(), hyphen.end());
        expectSame(sameHyphen + u"\uFFFD\n", true, toXmlComment(hyphen + "\x01\n"));
        expectSame(sameHyphen + u"\uFFFD\u00E4", true, toXmlComment(hyphen + "\xFF\xC3\xA4"));
        expectSame(sameHyphen + u"\x7F", false, toXmlComment(hyphen + "\x7F"));
    }
}

} // namespace
} // namespace Orvant
