#include <GeneralServices/XercesHelperFunctions.h>

#include <gtest/gtest.h>

#include <string>

namespace Orvant {
namespace {

using XmlChString = std::basic_string<XMLCh>;

struct Pair {
    std::string utf8;
    XmlChString utf16;
};

const Pair texts[] = {
    {"", u""},
    {"Configuration", u"Configuration"},
    {"a <&>\t\n\"'", u"a <&>\t\n\"'"},
    {"Größe", u"Größe"},
    {"設定 настройки €", u"設定 настройки €"},
    {"😀 𝄞", u"😀 𝄞"},
};

TEST(XercesHelperFunctions, ConvertsUtf8ToUtf16) {
    for (const auto& [utf8, utf16] : texts)
        EXPECT_EQ(utf16, XercesHelperFunctions::stringToXmlCh(utf8)) << utf8;
}

TEST(XercesHelperFunctions, ConvertsUtf16ToUtf8) {
    for (const auto& [utf8, utf16] : texts)
        EXPECT_EQ(utf8, XercesHelperFunctions::xmlChToString(utf16.c_str()));
}

TEST(XercesHelperFunctions, ReplacesWhatIsIllFormed) {
    EXPECT_EQ(u"a\uFFFDb", XercesHelperFunctions::stringToXmlCh("a\xFF"
                                                                "b"));
    EXPECT_EQ(u"Gr\uFFFD", XercesHelperFunctions::stringToXmlCh("Gr\xF6"));
    const XMLCh loneHigh[] = {u'a', 0xD83D, u'b', 0};
    EXPECT_EQ("a\uFFFDb", XercesHelperFunctions::xmlChToString(loneHigh));
    const XMLCh loneLow[] = {0xDE00, 0};
    EXPECT_EQ("\uFFFD", XercesHelperFunctions::xmlChToString(loneLow));
}

TEST(XercesHelperFunctions, TakesNullForEmpty) {
    EXPECT_EQ("", XercesHelperFunctions::xmlChToString(nullptr));
    EXPECT_TRUE(XercesHelperFunctions::compareXmlCh(nullptr, nullptr));
    EXPECT_TRUE(XercesHelperFunctions::compareXmlCh(nullptr, u""));
    EXPECT_TRUE(XercesHelperFunctions::compareXmlCh(u"", nullptr));
    EXPECT_FALSE(XercesHelperFunctions::compareXmlCh(nullptr, u"a"));
    EXPECT_FALSE(XercesHelperFunctions::compareXmlCh(u"a", nullptr));
}

TEST(XercesHelperFunctions, KeepsANulOnTheWayInAndStopsAtItOnTheWayBack) {
    const XmlChString withNul = XercesHelperFunctions::stringToXmlCh(std::string("a\0b", 3));
    EXPECT_EQ(XmlChString(u"a\0b", 3), withNul);
    EXPECT_EQ("a", XercesHelperFunctions::xmlChToString(withNul.c_str()));
}

TEST(XercesHelperFunctions, ComparesWholeTexts) {
    for (const auto& [utf8, utf16] : texts) {
        const XmlChString copy = utf16;
        EXPECT_TRUE(XercesHelperFunctions::compareXmlCh(utf16.c_str(), copy.c_str())) << utf8;
        const XmlChString longer = utf16 + u"x";
        EXPECT_FALSE(XercesHelperFunctions::compareXmlCh(utf16.c_str(), longer.c_str())) << utf8;
        EXPECT_FALSE(XercesHelperFunctions::compareXmlCh(longer.c_str(), utf16.c_str())) << utf8;
    }
    EXPECT_FALSE(XercesHelperFunctions::compareXmlCh(u"configuration", u"Configuration"));
    EXPECT_TRUE(XercesHelperFunctions::compareXmlCh(u"a\0b", u"a\0c"));
}

} // namespace
} // namespace Orvant
