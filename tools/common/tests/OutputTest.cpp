#include "common/Output.h"

#include <gtest/gtest.h>

using namespace Orvant::Tool;

TEST(OutputTest, ALineHasNoCharactersThatTerminalsObey) {
    using namespace std::string_literals;
    EXPECT_EQ(oneLine("a\nb\tc\rd"), "a\\nb\\tc\\rd");
    EXPECT_EQ(oneLine("\x1b]0;title\a \x1b[31mred"), "\\x1b]0;title\\x07 \\x1b[31mred");
    EXPECT_EQ(oneLine("\0 \x1f \x7f"s), "\\x00 \\x1f \\x7f");
    EXPECT_EQ(oneLine("\xc2\x80 \xc2\x9b \xc2\x9f"), "\\u0080 \\u009b \\u009f");
}

TEST(OutputTest, ALineIsUtf8) {
    EXPECT_EQ(oneLine("\xff"), "\\xff");
    EXPECT_EQ(oneLine("\x9b"
                      "31m"),
              "\\x9b31m")
        << "an escape in Latin-1";
    EXPECT_EQ(oneLine("a\xc3"), "a\\xc3") << "cut off";
    EXPECT_EQ(oneLine("\xe2\x82z"), "\\xe2\\x82z");
    EXPECT_EQ(oneLine("\xc0\x9b"), "\\xc0\\x9b") << "longer than need be";
    EXPECT_EQ(oneLine("\xed\xa0\x80"), "\\xed\\xa0\\x80") << "half of a pair";
}

TEST(OutputTest, OtherCharactersOfALineStay) {
    const std::string text = " ~ \xc2\xa0 \xc3\xa4 \xe2\x82\xac \xef\xbf\xbd \xf0\x9f\x98\x80 \\x";
    EXPECT_EQ(oneLine(text), text);
    EXPECT_EQ(oneLine(""), "");
}
