#include "Evaluation/Tokeniser.h"

#include "Evaluation/Operators.h"
#include "Evaluation/ParseState.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Seen {
    int token;
    double number;
    std::string text;
};

std::vector<Seen> tokens(std::string const & text, bool comparison = false) {
    EvaluationDepth const depth;
    EvalOptions options;
    options.equalsIsComparison = comparison;
    ParseState state(text.c_str(), options, ScpParseContext(nullptr));
    std::vector<Seen> seen;
    for (;;) {
        Token * value = nullptr;
        int const token = getToken(state, &value);
        seen.push_back({token, value != nullptr ? value->number : 0,
                        value != nullptr ? std::string(value->text.view()) : std::string()});
        if (token < 1) return seen;
    }
}

std::vector<int> numbers(std::string const & text, bool comparison = false) {
    std::vector<int> result;
    for (Seen const & seen : tokens(text, comparison)) result.push_back(seen.token);
    return result;
}

using Numbers = std::vector<int>;

} // namespace

TEST(Tokeniser, EndOfTextIsMinusOne) {
    EXPECT_EQ(numbers(""), Numbers{-1});
}

TEST(Tokeniser, SkipsTheFourBlanksOnly) {
    EXPECT_EQ(numbers(" \t\r\n1"), (Numbers{TOKEN_NUMBER, -1}));
    std::vector<Seen> const seen = tokens("\v");
    EXPECT_EQ(seen[0].token, TOKEN_NAME);
    EXPECT_EQ(seen[0].text, "");
}

TEST(Tokeniser, SingleCharactersAreTheirCode) {
    for (char c : std::string("-+,*%/^[]()!=<>&")) EXPECT_EQ(numbers(std::string(1, c)), (Numbers{c, -1})) << c;
}

TEST(Tokeniser, PairsOfCharacters) {
    EXPECT_EQ(numbers("!="), (Numbers{TOKEN_NE, -1}));
    EXPECT_EQ(numbers("<>"), (Numbers{TOKEN_NE, -1}));
    EXPECT_EQ(numbers("=="), (Numbers{TOKEN_EQ, -1}));
    EXPECT_EQ(numbers("<="), (Numbers{TOKEN_LE, -1}));
    EXPECT_EQ(numbers(">="), (Numbers{TOKEN_GE, -1}));
    EXPECT_EQ(numbers("||"), (Numbers{TOKEN_OR, -1}));
    EXPECT_EQ(numbers("&&"), (Numbers{TOKEN_AND, -1}));
    EXPECT_EQ(numbers("=>"), (Numbers{'=', '>', -1}));
    EXPECT_EQ(numbers("><"), (Numbers{'>', '<', -1}));
}

TEST(Tokeniser, WordOperatorsInAnyCase) {
    EXPECT_EQ(numbers("and"), (Numbers{TOKEN_AND, -1}));
    EXPECT_EQ(numbers("Or"), (Numbers{TOKEN_OR, -1}));
    EXPECT_EQ(numbers("nOt"), (Numbers{'!', -1}));
}

TEST(Tokeniser, WordReadWholeBeforeAndIsCompared) {
    std::vector<Seen> const seen = tokens("a.AND");
    EXPECT_EQ(seen[0].token, TOKEN_NAME);
    EXPECT_EQ(seen[0].text, "a.AND");
    EXPECT_EQ(tokens("android")[0].text, "android");
}

TEST(Tokeniser, NamesTakeEveryCharacterWithoutAnotherClass) {
    std::string const odd = "a.:#$@_\";?{}~\\'`b\x80\xFD";
    EXPECT_EQ(tokens(odd)[0].text, odd);
}

TEST(Tokeniser, ABarAloneIsANameOfEmptyText) {
    std::vector<Seen> const seen = tokens("a|b");
    ASSERT_EQ(seen.size(), 6u); // a , '' , b end
    EXPECT_EQ(seen[2].token, TOKEN_NAME);
    EXPECT_EQ(seen[2].text, "");
    EXPECT_EQ(seen[4].text, "b");
}

TEST(Tokeniser, EveryByteMovesTheTokeniserOn) {
    for (int c = 1; c < 256; ++c) {
        std::string const text = std::string(3, static_cast<char>(c)) + "1";
        EXPECT_LE(tokens(text).size(), 9u) << c;
        EXPECT_EQ(tokens(text).back().token, -1) << c;
    }
}

TEST(Tokeniser, CharactersWithoutClassGiveANameOfEmptyText) {
    for (char const * text : {"\x7F", "\xFE", "\xFF", "\x01"}) {
        std::vector<Seen> const seen = tokens(text);
        EXPECT_EQ(seen[0].token, TOKEN_NAME);
        EXPECT_EQ(seen[0].text, "");
        EXPECT_EQ(seen[1].token, -1);
    }
}

TEST(Tokeniser, QuotedStrings) {
    EXPECT_EQ(tokens("'it''s'")[0].text, "it's");
    EXPECT_EQ(tokens("'abc")[0].text, "abc");
    EXPECT_EQ(tokens("''")[0].text, "");
    EXPECT_EQ(tokens("''''")[0].text, "'");
    EXPECT_EQ(tokens("'a b,(c)'")[0].text, "a b,(c)");
    EXPECT_EQ(numbers("'a'"), (Numbers{TOKEN_STRING, -1}));
}

TEST(Tokeniser, AQuoteInsideAWordBelongsToTheWord) {
    EXPECT_EQ(tokens("a'b'")[0].text, "a'b'");
}

TEST(Tokeniser, NumbersTakePrecedenceOverNames) {
    std::vector<Seen> const seen = tokens("2a");
    EXPECT_EQ(seen[0].token, TOKEN_NUMBER);
    EXPECT_EQ(seen[0].number, 2);
    EXPECT_EQ(seen[1].token, ',');
    EXPECT_EQ(seen[2].text, "a");
    EXPECT_EQ(tokens("0x10")[2].text, "x10");
    EXPECT_EQ(tokens("1.5meg")[0].number, 1.5e6);
}

TEST(Tokeniser, CommaBetweenValues) {
    EXPECT_EQ(numbers("1 2"), (Numbers{TOKEN_NUMBER, ',', TOKEN_NUMBER, -1}));
    EXPECT_EQ(numbers("a b"), (Numbers{TOKEN_NAME, ',', TOKEN_NAME, -1}));
    EXPECT_EQ(numbers("'x' 3"), (Numbers{TOKEN_STRING, ',', TOKEN_NUMBER, -1}));
    EXPECT_EQ(numbers(")("), (Numbers{')', ',', '(', -1}));
    EXPECT_EQ(numbers(") a"), (Numbers{')', ',', TOKEN_NAME, -1}));
}

TEST(Tokeniser, NoCommaBeforeACallAnIndexOrASign) {
    EXPECT_EQ(numbers("a("), (Numbers{TOKEN_NAME, '(', -1}));
    EXPECT_EQ(numbers("a["), (Numbers{TOKEN_NAME, '[', -1}));
    EXPECT_EQ(numbers("1 -2"), (Numbers{TOKEN_NUMBER, '-', TOKEN_NUMBER, -1}));
    EXPECT_EQ(numbers("] 2"), (Numbers{']', TOKEN_NUMBER, -1}));
}

TEST(Tokeniser, CommaOnlyOnceBetweenTwoValues) {
    EXPECT_EQ(numbers("1 2 3"), (Numbers{TOKEN_NUMBER, ',', TOKEN_NUMBER, ',', TOKEN_NUMBER, -1}));
    EXPECT_EQ(numbers("1,2"), (Numbers{TOKEN_NUMBER, ',', TOKEN_NUMBER, -1}));
}

TEST(Tokeniser, ComparisonModeTurnsTheEqualsSign) {
    EXPECT_EQ(numbers("a=1"), (Numbers{TOKEN_NAME, '=', TOKEN_NUMBER, -1}));
    EXPECT_EQ(numbers("a=1", true), (Numbers{TOKEN_NAME, TOKEN_EQ, TOKEN_NUMBER, -1}));
    EXPECT_EQ(numbers("a==1", true), (Numbers{TOKEN_NAME, TOKEN_EQ, TOKEN_NUMBER, -1}));
    EXPECT_EQ(numbers("a<=1", true), (Numbers{TOKEN_NAME, TOKEN_LE, TOKEN_NUMBER, -1}));
}
