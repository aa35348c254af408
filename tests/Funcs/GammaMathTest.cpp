// The gamma family and the error functions against values of high precision, at the edges of their ranges and as
// scripts know them.

#include "Funcs/GammaMath.h"

#include "Funcs/GammaValues.h"
#include "HandlerFrame.h"

#include <cmath>
#include <limits>

using namespace gammavalues;

namespace {

double const infinity = std::numeric_limits<double>::infinity();
double const notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double accuracy = 1e-13;

void expectWithin(double bound, double got, double wanted, char const * what, double x) {
    double const least = std::numeric_limits<double>::denorm_min();
    EXPECT_LE(std::fabs(got - wanted), bound + least) << what << "(" << x << ") = " << got;
}

void expectClose(double got, double wanted, char const * what, double x) {
    expectWithin(std::fabs(wanted) * accuracy, got, wanted, what, x);
}

// How far the one of P and Q that is summed may be off, and the other one with it: the sum ends at terms below the
// accuracy, which leaves a tail, and its factor is the exponential of a ln x - x - ln gamma(a), which is rounded.
double boundFor(PairPoint const & p) {
    double const a = p.first, x = p.second, summed = x < a + 1 ? p.lower : p.upper;
    double const terms = x == 0 ? 0 : std::fabs(a * std::log(x)) + x + std::fabs(std::lgamma(a));
    double const epsilon = std::numeric_limits<double>::epsilon();
    return summed * (2 * accuracy + terms * epsilon) + epsilon / 2 * (1 - summed);
}

class GammaMath : public HandlerFrame {
protected:
    double valueOf(char const * name, double x) { return first(callFunctionNamed(name, {real({x})}), name); }
    double valueOf(char const * name, double a, double b) {
        return first(callFunctionNamed(name, {real({a}), real({b})}), name);
    }
    template <class... Numbers> void expectRefused(char const * words, char const * name, Numbers... numbers) {
        EXPECT_EQ(callFunctionNamed(name, {real({numbers})...}), FUNC_FAILED) << name;
        EXPECT_EQ(message(), words) << name;
        EXPECT_EQ(y.totalLength(), 0) << name;
        EXPECT_EQ(ref.totalLength(), 0) << name;
    }
    complex logGamma(double x) {
        EXPECT_EQ(callFunctionNamed("lgamma", {real({x})}), FUNC_OK) << x;
        return complexes().at(0);
    }

private:
    double first(FUNC_ERROR code, char const * name) {
        EXPECT_EQ(code, FUNC_OK) << name << message();
        return code == FUNC_OK ? reals().at(0) : notANumber;
    }
};

} // namespace

TEST_F(GammaMath, LogGammaIsAccurate) {
    for (Point const & p : logGammaValues) {
        complex const z = logGamma(p.x);
        expectClose(z.re + z.im, p.value, "lgamma", p.x);
        EXPECT_TRUE(z.re == 0 || z.im == 0) << p.x;
    }
}

TEST_F(GammaMath, GammaIsAccurate) {
    for (Point const & p : gammaValues) expectClose(valueOf("gamma", p.x), p.value, "gamma", p.x);
}

TEST_F(GammaMath, TheErrorFunctionsAreAccurate) {
    for (Point const & p : erfValues) expectClose(valueOf("erf", p.x), p.value, "erf", p.x);
    for (Point const & p : erfcValues) expectClose(valueOf("erfc", p.x), p.value, "erfc", p.x);
}

TEST_F(GammaMath, TheIncompleteGammaFunctionsAreAccurate) {
    for (PairPoint const & p : incompleteGammaValues) {
        expectWithin(boundFor(p), valueOf("gammp", p.first, p.second), p.lower, "gammp", p.second);
        expectWithin(boundFor(p), valueOf("gammq", p.first, p.second), p.upper, "gammq", p.second);
    }
}

TEST_F(GammaMath, ChiSquareIsAccurate) {
    for (PairPoint const & p : chiSquareValues) {
        double const bound = boundFor({std::trunc(p.second) / 2, p.first / 2, 1 - p.upper, p.upper});
        expectWithin(bound, valueOf("chisquare", p.first, p.second), p.upper, "chisquare", p.first);
    }
}

TEST_F(GammaMath, TheLogarithmOfANegativeGammaStandsInTheImaginaryPart) {
    EXPECT_GT(logGamma(0.5).re, 0.57);
    EXPECT_EQ(logGamma(0.5).im, 0);
    EXPECT_EQ(logGamma(-0.5).re, 0);
    EXPECT_GT(logGamma(-0.5).im, 1.26);
    EXPECT_GT(logGamma(-1.5).re, 0.86);
    EXPECT_EQ(logGamma(-1.5).im, 0);
    EXPECT_GT(logGamma(-5e-324).im, 744);
    EXPECT_EQ(logGamma(1), (complex{0, 0}));
    EXPECT_EQ(logGamma(2), (complex{0, 0}));
}

TEST_F(GammaMath, GammaChangesItsSignBetweenPoles) {
    EXPECT_LT(valueOf("gamma", -0.5), -3.5);
    EXPECT_GT(valueOf("gamma", -1.5), 2.3);
    EXPECT_LT(valueOf("gamma", -2.5), 0);
    EXPECT_EQ(valueOf("gamma", -400.5), 0);
}

TEST_F(GammaMath, PolesAndArgumentsTooLargeAreOutOfRange) {
    for (double x : {0.0, -0.0, -1.0, -2.0, -1e16, -1e300, -infinity, 2.6e305, infinity}) {
        expectRefused("Argument out of range for function 'gamma'", "gamma", x);
        expectRefused("Argument out of range for function 'lgamma'", "lgamma", x);
    }
    for (double x : {2.6e305, -2.6e305, infinity, -infinity}) {
        expectRefused("Argument out of range for function 'erf'", "erf", x);
        expectRefused("Argument out of range for function 'erfc'", "erfc", x);
    }
}

TEST_F(GammaMath, GammaOverflows) {
    EXPECT_TRUE(std::isfinite(valueOf("gamma", 171)));
    for (double x : {172.0, 1e5, 1e300, 1e-310, -1e-310, 5e-324})
        expectRefused("Overflow in function 'gamma'", "gamma", x);
}

TEST_F(GammaMath, IncompleteGammaRefusesWhatIsOutOfRange) {
    for (char const * name : {"gammp", "gammq"}) {
        std::string const words = std::string("Argument out of range for function '") + name + "'";
        for (auto const & [a, x] : {std::pair(0.0, 1.0), {-1.0, 1.0}, {1.0, -1.0}, {1.0, -5e-324}, {-infinity, 1.0}})
            expectRefused(words.c_str(), name, a, x);
    }
    expectRefused("Argument out of range for function 'chisquare'", "chisquare", 1.0, 0.9);
    expectRefused("Argument out of range for function 'chisquare'", "chisquare", -1.0, 2.0);
    EXPECT_EQ(valueOf("gammp", 1, 0), 0);
    EXPECT_EQ(valueOf("gammq", 1, 0), 1);
    EXPECT_EQ(valueOf("gammp", 1, 1e300), 1);
    EXPECT_EQ(valueOf("gammq", 1, 1e300), 0);
}

TEST_F(GammaMath, ASumThatDoesNotConvergeFailsInSilence) {
    for (char const * name : {"gammp", "gammq"})
        for (auto const & [a, x] :
             {std::pair(notANumber, 1.0), {1.0, notANumber}, {1.0, infinity}, {infinity, 1.0}, {1e15, 1e15}}) {
            EXPECT_EQ(callFunctionNamed(name, {real({a}), real({x})}), FUNC_FAILED) << a << " " << x;
            EXPECT_TRUE(isSilent()) << a << " " << x;
            EXPECT_EQ(y.totalLength(), 0) << a << " " << x;
        }
}

TEST_F(GammaMath, ANaNTravelsOnThroughOneArgument) {
    for (char const * name : {"gamma", "erf", "erfc"}) EXPECT_TRUE(std::isnan(valueOf(name, notANumber))) << name;
    EXPECT_TRUE(std::isnan(logGamma(notANumber).re));
}

TEST_F(GammaMath, TheFirstElementRefusedEndsTheCall) {
    XYVector & v = withReference(real({1, 2, -1, 3}), {0, 1, 2, 3});
    EXPECT_EQ(callFunctionNamed("gamma", {v}), FUNC_FAILED);
    EXPECT_EQ(message(), "Argument out of range for function 'gamma'");
    EXPECT_EQ(y.totalLength(), 0);
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(GammaMath, ASecondArgumentOfOneElementIsRepeated) {
    XYVector & x = withReference(real({0, 2, 4}), {5, 6, 7});
    ASSERT_EQ(callFunctionNamed("chisquare", {x, real({2})}), FUNC_OK);
    Reals const values = reals();
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(values.at(i), std::exp(-static_cast<double>(i)), 1e-14) << i;
    EXPECT_EQ(ref.length(), 3);
    EXPECT_EQ(ref.realData()[2], 7);
    EXPECT_EQ(ref.physType(), PT_TIME);
}

TEST_F(GammaMath, TheResultHasTheLengthOfTheFirstArgument) {
    ASSERT_EQ(callFunctionNamed("gammp", {real({1, 1}), real({0, 1, 2})}), FUNC_OK);
    EXPECT_EQ(reals().size(), 2U);
    ASSERT_EQ(callFunctionNamed("gammp", {real({1}), real({0, 1, 2})}), FUNC_OK);
    EXPECT_EQ(reals(), (Reals{0}));
    EXPECT_EQ(callFunctionNamed("gammp", {real({1, 1, 1}), real({0, 1})}), FUNC_FAILED);
    EXPECT_EQ(message(), "Argument out of range for function 'gammp'");
}

TEST_F(GammaMath, ComplexArgumentsAreRefused) {
    for (char const * name : {"lgamma", "gamma", "erf", "erfc"}) {
        EXPECT_EQ(callFunctionNamed(name, {pairs({{1, 2}})}), FUNC_FAILED);
        EXPECT_EQ(message(), std::string("The function '") + name + "' requires a real argument");
    }
    for (char const * name : {"gammp", "gammq", "chisquare"}) {
        EXPECT_EQ(callFunctionNamed(name, {real({1}), pairs({{1, 2}})}), FUNC_FAILED);
        EXPECT_EQ(message(), std::string("The function '") + name + "' requires a real argument");
        EXPECT_EQ(callFunctionNamed(name, {pairs({{1, 2}}), real({1})}), FUNC_FAILED);
        EXPECT_EQ(message(), std::string("The function '") + name + "' requires a real argument");
    }
}

TEST_F(GammaMath, AllAreElementwise) {
    for (char const * name : {"lgamma", "gamma", "erf", "erfc", "gammp", "gammq", "chisquare"}) {
        FuncInfo const * info = vec_FindFunction(name);
        ASSERT_NE(info, nullptr) << name;
        EXPECT_TRUE(info->supportsIncremental && info->flatDivisions) << name;
        EXPECT_EQ(info->minArgs, info->maxArgs) << name;
        EXPECT_FALSE(info->summary.empty()) << name;
    }
}
