// The automaton: its stacks, its error recovery, and what hostile texts cost.

#include "Evaluation/ParseState.h"
#include "RecordedMessages.h"
#include "torvelan/torvelan.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class Parser : public testing::Test {
protected:
    VEC_ERROR evaluate(std::string const & text) {
        values.clear();
        messages->clear();
        return vec_EvalVecList(text.c_str(), &values, context, YString(), false);
    }
    std::string repeated(std::string const & text, int count) {
        std::string all;
        for (int i = 0; i < count; ++i) all += text;
        return all;
    }

    EngineSession session;
    std::shared_ptr<RecordedMessages> messages = std::make_shared<RecordedMessages>();
    ScpParseContext context{messages};
    YArray<XYVector *> values;
};

} // namespace

TEST_F(Parser, StacksGrowToTenThousandStates) {
    EXPECT_EQ(evaluate(repeated("(", 9996) + "1" + repeated(")", 9996)), VEC_OK);
    EXPECT_EQ(values.at(0)->getReal(0), 1);
}

TEST_F(Parser, ExhaustedStacksGiveNullWithoutMessage) {
    EXPECT_EQ(evaluate(repeated("(", 9997) + "1" + repeated(")", 9997)), VEC_EXPRESSION_FAILED);
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(Parser, VeryDeepTextsAreRefused) {
    for (char const * opening : {"(", "-", "[", "abs(", "!"}) {
        EXPECT_EQ(evaluate(repeated(opening, 100000) + "1"), VEC_EXPRESSION_FAILED) << opening;
        EXPECT_TRUE(messages->texts.empty());
    }
    EXPECT_EQ(evaluate("1+1"), VEC_OK);
}

TEST_F(Parser, ManyUnaryOperatorsReduceFromTheRight) {
    EXPECT_EQ(evaluate(repeated("-", 9000) + "2"), VEC_OK);
    EXPECT_EQ(values.at(0)->getReal(0), 2);
}

TEST_F(Parser, ALongSumCostsNoSquareOfItsText) {
    std::string text = "1";
    for (int i = 1; i < 50000; ++i) text += "+1";
    EXPECT_EQ(evaluate(text), VEC_OK);
    EXPECT_EQ(values.at(0)->getReal(0), 50000);
    EXPECT_EQ(values.at(0)->name().view(), text);
}

TEST_F(Parser, ALongListKeepsEveryMember) {
    std::string text = "1";
    for (int i = 1; i < 20000; ++i) text += ",1";
    EXPECT_EQ(evaluate(text), VEC_OK);
    EXPECT_EQ(values.size(), 20000u);
    EXPECT_EQ(evaluate("sum([" + text + "])"), VEC_OK);
    EXPECT_EQ(values.at(0)->getReal(0), 20000);
}

TEST_F(Parser, BadSyntaxIsReportedOnceWithTheWholeText) {
    EXPECT_EQ(evaluate(") 1 ) + ) 2"), VEC_EXPRESSION_FAILED);
    EXPECT_EQ(messages->texts, std::vector<std::string>{"Bad syntax in expression ') 1 ) + ) 2'"});
    EXPECT_EQ(messages->levels.at(0), MessageLevel::error);
}

TEST_F(Parser, PercentSignsInATextAreOnlyText) {
    EXPECT_EQ(evaluate("%s%n"), VEC_EXPRESSION_FAILED);
    EXPECT_EQ(messages->texts.at(0), "Bad syntax in expression '%s%n'");
}

TEST_F(Parser, QuotesInsideStrings) {
    EXPECT_EQ(evaluate("'it''s'"), VEC_OK);
    EXPECT_STREQ(values.at(0)->getString(0), "it's");
}

TEST_F(Parser, AnAliasChainEndsAtTheDepthLimit) {
    for (int i = 0; i < 10000; ++i) {
        std::string const text = i == 9999 ? "1" : "'a" + std::to_string(i + 1) + "+0'";
        ASSERT_EQ(evaluate("a" + std::to_string(i) + "=" + text), VEC_OK);
    }
    EXPECT_EQ(evaluate("a0+1"), VEC_EXPRESSION_FAILED);
    EXPECT_NE(messages->texts.at(0).find("is nested too deeply"), std::string::npos);
    EXPECT_EQ(evaluate("a9950+1"), VEC_OK);
    EXPECT_EQ(values.at(0)->getReal(0), 2);
}

TEST_F(Parser, EveryByteMakesARefusalOrAValue) {
    for (int c = 1; c < 256; ++c) {
        std::string const text{static_cast<char>(c), '1', static_cast<char>(c)};
        (void)evaluate(text);
        EXPECT_EQ(EvaluationDepth::depth(), 0) << c;
    }
    EXPECT_EQ(evaluate("1+1"), VEC_OK);
}
