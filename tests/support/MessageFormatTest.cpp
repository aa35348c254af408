#include "CNumbers.h"
#include "torvelan/Messages.h"

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

TEST(MessageFormat, TextAndPercentSigns) {
    EXPECT_EQ(formatMessage("100 %% of %s", "it"), "100 % of it");
    EXPECT_EQ(formatMessage(""), "");
    EXPECT_EQ(formatMessage("%s|", ""), "|");
    EXPECT_EQ(formatMessage("%s|", static_cast<char const *>(nullptr)), "|");
    EXPECT_EQ(formatMessage("%s", YString(std::string_view("a\0b", 3))).length(), 3U);
}

TEST(MessageFormat, ADirectiveWithoutFittingArgumentStandsAsItIs) {
    EXPECT_EQ(formatMessage("%d items"), "%d items");
    EXPECT_EQ(formatMessage("%d", "text"), "%d");
    EXPECT_EQ(formatMessage("%s", 5), "%s");
    EXPECT_EQ(formatMessage("%g", 5), "%g");
    EXPECT_EQ(formatMessage("%d", 5.0), "%d");
    EXPECT_EQ(formatMessage("%-8.3f|", "x"), "%-8.3f|");
    EXPECT_EQ(formatMessage("%*d", "x", 5), "%*d");
    EXPECT_EQ(formatMessage("%d%d%d%d%d", 1, 2, 3, 4), "1234%d");
}

TEST(MessageFormat, AMismatchUsesItsArgumentUp) {
    EXPECT_EQ(formatMessage("%d %s", "a", "b"), "%d b");
}

TEST(MessageFormat, UnknownDirectivesStandAsTheyAre) {
    EXPECT_EQ(formatMessage("%n%p", 1), "%n%p");
    EXPECT_EQ(formatMessage("%y %d", 1), "%y 1");
    EXPECT_EQ(formatMessage("50%"), "50%");
    EXPECT_EQ(formatMessage("50%-"), "50%-");
    EXPECT_EQ(formatMessage("%5.%d", 1), "%5.1");
}

TEST(MessageFormat, WidthsAreBounded) {
    EXPECT_EQ(formatMessage("%99999999999s", "x").length(), 4096U);
    EXPECT_EQ(formatMessage("%*s", INT_MAX, "x").length(), 4096U);
    EXPECT_EQ(formatMessage("%*s", INT_MIN, "x").length(), 4096U);
    EXPECT_EQ(formatMessage("%.999999999f", 0.0).length(), 4098U);
}

TEST(MessageFormat, StarsTakeArguments) {
    EXPECT_EQ(formatMessage("%.*g", 3, 3.14159), "3.14");
    EXPECT_EQ(formatMessage("%*.*f|", 8, 2, 3.14159), "    3.14|");
    EXPECT_EQ(formatMessage("%-*d|", 4, 7), "7   |");
    EXPECT_EQ(formatMessage("%*d|", -4, 7), "7   |");
    EXPECT_EQ(formatMessage("%.*g", -1, 3.14159265), "3.14159");
}

TEST(MessageFormat, WholeNumbersOfEachType) {
    EXPECT_EQ(formatMessage("%d %ld %lld %zu", -1, LONG_MIN, LLONG_MAX, 7UL),
              cFormat("%d %ld %lld %zu", -1, LONG_MIN, LLONG_MAX, 7UL).c_str());
    EXPECT_EQ(formatMessage("%u %x", UINT_MAX, -1), "4294967295 ffffffff");
    EXPECT_EQ(formatMessage("%lx", -1L), "ffffffffffffffff");
    EXPECT_EQ(formatMessage("%lu", ULONG_MAX), "18446744073709551615");
    EXPECT_EQ(formatMessage("%c%c", int('a'), 'b'), "ab");
}

TEST(MessageFormat, TextsAsPrintf) {
    for (char const * format : {"[%s]", "[%10s]", "[%-10s]", "[%.2s]", "[%10.2s]", "[%-10.0s]", "[%.9s]"})
        EXPECT_EQ(formatMessage(format, "text"), cFormat(format, "text").c_str()) << format;
}

TEST(MessageFormat, WholeNumbersAsPrintf) {
    for (char const * format :
         {"[%d]", "[%i]", "[%6d]", "[%-6d]", "[%06d]", "[%+d]", "[% d]", "[%.4d]", "[%8.4d]", "[%08.4d]", "[%-08d]",
          "[%u]", "[%x]", "[%X]", "[%#x]", "[%#010X]", "[%o]", "[%.0d]", "[%+06d]"})
        for (int const value : {0, 1, -1, 42, -12345, INT_MAX, INT_MIN})
            EXPECT_EQ(formatMessage(format, value), cFormat(format, value).c_str()) << format << ' ' << value;
}

TEST(MessageFormat, RealsAsPrintf) {
    std::mt19937_64 random(11);
    std::vector<double> values = {0.0,
                                  -0.0,
                                  1.0,
                                  -1.5,
                                  1e-5,
                                  123456789.0,
                                  1e22,
                                  5e-324,
                                  std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity(),
                                  std::nan(""),
                                  -std::nan("")};
    for (int i = 0; i < 200; ++i) values.push_back(std::bit_cast<double>(random()));
    for (char const * format : {"%g", "%G", "%f", "%F", "%e", "%E", "%.0f", "%.12g", "%.0g", "%20.3e|", "%-20.3e|",
                                "%020.3e|", "%+g", "% g", "%.40f", "%.400e", "%-+12.2F|", "%012G|"})
        for (double const value : values)
            ASSERT_EQ(formatMessage(format, value), cFormat(format, value).c_str()) << format << ' ' << value;
}

} // namespace
