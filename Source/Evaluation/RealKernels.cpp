#include "Evaluation/Kernels.h"

#include "Evaluation/VectorMath.h"
#include "support/FaultRecord.h"
#include "support/Multiversion.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace kernels {

// A loop that refuses nothing: `expression` of the elements x and y.
#define TORVELAN_REAL_LOOP(name, expression)                                                                           \
    TORVELAN_MULTIVERSION int name(double * out, double const * a, double const * b, std::size_t count) {              \
        TORVELAN_INDEPENDENT                                                                                           \
        for (std::size_t i = 0; i < count; ++i) {                                                                      \
            double const x = a[i], y = b[i];                                                                           \
            out[i] = expression;                                                                                       \
        }                                                                                                              \
        return refusedNothing;                                                                                         \
    }

TORVELAN_REAL_LOOP(realAdd, x + y)
TORVELAN_REAL_LOOP(realSubtract, x - y)
TORVELAN_REAL_LOOP(realMultiply, x * y)
TORVELAN_REAL_LOOP(realEqual, x == y ? 1.0 : 0.0)
TORVELAN_REAL_LOOP(realUnequal, x == y ? 0.0 : 1.0)
TORVELAN_REAL_LOOP(realGreater, x > y ? 1.0 : 0.0)
TORVELAN_REAL_LOOP(realLess, x < y ? 1.0 : 0.0)
TORVELAN_REAL_LOOP(realGreaterOrEqual, x >= y ? 1.0 : 0.0)
TORVELAN_REAL_LOOP(realLessOrEqual, x <= y ? 1.0 : 0.0)
TORVELAN_REAL_LOOP(realAnd, both(x != 0.0, y != 0.0) ? 1.0 : 0.0)
TORVELAN_REAL_LOOP(realOr, either(x != 0.0, y != 0.0) ? 1.0 : 0.0)
TORVELAN_REAL_LOOP(realMax, x > y ? x : y)
TORVELAN_REAL_LOOP(realMin, x > y ? y : x)

#undef TORVELAN_REAL_LOOP

TORVELAN_MULTIVERSION int realPair(double * out, double const * a, double const * b, std::size_t count) {
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < count; ++i) {
        out[2 * i] = a[i];
        out[2 * i + 1] = b[i];
    }
    return refusedNothing;
}

TORVELAN_MULTIVERSION int realDivide(double * out, double const * a, double const * b, std::size_t count) {
    std::int64_t zeros = 0; // counted as wide as the elements, so that the loop stays a vector loop
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < count; ++i) {
        double const divisor = b[i];
        zeros += divisor == 0.0 ? 1 : 0;
        out[i] = a[i] / divisor;
    }
    return zeros != 0 ? refusedDivisor : refusedNothing;
}

namespace {

TORVELAN_MULTIVERSION std::int64_t countRefusedPowers(double const * a, double const * b, std::size_t count) {
    std::int64_t refused = 0;
    for (std::size_t i = 0; i < count; ++i) refused += both(!(a[i] >= 0), std::floor(b[i]) != std::ceil(b[i])) ? 1 : 0;
    return refused;
}

// Squares are products, wherever they stand; `powers` are the general answers.
TORVELAN_MULTIVERSION void chooseSquares(double * out, double const * a, double const * b, double const * powers,
                                         std::size_t count) {
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < count; ++i) {
        double const square = a[i] * a[i], power = powers[i];
        out[i] = b[i] == 2.0 ? square : power;
    }
}

bool allSquares(double const * b, std::size_t count) noexcept {
    return std::all_of(b, b + count, [](double exponent) { return exponent == 2.0; });
}

} // namespace

int realPower(double * out, double const * a, double const * b, std::size_t count) {
    constexpr std::size_t piece = 128;
    double powers[piece];
    for (std::size_t i = 0; i < count; i += piece) {
        std::size_t const n = std::min(piece, count - i);
        if (countRefusedPowers(a + i, b + i, n) != 0) return refusedExponent;
        if (allSquares(b + i, n)) {
            realMultiply(out + i, a + i, a + i, n);
        } else {
            vectormath::pow(powers, a + i, b + i, n);
            chooseSquares(out + i, a + i, b + i, powers, n);
        }
    }
    return refusedNothing;
}

int realModulo(double * out, double const * a, double const * b, std::size_t count) {
    constexpr double limit = 2147483647.0;
    for (std::size_t i = 0; i < count; ++i) {
        double const x = std::fabs(a[i]), y = std::fabs(b[i]);
        if (!(x >= 0 && y > 0 && x < limit && y < limit)) return refusedModulo;
        auto const dividend = static_cast<std::int32_t>(x), divisor = static_cast<std::int32_t>(y);
        if (divisor == 0) throwIntegerDivideByZero(reinterpret_cast<void const *>(&realModulo));
        out[i] = dividend % divisor;
    }
    return refusedNothing;
}

} // namespace kernels
