// The elementwise and reducing functions as scripts know them: names, traits, kinds, units and messages.

#include "Funcs/MathTable.h"

#include "HandlerFrame.h"
#include "NumberSamples.h"
#include "Vectors/BlockMemory.h"

#include <complex>
#include <map>
#include <set>

namespace {

class Cmath1 : public HandlerFrame {
protected:
    Reals realResult(char const * name, XYVector & v) {
        EXPECT_EQ(callFunctionNamed(name, {v}), FUNC_OK) << name << message();
        return reals();
    }
    Pairs complexResult(char const * name, XYVector & v) {
        EXPECT_EQ(callFunctionNamed(name, {v}), FUNC_OK) << name << message();
        return complexes();
    }
    void expectRefused(char const * name, XYVector & v, char const * words) {
        EXPECT_EQ(callFunctionNamed(name, {v}), FUNC_FAILED) << name;
        EXPECT_EQ(message(), words) << name;
        EXPECT_EQ(y.totalLength(), 0) << name;
        EXPECT_EQ(ref.totalLength(), 0) << name;
    }
    std::string evaluationMessage(char const * expr) {
        messages->clear();
        double value;
        EXPECT_EQ(vec_Evaluate(&value, YString(expr), ScpParseContext(messages)), VEC_EVAL_FAILED) << expr;
        return message();
    }
};

char const * const names[] = {
    "abs",  "mag",  "magnitude", "arg",     "arg_rad", "ph",       "phase",  "phase_rad", "re",       "real",
    "im",   "imag", "sign",      "db",      "log",     "log10",    "ln",     "exp",       "sin",      "cos",
    "tan",  "atan", "sin_deg",   "cos_deg", "tan_deg", "atan_deg", "sinh",   "cosh",      "tanh",     "sqrt",
    "norm", "rnd",  "floorv",    "mean",    "sum",     "maxidx",   "minidx", "length",    "NumElems", "NumDivisions"};

std::set<std::string> const notIncremental = {"phase", "ph",  "phase_rad", "maxidx",   "minidx",
                                              "mean",  "sum", "length",    "NumElems", "NumDivisions"};
std::set<std::string> const notFlat = {"norm", "rnd"}; // beside those

double const infinity = std::numeric_limits<double>::infinity();

} // namespace

TEST_F(Cmath1, RegistersItsNames) {
    for (char const * name : names) {
        FuncInfo const * info = vec_FindFunction(name);
        ASSERT_NE(info, nullptr) << name;
        EXPECT_TRUE(info->name == name);
        EXPECT_EQ(info->minArgs, 1) << name;
        EXPECT_EQ(info->maxArgs, 1) << name;
        EXPECT_FALSE(info->exported || info->matchArgs) << name;
        EXPECT_FALSE(info->summary.empty()) << name;
        bool const incremental = !notIncremental.contains(name);
        EXPECT_EQ(info->supportsIncremental, incremental) << name;
        EXPECT_EQ(info->flatDivisions, incremental && !notFlat.contains(name)) << name;
    }
}

TEST_F(Cmath1, PreparesArgumentsAsEachNameAsks) {
    std::map<std::string, std::pair<argType, MultiDef>> const special = {{"sign", {ARG_REAL, MULTI_EACH}},
                                                                         {"rnd", {ARG_REAL, MULTI_EACH}},
                                                                         {"length", {ARG_ANY, MULTI_WHOLE}},
                                                                         {"NumElems", {ARG_ANY, MULTI_COLLAPSE}},
                                                                         {"NumDivisions", {ARG_AS_IS, MULTI_WHOLE}}};
    for (char const * name : names) {
        FuncInfo const & info = *vec_FindFunction(name);
        auto const found = special.find(name);
        auto const [type, multi] = found != special.end() ? found->second : std::pair(ARG_NUMERIC, MULTI_EACH);
        EXPECT_EQ(info.argTypes[0], type) << name;
        EXPECT_EQ(info.multiDefs[0], multi) << name;
    }
}

TEST_F(Cmath1, EveryRowKnowsWhatARealArgumentGives) {
    for (int i = 0; i < static_cast<int>(Math::count); ++i) {
        MathRow const & row = mathRow(static_cast<Math>(i));
        EXPECT_NE(row.realToReal, nullptr) << row.name;
        EXPECT_EQ(row.realToComplex, nullptr) << row.name;
        EXPECT_TRUE(row.complexToReal == nullptr || row.complexToComplex == nullptr) << row.name;
    }
    EXPECT_STREQ(mathRow(Math::log).name, "log");
    EXPECT_STREQ(mathRow(Math::arg).name, "phase_b");
    EXPECT_STREQ(mathRow(Math::tanh).name, "tanh");
    EXPECT_STREQ(mathRow(Math::minus).name, "-");
}

TEST_F(Cmath1, RealArgumentsGiveRealResults) {
    EXPECT_EQ(realResult("abs", real({-2, 3})), (Reals{2, 3}));
    EXPECT_EQ(realResult("magnitude", real({-2})), (Reals{2}));
    EXPECT_EQ(realResult("real", real({-2, 3})), (Reals{-2, 3}));
    EXPECT_EQ(realResult("re", real({-2})), (Reals{-2}));
    EXPECT_EQ(realResult("imag", real({-2, 3})), (Reals{0, 0}));
    EXPECT_EQ(realResult("im", real({-2})), (Reals{0}));
    EXPECT_EQ(realResult("sign", real({-3, 0, 2})), (Reals{0, 0, 1}));
    EXPECT_EQ(realResult("db", real({0, 10, -0.1})), (Reals{-6160, 20, -20}));
    EXPECT_EQ(realResult("log", real({1000})), (Reals{3}));
    EXPECT_EQ(realResult("log10", real({0.01})), (Reals{-2}));
    EXPECT_EQ(realResult("ln", real({1})), (Reals{0}));
    EXPECT_EQ(realResult("exp", real({0})), (Reals{1}));
    EXPECT_EQ(realResult("sqrt", real({9})), (Reals{3}));
    EXPECT_EQ(realResult("floorv", real({-1.5, 2.5})), (Reals{-2, 2}));
    EXPECT_EQ(realResult("norm", real({-4, 2})), (Reals{-1, 0.5}));
    EXPECT_EQ(realResult("sin", real({0})), (Reals{0}));
    EXPECT_EQ(realResult("cos", real({0})), (Reals{1}));
    EXPECT_EQ(realResult("tan", real({0})), (Reals{0}));
    EXPECT_EQ(realResult("atan", real({1})), (Reals{std::atan(1.0)}));
    EXPECT_EQ(realResult("sinh", real({0})), (Reals{0}));
    EXPECT_EQ(realResult("cosh", real({0})), (Reals{1}));
    EXPECT_EQ(realResult("tanh", real({infinity})), (Reals{1}));
}

TEST_F(Cmath1, ARealVectorHasNoPhase) {
    for (char const * name : {"arg", "arg_rad", "phase", "ph", "phase_rad"})
        EXPECT_EQ(realResult(name, real({-1, 2, -3})), (Reals{0, 0, 0})) << name;
}

TEST_F(Cmath1, DegreesAreForRealArguments) {
    EXPECT_NEAR(realResult("sin_deg", real({30}))[0], 0.5, 1e-15);
    EXPECT_NEAR(realResult("cos_deg", real({60}))[0], 0.5, 1e-15);
    EXPECT_NEAR(realResult("tan_deg", real({45}))[0], 1, 1e-15);
    EXPECT_NEAR(realResult("atan_deg", real({1}))[0], 45, 1e-13);
    complex const z{0.5, 0.25};
    EXPECT_EQ(complexResult("sin_deg", pairs({z}))[0], ::sin(z));
    EXPECT_EQ(complexResult("cos_deg", pairs({z}))[0], ::cos(z));
    EXPECT_EQ(complexResult("tan_deg", pairs({z}))[0], ::tan(z));
    EXPECT_EQ(complexResult("atan_deg", pairs({z}))[0], ::atan(z));
}

TEST_F(Cmath1, MagnitudesPartsAndAnglesOfComplexVectorsAreReal) {
    XYVector & z = pairs({{3, 4}, {0, -10}});
    EXPECT_EQ(realResult("abs", z), (Reals{5, 10}));
    EXPECT_EQ(realResult("mag", z), (Reals{5, 10}));
    EXPECT_EQ(realResult("real", z), (Reals{3, 0}));
    EXPECT_EQ(realResult("imag", z), (Reals{4, -10}));
    EXPECT_EQ(realResult("db", z)[1], 20);
    EXPECT_EQ(realResult("arg", z)[1], -90);
    EXPECT_EQ(realResult("arg_rad", z)[1], -1.5707963267948966);
    EXPECT_EQ(realResult("maxidx", z), (Reals{1}));
    EXPECT_EQ(realResult("minidx", z), (Reals{0}));
}

TEST_F(Cmath1, OtherComplexResultsAreComplex) {
    complex const z{0.5, 0.25};
    std::pair<char const *, complex (*)(complex)> const rows[] = {
        {"log", ::log10}, {"log10", ::log10}, {"ln", ::log},    {"exp", ::exp},   {"sin", ::sin},   {"cos", ::cos},
        {"tan", ::tan},   {"atan", ::atan},   {"sinh", ::sinh}, {"cosh", ::cosh}, {"tanh", ::tanh}, {"sqrt", ::sqrt}};
    for (auto const & [name, function] : rows) EXPECT_EQ(complexResult(name, pairs({z}))[0], function(z)) << name;
    EXPECT_EQ(complexResult("norm", pairs({{3, 4}})), (Pairs{{0.6, 0.8}}));
    EXPECT_EQ(complexResult("sum", pairs({{1, 2}, {3, 4}})), (Pairs{{4, 6}}));
    EXPECT_EQ(complexResult("mean", pairs({{1, 2}, {3, 4}})), (Pairs{{2, 3}}));
}

TEST_F(Cmath1, ThePhaseIsUnwrapped) {
    double const degree = 3.141592653589793 / 180, c = std::cos(170 * degree), s = std::sin(170 * degree);
    for (char const * name : {"phase", "ph"}) {
        Reals const out = realResult(name, pairs({{c, s}, {c, -s}}));
        EXPECT_NEAR(out[0], 170, 1e-12);
        EXPECT_NEAR(out[1], 190, 1e-12);
    }
    EXPECT_NEAR(realResult("phase_rad", pairs({{c, s}, {c, -s}}))[1], 190 * degree, 1e-14);
    EXPECT_EQ(realResult("phase", pairs({{0, -1}})), (Reals{-90}));
}

TEST_F(Cmath1, RefusedElementsNameTheRoutine) {
    expectRefused("log", real({0}), "Argument out of range for function 'log'");
    expectRefused("log10", real({1, 0}), "Argument out of range for function 'log'");
    expectRefused("ln", withReference(real({1, -1}), {1, 2}), "Argument out of range for function 'ln'");
    expectRefused("sqrt", real({-1}), "Argument out of range for function 'sqrt'");
    expectRefused("exp", real({709.017}), "Overflow in function 'exp'");
    expectRefused("log", pairs({{0, 0}}), "Argument out of range for function 'log'");
    expectRefused("exp", pairs({{1000, 0}}), "Overflow in function 'exp'");
    expectRefused("atan", pairs({{0, 1}}), "Overflow in function 'atan'");
    expectRefused("atan_deg", pairs({{0, -1}}), "Overflow in function 'atan_deg'");
}

TEST_F(Cmath1, FunctionsOfRealsRefuseComplexArguments) {
    expectRefused("floorv", pairs({{1, 2}}), "The function 'floorv' requires a real argument");
    EXPECT_EQ(evaluationMessage("sign((1,2))"), "Argument 1 in function 'sign' is complex. Expected real");
    EXPECT_EQ(evaluationMessage("rnd((1,2))"), "Argument 1 in function 'rnd' is complex. Expected real");
}

TEST_F(Cmath1, AZeroVectorCannotBeNormalised) {
    expectRefused("norm", real({0, 0}), "Cannot normalise zero vector");
    expectRefused("norm", pairs({{0, 0}}), "Cannot normalise zero vector");
    expectRefused("norm", real({}), "Cannot normalise zero vector");
}

TEST_F(Cmath1, EmptyVectors) {
    EXPECT_EQ(realResult("mag", real({})), Reals());
    EXPECT_EQ(realResult("phase", pairs({})), Reals());
    EXPECT_EQ(realResult("log", real({})), Reals());
    EXPECT_TRUE(std::isnan(realResult("mean", real({}))[0]));
    EXPECT_EQ(realResult("sum", real({})), (Reals{0}));
    EXPECT_EQ(realResult("minidx", real({})), (Reals{0}));
    EXPECT_EQ(realResult("maxidx", real({std::nan(""), std::nan("")})), (Reals{0}));
    EXPECT_TRUE(isSilent());
}

TEST_F(Cmath1, AnEvaluationRefusesEmptyVectorsUnlessTheyAreCounted) {
    (new dvec("nothing", nullptr, PT_UNKNOWN))->enterGroup();
    for (std::string const name : names) {
        if (name == "length" || name == "NumElems") continue;
        EXPECT_EQ(evaluationMessage((name + "(nothing)").c_str()),
                  "The vector 'nothing' has no data.\nThe expression cannot be evaluated");
    }
    double value = 77;
    EXPECT_EQ(vec_Evaluate(&value, YString("length(nothing)"), ScpParseContext(messages)), VEC_EVAL_OK);
    EXPECT_EQ(value, 0);
}

TEST_F(Cmath1, ReductionsGiveOneElementWithoutReference) {
    for (char const * name : {"mean", "sum", "maxidx", "minidx"}) {
        EXPECT_EQ(realResult(name, withReference(real({3, 1, 3}, PT_VOLTAGE), {1, 2, 3})).size(), 1U) << name;
        EXPECT_EQ(ref.totalLength(), 0) << name;
    }
    EXPECT_EQ(realResult("mean", real({1, 2, 6})), (Reals{3}));
    EXPECT_EQ(realResult("sum", real({1, 2, 6})), (Reals{9}));
    EXPECT_EQ(realResult("maxidx", real({1, 3, 3})), (Reals{1}));
    EXPECT_EQ(realResult("minidx", real({1, 3, 0})), (Reals{2}));
}

TEST_F(Cmath1, TheReferenceIsCarriedAlong) {
    for (char const * name : {"abs", "sin", "phase", "norm", "rnd", "real"}) {
        XYVector & v = withReference(real({3, 1}), {10, 20});
        EXPECT_EQ(callFunctionNamed(name, {v}), FUNC_OK);
        EXPECT_TRUE(ref.sharesRep(v.ref)) << name;
        EXPECT_EQ(ref.physType(), PT_TIME) << name;
    }
}

TEST_F(Cmath1, ARealResultHasARealReference) {
    XYVector & z = pairs({{3, 4}});
    z.ref.setSize(1, VD_COMPLEX);
    z.ref.writableComplexData()[0] = {5, 6};
    realResult("mag", z);
    ASSERT_TRUE(ref.isReal());
    EXPECT_EQ(ref.getReal(0), 5);
    complexResult("exp", z);
    EXPECT_TRUE(ref.isComplex());
}

TEST_F(Cmath1, UnitsFollowTheRules) {
    auto unit = [&](char const * name, PhysType type) {
        EXPECT_EQ(callFunctionNamed(name, {real({1, 2}, type)}), FUNC_OK) << name;
        return y.physType();
    };
    for (char const * name : {"abs", "real", "imag", "rnd", "mean", "floorv", "sum"})
        EXPECT_EQ(unit(name, PT_VOLTAGE), PT_VOLTAGE) << name;
    for (char const * name :
         {"phase", "arg", "sign", "norm", "maxidx", "minidx", "phase_rad", "arg_rad", "length", "NumElems"})
        EXPECT_EQ(unit(name, PT_VOLTAGE), PT_NONE) << name;
    for (char const * name : {"db", "log", "ln", "exp", "sin", "cos", "tan", "atan", "sin_deg", "cos_deg", "tan_deg",
                              "atan_deg", "sinh", "cosh", "tanh"}) {
        EXPECT_EQ(unit(name, PT_VOLTAGE), PT_UNKNOWN) << name;
        EXPECT_EQ(unit(name, PT_NONE), PT_NONE) << name;
    }
    EXPECT_EQ(unit("sqrt", PT_VOLTAGE_SQUARED), PT_VOLTAGE);
    EXPECT_EQ(unit("sqrt", PT_VOLTAGE), PT_UNKNOWN);
}

TEST_F(Cmath1, RandomValuesLieBetweenZeroAndTheElement) {
    mathkernels::randomSeed() = RandomSeed();
    Reals const first = realResult("rnd", real({1, 5, -2, 0}));
    mathkernels::randomSeed() = RandomSeed();
    EXPECT_EQ(realResult("rnd", real({1, 5, -2, 0})), first);
    EXPECT_NE(realResult("rnd", real({1, 5, -2, 0})), first);
    EXPECT_TRUE(first[0] >= 0 && first[0] <= 1 && first[1] >= 0 && first[1] <= 5 && first[2] <= 0 && first[2] >= -2);
    EXPECT_EQ(first[3], 0);
}

TEST_F(Cmath1, CountsOfAVector) {
    XYVector & v = real({1, 2, 3});
    v.addDivision("");
    v.addVal(4);
    EXPECT_EQ(realResult("length", v), (Reals{3}));
    EXPECT_EQ(realResult("NumElems", v), (Reals{3}));
    EXPECT_EQ(realResult("NumDivisions", v), (Reals{2}));
    EXPECT_EQ(realResult("length", strings({"a", nullptr})), (Reals{2}));
    EXPECT_EQ(realResult("length", real({})), (Reals{0}));
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(Cmath1, NumElemsCountsEveryDivision) {
    auto * v = new dvec("v", nullptr, PT_VOLTAGE);
    for (int length : {3, 1, 2}) {
        if (v->totalLength() > 0) v->addDivision("");
        for (int i = 0; i < length; ++i) v->addVal(i);
    }
    v->enterGroup();
    YArray<YString> out;
    EXPECT_EQ(vec_Evaluate(&out, -1, "NumElems(v)", ScpParseContext(messages), false), VEC_EVAL_OK);
    EXPECT_EQ(out, (YArray<YString>{"3", "1", "2"}));
    out.clear();
    EXPECT_EQ(vec_Evaluate(&out, -1, "length(v)", ScpParseContext(messages), false), VEC_EVAL_OK);
    EXPECT_EQ(out, (YArray<YString>{"3"}));
}

TEST_F(Cmath1, AReductionOfManyDivisionsTakesLittleMemory) {
    auto * v = new dvec("many", nullptr, PT_VOLTAGE);
    for (int d = 0; d < 1000; ++d) {
        if (d > 0) v->addDivision("");
        for (int i = 0; i < 10; ++i) v->addVal(d);
    }
    v->enterGroup();
    YArray<XYVector *> out;
    std::size_t const before = BlockMemory::bytesInUse();
    BlockMemory::resetPeak();
    ASSERT_EQ(vec_EvalVecList("mean(many)", &out, ScpParseContext(messages), "", false), VEC_OK);
    EXPECT_LT(BlockMemory::peakBytes() - before, 5000 * sizeof(double)); // there are 10000 elements
    ASSERT_EQ(out[0]->numDivisions(), 1000);
    for (int d = 0; d < 1000; ++d) ASSERT_EQ(out[0]->getReal(0, d), d);
    vec_ReleaseVector(out[0]);
}
