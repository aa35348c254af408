#include "Funcs/GammaMath.h"

#include "Funcs/MathKernels.h"

#include <cmath>

using namespace mathkernels;

namespace {

constexpr double greatestArgument = 2.5326997476752568e+305; // log gamma of more is beyond all doubles
constexpr double greatestLogGamma = 709.016;

struct Answer {
    double value;
    int refusal = refusedNothing;
};

// --- gamma

bool isPole(double x) noexcept {
    return x == 0 || (x < 0 && std::floor(x) == x);
}

// Between its poles on the negative side gamma changes its sign; it is negative next to 0.
bool isGammaNegative(double x) noexcept {
    return x < 0 && std::fmod(std::floor(x), 2) != 0;
}

Answer gammaOf(double x) {
    static double const greatest = std::exp(greatestLogGamma);
    if (x > greatestArgument || isPole(x)) return {0, outOfRange};
    double const value = std::tgamma(x);
    return {value, std::fabs(value) > greatest ? overflow : refusedNothing};
}

// --- error functions

Answer erfOf(double x) {
    return {std::erf(x), std::fabs(x) > greatestArgument ? outOfRange : refusedNothing};
}

Answer erfcOf(double x) {
    return {std::erfc(x), std::fabs(x) > greatestArgument ? outOfRange : refusedNothing};
}

// --- incomplete gamma

constexpr int mostRounds = 10000;
constexpr double tolerance = 1e-13;
constexpr double tiny = 1e-30; // stands for a denominator of 0

// What the sums below are multiplied by.
double scaleOf(double a, double x) {
    return std::exp(a * std::log(x) - x - std::lgamma(a));
}

// P(a, x) by its power series, for x < a + 1.
Answer lowerBySeries(double a, double x) {
    if (x == 0) return {0};
    double term = 1 / a, sum = term;
    for (int n = 1; n <= mostRounds; ++n) {
        term = term * x / (a + n);
        sum += term;
        if (std::fabs(term) < std::fabs(sum) * tolerance) return {scaleOf(a, x) * sum};
    }
    return {0, noConvergence};
}

double awayFromZero(double x) noexcept {
    return std::fabs(x) < tiny ? tiny : x;
}

// Q(a, x) by its continued fraction, for x >= a + 1 (modified Lentz method: I. J. Thompson and A. R. Barnett, Coulomb
// and Bessel functions of complex arguments and order, 1986).
Answer upperByFraction(double a, double x) {
    double b = x + 1 - a, c = 1 / tiny, d = 1 / b, fraction = d;
    for (int i = 1; i <= mostRounds; ++i) {
        double const numerator = -i * (i - a);
        b += 2;
        d = 1 / awayFromZero(numerator * d + b);
        c = awayFromZero(b + numerator / c);
        fraction *= d * c;
        if (std::fabs(d * c - 1) < tolerance) return {scaleOf(a, x) * fraction};
    }
    return {0, noConvergence};
}

Answer complement(Answer answer) noexcept {
    return {1 - answer.value, answer.refusal};
}

Answer lowerGammaOf(double a, double x) {
    if (a <= 0 || x < 0) return {0, outOfRange};
    return x < a + 1 ? lowerBySeries(a, x) : complement(upperByFraction(a, x));
}

Answer upperGammaOf(double a, double x) {
    if (a <= 0 || x < 0) return {0, outOfRange};
    return x < a + 1 ? complement(lowerBySeries(a, x)) : upperByFraction(a, x);
}

Answer chiSquareOf(double x, double n) {
    return upperGammaOf(std::trunc(n) / 2, x / 2);
}

// --- loops

// Stops at the first refusal. answerOf(i) for the element i.
int fill(double * out, std::size_t count, auto answerOf) {
    for (std::size_t i = 0; i < count; ++i) {
        Answer const answer = answerOf(i);
        if (answer.refusal != refusedNothing) return answer.refusal;
        out[i] = answer.value;
    }
    return refusedNothing;
}

} // namespace

namespace gammamath {

int logGamma(double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        double const x = in[i];
        if (x > greatestArgument || isPole(x)) return outOfRange;
        double const value = std::lgamma(x);
        bool const negative = isGammaNegative(x);
        out[2 * i] = negative ? 0 : value;
        out[2 * i + 1] = negative ? value : 0;
    }
    return refusedNothing;
}

int gamma(double * out, double const * in, std::size_t count) {
    return fill(out, count, [in](std::size_t i) { return gammaOf(in[i]); });
}

int erf(double * out, double const * in, std::size_t count) {
    return fill(out, count, [in](std::size_t i) { return erfOf(in[i]); });
}

int erfc(double * out, double const * in, std::size_t count) {
    return fill(out, count, [in](std::size_t i) { return erfcOf(in[i]); });
}

int lowerGamma(double * out, double const * a, double const * x, std::size_t count) {
    return fill(out, count, [a, x](std::size_t i) { return lowerGammaOf(a[i], x[i]); });
}

int upperGamma(double * out, double const * a, double const * x, std::size_t count) {
    return fill(out, count, [a, x](std::size_t i) { return upperGammaOf(a[i], x[i]); });
}

int chiSquare(double * out, double const * x, double const * n, std::size_t count) {
    return fill(out, count, [x, n](std::size_t i) { return chiSquareOf(x[i], n[i]); });
}

} // namespace gammamath
