#include "torvelan/Groups.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <string>

namespace {

std::string composed(char const * label, double value, PhysType physType = PT_UNKNOWN) {
    return std::string(vec_ComposeDivisionString(label, value, physType).view());
}
std::string shown(std::string const & stored) {
    return std::string(vec_ComposeDivisionLabel(YString(stored)).view());
}

TEST(DivisionLabels, StoredFormHasThreeFields) {
    ASSERT_EQ(std::endian::native, std::endian::little);
    EXPECT_EQ(composed("R1", 1.0, PT_RESISTANCE), "R1;000000000000F03F;resistance");
    EXPECT_EQ(composed("", -2.0, PT_VOLTAGE), ";00000000000000C0;voltage");
}

TEST(DivisionLabels, SemicolonsOfTheTextGiveWay) {
    EXPECT_EQ(composed("a;b;;c", 0.0),
              "a_b__c;0000000000000000;" + std::string(sp_GetPhysTypeString(PT_UNKNOWN).view()));
}

TEST(DivisionLabels, PeopleSeeNameAndValueInEngineeringForm) {
    EXPECT_EQ(shown(composed("R1", 1000.0)), "R1=1k");
    EXPECT_EQ(shown(composed("C1", 0.0015)), "C1=1.5m");
    EXPECT_EQ(shown(composed("x", 0.0)), "x=0");
    EXPECT_EQ(shown(composed("", 1.0)), "=1");
}

TEST(DivisionLabels, TwelveDigitsAreShown) {
    EXPECT_EQ(shown(composed("x", 1.23456789012)), "x=1.23456789012");
}

TEST(DivisionLabels, PartsOfANestedSweepAreShownEach) {
    EXPECT_EQ(shown(composed("R", 1000.0) + "/" + composed("T", 27.0)), "R=1k/T=27");
    EXPECT_EQ(shown(composed("R", 1.0) + "/plain"), "R=1/plain");
    EXPECT_EQ(shown("/"), "/");
}

TEST(DivisionLabels, PartWithoutThreeFieldsStandsForItself) {
    EXPECT_EQ(shown(""), "");
    EXPECT_EQ(shown("plain"), "plain");
    EXPECT_EQ(shown("one;two"), "one;two");
    EXPECT_EQ(shown("a;000000000000F03F;none;more"), "a;000000000000F03F;none;more");
}

TEST(DivisionLabels, AnythingButSixteenHexDigitsIsZero) {
    EXPECT_EQ(shown("x;000000000000F03;"), "x=0");
    EXPECT_EQ(shown("x;000000000000F03F0;"), "x=0");
    EXPECT_EQ(shown("x;000000000000G03F;"), "x=0");
    EXPECT_EQ(shown("x; 00000000000F03F;"), "x=0");
    EXPECT_EQ(shown("x;;"), "x=0");
    EXPECT_EQ(shown("x;000000000000f03f;"), "x=1");
}

TEST(DivisionLabels, ValuesComeBackBitForBit) {
    for (double const value : {0.1, -1e300, 5e-324, std::numeric_limits<double>::infinity()}) {
        std::string const stored = composed("v", value);
        ASSERT_EQ(stored.size(), 2 + 16 + 1 + sp_GetPhysTypeString(PT_UNKNOWN).length());
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < 8; ++i) bits |= std::stoull(stored.substr(2 + 2 * i, 2), nullptr, 16) << (8 * i);
        EXPECT_EQ(std::bit_cast<double>(bits), value);
    }
}

} // namespace
