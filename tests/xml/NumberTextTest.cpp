#include <ConfigurationFramework/xml/NumberText.h>

#include <gtest/gtest.h>

#include <cstring>
#include <locale>
#include <random>
#include <sstream>

namespace Orvant {
namespace {

template <typename Number>
bool extractFromStream(const std::string& text, Number& number) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    Number extracted{};
    if (!(stream >> extracted))
        return false;
    number = extracted;
    return true;
}

template <typename Number>
void expectSameAsStream(const std::string& text) {
    Number fromStream = 77;
    Number fromText = 77;
    ASSERT_EQ(extractFromStream(text, fromStream), extractNumber(text, fromText)) << text;
    ASSERT_EQ(0, std::memcmp(&fromStream, &fromText, sizeof(Number))) << text;
}

TEST(NumberText, IsExtractedAsAStreamDoes) {
    for (const char* text : {"",
                             " ",
                             "0",
                             "-0",
                             "+0",
                             "007",
                             "12abc",
                             " \t\n\v\f\r12",
                             "+-1",
                             "-+1",
                             "--1",
                             "+",
                             "-",
                             "2147483647",
                             "2147483648",
                             "-2147483648",
                             "-2147483649",
                             "99999999999999999999",
                             "0x1F",
                             "0x",
                             "1e5",
                             "1e",
                             "1e+",
                             "1e-",
                             "1e+5",
                             "1E5",
                             "e5",
                             ".",
                             ".5",
                             "5.",
                             "-.5",
                             "+.5",
                             "..5",
                             "1.2.3",
                             "1e5e5",
                             "1e5.5",
                             "1.e5",
                             ".e5",
                             "1e400",
                             "-1e400",
                             "1e-400",
                             "-1e-400",
                             "4.9e-324",
                             "2e-324",
                             "1.7976931348623157e308",
                             "1.7976931348623159e308",
                             "inf",
                             "nan",
                             "-inf",
                             "infinity",
                             "1,5",
                             "1'000",
                             "1 000",
                             "1_000",
                             "0b1",
                             "1f",
                             "1e0005",
                             "\xC2\xA0"
                             "1"}) {
        expectSameAsStream<int>(text);
        expectSameAsStream<double>(text);
    }
}

TEST(NumberText, IsExtractedAsAStreamDoesInAMillionGeneratedTexts) {
    static const char* const pieces[] = {
        "0",  "1", "9",  "12",  "345", "2147483647", ".",   "e",    "E",    "+",     "-", " ",
        "\t", "x", "0x", "inf", "nan", "000",        "e30", "e-30", "e308", "e-320", ",", "abc"};
    std::mt19937 random(4711);
    for (int i = 0; i < 1'000'000; ++i) {
        std::string text;
        for (auto count = random() % 8; count > 0; --count)
            text += pieces[random() % std::size(pieces)];
        expectSameAsStream<int>(text);
        expectSameAsStream<double>(text);
        if (HasFatalFailure())
            return;
    }
}

template <typename Number>
NumberMatch matchOf(const std::string& text) {
    Number number{};
    const NumberMatch match = matchNumber(text, number);
    Number extracted{};
    EXPECT_EQ(extractNumber(text, extracted), match >= NumberMatch::Beginning) << text;
    EXPECT_EQ(extracted, number) << text;
    return match;
}

TEST(NumberText, TellsHowMuchOfATextIsANumber) {
    for (const char* text : {"5", " +5\n", "-5 \t\r", "007"}) {
        EXPECT_EQ(NumberMatch::Whole, matchOf<int>(text)) << text;
        EXPECT_EQ(NumberMatch::Whole, matchOf<double>(text)) << text;
    }
    for (const char* text : {"60,5", "3O", "12 x", "1 2", "5-", "0x1F"}) {
        EXPECT_EQ(NumberMatch::Beginning, matchOf<int>(text)) << text;
        EXPECT_EQ(NumberMatch::Beginning, matchOf<double>(text)) << text;
    }
    for (const char* text : {"", " ", "x", "-", "+-1", ",5"}) {
        EXPECT_EQ(NumberMatch::None, matchOf<int>(text)) << text;
        EXPECT_EQ(NumberMatch::None, matchOf<double>(text)) << text;
    }
    EXPECT_EQ(NumberMatch::Beginning, matchOf<int>("1.5"));
    EXPECT_EQ(NumberMatch::Whole, matchOf<double>("1.5"));
    EXPECT_EQ(NumberMatch::Beginning, matchOf<double>("1.5.2"));
    EXPECT_EQ(NumberMatch::None, matchOf<double>("1e"));
    EXPECT_EQ(NumberMatch::OutOfRange, matchOf<int>("2147483648x"));
    EXPECT_EQ(NumberMatch::Whole, matchOf<double>("2147483648"));
    EXPECT_EQ(NumberMatch::OutOfRange, matchOf<double>("1e999"));
    EXPECT_EQ(NumberMatch::Whole, matchOf<double>("1e-999"));
}

} // namespace
} // namespace Orvant
