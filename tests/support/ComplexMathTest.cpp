#include "torvelan/Complex.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <vector>

namespace {

constexpr double tolerance = 1e-13;

void expectNear(complex a, complex b, char const * what) {
    double const scale = std::max(1.0, abs(b));
    EXPECT_NEAR(a.re, b.re, tolerance * scale) << what;
    EXPECT_NEAR(a.im, b.im, tolerance * scale) << what;
}

std::vector<complex> samples() {
    std::vector<complex> points;
    for (double const re : {-2.5, -0.75, 0.3, 1.0, 3.0})
        for (double const im : {-1.25, -0.5, 0.0, 0.7, 2.0}) points.push_back({re, im});
    return points;
}

TEST(Complex, DivisionUndoesMultiplication) {
    for (complex const a : samples())
        for (complex const b : samples()) expectNear(a * b / b, a, "(ab)/b");
    expectNear(1.0 / complex{0, 2}, {0, -0.5}, "1/2i");
    expectNear(complex{1, 2} / 2.0, {0.5, 1}, "z/2");
}

TEST(Complex, DivisionByHugeAndTinyNumbersStaysFinite) {
    expectNear(complex{1e300, 1e300} / complex{1e300, 1e300}, {1, 0}, "huge");
    expectNear(complex{1e-300, 0} / complex{1e-300, 1e-300}, {0.5, -0.5}, "tiny");
    EXPECT_DOUBLE_EQ(abs(complex{3e200, 4e200}), 5e200);
}

TEST(Complex, MagnitudeAndAngle) {
    EXPECT_EQ(abs(complex{3, -4}), 5.0);
    EXPECT_EQ(arg(complex{0, -2}), -std::numbers::pi / 2);
    EXPECT_EQ(arg(complex{-1, 0}), std::numbers::pi);
}

// The identities are computed from real functions alone.
TEST(Complex, FunctionsMatchTheirRealAndImaginaryParts) {
    for (complex const z : samples()) {
        double const x = z.re, y = z.im;
        expectNear(exp(z), {std::exp(x) * std::cos(y), std::exp(x) * std::sin(y)}, "exp");
        expectNear(sin(z), {std::sin(x) * std::cosh(y), std::cos(x) * std::sinh(y)}, "sin");
        expectNear(cos(z), {std::cos(x) * std::cosh(y), -std::sin(x) * std::sinh(y)}, "cos");
        expectNear(sinh(z), {std::sinh(x) * std::cos(y), std::cosh(x) * std::sin(y)}, "sinh");
        expectNear(cosh(z), {std::cosh(x) * std::cos(y), std::sinh(x) * std::sin(y)}, "cosh");
        expectNear(tan(z), sin(z) / cos(z), "tan");
        expectNear(tanh(z), sinh(z) / cosh(z), "tanh");
        expectNear(log(z), {std::log(std::hypot(x, y)), std::atan2(y, x)}, "log");
        expectNear(log10(z), log(z) / std::numbers::ln10, "log10");
        expectNear(sqrt(z) * sqrt(z), z, "sqrt");
        expectNear(tan(atan(z)), z, "atan");
    }
}

TEST(Complex, RootsLieInTheRightHalfPlane) {
    for (complex const z : samples()) EXPECT_GE(sqrt(z).re, 0.0);
    expectNear(sqrt(complex{-4, 0}), {0, 2}, "sqrt(-4)");
}

TEST(Complex, PowersAgreeWithExpAndLog) {
    for (complex const a : samples())
        for (complex const b : samples()) {
            complex const expected = exp(b * log(a));
            expectNear(pow(a, b), expected, "z^z");
            expectNear(pow(a, b.re), exp(b.re * log(a)), "z^x");
            expectNear(pow(a.re, b), exp(b * log(complex{a.re, 0})), "x^z");
        }
}

TEST(Complex, WholePowersOfRoundNumbersAreRound) {
    EXPECT_EQ(pow(complex{0, 1}, 2.0), (complex{-1, 0}));
    EXPECT_EQ(pow(complex{1, 2}, complex{3, 0}), (complex{-11, -2}));
    EXPECT_EQ(pow(complex{0, 2}, -2.0), (complex{-0.25, 0}));
    EXPECT_EQ(pow(complex{7, 7}, 0.0), (complex{1, 0}));
}

TEST(Complex, PowersOfZero) {
    EXPECT_EQ(pow(complex{}, 2.0), complex{});
    EXPECT_EQ(pow(complex{}, 0.5), complex{});
    EXPECT_EQ(pow(complex{}, complex{2, 1}), complex{});
    EXPECT_EQ(pow(complex{}, complex{}), (complex{1, 0}));
    EXPECT_EQ(pow(0.0, complex{2, 1}), complex{});
}

TEST(Complex, NanStaysNan) {
    double const nan = std::nan("");
    EXPECT_TRUE(std::isnan(pow(complex{nan, 1}, 2.5).re));
    EXPECT_TRUE(std::isnan(pow(2.0, complex{nan, 0}).re));
    EXPECT_TRUE(std::isnan(pow(complex{1, 1}, nan).re));
    EXPECT_TRUE(std::isnan(abs(complex{nan, 1})));
}

} // namespace
