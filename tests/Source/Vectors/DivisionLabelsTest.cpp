#include "torvelan/Vectors.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

std::string stored(char const * label, double value, PhysType type) {
    return std::string(vec_ComposeDivisionString(label, value, type).view());
}

std::string shown(std::string const & text) {
    return std::string(vec_ComposeDivisionLabel(text).view());
}

} // namespace

TEST(DivisionLabels, TheStoredFormHasTheBytesOfTheValueInMemoryOrder) {
    // 1.0 is 3FF0000000000000, least significant byte first
    EXPECT_EQ(stored("R1", 1.0, PT_RESISTANCE).substr(0, 20), "R1;000000000000F03F;");
    EXPECT_EQ(stored("R1", 1.0, PT_RESISTANCE).substr(20), sp_GetPhysTypeString(PT_RESISTANCE).view());
}

TEST(DivisionLabels, SemicolonsOfTheTextGiveWay) {
    EXPECT_EQ(stored("a;b;c", 0.0, PT_NONE).substr(0, 23), "a_b_c;0000000000000000;");
}

TEST(DivisionLabels, ShowsNameAndValue) {
    EXPECT_EQ(shown(stored("R1", 1000.0, PT_RESISTANCE)), "R1=1k");
    EXPECT_EQ(shown(stored("temp", -0.0015, PT_UNKNOWN)), "temp=-1.5m");
}

TEST(DivisionLabels, PartsOfANestedSweepAreShownOneByOne) {
    EXPECT_EQ(shown(stored("R1", 1.0, PT_NONE) + "/" + stored("C1", 1e-12, PT_NONE) + "/plain"), "R1=1/C1=1p/plain");
}

TEST(DivisionLabels, APlainTextIsShownAsItIs) {
    EXPECT_EQ(shown("Run 1"), "Run 1");
    EXPECT_EQ(shown("a;b"), "a;b");
    EXPECT_EQ(shown("a;b;c;d"), "a;b;c;d");
    EXPECT_EQ(shown(""), "");
    EXPECT_EQ(shown("a//b/"), "a//b/");
}

TEST(DivisionLabels, AnythingButSixteenDigitsIsZero) {
    EXPECT_EQ(shown("a;;none"), "a=0");
    EXPECT_EQ(shown("a;000000000000F03;none"), "a=0");
    EXPECT_EQ(shown("a;000000000000F03F0;none"), "a=0");
    EXPECT_EQ(shown("a;000000000000G03F;none"), "a=0");
    EXPECT_EQ(shown("a; 00000000000F03F;none"), "a=0");
    EXPECT_EQ(shown("a;000000000000f03f;none"), "a=1");
}
