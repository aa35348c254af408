// One written case over every shape a vector can have.

#include "Model.h"
#include "RecordedMessages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

namespace {

using Value = Model::Value;

// An elementwise expression of `v`, and the loop that says what it gives.
struct ElementwiseCase {
    char const * expr;
    bool acceptsComplex;
    bool complexStays;             // a complex operand gives a complex result
    std::optional<double> refused; // an element that it refuses
    UnaryLoop loop;

    friend std::ostream & operator<<(std::ostream & out, ElementwiseCase const & c) { return out << c.expr; }
};

class Shapes : public testing::TestWithParam<ElementwiseCase> {
protected:
    static Model real(std::vector<std::vector<double>> const & divisions, bool withReference) {
        Model m;
        for (auto const & values : divisions) {
            m.divisions.emplace_back(values.begin(), values.end());
            if (!withReference) continue;
            m.reference.emplace_back();
            for (std::size_t i = 0; i < values.size(); ++i) m.reference.back().push_back(static_cast<double>(i) * 0.25);
        }
        return m;
    }

    void expectOver(Model const & m) {
        ElementwiseCase const & c = GetParam();
        dvec * v = enterModel("v", m);
        YArray<XYVector *> values;
        auto const wanted = applied(m, m.isComplex && c.complexStays, c.loop);
        VEC_ERROR const code = vec_EvalVecList(c.expr, &values, context, YString(), false);
        ASSERT_EQ(code, wanted ? VEC_OK : VEC_EXPRESSION_FAILED) << c.expr;
        if (wanted) {
            EXPECT_EQ(differenceFrom(*values.at(0), *wanted, 4), "") << c.expr;
            vec_ReleaseVector(values.at(0));
        }
        EXPECT_EQ(differenceFrom(*v, m, 0), "") << "the operand changed";
        NullMessageHandler silence;
        ASSERT_EQ(vec_DestroyVector(YString("v"), silence, true), VEC_OK);
    }

    EngineSession session;
    std::shared_ptr<RecordedMessages> messages = std::make_shared<RecordedMessages>();
    ScpParseContext context{messages};
};

UnaryLoop always(double (*f)(double)) {
    return [f](Value x) { return Value(f(x.real()), 0); };
}

} // namespace

TEST_P(Shapes, Scalar) {
    expectOver(real({{1.5}}, false));
}
TEST_P(Shapes, OneDivision) {
    expectOver(real({{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}}, true));
}
TEST_P(Shapes, OneDivisionWithoutReference) {
    expectOver(real({{1, 2, 3}}, false));
}
TEST_P(Shapes, ManyDivisions) {
    expectOver(real({{1, 2}, {3, 4, 5}, {6, 7}, {8, 9, 10, 11}}, true));
}
TEST_P(Shapes, DivisionsOfOneElement) {
    expectOver(real({{1}, {2}, {3}}, false));
}
TEST_P(Shapes, AFailingDivisionIsDropped) {
    double const refused = GetParam().refused.value_or(4);
    expectOver(real({{1, 2}, {3, refused}, {5}}, true));
    expectOver(real({{refused}, {3}, {5, 6}}, true));
}
TEST_P(Shapes, AFailureOfTheOnlyDivisionIsReported) {
    if (!GetParam().refused) GTEST_SKIP() << "refuses nothing";
    expectOver(real({{1, *GetParam().refused, 3}}, true));
    EXPECT_EQ(messages->texts.size(), 1u);
}
TEST_P(Shapes, Complex) {
    if (!GetParam().acceptsComplex) GTEST_SKIP() << "real operands only";
    Model m;
    m.isComplex = true;
    m.divisions = {{{1, 2}, {3, -4}, {0.5, 0}}, {{-1, 1}}};
    m.reference = {{1, 2, 3}, {1}};
    expectOver(m);
}

TEST_P(Shapes, SharedThenWritten) {
    Model const m = real({{1, 2, 3}}, true);
    dvec * v = enterModel("v", m);
    auto * copy = new dvec(*v);
    YArray<XYVector *> values;
    ASSERT_EQ(vec_EvalVecList(GetParam().expr, &values, context, YString(), false), VEC_OK);
    copy->writableRealData()[1] = 99;
    EXPECT_EQ(differenceFrom(*v, m, 0), "");
    EXPECT_EQ(differenceFrom(*values.at(0), *applied(m, false, GetParam().loop), 4), "");
    copy->release();
    vec_ReleaseVector(values.at(0));
}

TEST_P(Shapes, PointsThatArriveLaterAreSeen) {
    dvec * v = enterModel("v", real({{1, 2, 3}}, true));
    YArray<XYVector *> values;
    ASSERT_EQ(vec_EvalVecList(GetParam().expr, &values, context, YString(), false), VEC_OK);
    (void)v->addVal(4.5);
    (void)v->ref.addVal(0.75);
    ASSERT_EQ(vec_EvalVecList(GetParam().expr, &values, context, YString(), false), VEC_OK);
    EXPECT_EQ(values.at(0)->length(), 3);
    EXPECT_EQ(differenceFrom(*values.at(1), *applied(real({{1, 2, 3, 4.5}}, true), false, GetParam().loop), 4), "");
    for (XYVector * value : values) vec_ReleaseVector(value);
}

INSTANTIATE_TEST_SUITE_P(
    Elementwise, Shapes,
    testing::Values(
        ElementwiseCase{"v+1", true, true, {}, [](Value x) { return x + 1.0; }},
        ElementwiseCase{"3-v", true, true, {}, [](Value x) { return 3.0 - x; }},
        ElementwiseCase{"v*v", true, true, {}, [](Value x) { return x * x; }},
        ElementwiseCase{"8/v", true, true, 0.0, [](Value x) { return x == 0.0 ? Answer() : Answer(8.0 / x); }},
        ElementwiseCase{"v^0.5", false, false, -1.0,
                        [](Value x) { return x.real() < 0 ? Answer() : Answer(Value(std::pow(x.real(), 0.5), 0)); }},
        ElementwiseCase{"7%v", false, false, 0.0,
                        [](Value x) {
                            double const b = std::fabs(x.real());
                            return b > 0 ? Answer(Value(double(7 % int(b)), 0)) : Answer();
                        }},
        ElementwiseCase{"(v+1)*(v-1)", true, true, {}, [](Value x) { return (x + 1.0) * (x - 1.0); }},
        ElementwiseCase{"-v", true, true, {}, [](Value x) { return -x; }},
        ElementwiseCase{"v>2", false, false, {}, [](Value x) { return Value(x.real() > 2 ? 1.0 : 0.0, 0); }},
        ElementwiseCase{"sqrt(v)", true, true, -1.0,
                        [](Value x) { return x.imag() == 0 && x.real() < 0 ? Answer() : Answer(std::sqrt(x)); }},
        ElementwiseCase{"ln(v)", true, true, 0.0, [](Value x) { return x == 0.0 ? Answer() : Answer(std::log(x)); }},
        ElementwiseCase{"exp(v)", true, true, 710.0,
                        [](Value x) { return x.real() > 709.016 ? Answer() : Answer(std::exp(x)); }},
        ElementwiseCase{"sin(v)", true, true, {}, [](Value x) { return std::sin(x); }},
        ElementwiseCase{"db(v)", true, false, {}, [](Value x) { return Value(20 * std::log10(std::abs(x)), 0); }},
        ElementwiseCase{"mag(v)", true, false, {}, [](Value x) { return Value(std::abs(x), 0); }},
        ElementwiseCase{"floorv(v)", false, false, {}, always(std::floor)},
        ElementwiseCase{"tanh(v)", true, true, {}, [](Value x) { return std::tanh(x); }}));
