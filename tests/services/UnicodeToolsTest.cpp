#include <UnicodeTools/UnicodeTools.h>

#include <Transcoding/Transcode.h>

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace Orvant {
namespace {

/// One text in the encodings of all character types that the suite uses.
struct Text {
    std::string utf8;
    std::u16string utf16;
    std::u32string utf32;
    std::wstring wide;

    template <typename Char>
    const std::basic_string<Char>& as() const {
        return std::get<const std::basic_string<Char>&>(std::tie(utf8, utf16, utf32, wide));
    }
};

/// The same text with each kind of literal.
#define ORVANT_TEXT(literal) {literal, u##literal, U##literal, L##literal}

const Text texts[] = {
    ORVANT_TEXT(""),
    ORVANT_TEXT("plain ASCII\t~"),
    ORVANT_TEXT("Größe"),
    ORVANT_TEXT("\u0080 \u07FF"),         // ends of what takes two bytes in UTF-8
    ORVANT_TEXT("\u0800 \uD7FF"),         // up to the surrogates
    ORVANT_TEXT("\uE000 \uFFFD \uFFFF"),  // and after them
    ORVANT_TEXT("設定 настройки €"),      //
    ORVANT_TEXT("😀"),                    // a surrogate pair in UTF-16
    ORVANT_TEXT("a\U00010000\U0010FFFFb") // first and last surrogate pair
};

#undef ORVANT_TEXT

TEST(UnicodeTools, WidensUtf8) {
    for (const Text& text : texts)
        EXPECT_EQ(text.wide, UnicodeTools::utf8_to_wstring(text.utf8)) << text.utf8;
}

TEST(UnicodeTools, KeepsANul) {
    EXPECT_EQ(std::wstring(L"a\0b", 3), UnicodeTools::utf8_to_wstring(std::string("a\0b", 3)));
}

TEST(UnicodeTools, ReplacesBytesThatAreNotUtf8) {
    EXPECT_EQ(L"Gr\uFFFD\uFFFDe", UnicodeTools::utf8_to_wstring("Gr\xF6\xDF"
                                                                "e"));
}

template <typename Char>
class TranscodeTest : public testing::Test {
protected:
    /// Converts into and out of Char.
    template <typename Other>
    static void expectBothWays(const Text& text) {
        const std::basic_string<Char>& here = text.as<Char>();
        const std::basic_string<Other>& there = text.as<Other>();
        EXPECT_TRUE(there == transcode<Other>(std::basic_string_view<Char>(here))) << text.utf8;
        EXPECT_TRUE(here == transcode<Char>(std::basic_string_view<Other>(there))) << text.utf8;
    }
};

using CharacterTypes = testing::Types<char, char16_t, char32_t, wchar_t>;
TYPED_TEST_SUITE(TranscodeTest, CharacterTypes);

TYPED_TEST(TranscodeTest, ConvertsFromAndToEveryEncoding) {
    for (const Text& text : texts) {
        this->template expectBothWays<char>(text);
        this->template expectBothWays<char16_t>(text);
        this->template expectBothWays<char32_t>(text);
        this->template expectBothWays<wchar_t>(text);
    }
}

TYPED_TEST(TranscodeTest, KeepsANul) {
    const std::basic_string<TypeParam> nul(2, TypeParam());
    EXPECT_TRUE(nul == transcode<TypeParam>(std::string_view("\0\0", 2)));
    EXPECT_EQ(std::string(2, '\0'), transcode<char>(std::basic_string_view<TypeParam>(nul)));
}

/// Converts to UTF-32, where each character that came out is one element.
template <typename Char>
std::u32string decoded(const std::basic_string<Char>& text) {
    return transcode<char32_t>(std::basic_string_view<Char>(text));
}

TEST(Transcode, ReplacesEachIllFormedByteOfUtf8) {
    const struct {
        std::string bytes;
        std::u32string expected;
    } rows[] = {
        {"\x80", U"\uFFFD"}, // continuation without a lead
        {"a\xBF"
         "b",
         U"a\uFFFDb"},                           //
        {"\xC3", U"\uFFFD"},                     // cut off
        {"\xE2\x82", U"\uFFFD\uFFFD"},           //
        {"\xF0\x9F\x98", U"\uFFFD\uFFFD\uFFFD"}, //
        {"\xC3(", U"\uFFFD("},                   // cut off by something valid
        {"\xE2\x82"
         "A",
         U"\uFFFD\uFFFDA"},                                //
        {"\xE2\xC3\xA4", U"\uFFFDä"},                      //
        {"\xF0\x9F\xF0\x9F\x98\x80", U"\uFFFD\uFFFD😀"},   //
        {"\xC0\xAF", U"\uFFFD\uFFFD"},                     // longer than necessary
        {"\xE0\x80\xAF", U"\uFFFD\uFFFD\uFFFD"},           //
        {"\xF0\x80\x80\xAF", U"\uFFFD\uFFFD\uFFFD\uFFFD"}, //
        {"\xED\xA0\x80", U"\uFFFD\uFFFD\uFFFD"},           // a surrogate
        {"\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"}, // beyond U+10FFFF
        {"\xF8\xFE\xFF", U"\uFFFD\uFFFD\uFFFD"},           // never in UTF-8
    };
    for (const auto& [bytes, expected] : rows)
        EXPECT_TRUE(expected == decoded(bytes)) << testing::PrintToString(bytes);
}

TEST(Transcode, ReplacesEachLoneSurrogateOfUtf16) {
    constexpr char16_t high = 0xD83D;
    constexpr char16_t low = 0xDE00;
    const struct {
        std::u16string units;
        std::u32string expected;
    } rows[] = {
        {{high, low}, U"😀"},
        {{high}, U"\uFFFD"},
        {{low}, U"\uFFFD"},
        {{high, u'a'}, U"\uFFFDa"},
        {{low, u'a'}, U"\uFFFDa"},
        {{low, high}, U"\uFFFD\uFFFD"},
        {{high, high, low}, U"\uFFFD😀"},
        {{high, low, low}, U"😀\uFFFD"},
    };
    for (const auto& [units, expected] : rows)
        EXPECT_TRUE(expected == decoded(units)) << testing::PrintToString(units);
}

TEST(Transcode, ReplacesWhatIsNoCharacterInUtf32) {
    for (const char32_t unit : {0xD800u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
        const std::u32string text = {U'a', unit, U'b'};
        EXPECT_EQ("a\uFFFDb", transcode<char>(std::u32string_view(text)));
        EXPECT_TRUE(u"a\uFFFDb" == transcode<char16_t>(std::u32string_view(text)));
    }
}

TEST(Transcode, TakesOneCodePointAtATime) {
    const std::string text = "a\u00e4\xFF"
                             "😀";
    const char* position = text.data();
    const char* const end = position + text.size();
    const struct {
        char32_t codePoint;
        std::ptrdiff_t offset;
    } steps[] = {{U'a', 1}, {U'ä', 3}, {replacementCharacter, 4}, {U'😀', 8}};
    for (const auto& [codePoint, offset] : steps) {
        EXPECT_EQ(std::uint32_t{codePoint}, takeCodePoint(position, end));
        EXPECT_EQ(offset, position - text.data());
    }
}

} // namespace
} // namespace Orvant
