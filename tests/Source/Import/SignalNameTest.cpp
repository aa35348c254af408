#include "Import/SignalName.h"

#include <gtest/gtest.h>

namespace {

std::string converted(std::string_view text) {
    SignalName signal;
    if (!convertSignalName(text, signal)) return "refused";
    return std::string(signal.name.view()) + " " + std::to_string(signal.type);
}

std::string plain(std::string_view text) {
    SignalName const signal = plainSignalName(text);
    return std::string(signal.name.view()) + " " + std::to_string(signal.type);
}

TEST(SignalName, PlainNameStandsAndItsTypeIsSeen) {
    EXPECT_EQ(plain("Time"), "Time 4");
    EXPECT_EQ(plain("FREQUENCY"), "FREQUENCY 5");
    EXPECT_EQ(plain("freq"), "freq 0");
    EXPECT_EQ(plain("V_Vin"), "V_Vin 2");
    EXPECT_EQ(plain("ibias"), "ibias 3");
    EXPECT_EQ(plain("v(a;b)"), "v(a;b) 2");
    EXPECT_EQ(plain(""), " 0");
}

TEST(SignalName, ProbesByTheirLetter) {
    EXPECT_EQ(converted("v(out)"), "out 2");
    EXPECT_EQ(converted("V(out)"), "out 2");
    EXPECT_EQ(converted("I(R1)"), "R1#p 3");
    EXPECT_EQ(converted("w(r1)"), "r1#pwr 11");
    EXPECT_EQ(converted("B(k1)"), "k1#b 0");
    EXPECT_EQ(converted("h(k1)"), "k1#h 0");
}

TEST(SignalName, OtherQuantitiesAreSuffixes) {
    EXPECT_EQ(converted("ic(q1)"), "q1#c 3");
    EXPECT_EQ(converted("Ic(q1)"), "q1#c 3");
    EXPECT_EQ(converted("i1(r1)"), "r1#1 3");
    EXPECT_EQ(converted("vdb(out)"), "out#vdb 0");
    EXPECT_EQ(converted("noise(v1)"), "v1#noise 0");
    EXPECT_EQ(converted("x(y)"), "y#x 0");
    EXPECT_EQ(converted("(y)"), "y# 0");
}

TEST(SignalName, BodyEndsAtTheFirstParenthesisOrTheEnd) {
    EXPECT_EQ(converted("v(a)b)"), "a 2");
    EXPECT_EQ(converted("v(a(b))"), "a(b 2");
    EXPECT_EQ(converted("v(a"), "a 2");
    EXPECT_EQ(converted("v("), " 2");
    EXPECT_EQ(converted("v(a,b)"), "a,b 2");
    EXPECT_EQ(converted("v(a;b)"), "a 2");
}

TEST(SignalName, TextWithoutAParenthesisIsRefused) {
    for (char const * text : {"out", "i", "v", "", ";", "abc;v", "12345678"}) EXPECT_EQ(converted(text), "refused");
}

TEST(SignalName, SuffixHasAtMostEightCharacters) {
    EXPECT_EQ(converted("12345678(a)"), "a#12345678 0");
    EXPECT_EQ(converted("123456789(a)"), "refused");
    EXPECT_EQ(converted("i12345678(a)"), "a#12345678 3");
}

TEST(SignalName, FirstAlternativeOfProbeFormWithoutColonCounts) {
    EXPECT_EQ(converted("v(out);v(1)"), "out 2");
    EXPECT_EQ(converted("x:v(out);v(1)"), "1 2");
    EXPECT_EQ(converted("v(x:1);i(r1)"), "r1#p 3");
    EXPECT_EQ(converted(";v(1)"), "1 2");
}

TEST(SignalName, FirstAlternativeCountsWhenNoneIsBetter) {
    EXPECT_EQ(converted("v(x:1);v(y:2)"), "x:1 2");
    EXPECT_EQ(converted("vdb(a);vdb(b)"), "a#vdb 0");
    EXPECT_EQ(converted("v(x:1)"), "x:1 2");
    EXPECT_EQ(converted(";ab"), "refused");
}

TEST(SignalName, NameHasAtMost256Characters) {
    std::string const body(256, 'n');
    EXPECT_EQ(converted("v(" + body + ")"), body + " 2");
    EXPECT_EQ(converted("v(" + body + "n)"), body + " 2");
    EXPECT_EQ(converted("i(" + body.substr(2) + ")"), body.substr(2) + "#p 3");
    EXPECT_EQ(plain(body + "n"), body + " 0");
}

TEST(SignalName, ManyAlternativesAreGoneOverOnce) {
    EXPECT_EQ(converted(std::string(5000000, ';') + "v(a)"), "a 2");
    EXPECT_EQ(converted(std::string(5000000, ';')), "refused");
}

} // namespace
