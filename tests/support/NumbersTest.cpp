#include "support/Numbers.h"

#include "CNumbers.h"

#include <bit>
#include <chrono>
#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

struct Read {
    bool good;
    double value;
    std::string rest;
};

Read readToken(std::string text) {
    char * position = text.data();
    bool failed = false;
    double const value = sp_GetEngToken(&position, &failed);
    return {!failed, value, position};
}

void expectToken(std::string const & text, double value, std::string const & rest) {
    Read const read = readToken(text);
    EXPECT_TRUE(read.good) << text;
    EXPECT_EQ(read.value, value) << text;
    EXPECT_EQ(read.rest, rest) << text;
}

TEST(EngToken, PlainDecimals) {
    expectToken("0", 0, "");
    expectToken("12+3", 12, "+3");
    expectToken("1.5", 1.5, "");
    expectToken(".5", 0.5, "");
    expectToken("5.", 5, "");
    expectToken("5.e2", 500, "");
    expectToken("1.2.3", 1.2, ".3");
    expectToken("007", 7, "");
}

TEST(EngToken, Exponents) {
    expectToken("1e3", 1000, "");
    expectToken("1E-3", 0.001, "");
    expectToken("1e+3)", 1000, ")");
    expectToken("1e", 1, "e");
    expectToken("1e-", 1, "e-");
    expectToken("1e+x", 1, "e+x");
    expectToken("1end", 1, "end");
    expectToken("1e3e3", 1000, "e3");
}

TEST(EngToken, WhatIsNoNumberLeavesThePosition) {
    for (char const * text : {"", ".", "e5", "inf", "nan", "Infinity", "-1", "+1", " 1", ".e5", "k", "x1", "."}) {
        Read const read = readToken(text);
        EXPECT_FALSE(read.good) << text;
        EXPECT_EQ(read.rest, text);
    }
}

TEST(EngToken, HexadecimalIsNotRead) {
    expectToken("0x10", 0, "x10");
    expectToken("0b1", 0, "b1");
}

TEST(EngToken, SuffixesInAnyCase) {
    struct {
        char const * text;
        double value;
    } const cases[] = {{"1f", 1e-15}, {"1p", 1e-12}, {"1n", 1e-9},     {"1u", 1e-6},   {"1m", 1e-3},  {"1k", 1e3},
                       {"1K", 1e3},   {"1meg", 1e6}, {"1MEG", 1e6},    {"1Meg", 1e6},  {"1g", 1e9},   {"1t", 1e12},
                       {"1T", 1e12},  {"1M", 1e-3},  {"2.2u", 2.2e-6}, {"4.7k", 4700}, {"0.1k", 100}, {"1e3k", 1e6}};
    for (auto const & c : cases) expectToken(c.text, c.value, "");
}

TEST(EngToken, OtherLettersAreLeft) {
    expectToken("2a", 2, "a");
    expectToken("1kOhm", 1000, "Ohm");
    expectToken("1me", 1e-3, "e");
    expectToken("1megs", 1e6, "s");
    expectToken("3V", 3, "V");
    expectToken("1kk", 1000, "k");
    expectToken("1m3", 1e-3, "3");
}

// The suffix moves the decimal point: the value is that of the number written out.
TEST(EngToken, SuffixedNumbersAreCorrectlyRounded) {
    struct {
        char const * suffix;
        int exponent;
    } const suffixes[] = {{"f", -15}, {"p", -12}, {"n", -9},  {"u", -6}, {"m", -3},
                          {"", 0},    {"k", 3},   {"meg", 6}, {"g", 9},  {"t", 12}};
    std::mt19937_64 random(5);
    for (int i = 0; i < 20000; ++i) {
        auto const & suffix = suffixes[random() % std::size(suffixes)];
        std::string mantissa = std::to_string(random() >> (random() % 64));
        mantissa.insert(random() % (mantissa.size() + 1), ".");
        int const exponent = static_cast<int>(random() % 60) - 30;
        std::string const written = mantissa + "e" + std::to_string(exponent) + suffix.suffix;
        ASSERT_EQ(readToken(written).value, cToReal(mantissa + "e" + std::to_string(exponent + suffix.exponent)))
            << written;
    }
}

TEST(EngToken, LongAndExtremeNumbers) {
    std::string const zeros(1'000'000, '0');
    expectToken("1" + zeros, std::numeric_limits<double>::infinity(), "");
    expectToken("0." + zeros + "1", 0, "");
    expectToken("0." + zeros + "1e1000001", 1, "");
    expectToken("1" + zeros + "e-1000000k", 1000, "");
    expectToken("1e999999999999999999999", std::numeric_limits<double>::infinity(), "");
    expectToken("1e-999999999999999999999", 0, "");
    expectToken("0e999999999999999999999", 0, "");
    expectToken("1.7976931348623157e308", std::numeric_limits<double>::max(), "");
    expectToken("4.9e-324", 5e-324, "");
    // Halfway between two doubles, decided by the last of many digits.
    expectToken("9007199254740993." + zeros + "1", 9007199254740994.0, "");
    expectToken("9007199254740993." + zeros, 9007199254740992.0, "");
}

TEST(ConvertEngToReal, TakesBlanksAndASign) {
    char const * end = nullptr;
    char const * const text = " \t-1.5k rest";
    EXPECT_EQ(sp_ConvertEngToReal(text, &end), -1500.0);
    EXPECT_STREQ(end, " rest");
    EXPECT_EQ(sp_ConvertEngToReal("+2", nullptr), 2.0);
    EXPECT_TRUE(std::signbit(sp_ConvertEngToReal("-0", nullptr)));
}

TEST(ConvertEngToReal, IsZeroWithoutANumber) {
    for (char const * text : {"", "-", "+-1", "abc", " .", "inf", "- 1"}) {
        char const * end = nullptr;
        EXPECT_EQ(sp_ConvertEngToReal(text, &end), 0.0) << text;
        EXPECT_EQ(end, text);
    }
}

TEST(ConvertEngToReal, StopsAtTheEndOfAView) {
    std::size_t taken = 0;
    std::string_view const text = "12345megs";
    EXPECT_EQ(sp_ConvertEngToReal(text.substr(0, 3), &taken), 123.0);
    EXPECT_EQ(taken, 3U);
    EXPECT_EQ(sp_ConvertEngToReal(text.substr(0, 6), &taken), 12.345e0 * 1.0);
    EXPECT_EQ(taken, 6U);
    EXPECT_EQ(sp_ConvertEngToReal(text.substr(0, 8), &taken), 12345e6);
    EXPECT_EQ(taken, 8U);
    EXPECT_EQ(sp_ConvertEngToReal(std::string_view(), &taken), 0.0);
    EXPECT_EQ(taken, 0U);
    EXPECT_EQ(sp_ConvertEngToReal(std::string_view("1e5").substr(0, 2), &taken), 1.0);
    EXPECT_EQ(taken, 1U);
}

std::string eng(double value, int digits = 6, bool trailingZeros = false) {
    return std::string(sp_ConvertRealToJSEng(value, digits, trailingZeros).view());
}

TEST(RealToEng, WholeNumbersBelowAThousandAreBare) {
    for (int i = -999; i < 1000; ++i) ASSERT_EQ(eng(i), std::to_string(i));
    EXPECT_EQ(eng(-0.0), "0");
}

TEST(RealToEng, TakesTheSuffixOfTheGroupOfThree) {
    EXPECT_EQ(eng(1000), "1k");
    EXPECT_EQ(eng(0.0015), "1.5m");
    EXPECT_EQ(eng(0.1), "100m");
    EXPECT_EQ(eng(-2.2e-6), "-2.2u");
    EXPECT_EQ(eng(123456789.0), "123.457meg");
    EXPECT_EQ(eng(1e9), "1g");
    EXPECT_EQ(eng(1e12), "1t");
    EXPECT_EQ(eng(3.3e-15), "3.3f");
    EXPECT_EQ(eng(47e-12), "47p");
    EXPECT_EQ(eng(1e-9), "1n");
}

TEST(RealToEng, RoundingMayReachTheNextSuffix) {
    EXPECT_EQ(eng(999.9999), "1k");
    EXPECT_EQ(eng(999.999), "999.999");
    EXPECT_EQ(eng(0.9999999), "1");
    EXPECT_EQ(eng(999.9999e12), "1e+15");
}

TEST(RealToEng, BeyondTheSuffixesHasAnExponent) {
    EXPECT_EQ(eng(1e15), "1e+15");
    EXPECT_EQ(eng(1.25e100), "1.25e+100");
    EXPECT_EQ(eng(9.5e-16), "9.5e-16");
    EXPECT_EQ(eng(-5e-324), "-4.94066e-324");
}

TEST(RealToEng, WhatIsNotFinite) {
    EXPECT_EQ(eng(std::nan("")), "nan");
    EXPECT_EQ(eng(-std::nan("")), "nan");
    EXPECT_EQ(eng(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(eng(-std::numeric_limits<double>::infinity()), "-inf");
}

TEST(RealToEng, DigitsAndTrailingZeros) {
    EXPECT_EQ(eng(1000, 6, true), "1.00000k");
    EXPECT_EQ(eng(0, 3, true), "0.00");
    EXPECT_EQ(eng(123, 1), "100");
    EXPECT_EQ(eng(123, 1, true), "100");
    EXPECT_EQ(eng(1.5, 0), "2");
    EXPECT_EQ(eng(1.5, INT_MIN), "2");
    EXPECT_EQ(eng(0.1, INT_MAX), "100.0000000000000055511151231257827021182m");
    EXPECT_EQ(eng(3.14159265358979, 12), "3.14159265359");
}

TEST(RealToEng, ReadsBackThroughTheNumberReader) {
    std::mt19937_64 random(9);
    for (int i = 0; i < 20000; ++i) {
        double const value = std::abs(std::bit_cast<double>(random()));
        if (!std::isfinite(value)) continue;
        Read const exact = readToken(eng(value, 17));
        ASSERT_TRUE(exact.good && exact.rest.empty()) << eng(value, 17);
        ASSERT_EQ(exact.value, value);
        double const scaled = std::ldexp(1.0 + std::fmod(value, 1.0), static_cast<int>(random() % 80) - 40);
        ASSERT_EQ(readToken(eng(scaled, 17)).value, scaled) << eng(scaled, 17);
        ASSERT_NEAR(readToken(eng(scaled, 6)).value / scaled, 1.0, 5.1e-6) << eng(scaled, 6);
    }
}

TEST(FormatG, EqualsPrintf) {
    std::mt19937_64 random(13);
    for (int i = 0; i < 5000; ++i) {
        double const value =
            i % 2 == 0 ? std::bit_cast<double>(random()) : static_cast<double>(random() % 100000) / 1000;
        int const precision = static_cast<int>(random() % 25) - 1;
        ASSERT_EQ(sp_FormatG(value, precision), cFormat("%.*g", precision, value).c_str());
        ASSERT_EQ(sp_FormatG(value, precision, true), cFormat("%.*G", precision, value).c_str());
    }
    EXPECT_EQ(sp_FormatG(0.1, INT_MAX), cFormat("%.*g", 1000, 0.1).c_str());
    EXPECT_EQ(sp_FormatG(5e-324, 2000), cFormat("%.*g", 2000, 5e-324).c_str());
    EXPECT_EQ(sp_FormatG(std::numeric_limits<double>::infinity(), 6, true), "INF");
}

TEST(ParseInt, AsAtoi) {
    EXPECT_EQ(parseInt("42"), 42);
    EXPECT_EQ(parseInt(" \t\n-17abc"), -17);
    EXPECT_EQ(parseInt("+8"), 8);
    EXPECT_EQ(parseInt("1e9"), 1);
    for (char const * text : {"", "abc", "-", "+-3", "- 3", "   "}) EXPECT_EQ(parseInt(text), 0) << text;
    EXPECT_EQ(parseInt(std::string_view()), 0);
}

TEST(ParseInt, ClampsToTheRangeOfInt) {
    EXPECT_EQ(parseInt("2147483647"), INT_MAX);
    EXPECT_EQ(parseInt("2147483648"), INT_MAX);
    EXPECT_EQ(parseInt("-2147483648"), INT_MIN);
    EXPECT_EQ(parseInt("-2147483649"), INT_MIN);
    EXPECT_EQ(parseInt(std::string(100000, '9')), INT_MAX);
    EXPECT_EQ(parseInt("-" + std::string(100000, '9')), INT_MIN);
}

TEST(ClampToInteger, TruncatesAndClamps) {
    EXPECT_EQ(clampToInteger(2.9), 2);
    EXPECT_EQ(clampToInteger(-2.9), -2);
    EXPECT_EQ(clampToInteger(1e300), INT64_MAX);
    EXPECT_EQ(clampToInteger(-1e300), INT64_MIN);
    EXPECT_EQ(clampToInteger(9223372036854775807.0), INT64_MAX);
    EXPECT_EQ(clampToInteger(300, 0, 255), 255);
    EXPECT_EQ(clampToInteger(-1, 0, 255), 0);
    EXPECT_EQ(clampToInteger(std::numeric_limits<double>::infinity(), -5, 5), 5);
}

TEST(ClampToInteger, NanGivesZeroOrTheNearestBound) {
    double const nan = std::nan("");
    EXPECT_EQ(clampToInteger(nan), 0);
    EXPECT_EQ(clampToInteger(nan, 3, 9), 3);
    EXPECT_EQ(clampToInteger(nan, -9, -3), -3);
}

} // namespace
