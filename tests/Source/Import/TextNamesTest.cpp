#include "Import/TextNames.h"

#include <gtest/gtest.h>
#include <string>

namespace {

void expectName(char const * word, char const * name, PhysType type) {
    TextName const found = textName(word);
    EXPECT_EQ(found.name, name) << word;
    EXPECT_EQ(found.type, type) << word;
}

TEST(TextNames, NumbersBeginWithADigitASignOrAPoint) {
    for (char const * word : {"0", "9x", "+", "-a", ".5", ".x"}) EXPECT_TRUE(looksLikeNumber(word)) << word;
    for (char const * word : {"", "a", ",", "/", ":", "*", "(1"}) EXPECT_FALSE(looksLikeNumber(word)) << word;
}

TEST(TextNames, FirstColonCutsOrAllBecomeUnderscores) {
    EXPECT_EQ(withoutColons("X1:out", false), "out");
    EXPECT_EQ(withoutColons("X1:U2:out", false), "U2:out");
    EXPECT_EQ(withoutColons("out", false), "out");
    EXPECT_EQ(withoutColons("X1:", false), "");
    EXPECT_EQ(withoutColons("X1:U2:out", true), "X1_U2_out");
}

TEST(TextNames, TimeAndFrequencyKeepTheirSpelling) {
    expectName("Time", "Time", PT_TIME);
    expectName("FREQUENCY", "FREQUENCY", PT_FREQUENCY);
    expectName("freq", "freq", PT_FREQUENCY);
    expectName("times", "times", PT_UNKNOWN);
}

TEST(TextNames, ProbesGiveTheirNodeOrDevice) {
    expectName("v(out)", "out", PT_VOLTAGE);
    expectName("V(out)", "out", PT_VOLTAGE);
    expectName("i(r1)", "r1", PT_CURRENT);
    expectName("vm(out)", "m_out", PT_VOLTAGE);
    expectName("IC(q1)", "C_q1", PT_CURRENT);
    expectName("v(a+b)", "a_b", PT_VOLTAGE);
    expectName("v+(a)(b)", "__a__b", PT_VOLTAGE);
    expectName("v()", "", PT_VOLTAGE);
}

TEST(TextNames, WhatIsNoProbeHasNoType) {
    expectName("out)", "out_", PT_UNKNOWN);
    expectName("v(out", "v_out", PT_UNKNOWN);
    expectName("vout)", "vout_", PT_UNKNOWN);
    expectName("v)", "v_", PT_UNKNOWN);
    expectName("p(r1)", "p_r1_", PT_UNKNOWN);
    expectName("v", "v", PT_UNKNOWN);
    expectName("", "", PT_UNKNOWN);
}

TEST(TextNames, TwentyCharactersBecomeUnderscoresAndNoOthers) {
    std::string const illegal = "\"&+-*/^<>' @{}[]%!()";
    int replaced = 0;
    for (int c = 1; c < 256; ++c) {
        std::string const word = {'a', static_cast<char>(c), 'b'};
        bool const isIllegal = illegal.find(static_cast<char>(c)) != std::string::npos;
        EXPECT_EQ(textName(YString(word)).name, isIllegal ? "a_b" : word.c_str()) << c;
        replaced += isIllegal;
    }
    EXPECT_EQ(replaced, 20);
}

} // namespace
