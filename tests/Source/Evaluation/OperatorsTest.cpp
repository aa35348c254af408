// The operators: their table, what each call gives, and what they refuse.

#include "Evaluation/Operators.h"

#include "HandlerFrame.h"
#include "NumberSamples.h"

namespace {

class Operators : public HandlerFrame {
protected:
    FUNC_ERROR apply(int token, XYVector & a, XYVector & b) {
        OperatorRow * row = findOperator(token);
        if (row == nullptr) {
            ADD_FAILURE() << "no operator " << token;
            return FUNC_NO_RESULT;
        }
        return call(row->info.handler, {a, b});
    }
    // Of two numbers or pairs, the first element of a real result.
    double number(int token, double a, double b) {
        EXPECT_EQ(apply(token, real({a}), real({b})), FUNC_OK) << a << " " << b << " " << message();
        return y.getReal(0);
    }
    double number(int token, complex a, complex b) {
        EXPECT_EQ(apply(token, pairs({a}), pairs({b})), FUNC_OK) << message();
        EXPECT_TRUE(y.isReal());
        return y.getReal(0);
    }
    void expectRefused(int token, XYVector & a, XYVector & b, char const * words) {
        EXPECT_EQ(apply(token, a, b), FUNC_FAILED);
        EXPECT_EQ(message(), words);
        EXPECT_EQ(y.totalLength(), 0);
    }
    PhysType typeOf(int token, PhysType a, PhysType b) {
        EXPECT_EQ(apply(token, real({1}, a), real({2}, b)), FUNC_OK);
        return y.physType();
    }
};

struct Wanted {
    int token;
    char const * spelling;
    argType type;
    int operands;
};

Wanted const wantedRows[] = {
    {'+', "+", ARG_NUMERIC, 2},
    {'-', "-", ARG_NUMERIC, 2},
    {'*', "*", ARG_NUMERIC, 2},
    {'%', "%", ARG_NUMERIC, 2},
    {'/', "/", ARG_NUMERIC, 2},
    {'^', "^", ARG_NUMERIC, 2},
    {TOKEN_EQ, "==", ARG_ANY, 2},
    {'>', ">", ARG_ANY, 2},
    {'<', "<", ARG_ANY, 2},
    {TOKEN_GE, ">=", ARG_ANY, 2},
    {TOKEN_LE, "<=", ARG_ANY, 2},
    {TOKEN_NE, "<>", ARG_ANY, 2},
    {TOKEN_AND, "&&", ARG_NUMERIC, 2},
    {TOKEN_OR, "||", ARG_NUMERIC, 2},
    {',', ",", ARG_NUMERIC, 2},
    {'&', "&", ARG_STRING, 2},
    {TOKEN_UMINUS, "-", ARG_NUMERIC, 1},
    {'!', "!", ARG_NUMERIC, 1},
};

double const notANumber = std::nan("");

} // namespace

TEST_F(Operators, EveryTokenHasItsRow) {
    for (Wanted const & wanted : wantedRows) {
        OperatorRow const * row = findOperator(wanted.token);
        ASSERT_NE(row, nullptr) << wanted.spelling;
        EXPECT_EQ(row->token, wanted.token);
        EXPECT_STREQ(row->spelling, wanted.spelling);
        EXPECT_TRUE(row->info.name == wanted.spelling);
        EXPECT_EQ(row->info.minArgs, wanted.operands) << wanted.spelling;
        EXPECT_EQ(row->info.maxArgs, wanted.operands) << wanted.spelling;
        EXPECT_TRUE(row->info.matchArgs) << wanted.spelling;
        EXPECT_EQ(row->info.supportsIncremental, wanted.operands == 2) << wanted.spelling;
        EXPECT_NE(row->info.handler, nullptr) << wanted.spelling;
        for (int i = 0; i < wanted.operands; ++i) {
            EXPECT_EQ(row->info.argTypes[i], wanted.type) << wanted.spelling;
            EXPECT_EQ(row->info.multiDefs[i], MULTI_EACH) << wanted.spelling;
        }
    }
}

TEST_F(Operators, OtherTokensHaveNone) {
    int found = 0;
    for (int token = -5; token < 2000; ++token) found += findOperator(token) != nullptr ? 1 : 0;
    EXPECT_EQ(found, static_cast<int>(std::size(wantedRows)));
    EXPECT_EQ(findOperator(TOKEN_NAME), nullptr);
    EXPECT_EQ(findOperator(0), nullptr);
}

TEST_F(Operators, ArithmeticOfReals) {
    EXPECT_EQ(number('+', 2, 3), 5);
    EXPECT_EQ(number('-', 2, 3), -1);
    EXPECT_EQ(number('*', 2, 3), 6);
    EXPECT_EQ(number('/', 3, 2), 1.5);
    EXPECT_EQ(number('^', 2, 10), 1024);
    EXPECT_EQ(number('%', 7.9, 3.2), 1);
    EXPECT_EQ(number('%', -7, 3), 1);
}

TEST_F(Operators, ComparisonsGiveOneOrZero) {
    for (double a : {1.0, 2.0, notANumber})
        for (double b : {1.0, 2.0, notANumber}) {
            EXPECT_EQ(number(TOKEN_EQ, a, b), a == b ? 1 : 0);
            EXPECT_EQ(number(TOKEN_NE, a, b), a == b ? 0 : 1);
            EXPECT_EQ(number('>', a, b), a > b ? 1 : 0);
            EXPECT_EQ(number('<', a, b), a < b ? 1 : 0);
            EXPECT_EQ(number(TOKEN_GE, a, b), a >= b ? 1 : 0);
            EXPECT_EQ(number(TOKEN_LE, a, b), a <= b ? 1 : 0);
        }
}

TEST_F(Operators, ANaNIsTrue) {
    EXPECT_EQ(number(TOKEN_AND, notANumber, 1), 1);
    EXPECT_EQ(number(TOKEN_AND, notANumber, 0), 0);
    EXPECT_EQ(number(TOKEN_OR, notANumber, 0), 1);
    EXPECT_EQ(number(TOKEN_OR, -0.0, 0), 0);
}

TEST_F(Operators, AnyZeroDivisorFailsTheWholeDivision) {
    char const * const words = "Arguments out of range for operator '/'";
    expectRefused('/', real({1}), real({0}), words);
    expectRefused('/', real({1, 2, 3}), real({1, -0.0, 2}), words);
    expectRefused('/', pairs({{1, 2}}), real({0}), words);
    expectRefused('/', real({1}), pairs({{0, 0}}), words);
    expectRefused('/', pairs({{1, 2}}), pairs({{0, -0.0}}), words);
    EXPECT_TRUE(std::isnan(number('/', 1, notANumber)));
}

TEST_F(Operators, AFractionalPowerOfANegativeBaseIsRefused) {
    char const * const words = "Arguments out of range for operator '^'";
    expectRefused('^', real({-8}), real({1.0 / 3}), words);
    expectRefused('^', real({notANumber}), real({0.5}), words);
    EXPECT_EQ(number('^', -8, 3), -512);
    EXPECT_EQ(number('^', 0, -1), std::numeric_limits<double>::infinity());
}

TEST_F(Operators, ModuloRefusesZeroAndLargeNumbers) {
    char const * const words = "Arguments out of range for operator '%'";
    expectRefused('%', real({5}), real({0}), words);
    expectRefused('%', real({2147483647.0}), real({2}), words);
    expectRefused('%', real({2}), real({notANumber}), words);
}

TEST_F(Operators, ModuloByAFractionThrows) {
    EXPECT_THROW(apply('%', real({5}), real({0.5})), OsException);
}

TEST_F(Operators, TheMessageNamesAreThoseOfTheRows) {
    expectRefused('<', pairs({{1, 2}}), real({1}), "The operator '<' requires real arguments");
    expectRefused(TOKEN_LE, pairs({{1, 2}}), real({1}), "The operator '>=' requires real arguments");
    expectRefused(TOKEN_GE, real({1}), pairs({{1, 2}}), "The operator '>=' requires real arguments");
    expectRefused('%', pairs({{1, 2}}), pairs({{1, 2}}), "The operator '%' requires real arguments");
    expectRefused(TOKEN_AND, pairs({{1, 2}}), real({1}), "The operator '&&' requires real arguments");
    expectRefused(TOKEN_OR, pairs({{1, 2}}), real({1}), "The operator '||' requires real arguments");
    expectRefused('>', pairs({{1, 2}}), real({1}), "The operator '>' requires real arguments");
}

TEST_F(Operators, ComplexNumbersAreEqualInBothParts) {
    EXPECT_EQ(number(TOKEN_EQ, complex{1, 2}, complex{1, 2}), 1);
    EXPECT_EQ(number(TOKEN_EQ, complex{1, 2}, complex{1, 3}), 0);
    EXPECT_EQ(number(TOKEN_NE, complex{1, 2}, complex{1, 2}), 0);
    EXPECT_EQ(number(TOKEN_NE, complex{1, 2}, complex{2, 2}), 1);
}

TEST_F(Operators, ARealEqualsAComplexWithoutImaginaryPart) {
    ASSERT_EQ(apply(TOKEN_EQ, pairs({{1, 2}, {1, 0}, {2, -0.0}}), real({1, 1, 1})), FUNC_OK);
    EXPECT_EQ(reals(), (Reals{0, 1, 0}));
    ASSERT_EQ(apply(TOKEN_NE, real({1, 1, 2}), pairs({{1, 2}, {1, 0}, {2, -0.0}})), FUNC_OK);
    EXPECT_EQ(reals(), (Reals{1, 0, 0}));
}

TEST_F(Operators, TheCommaMakesComplexNumbers) {
    ASSERT_EQ(apply(',', real({1, 2}), real({3, 4})), FUNC_OK);
    EXPECT_EQ(complexes(), (Pairs{{1, 3}, {2, 4}}));
    ASSERT_EQ(apply(',', pairs({{1, 2}}), pairs({{3, 4}})), FUNC_OK);
    EXPECT_EQ(complexes(), (Pairs{{-3, 5}}));
    ASSERT_EQ(apply(',', real({1}), pairs({{3, 4}})), FUNC_OK);
    EXPECT_EQ(complexes(), (Pairs{{-3, 3}}));
    ASSERT_EQ(apply(',', pairs({{1, 2}}), real({3})), FUNC_OK);
    EXPECT_EQ(complexes(), (Pairs{{1, 5}}));
}

TEST_F(Operators, MixedKindsGiveComplexResults) {
    ASSERT_EQ(apply('-', real({1}), pairs({{3, 4}})), FUNC_OK);
    EXPECT_EQ(complexes(), (Pairs{{-2, -4}}));
    ASSERT_EQ(apply('*', pairs({{1, 2}}), pairs({{3, 4}})), FUNC_OK);
    EXPECT_EQ(complexes(), (Pairs{{-5, 10}}));
    ASSERT_EQ(apply('/', pairs({{4, 2}}), real({2})), FUNC_OK);
    EXPECT_EQ(complexes(), (Pairs{{2, 1}}));
    ASSERT_EQ(apply('^', pairs({{0, 1}}), real({2})), FUNC_OK);
    EXPECT_NEAR(complexes()[0].re, -1, 1e-15);
}

TEST_F(Operators, UnitsFollowTheRules) {
    EXPECT_EQ(typeOf('*', PT_VOLTAGE, PT_CURRENT), PT_POWER);
    EXPECT_EQ(typeOf('/', PT_VOLTAGE, PT_CURRENT), PT_RESISTANCE);
    EXPECT_EQ(typeOf('+', PT_LITERAL, PT_VOLTAGE), PT_VOLTAGE);
    EXPECT_EQ(typeOf('-', PT_VOLTAGE, PT_CURRENT), PT_UNKNOWN);
    EXPECT_EQ(typeOf(',', PT_VOLTAGE, PT_VOLTAGE), PT_VOLTAGE);
    EXPECT_EQ(typeOf('^', PT_NONE, PT_NONE), PT_UNKNOWN);
    EXPECT_EQ(typeOf('%', PT_NONE, PT_NONE), PT_UNKNOWN);
    for (int token : {int{TOKEN_EQ}, int{TOKEN_NE}, int{'>'}, int{'<'}, int{TOKEN_GE}, int{TOKEN_LE}, int{TOKEN_AND},
                      int{TOKEN_OR}})
        EXPECT_EQ(typeOf(token, PT_VOLTAGE, PT_VOLTAGE), PT_NONE);
}

TEST_F(Operators, TheReferenceIsThatOfTheFirstOperand) {
    XYVector & a = withReference(real({1, 2}), {10, 20});
    XYVector & b = real({3, 4});
    ASSERT_EQ(apply('*', a, b), FUNC_OK);
    EXPECT_EQ(ref.totalLength(), 2);
    EXPECT_EQ(ref.getReal(1), 20);
    EXPECT_EQ(ref.physType(), PT_TIME);
    EXPECT_TRUE(ref.sharesRep(a.ref));
    ASSERT_EQ(apply('*', b, a), FUNC_OK);
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(Operators, ARealResultOfComplexOperandsHasARealReference) {
    XYVector & a = pairs({{1, 2}, {3, 4}});
    a.ref.setSize(2, VD_COMPLEX);
    a.ref.writableComplexData()[0] = {5, 6};
    a.ref.writableComplexData()[1] = {7, 8};
    ASSERT_EQ(apply(TOKEN_EQ, a, pairs({{1, 2}, {0, 0}})), FUNC_OK);
    ASSERT_TRUE(ref.isReal());
    EXPECT_EQ(ref.getReal(1), 7);
    ASSERT_EQ(apply('+', a, a), FUNC_OK);
    EXPECT_TRUE(ref.isComplex());
}

TEST_F(Operators, AFailureLeavesNoReferenceEither) {
    EXPECT_EQ(apply('/', withReference(real({1, 2}), {10, 20}), real({1, 0})), FUNC_FAILED);
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(Operators, StringsCompareWithoutCase) {
    XYVector & a = strings({"abc", "abd", "ABC", nullptr, ""});
    XYVector & b = strings({"ABC", "abc", "abd", "", nullptr});
    struct {
        int token;
        Reals want;
    } const rows[] = {{TOKEN_EQ, {1, 0, 0, 1, 1}}, {TOKEN_NE, {0, 1, 1, 0, 0}}, {'>', {0, 1, 0, 0, 0}},
                      {TOKEN_GE, {1, 1, 0, 1, 1}}, {'<', {0, 0, 1, 0, 0}},      {TOKEN_LE, {1, 0, 1, 1, 1}}};
    for (auto const & [token, want] : rows) {
        ASSERT_EQ(apply(token, a, b), FUNC_OK);
        EXPECT_EQ(reals(), want) << token;
        EXPECT_EQ(y.physType(), PT_NONE);
        EXPECT_EQ(ref.totalLength(), 0);
    }
}

TEST_F(Operators, StringsOfDifferentLengthDoNotCompare) {
    expectRefused(TOKEN_EQ, strings({"a", "b"}), strings({"a"}),
                  "Arguments for string comparison must be the same length");
}

TEST_F(Operators, AStringBesideANumberGivesNothingInSilence) {
    for (int token : {int{'<'}, int{TOKEN_EQ}}) {
        EXPECT_EQ(apply(token, strings({"a"}), real({1})), FUNC_OK);
        EXPECT_EQ(y.totalLength(), 0);
        EXPECT_EQ(apply(token, pairs({{1, 2}}), strings({"a"})), FUNC_OK);
        EXPECT_EQ(y.totalLength(), 0);
        EXPECT_TRUE(isSilent());
    }
}

TEST_F(Operators, ConcatenationGoesOnWithTheLastOfTheShorter) {
    ASSERT_EQ(apply('&', strings({"a", "b", "c"}), strings({"1", "2"})), FUNC_OK);
    EXPECT_EQ(texts(), (std::vector<std::string>{"a1", "b2", "c2"}));
    ASSERT_EQ(apply('&', strings({"x"}), strings({"1", "2"})), FUNC_OK);
    EXPECT_EQ(texts(), (std::vector<std::string>{"x1", "x2"}));
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(Operators, ConcatenationTakesNullAsEmpty) {
    ASSERT_EQ(apply('&', strings({nullptr, nullptr, "c"}), strings({"1", nullptr, nullptr})), FUNC_OK);
    EXPECT_EQ(texts(), (std::vector<std::string>{"1", "(null)", "c"}));
}

TEST_F(Operators, LengthsThatDoNotMatchGiveNothing) {
    EXPECT_EQ(apply('+', real({1, 2}), real({1, 2, 3})), FUNC_OK);
    EXPECT_EQ(y.totalLength(), 0);
    EXPECT_EQ(apply('+', pairs({{1, 2}, {3, 4}}), real({1, 2, 3})), FUNC_OK);
    EXPECT_EQ(y.totalLength(), 0);
    EXPECT_TRUE(isSilent());
}

TEST_F(Operators, MinusFlipsTheSignBit) {
    double const payload = std::bit_cast<double>(0x7ff8000000000123ULL);
    OperatorRow & minus = *findOperator(TOKEN_UMINUS);
    ASSERT_EQ(call(minus.info.handler, {real({0.0, 1, payload}, PT_VOLTAGE)}), FUNC_OK);
    EXPECT_TRUE(sameNumber(reals()[0], -0.0));
    EXPECT_EQ(reals()[1], -1);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(reals()[2]), 0xfff8000000000123ULL);
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    ASSERT_EQ(call(minus.info.handler, {pairs({{1, 0.0}})}), FUNC_OK);
    EXPECT_EQ(complexes()[0].re, -1);
    EXPECT_TRUE(std::signbit(complexes()[0].im));
}

TEST_F(Operators, NotIsDimensionlessAndReal) {
    OperatorRow & logicalNot = *findOperator('!');
    ASSERT_EQ(call(logicalNot.info.handler, {withReference(real({0, -0.0, 3, notANumber}, PT_VOLTAGE), {1, 2, 3, 4})}),
              FUNC_OK);
    EXPECT_EQ(reals(), (Reals{1, 1, 0, 0}));
    EXPECT_EQ(y.physType(), PT_NONE);
    EXPECT_EQ(ref.physType(), PT_TIME);
    EXPECT_EQ(call(logicalNot.info.handler, {pairs({{1, 2}})}), FUNC_FAILED);
    EXPECT_EQ(message(), "The function '!' requires a real argument");
}

TEST_F(Operators, MaxAndMinRepeatAScalar) {
    ASSERT_EQ(callFunctionNamed("max", {real({1, 5, 3}), real({2})}), FUNC_OK);
    EXPECT_EQ(reals(), (Reals{2, 5, 3}));
    ASSERT_EQ(callFunctionNamed("min", {real({2}), real({1, 5, 3})}), FUNC_OK);
    EXPECT_EQ(reals(), (Reals{1, 2, 2}));
    ASSERT_EQ(callFunctionNamed("MIN", {real({1, 2}), real({1, 2, 3})}), FUNC_OK);
    EXPECT_EQ(y.totalLength(), 0);
    EXPECT_TRUE(isSilent());
}

TEST_F(Operators, MaxAndMinCarryNoReference) {
    ASSERT_EQ(callFunctionNamed("max", {withReference(real({1, 5}, PT_VOLTAGE), {1, 2}), real({2, 2}, PT_LITERAL)}),
              FUNC_OK);
    EXPECT_EQ(ref.totalLength(), 0);
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
}

TEST_F(Operators, MaxAndMinGiveTheSecondValueBesideANaN) {
    ASSERT_EQ(callFunctionNamed("max", {real({notANumber, 1}), real({1, notANumber})}), FUNC_OK);
    EXPECT_EQ(reals()[0], 1);
    EXPECT_TRUE(std::isnan(reals()[1]));
    ASSERT_EQ(callFunctionNamed("min", {real({notANumber, 1}), real({1, notANumber})}), FUNC_OK);
    EXPECT_TRUE(std::isnan(reals()[0]));
    EXPECT_EQ(reals()[1], 1);
}

TEST_F(Operators, MaxAndMinAreForReals) {
    EXPECT_EQ(callFunctionNamed("max", {pairs({{1, 2}}), real({1})}), FUNC_FAILED);
    EXPECT_EQ(message(), "The operator 'max' requires real arguments");
    EXPECT_EQ(callFunctionNamed("min", {real({1}), pairs({{1, 2}})}), FUNC_FAILED);
    EXPECT_EQ(message(), "The operator 'min' requires real arguments");
    for (char const * name : {"max", "min"}) {
        FuncInfo const & info = *vec_FindFunction(name);
        EXPECT_FALSE(info.supportsIncremental || info.matchArgs || info.exported) << name;
        EXPECT_EQ(info.minArgs, 2);
        EXPECT_EQ(info.maxArgs, 2);
        EXPECT_FALSE(info.summary.empty());
    }
}

TEST_F(Operators, AnEvaluationReportsTheThrownDivision) {
    double value = 77;
    ScpParseContext const context(messages);
    EXPECT_EQ(vec_Evaluate(&value, YString("5 % 0.5"), context), VEC_EVAL_FAILED);
    ASSERT_EQ(messages->texts.size(), 1U);
    EXPECT_TRUE(messages->texts[0].starts_with("An integer divide by zero exception occurred at "));
    EXPECT_NE(messages->texts[0].find("\nException occurred while executing script function %\n"), std::string::npos);
}

TEST_F(Operators, TemporariesLendTheirMemoryAndNothingElseDoes) {
    auto * v = new dvec("v", nullptr, PT_VOLTAGE);
    Reals values = NumberSamples(41).many(1000, false);
    v->setSize(1000, VD_REAL);
    std::copy(values.begin(), values.end(), v->writableRealData());
    v->enterGroup();
    YArray<XYVector *> out;
    ScpParseContext const context(messages);
    ASSERT_EQ(vec_EvalVecList("-(v*2+v)*(v-1)", &out, context, "", false), VEC_OK);
    ASSERT_EQ(out.size(), 1U);
    for (int i = 0; i < 1000; ++i) {
        double const x = values[static_cast<std::size_t>(i)];
        ASSERT_EQ(out[0]->getReal(i), -(x * 2 + x) * (x - 1));
        ASSERT_EQ(v->getReal(i), x);
    }
    vec_ReleaseVector(out[0]);
}
