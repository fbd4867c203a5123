#include "common/Messages.h"

#include <gtest/gtest.h>

using namespace Orvant::Tool;

TEST(MessagesTest, HaveThePlaceAsFarAsItIsKnown) {
    EXPECT_EQ(messageAt("a.xml", 0, "error", "text"), "a.xml: error: text");
    EXPECT_EQ(messageAt("a.xml", 7, "error", "text"), "a.xml:7: error: text");
    EXPECT_EQ(messageAt("a.xml", 7, "warning", "text", 3), "a.xml:7:3: warning: text");
}
