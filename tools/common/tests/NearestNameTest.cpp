#include "common/NearestName.h"

#include <gtest/gtest.h>

using namespace Orvant::Tool;

TEST(NearestNameTest, IsWhatDiffersLeast) {
    EXPECT_EQ(nearestName("Machin", {"Magazine", "Machine", "Machines"}), "Machine");
    EXPECT_EQ(nearestName("MACHINE", {"Magazine", "Machine"}), "Machine") << "whatever the case is";
    EXPECT_EQ(nearestName("a", {"c", "b"}), "c") << "the first of the same distance";
}

TEST(NearestNameTest, IsNoOtherWord) {
    EXPECT_EQ(nearestName("Machine", {"Tank", "Coolant"}), "");
    EXPECT_EQ(nearestName("Machine", {}), "");
}

TEST(NearestNameTest, IsAskedForWhereThereIsOne) {
    EXPECT_EQ(didYouMean("Machine"), "; did you mean \"Machine\"?");
    EXPECT_EQ(didYouMean(""), "");
}
