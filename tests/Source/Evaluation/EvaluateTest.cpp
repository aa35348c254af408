// The entries of the evaluator: what each gives, on success and on failure.

#include "torvelan/Evaluate.h"

#include "Evaluation/ExprValue.h"
#include "Groups/GroupStore.h"
#include "Groups/LoosePool.h"
#include "RecordedMessages.h"
#include "Vectors/BlockMemory.h"
#include "torvelan/torvelan.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using Texts = std::vector<std::string>;

class Evaluate : public testing::Test {
protected:
    double number(char const * expr, VecEvalError wanted = VEC_EVAL_OK) {
        double value = 77;
        EXPECT_EQ(vec_Evaluate(&value, YString(expr), context), wanted) << expr;
        return value;
    }
    Texts texts(char const * expr, int maxCount = -1, VecEvalError wanted = VEC_EVAL_OK) {
        YArray<YString> out;
        EXPECT_EQ(vec_Evaluate(&out, maxCount, expr, context, false), wanted) << expr;
        return {out.begin(), out.end()};
    }
    std::string text(char const * expr, bool comparison = false) {
        char * out = nullptr;
        EXPECT_EQ(vec_Evaluate(&out, expr, context, comparison, false), 1) << expr;
        std::string const result = out != nullptr ? out : "(none)";
        std::free(out);
        return result;
    }
    Group * makeRun() {
        Group * group = makeUnlistedGroup(YString("title"));
        listRestoredGroup(group, YString("run"), true, *messages);
        nameSpace().current = nameSpace().global;
        return group;
    }
    void makeAlias(char const * name, char const * expression, Group * group = nullptr) {
        auto * alias = new dvec(YString(name), expression, group, PT_UNKNOWN);
        alias->enterGroup();
        alias->flags |= VF_ALIAS;
    }

    EngineSession session;
    std::shared_ptr<RecordedMessages> messages = std::make_shared<RecordedMessages>();
    ScpParseContext context{messages};
};

} // namespace

TEST_F(Evaluate, OneRealNumber) {
    EXPECT_EQ(number("1+2"), 3);
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(Evaluate, ANumberIsZeroUnlessItIsOneReal) {
    EXPECT_EQ(number("(1,2)", VEC_EVAL_FAILED), 0);
    EXPECT_EQ(number("[1,2]", VEC_EVAL_FAILED), 0);
    EXPECT_EQ(number("'a'", VEC_EVAL_FAILED), 0);
    EXPECT_EQ(number("'a'<1", VEC_EVAL_FAILED), 0);
    EXPECT_TRUE(messages->texts.empty());
    EXPECT_EQ(number("nothing", VEC_EVAL_FAILED), 0);
}

TEST_F(Evaluate, ANumberLooksAtLocalAndGlobalGroupsOnly) {
    Group * run = makeRun();
    nameSpace().current = run;
    (new dvec(YString("x"), run, PT_UNKNOWN))->enterGroup();
    EXPECT_EQ(number("x", VEC_EVAL_FAILED), 0);
    EXPECT_EQ(messages->texts, Texts{"Cannot find vector of name 'x'"});
}

TEST_F(Evaluate, AnAliasIsNoNumberAtTopLevel) {
    makeAlias("a", "1+2");
    EXPECT_EQ(number("a", VEC_EVAL_FAILED), 0);
    EXPECT_EQ(number("a+0"), 3);
    EXPECT_EQ(texts("a"), Texts{"1+2"});
    EXPECT_EQ(text("a"), "3");
}

TEST_F(Evaluate, TextsHaveFifteenDigits) {
    EXPECT_EQ(texts("[1/3,2,1e20]"), (Texts{"0.333333333333333", "2", "1e+20"}));
    EXPECT_EQ(texts("(1/3,-2)"), Texts{"(0.333333333333333,-2)"});
    EXPECT_EQ(texts("['a','b']"), (Texts{"a", "b"}));
}

TEST_F(Evaluate, AtMostSoManyTexts) {
    EXPECT_EQ(texts("[1,2,3]", 2), (Texts{"1", "2"}));
    EXPECT_EQ(texts("[1,2,3]", 9), (Texts{"1", "2", "3"}));
    EXPECT_EQ(texts("[1,2,3]", -5), (Texts{"1", "2", "3"}));
    EXPECT_EQ(texts("[1,2,3]", 0, VEC_EVAL_FAILED), Texts{});
}

TEST_F(Evaluate, OnlyTheFirstMemberOfAListIsGiven) {
    EXPECT_EQ(texts("1, x=5"), Texts{"1"});
    EXPECT_EQ(number("x"), 5);
}

TEST_F(Evaluate, NoDataIsReported) {
    EXPECT_EQ(texts("'a'<1", -1, VEC_EVAL_FAILED), Texts{});
    EXPECT_EQ(messages->texts, Texts{"The vector ''a'<1' has no data.\nThe expression cannot be evaluated"});
}

TEST_F(Evaluate, TextOfTheFirstElement) {
    EXPECT_EQ(text("[7,8]"), "7");
    EXPECT_EQ(text("'x'"), "x");
}

TEST_F(Evaluate, ComparisonModeReadsEqualsAsComparison) {
    (void)text("a=4");
    EXPECT_EQ(text("a=4", true), "1");
    EXPECT_EQ(text("a=5", true), "0");
    EXPECT_EQ(number("a"), 4);
}

TEST_F(Evaluate, ANullPlaceEvaluatesForTheEffect) {
    EXPECT_EQ(vec_Evaluate(static_cast<char **>(nullptr), "y=6", context, false, false), 0);
    EXPECT_EQ(number("y"), 6);
}

TEST_F(Evaluate, FailedTextLeavesNull) {
    char * out = reinterpret_cast<char *>(1);
    EXPECT_EQ(vec_Evaluate(&out, "nothing", context, false, false), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(vec_Evaluate(&out, nullptr, context, false, false), 0);
}

TEST_F(Evaluate, AnAliasThatDoesNotEvaluateIsAFailedConversion) {
    makeAlias("a", "nothing");
    char * out = nullptr;
    EXPECT_EQ(vec_Evaluate(&out, "a", context, false, false), 0);
    EXPECT_EQ(messages->texts, (Texts{"Cannot find vector of name 'nothing'", "Type conversion of 'a' failed"}));
}

TEST_F(Evaluate, OneTextWithAndWithoutWords) {
    YString out("before");
    EXPECT_EQ(vec_Evaluate(&out, YString("2*3"), context), VEC_EVAL_OK);
    EXPECT_EQ(out, "6");
    EXPECT_EQ(vec_Evaluate(&out, YString("nothing"), false), VEC_EVAL_FAILED);
    EXPECT_EQ(out, "6");
    EXPECT_TRUE(messages->texts.empty());
    EXPECT_EQ(vec_Evaluate(&out, YString("'q'"), false), VEC_EVAL_OK);
    EXPECT_EQ(out, "q");
}

TEST_F(Evaluate, ListAnswersItsCodes) {
    YArray<XYVector *> out;
    EXPECT_EQ(vec_EvalVecList(nullptr, &out, context, YString(), false), VEC_NULL_EXPRESSION);
    EXPECT_EQ(vec_EvalVecList("1,2", &out, context, YString(), false), VEC_OK);
    EXPECT_EQ(out.size(), 2u);
    EXPECT_EQ(vec_EvalVecList("1", &out, context, YString("nogroup"), false), VEC_NO_GROUP);
    EXPECT_EQ(out.size(), 3u);
    EXPECT_EQ(vec_EvalVecList("nothing", &out, context, YString("nogroup"), false), VEC_EXPRESSION_FAILED);
    EXPECT_EQ(vec_EvalVecList("1,nothing,3", &out, context, YString(), false), VEC_EXPRESSION_FAILED);
    EXPECT_EQ(out.size(), 5u);
}

TEST_F(Evaluate, AMemberKeepsItsNameWhenTheValueTakesAnother) {
    Group * run = makeRun();
    auto * x = new dvec(YString("x"), run, PT_UNKNOWN);
    (void)x->addVal(3.0);
    x->enterGroup();
    YArray<XYVector *> out;
    ASSERT_EQ(vec_EvalVecList("run:x", &out, context, YString(), false), VEC_OK);
    EXPECT_EQ(out.at(0)->name(), "run:x");
    EXPECT_EQ(x->name(), "x");
    EXPECT_NE(out.at(0), x);
    vec_ReleaseVector(out.at(0));
    ASSERT_EQ(vec_EvalVecList("x", &out, context, YString("run"), false), VEC_EXPRESSION_FAILED);
    nameSpace().current = run;
    ASSERT_EQ(vec_EvalVecList("x", &out, context, YString("run"), false), VEC_OK);
    EXPECT_EQ(out.at(1)->name(), ":x");
}

TEST_F(Evaluate, AFailedConversionEndsTheList) {
    makeAlias("a", "nothing");
    YArray<XYVector *> out;
    EXPECT_EQ(vec_EvalVecList("1,a,3", &out, context, YString(), false), VEC_EXPRESSION_FAILED);
    EXPECT_EQ(out.size(), 1u);
    EXPECT_EQ(messages->texts.back(), "Type conversion of 'a' failed");
}

TEST_F(Evaluate, NumericVectorByGroupAndName) {
    makeAlias("a", "1+2");
    XYVector * out = nullptr;
    EXPECT_EQ(vec_GetNumericVector(YString(), YString("a"), &out, messages, context), VEC_OK);
    EXPECT_EQ(out->getReal(0), 3);
    EXPECT_EQ(vec_GetNumericVector(YString("global"), YString("pi"), &out, messages, context), VEC_OK);
    EXPECT_EQ(vec_GetNumericVector(YString("nogroup"), YString("pi"), &out, messages, context), VEC_NO_VECTOR);
    EXPECT_EQ(vec_GetNumericVector(YString("global"), YString("nothing"), &out, messages, context), VEC_NO_VECTOR);
    makeAlias("b", "nothing");
    EXPECT_EQ(vec_GetNumericVector(YString(), YString("b"), &out, messages, context), VEC_NO_VECTOR);
}

TEST_F(Evaluate, OperandsAreReleasedAsTheyAreConsumed) {
    vec_CollectGarbage();
    YArray<XYVector *> out;
    ASSERT_EQ(vec_EvalVecList("sin(1+2)*3+max(4,5)^2", &out, context, YString(), false), VEC_OK);
    EXPECT_EQ(LoosePool::count(), 1u);
    vec_ReleaseVector(out.at(0));
    EXPECT_EQ(LoosePool::count(), 0u);
    EXPECT_EQ(EvaluationDepth::depth(), 0);
}

TEST_F(Evaluate, TemporariesOfAFailureWaitForCollection) {
    (void)number("(1+2)*nothing", VEC_EVAL_FAILED);
    vec_CollectGarbage();
    EXPECT_EQ(LoosePool::count(), 0u);
}

TEST_F(Evaluate, PeakMemoryOfASumIsTheOperandAndOneTemporary) {
    constexpr std::int64_t n = 1 << 20;
    auto * v = new dvec(YString("v"), nullptr, PT_UNKNOWN);
    v->setSize(n, VD_REAL);
    std::fill_n(v->writableRealData(), n, 1.0);
    v->enterGroup();
    BlockMemory::resetPeak();
    EXPECT_EQ(number("sum(v*2)"), 2.0 * n);
    EXPECT_LE(BlockMemory::peakBytes(), 2u * 8 * n + 65536);
    EXPECT_EQ(number("sum(3-v)"), 2.0 * n);
    EXPECT_LE(BlockMemory::peakBytes(), 2u * 8 * n + 65536);
}

TEST_F(Evaluate, MemoryExhaustedInAnOperatorIsReported) {
    auto * v = new dvec(YString("v"), nullptr, PT_UNKNOWN);
    v->setSize(1000, VD_REAL);
    std::fill_n(v->writableRealData(), 1000, 1.0);
    v->enterGroup();
    BlockMemory::failAt(1);
    YArray<XYVector *> out;
    EXPECT_EQ(vec_EvalVecList("v*2", &out, context, YString(), false), VEC_EXPRESSION_FAILED);
    EXPECT_EQ(messages->texts, Texts{"Evaluation of function '*' failed due to insufficient memory"});
    EXPECT_EQ(number("sum(v*2)"), 2000);
}

TEST_F(Evaluate, MemoryExhaustedInAnActionPassesToTheCaller) {
    std::string list = "[1";
    for (int i = 0; i < 100; ++i) list += ",1";
    BlockMemory::failAt(1);
    YArray<XYVector *> out;
    EXPECT_THROW((void)vec_EvalVecList((list + "]").c_str(), &out, context, YString(), false), MemoryException);
    EXPECT_EQ(EvaluationDepth::depth(), 0);
    EXPECT_EQ(number("1+1"), 2);
}

TEST_F(Evaluate, AFaultInAnAliasRestoresTheGroups) {
    Group * run = makeRun();
    makeAlias("a", "5%0.5", run);
    Group * const local = nameSpace().local;
    Group * const current = nameSpace().current;
    YArray<XYVector *> out;
    EXPECT_EQ(vec_EvalVecList("run:a+1", &out, context, YString(), false), VEC_EXPRESSION_FAILED);
    EXPECT_EQ(nameSpace().local, local);
    EXPECT_EQ(nameSpace().current, current);
    EXPECT_NE(messages->texts.at(0).find("An integer divide by zero exception"), std::string::npos);
    EXPECT_EQ(messages->levels.at(0), MessageLevel::print);
}
