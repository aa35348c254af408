// Results that are extended point by point equal those of one evaluation over all points.

#include "NumberSamples.h"
#include "RecordedMessages.h"
#include "torvelan/torvelan.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

// A run that goes on: vectors over one reference that they share.
class Incremental : public testing::Test {
protected:
    Incremental() : seed(std::random_device()()), samples(seed), choose(seed) {
        t = member("t");
        for (char const * name : {"a", "b"}) reals.push_back(member(name));
        z = member("z");
        z->setComplexFlag();
        for (dvec * vector : reals) vector->ref = *t;
        z->ref = *t;
        evaluate("s=0.5");
    }

    dvec * member(char const * name) {
        auto * const vector = new dvec(name, nullptr, PT_VOLTAGE);
        vector->enterGroup();
        return vector;
    }
    std::int64_t upTo(std::int64_t n) { return std::uniform_int_distribution<std::int64_t>(0, n)(choose); }
    void appendTimes(std::int64_t n) {
        if (n > 0) isDivisionEmpty = false;
        for (std::int64_t i = 0; i < n; ++i) t->addVal(time += samples.ordinary(0.01, 1));
    }
    void appendValues(std::int64_t n) {
        for (std::int64_t i = 0; i < n; ++i) {
            for (dvec * vector : reals) vector->addVal(samples.ordinary(0.1, 0.9));
            z->addVal(complex{samples.ordinary(0.1, 0.9), samples.ordinary(0.1, 0.9)});
        }
    }
    void append(std::int64_t n) {
        appendTimes(n);
        appendValues(n);
    }
    void beginDivision() {
        for (dvec * vector : {t, reals[0], reals[1], z}) vector->addDivision(YString());
        isDivisionEmpty = true;
    }
    // The value of an expression, a temporary that nothing collects here; null on failure.
    XYVector * evaluate(std::string const & expr) {
        YArray<XYVector *> out;
        if (vec_EvalVecList(expr.c_str(), &out, context, YString(), false) != VEC_OK) return nullptr;
        return out.front();
    }
    bool extend(std::string const & expr, XYVector & result) {
        IncEvalErr error = INC_EVAL_FAILED;
        bool const failed = vec_IncrementalEvaluate(expr.c_str(), &result, YString(), &error, handler, context);
        EXPECT_EQ(failed, error != INC_EVAL_OK);
        return !failed;
    }
    void expectSame(XYVector const & got, XYVector const & wanted, std::string const & expr) {
        ASSERT_EQ(got.type(), wanted.type()) << expr;
        ASSERT_EQ(got.numDivisions(), wanted.numDivisions()) << expr;
        for (std::int64_t d = 0; d < wanted.numDivisions(); ++d) {
            ASSERT_EQ(got.length(d), wanted.length(d)) << expr << " division " << d;
            for (std::int64_t i = 0; i < wanted.length(d); ++i) {
                ASSERT_TRUE(sameNumber(got.getReal(i, d), wanted.getReal(i, d))) << expr << " at " << i;
                ASSERT_TRUE(sameNumber(got.getImag(i, d), wanted.getImag(i, d))) << expr << " at " << i;
            }
        }
    }
    // Appends in random pieces, the values sometimes late, and follows with the result.
    void follow(std::string const & expr, bool divides) {
        SCOPED_TRACE(expr + ", seed " + std::to_string(seed));
        append(1 + upTo(5));
        XYVector * const result = evaluate(expr);
        ASSERT_NE(result, nullptr) << testing::PrintToString(handler->texts);
        for (int step = 0; step < 12; ++step) {
            if (divides && !isDivisionEmpty && upTo(3) == 0) beginDivision();
            std::int64_t const n = upTo(9), late = upTo(n);
            appendTimes(n);
            appendValues(n - late);
            ASSERT_TRUE(extend(expr, *result)) << testing::PrintToString(handler->texts);
            appendValues(late);
            bool const looksAgain = upTo(1) == 0;
            EXPECT_TRUE(!looksAgain || extend(expr, *result));
        }
        append(1);
        ASSERT_TRUE(extend(expr, *result));
        expectSame(*result, *evaluate(expr), expr);
    }

    unsigned seed;
    NumberSamples samples;
    std::mt19937 choose;
    EngineSession session;
    std::shared_ptr<RecordedMessages> handler = std::make_shared<RecordedMessages>();
    ScpParseContext context{handler};
    dvec * t = nullptr;
    std::vector<dvec *> reals;
    dvec * z = nullptr;
    double time = 0;
    bool isDivisionEmpty = true;
};

constexpr char const * expressions[] = {
    "a+b",           "a-b",         "a*b",   "a/b",     "a^b",   "(a*100)%7", "a<b",      "a>=b",
    "a==b",          "a<>b",        "a&&b",  "a||b",    "a+1",   "2*b",       "s*a",      "a-s",
    "z*a",           "z+z",         "z/z",   "a*z",     "z-1",   "db(a/b)",   "mag(z)*2", "sin(a)+cos(b)*exp(a*b)",
    "(a+b)*(a-b)/2", "re(z)+im(z)", "s+s*a", "sqrt(a)", "(a,b)", "abs(a-b)",
};

bool isLeftOut(YString const & name) {
    for (char const * left : {"norm", "rnd"}) // the first looks at all points, the second at none twice alike
        if (equalNoCase(name, left)) return true;
    return false;
}

} // namespace

class IncrementalExpressions : public Incremental, public testing::WithParamInterface<char const *> {};

TEST_P(IncrementalExpressions, EqualOneEvaluation) {
    follow(GetParam(), false);
}

TEST_P(IncrementalExpressions, EqualOneEvaluationOverDivisions) {
    follow(GetParam(), true);
}

INSTANTIATE_TEST_SUITE_P(All, IncrementalExpressions, testing::ValuesIn(expressions),
                         [](auto const & test) { return std::to_string(test.index); });

TEST_F(Incremental, EveryFunctionThatSaysSoIsIncremental) {
    YList<FuncInfo> functions;
    vec_GetSortedFunctionList(&functions);
    int count = 0;
    for (FuncInfo const & function : functions) {
        if (!function.supportsIncremental || function.minArgs != 1 || isLeftOut(function.name)) continue;
        follow(std::string(function.name.view()) + "(a)", true);
        ++count;
    }
    EXPECT_GT(count, 25);
}

TEST_F(Incremental, OthersAreLeftToAFullEvaluation) {
    append(5);
    for (char const * expr : {"sum(a)", "phase(z)", "-a", "!a", "a[0]", "nothing", "1+", "integ(a)", "max(a,b)"}) {
        XYVector result(*reals[0]);
        XYVector const before(result);
        result.ref = *t;
        appendTimes(1);
        IncEvalErr error = INC_EVAL_OK;
        EXPECT_TRUE(vec_IncrementalEvaluate(expr, &result, YString(), &error, handler, context)) << expr;
        EXPECT_EQ(error, INC_EVAL_FAILED);
        EXPECT_EQ(result.totalLength(), before.totalLength());
        appendValues(1);
    }
}

TEST_F(Incremental, EveryFunctionThatDoesNotSaySoIsLeftToAFullEvaluation) {
    append(3);
    XYVector const before(*reals[0]);
    appendTimes(1);
    YList<FuncInfo> functions;
    vec_GetSortedFunctionList(&functions);
    int count = 0;
    for (FuncInfo const & function : functions) {
        if (function.supportsIncremental) continue;
        std::string arguments;
        for (int i = 0; i < function.minArgs; ++i) arguments += i == 0 ? "a" : ",a";
        std::string const expr = std::string(function.name.view()) + "(" + arguments + ")";
        XYVector result("result");
        for (std::int64_t i = 0; i < before.totalLength(); ++i) (void)result.addVal(before.getReal(i));
        result.ref = *t;
        IncEvalErr error = INC_EVAL_OK;
        EXPECT_TRUE(vec_IncrementalEvaluate(expr.c_str(), &result, YString(), &error, handler, context)) << expr;
        EXPECT_EQ(error, INC_EVAL_FAILED) << expr;
        EXPECT_EQ(result.totalLength(), 3) << expr;
        ++count;
    }
    EXPECT_GT(count, 60);
    EXPECT_TRUE(handler->texts.empty()) << testing::PrintToString(handler->texts);
}

TEST_F(Incremental, UnaryPlusIsTransparent) {
    append(3);
    XYVector * const result = evaluate("+(a*2)");
    append(2);
    EXPECT_TRUE(extend("+(a*2)", *result));
    EXPECT_EQ(result->totalLength(), 5);
}

TEST_F(Incremental, NothingIsDoneWithoutNewReferenceData) {
    append(3);
    XYVector * const result = evaluate("a*2");
    EXPECT_TRUE(extend("this does not parse (", *result)) << "not even looked at";
    EXPECT_EQ(result->totalLength(), 3);
    EXPECT_TRUE(handler->texts.empty());
}

TEST_F(Incremental, AliasesAreFollowed) {
    append(3);
    vec_MakeAliasVector("gain", "db(a/b)", YString(), PT_NONE);
    vec_MakeAliasVector("twice", "gain*2", YString(), PT_NONE);
    for (char const * expr : {"gain+1", "twice", "gain"}) follow(expr, true);
}

TEST_F(Incremental, ANewDivisionThatHasNoValueYetIsNotAnnouncedTwice) {
    append(2);
    XYVector * const result = evaluate("a*2");
    beginDivision();
    appendTimes(2);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(extend("a*2", *result));
    EXPECT_EQ(result->numDivisions(), 1);
    appendValues(2);
    EXPECT_TRUE(extend("a*2", *result));
    EXPECT_EQ(result->numDivisions(), 2);
    EXPECT_EQ(result->length(1), 2);
    expectSame(*result, *evaluate("a*2"), "a*2");
}

TEST_F(Incremental, AStringAddsNothing) {
    append(3);
    XYVector * const result = evaluate("a*2");
    append(1);
    EXPECT_TRUE(extend("'text'", *result));
    EXPECT_EQ(result->totalLength(), 3);
}

TEST_F(Incremental, AComplexResultStaysComplex) {
    append(3);
    XYVector * const result = evaluate("z*1");
    append(2);
    EXPECT_TRUE(extend("z*1", *result));
    EXPECT_TRUE(result->isComplex());
    EXPECT_EQ(result->totalLength(), 5);
}
