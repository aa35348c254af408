#include "Import/CsdfTokeniser.h"

#include "Import/PlainCsdfRow.h"
#include "ImportFixture.h"

#include <random>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QuietTokeniser : public CsdfTokeniser {
public:
    using CsdfTokeniser::CsdfTokeniser;
    int yields = 0;

private:
    void yield() override { ++yields; }
};

class CsdfTokeniserTest : public testing::Test {
protected:
    using Next = bool (*)(CsdfTokeniser &, CsdfToken &);
    static bool word(CsdfTokeniser & t, CsdfToken & token) { return t.word(token); }
    static bool number(CsdfTokeniser & t, CsdfToken & token) { return t.number(token); }

    // Words as they are, delimiters in angles.
    std::vector<std::string> tokens(std::string_view text, Next next = word) {
        file_.rewrite(text);
        tvfstream stream(file_.path(), tvfstream::modeReadUntranslated, false, false);
        QuietTokeniser tokeniser(stream);
        std::vector<std::string> result;
        CsdfToken token;
        while (next(tokeniser, token)) {
            EXPECT_EQ(token.touchesEnd && token.text.ends_with(text.back()), token.touchesEnd);
            result.push_back(token.isWord() ? std::string(token.text) : std::string("<") + token.delimiter + ">");
        }
        EXPECT_EQ(token.text, "");
        EXPECT_TRUE(tokeniser.isAtEnd());
        return result;
    }

    ScratchFile file_{""};
};

TEST_F(CsdfTokeniserTest, WordsAndDelimiters) {
    EXPECT_THAT(tokens("#H a=b;c d:e/f\t\r\n g = h"),
                ElementsAre("#H", "a", "<=>", "b", "<;>", "c", "d", "<:>", "e", "</>", "f", "g", "<=>", "h"));
    EXPECT_THAT(tokens(""), IsEmpty());
    EXPECT_THAT(tokens(" \n"), IsEmpty());
    EXPECT_THAT(tokens("a\vb\f"), ElementsAre("a\vb\f"));
}

TEST_F(CsdfTokeniserTest, ValuesHaveTwoDelimiters) {
    EXPECT_THAT(tokens("1=2;3:4/5", number), ElementsAre("1=2;3", "<:>", "4", "</>", "5"));
}

TEST_F(CsdfTokeniserTest, NothingMeansAnythingInApostrophes) {
    EXPECT_THAT(tokens("'a =;:/ b'c '' d'e'f 'unclosed = word"),
                ElementsAre("a =;:/ b", "c", "", "d'e'f", "unclosed = word"));
    EXPECT_THAT(tokens("'12' ':'", number), ElementsAre("12", ":"));
}

TEST_F(CsdfTokeniserTest, TokensAreTheSameWhereverABlockOfTheFileEnds) {
    std::string const text = "ab 'c d' =e:f 'g\nh' ij;";
    auto const expected = tokens(text);
    constexpr std::size_t block = std::size_t{256} << 10;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        auto const actual = tokens(std::string(block - i, ' ') + text);
        EXPECT_EQ(actual, expected) << i;
    }
}

TEST_F(CsdfTokeniserTest, YieldsByTheWord) {
    file_.rewrite(std::string(450000, ';'));
    tvfstream stream(file_.path(), tvfstream::modeReadUntranslated, false, false);
    QuietTokeniser tokeniser(stream);
    CsdfToken token;
    for (int i = 0; i < 99999; ++i) tokeniser.word(token);
    EXPECT_EQ(tokeniser.yields, 0);
    tokeniser.word(token);
    EXPECT_EQ(tokeniser.yields, 1);
    for (int i = 0; i < 99999; ++i) tokeniser.word(token);
    for (int i = 0; i < 100000; ++i) tokeniser.number(token);
    EXPECT_EQ(tokeniser.yields, 1);
    tokeniser.skipAhead(0, 1);
    EXPECT_EQ(tokeniser.yields, 2);
}

// --- whole rows at once

TEST(PlainCsdfRow, TakesARowAndTheBeginningOfTheNext) {
    double sweep = 0, values[2] = {};
    PlainCsdfRow row = parsePlainCsdfRow(" 1e-9 2\n1.5:1 -2:2\n#C 3", sweep, values, 2);
    EXPECT_EQ(row.taken, 21u);
    EXPECT_EQ(row.words, 5);
    EXPECT_EQ(sweep, 1e-9);
    EXPECT_THAT(values, ElementsAre(1.5, -2));
    row = parsePlainCsdfRow("7 2 3 4 #c\n", sweep, values, 2);
    EXPECT_EQ(row.taken, 10u);
    EXPECT_EQ(row.words, 3);
    complex pairs[2] = {};
    EXPECT_EQ(parsePlainCsdfRow("7 2 3/4:1 5/-6 #C ", sweep, pairs, 2).words, 3);
    EXPECT_THAT(pairs, ElementsAre(complex{3, 4}, complex{5, -6}));
}

TEST(PlainCsdfRow, LeavesWhatDoesNotEndInTheText) {
    std::string_view const text = "7 2 3:1 4:2 #C ";
    double sweep = 0, values[2] = {};
    for (std::size_t n = 0; n < text.size(); ++n)
        EXPECT_EQ(parsePlainCsdfRow(text.substr(0, n), sweep, values, 2).taken, 0u);
    EXPECT_NE(parsePlainCsdfRow(text, sweep, values, 2).taken, 0u);
}

TEST(PlainCsdfRow, LeavesTheUnusual) {
    double sweep = 0, values[2] = {};
    for (char const * text :
         {"7 1 3 #C ", "7 3 3 4 5 #C ", "'7' 2 3 4 #C ", "7 2 3:2 4:1 #C ", "7 2 3:0 4 #C ", "7 2 3 :1 4 #C ",
          "7 2 3x 4 #C ", "7 2 3/1 4 #C ", "7 2 3 4 # ", "7 2 3 4 #; ", "7 2 3 4 #CC ", "7 2 3 4 C ", "7 +2 3 4 #C ",
          "nan 2 3 4 #C ", "7 2 +3 4 #C ", "7 2 3: 4 #C "})
        EXPECT_EQ(parsePlainCsdfRow(text, sweep, values, 2).taken, 0u) << text;
    EXPECT_EQ(parsePlainCsdfRow("7 0 #C ", sweep, values, 0).taken, 0u);
}

} // namespace
