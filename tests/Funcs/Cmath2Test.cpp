// Calculus functions.

#include "HandlerFrame.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

class Calculus : public HandlerFrame {
protected:
    XYVector & waveform(Reals const & x, Reals const & values) {
        return withReference(real(values, PT_VOLTAGE), x, PT_TIME);
    }
    Reals run(char const * name, XYVector & v) {
        EXPECT_EQ(callFunctionNamed(name, {v}), FUNC_OK);
        return reals();
    }
    // The area between limits; NaN when there is no result, which is silent.
    double area(XYVector & v, double from, double to) {
        EXPECT_EQ(callFunctionNamed("area", {v, real({from}), real({to})}), FUNC_OK);
        EXPECT_TRUE(isSilent());
        return y.totalLength() == 1 ? y.getReal(0) : std::nan("");
    }
    double area(XYVector & v) {
        EXPECT_EQ(callFunctionNamed("area", {v}), FUNC_OK);
        EXPECT_TRUE(isSilent());
        return y.totalLength() == 1 ? y.getReal(0) : std::nan("");
    }
    void expectRefused(char const * name, XYVector & v, char const * words) {
        EXPECT_EQ(callFunctionNamed(name, {v}), FUNC_FAILED);
        EXPECT_EQ(message(), words);
        EXPECT_EQ(y.totalLength(), 0);
    }
    // x with uneven steps from 0 on.
    Reals unevenGrid(std::size_t n) {
        Reals x(n);
        for (std::size_t i = 1; i < n; ++i) x[i] = x[i - 1] + std::exp(std::normal_distribution<double>()(random));
        return x;
    }
    template <class F> Reals sampled(Reals const & x, F f) {
        Reals out;
        for (double at : x) out.push_back(f(at));
        return out;
    }

    std::mt19937_64 random{std::random_device()()};
};

} // namespace

// --- integ and avg

TEST_F(Calculus, TheIntegralOfAStraightLineIsExact) {
    Reals const x = unevenGrid(500);
    Reals const got = run("integ", waveform(x, sampled(x, [](double t) { return 3 * t - 2; })));
    for (std::size_t i = 0; i < x.size(); ++i) {
        double const wanted = 1.5 * x[i] * x[i] - 2 * x[i];
        EXPECT_NEAR(got[i], wanted, 1e-12 * (1 + x[i] * x[i])) << i;
    }
}

TEST_F(Calculus, TheIntegralOfASineConverges) {
    Reals x(20001);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = 10.0 * std::pow(static_cast<double>(i) / 20000.0, 1.3);
    Reals const got = run("integ", waveform(x, sampled(x, [](double t) { return std::sin(t); })));
    for (std::size_t i = 0; i < x.size(); i += 100) EXPECT_NEAR(got[i], 1 - std::cos(x[i]), 1e-6);
}

TEST_F(Calculus, TheIntegralCarriesTheReferenceAndItsUnit) {
    run("integ", waveform({0, 1, 3}, {2, 2, 2}));
    EXPECT_EQ(reals(), (Reals{0, 2, 6}));
    EXPECT_EQ(y.physType(), PT_FLUX);
    EXPECT_EQ(ref.getReal(2), 3);
    EXPECT_EQ(ref.physType(), PT_TIME);
    EXPECT_STREQ(ref.name().c_str(), "x");
}

TEST_F(Calculus, TheIntegralRunsBackOverFallingX) {
    EXPECT_EQ(run("integ", waveform({3, 1, 0}, {2, 2, 2})), (Reals{0, -4, -6}));
}

TEST_F(Calculus, OnePointHasNoArea) {
    EXPECT_EQ(run("integ", waveform({5}, {7})), (Reals{0}));
    EXPECT_EQ(run("avg", waveform({5}, {7})), (Reals{0}));
}

TEST_F(Calculus, TheAverageOfAConstantStartsAtZero) {
    EXPECT_EQ(run("avg", waveform({0, 1, 2}, {3, 3, 3})), (Reals{0, 3, 3}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
}

TEST_F(Calculus, TheAverageIsTheIntegralOverTheWay) {
    Reals const x = unevenGrid(200), values = sampled(x, [](double t) { return std::cos(t) + t; });
    Reals const integral = run("integ", waveform(x, values)), average = run("avg", waveform(x, values));
    for (std::size_t i = 1; i < x.size(); ++i) EXPECT_DOUBLE_EQ(average[i], integral[i] / x[i]);
}

TEST_F(Calculus, TheAverageDividesByZeroWhereXHasNotMoved) {
    Reals const got = run("avg", waveform({0, 0, 1}, {1, 3, 3}));
    EXPECT_TRUE(std::isnan(got[1]));
    EXPECT_EQ(got[2], 3);
}

TEST_F(Calculus, IntegralsNeedPointsAndX) {
    for (char const * name : {"integ", "avg"}) {
        expectRefused(name, real({1, 2}), "Argument 1 in function 'test' has no reference (xvalues)");
        expectRefused(name, real({}),
                      name == std::string("avg") ? "Argument out of range for function 'avg'"
                                                 : "Argument out of range for function 'integ'");
    }
}

TEST_F(Calculus, AComplexReferenceGivesItsRealParts) {
    XYVector & v = real({2, 2, 2}, PT_VOLTAGE);
    v.ref.setSize(3, VD_COMPLEX);
    for (int i = 0; i < 3; ++i) v.ref.writableComplexData()[i] = {2.0 * i, 9.0};
    EXPECT_EQ(run("integ", v), (Reals{0, 4, 8}));
    EXPECT_TRUE(ref.isReal());
    EXPECT_EQ(ref.getReal(2), 4);
}

// --- diff

TEST_F(Calculus, TheDerivativeOfAStraightLineIsItsSlope) {
    Reals const x = unevenGrid(300);
    for (double slope : run("diff", waveform(x, sampled(x, [](double t) { return 4 * t + 1; }))))
        EXPECT_NEAR(slope, 4, 1e-9);
    EXPECT_EQ(y.physType(), div(PT_VOLTAGE, PT_TIME));
}

TEST_F(Calculus, TheDerivativeStandsAtTheRightEndOfEachStep) {
    Reals const x = unevenGrid(100), values = sampled(x, [](double t) { return t * t; });
    Reals const got = run("diff", waveform(x, values));
    for (std::size_t i = 1; i < x.size(); ++i)
        EXPECT_DOUBLE_EQ(got[i], (values[i] - values[i - 1]) / (x[i] - x[i - 1])) << i;
    EXPECT_EQ(got[0], got[1]);
}

TEST_F(Calculus, ATinyStepLiesOnTheLineBetweenSlopes) {
    Reals const got = run("diff", waveform({0, 1e-20, 1, 2}, {0, 5, 1, 4}));
    EXPECT_EQ(got, (Reals{1, 1, 1, 3}));
    Reals const inside = run("diff", waveform({0, 1, 1 + 1e-12, 2}, {0, 1, 7, 4}));
    EXPECT_EQ(inside[1], 1);
    EXPECT_EQ(inside[3], 3);
    EXPECT_NEAR(inside[2], 1 + 2e-12, 1e-14);
}

TEST_F(Calculus, TheLastSampleEndsAStepHoweverShort) {
    Reals const got = run("diff", waveform({0, 1, 1}, {0, 2, 3}));
    EXPECT_EQ(got[0], 2);
    EXPECT_EQ(got[1], 2);
    EXPECT_EQ(got[2], std::numeric_limits<double>::infinity());
}

TEST_F(Calculus, ShortStepsStandAnywhere) {
    std::uniform_real_distribution<double> unit(0, 1);
    for (double share : {0.001, 0.1, 0.9}) {
        Reals x(2000), values(x.size());
        for (std::size_t i = 1; i < x.size(); ++i) {
            x[i] = x[i - 1] + (unit(random) < share ? 1e-12 : 1);
            values[i] = unit(random);
        }
        double const threshold = x.back() / static_cast<double>(x.size() - 1) * 1e-6;
        Reals wanted(x.size());
        for (std::size_t a = 0, b = 0; a + 1 < x.size(); a = b) {
            for (b = a + 1; b + 1 < x.size() && !(std::fabs(x[b] - x[a]) > threshold);) ++b;
            double const slope = (values[b] - values[a]) / (x[b] - x[a]);
            if (a == 0) wanted[0] = slope;
            for (std::size_t j = a + 1; j < b; ++j)
                wanted[j] = (slope - wanted[a]) / (x[b] - x[a]) * (x[j] - x[a]) + wanted[a];
            wanted[b] = slope;
        }
        EXPECT_EQ(run("diff", waveform(x, values)), wanted) << share;
    }
}

TEST_F(Calculus, TheThresholdIsAnOption) {
    sp_SetOption("DerivAcceptFactor", "0.5");
    Reals const got = run("diff", waveform({0, 0.1, 1, 2}, {0, 5, 1, 4}));
    sp_SetOption("DerivAcceptFactor", "1e-6");
    EXPECT_EQ(got, (Reals{1, 1, 1, 3}));
    EXPECT_EQ(run("diff", waveform({0, 0.1, 1, 2}, {0, 5, 1, 4}))[0], 50);
}

TEST_F(Calculus, WithoutXTheDerivativeIsTheDifference) {
    EXPECT_EQ(run("diff", real({1, 4, 9}, PT_VOLTAGE)), (Reals{3, 3, 5}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(Calculus, TheDerivativeOfFallingXIsThatOfRisingX) {
    EXPECT_EQ(run("diff", waveform({2, 1, 0}, {4, 1, 0})), (Reals{3, 3, 1}));
}

TEST_F(Calculus, OnePointHasNoDerivative) {
    expectRefused("diff", waveform({0}, {1}), "Argument out of range for function 'diff'");
    expectRefused("diff", real({}), "Argument out of range for function 'diff'");
}

TEST_F(Calculus, DifficultNumbersTravelOn) {
    double const infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(std::isnan(run("integ", waveform({0, 1, 2}, {0, std::nan(""), 1}))[2]));
    EXPECT_EQ(run("integ", waveform({0, 1, 2}, {0, infinity, 1}))[2], infinity);
    EXPECT_EQ(run("diff", waveform({0, std::nan(""), 2}, {0, 1, 4})).size(), 3u);
    EXPECT_EQ(run("integ", waveform({0, 5e-324}, {1e300, 1e300}))[1], 1e300 * 5e-324);
}

// --- area

TEST_F(Calculus, TheAreaOfTheWholeIsTheLastIntegral) {
    Reals const x = unevenGrid(300), values = sampled(x, [](double t) { return std::sin(t); });
    double const integral = run("integ", waveform(x, values)).back();
    EXPECT_NEAR(area(waveform(x, values)), integral, 1e-12 * static_cast<double>(x.size()));
}

TEST_F(Calculus, TheAreaBetweenLimitsIsThatOfTheLine) {
    Reals const x = unevenGrid(100);
    XYVector & v = waveform(x, sampled(x, [](double t) { return 2 * t; }));
    std::uniform_real_distribution<double> place(0, x.back());
    for (int round = 0; round < 100; ++round) {
        double const a = place(random), b = place(random);
        EXPECT_NEAR(area(v, a, b), b * b - a * a, 1e-11 * x.back() * x.back()) << a << " " << b;
    }
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
}

TEST_F(Calculus, LimitsInOnePieceNeedNoSample) {
    EXPECT_DOUBLE_EQ(area(waveform({0, 10}, {0, 10}), 2, 4), 6);
}

TEST_F(Calculus, LimitsTheOtherWayRoundNegateTheArea) {
    EXPECT_EQ(area(waveform({0, 1, 2}, {1, 1, 1}), 2, 0), -2);
    EXPECT_EQ(area(waveform({2, 1, 0}, {1, 1, 1}), 2, 0), -2) << "x falls from start to end";
    EXPECT_EQ(area(waveform({2, 1, 0}, {1, 1, 1}), 0, 2), 2) << "against the way that x falls";
}

TEST_F(Calculus, TheAreaOfOnePointIsZeroOrNothing) {
    EXPECT_EQ(area(waveform({3}, {5})), 0);
    EXPECT_EQ(area(waveform({3}, {5}), 3, 3), 0);
    EXPECT_TRUE(std::isnan(area(waveform({3}, {5}), 2, 3)));
}

TEST_F(Calculus, TheAreaIsNothingWhereItCannotBeTold) {
    EXPECT_TRUE(std::isnan(area(real({1, 2}))));
    EXPECT_TRUE(std::isnan(area(real({}))));
    EXPECT_TRUE(std::isnan(area(waveform({0, 1, 1, 2}, {1, 1, 1, 1})))) << "a repeated x";
    EXPECT_TRUE(std::isnan(area(waveform({0, 2, 1}, {1, 1, 1})))) << "x turns";
    EXPECT_TRUE(std::isnan(area(waveform({0, 1}, {1, 1}), -0.5, 1)));
    EXPECT_TRUE(std::isnan(area(waveform({0, 1}, {1, 1}), 0, 1.5)));
}

// --- ramps

TEST_F(Calculus, RampsHaveSoManyElements) {
    EXPECT_EQ(run("unitvec", real({-3})), (Reals{1, 1, 1}));
    EXPECT_EQ(run("vector", real({2.9})), (Reals{0, 1}));
    EXPECT_EQ(run("vector", real({0})), (Reals{0}));
    EXPECT_EQ(run("vector", real({-4})), (Reals{0, 1, 2, 3}));
    EXPECT_EQ(y.physType(), PT_NONE);
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(Calculus, NoOnesAreNothing) {
    EXPECT_EQ(callFunctionNamed("unitvec", {real({0.9})}), FUNC_OK);
    EXPECT_EQ(y.totalLength(), 0);
    EXPECT_EQ(callFunctionNamed("unitvec", {real({std::nan("")})}), FUNC_OK);
    EXPECT_EQ(y.totalLength(), 0);
}

TEST_F(Calculus, ACountBeyondMemoryThrows) {
    for (char const * name : {"unitvec", "vector"})
        for (double count : {1e19, 1e300, std::numeric_limits<double>::infinity()})
            EXPECT_THROW(callFunctionNamed(name, {real({count})}), MemoryException) << name << " " << count;
}
