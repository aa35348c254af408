#include "Evaluation/Kernels.h"

#include "support/Multiversion.h"

#include <cmath>
#include <cstdint>

namespace kernels {

namespace {

// How an element of an operand is read: two doubles, or one and imaginary part 0.
struct FromComplex {
    static complex at(double const * p, std::size_t i) noexcept { return {p[2 * i], p[2 * i + 1]}; }
};

struct FromReal {
    static complex at(double const * p, std::size_t i) noexcept { return {p[i], 0}; }
};

void store(double * out, std::size_t i, complex z) noexcept {
    out[2 * i] = z.re;
    out[2 * i + 1] = z.im;
}

bool isZero(complex z) noexcept {
    return both(z.re == 0, z.im == 0);
}

// --- division

// Zero, or so far from the ends of the exponent range that no step of the quotient overflows or loses bits.
bool isModerate(double x) noexcept {
    double const magnitude = std::fabs(x);
    return either(x == 0, both(magnitude > 1e-90, magnitude < 1e90));
}

bool isModerate(complex z) noexcept {
    return both(isModerate(z.re), isModerate(z.im));
}

// The quotient by scaling with the greater part of the divisor (R. L. Smith, Algorithm 116, 1962), without a branch.
complex moderateQuotient(complex a, complex b) noexcept {
    bool const swapped = std::fabs(b.re) < std::fabs(b.im);
    double const great = swapped ? b.im : b.re, small = swapped ? b.re : b.im;
    double const near = swapped ? a.im : a.re, far = swapped ? a.re : a.im;
    double const ratio = small / great, denominator = small * ratio + great;
    double const imaginary = swapped ? near * ratio - far : far - near * ratio;
    return {(far * ratio + near) / denominator, imaginary / denominator};
}

// Each loop divides all elements the short way, blind to what may be wrong with some of them, and says what was.
struct Oddities {
    std::int64_t zeroDivisors = 0;
    std::int64_t extremes = 0;
};

TORVELAN_MULTIVERSION_UNFUSED Oddities inspect(double const * a, double const * b, std::size_t count,
                                               std::size_t aWidth) {
    Oddities odd;
    for (std::size_t i = 0; i < count; ++i) odd.zeroDivisors += isZero(FromComplex::at(b, i)) ? 1 : 0;
    for (std::size_t i = 0; i < 2 * count; ++i) odd.extremes += isModerate(b[i]) ? 0 : 1;
    for (std::size_t i = 0; i < aWidth * count; ++i) odd.extremes += isModerate(a[i]) ? 0 : 1;
    return odd;
}

TORVELAN_MULTIVERSION_UNFUSED void divideModerate(double * out, double const * a, double const * b, std::size_t count) {
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < count; ++i)
        store(out, i, moderateQuotient(FromComplex::at(a, i), FromComplex::at(b, i)));
}

TORVELAN_MULTIVERSION_UNFUSED void divideModerateReal(double * out, double const * a, double const * b,
                                                      std::size_t count) {
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < count; ++i) store(out, i, moderateQuotient(FromReal::at(a, i), FromComplex::at(b, i)));
}

template <class A> void divideAny(double * out, double const * a, double const * b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        complex const x = A::at(a, i), y = FromComplex::at(b, i);
        store(out, i, isModerate(x) && isModerate(y) ? moderateQuotient(x, y) : x / y);
    }
}

// In pieces that stay in the first cache between the look and the division.
template <class A>
int divide(double * out, double const * a, double const * b, std::size_t count, std::size_t aWidth, auto moderate) {
    constexpr std::size_t piece = 256;
    for (std::size_t i = 0; i < count; i += piece) {
        std::size_t const n = count - i < piece ? count - i : piece;
        double * const to = out + 2 * i;
        double const *const x = a + aWidth * i, *const y = b + 2 * i;
        Oddities const odd = inspect(x, y, n, aWidth);
        if (odd.zeroDivisors != 0) return refusedDivisor;
        if (odd.extremes == 0)
            moderate(to, x, y, n);
        else
            divideAny<A>(to, x, y, n);
    }
    return refusedNothing;
}

} // namespace

// A loop with a complex result: `expression` of the elements x and y.
#define TORVELAN_COMPLEX_LOOP(name, A, B, expression)                                                                  \
    TORVELAN_MULTIVERSION_UNFUSED int name(double * out, double const * a, double const * b, std::size_t count) {      \
        TORVELAN_INDEPENDENT                                                                                           \
        for (std::size_t i = 0; i < count; ++i) {                                                                      \
            complex const x = A::at(a, i), y = B::at(b, i);                                                            \
            store(out, i, expression);                                                                                 \
        }                                                                                                              \
        return refusedNothing;                                                                                         \
    }

TORVELAN_COMPLEX_LOOP(complexAddReal, FromComplex, FromReal, (complex{x.re + y.re, x.im}))
TORVELAN_COMPLEX_LOOP(realAddComplex, FromReal, FromComplex, (complex{x.re + y.re, y.im}))
TORVELAN_COMPLEX_LOOP(complexSubtractReal, FromComplex, FromReal, (complex{x.re - y.re, x.im}))
TORVELAN_COMPLEX_LOOP(realSubtractComplex, FromReal, FromComplex, (complex{x.re - y.re, -y.im}))
TORVELAN_COMPLEX_LOOP(complexMultiplyComplex, FromComplex, FromComplex, x * y)
TORVELAN_COMPLEX_LOOP(complexMultiplyReal, FromComplex, FromReal, x * y.re)
TORVELAN_COMPLEX_LOOP(realMultiplyComplex, FromReal, FromComplex, x.re * y)
TORVELAN_COMPLEX_LOOP(complexPairComplex, FromComplex, FromComplex, (complex{x.re - y.im, x.im + y.re}))
TORVELAN_COMPLEX_LOOP(complexPairReal, FromComplex, FromReal, (complex{x.re, x.im + y.re}))
TORVELAN_COMPLEX_LOOP(realPairComplex, FromReal, FromComplex, (complex{x.re - y.im, y.re}))

#undef TORVELAN_COMPLEX_LOOP

// A loop with a real result.
#define TORVELAN_COMPARISON_LOOP(name, A, B, expression)                                                               \
    TORVELAN_MULTIVERSION_UNFUSED int name(double * out, double const * a, double const * b, std::size_t count) {      \
        for (std::size_t i = 0; i < count; ++i) {                                                                      \
            complex const x = A::at(a, i), y = B::at(b, i);                                                            \
            out[i] = expression;                                                                                       \
        }                                                                                                              \
        return refusedNothing;                                                                                         \
    }

TORVELAN_COMPARISON_LOOP(complexEqualComplex, FromComplex, FromComplex, both(x.re == y.re, x.im == y.im) ? 1.0 : 0.0)
TORVELAN_COMPARISON_LOOP(complexEqualReal, FromComplex, FromReal, both(x.re == y.re, x.im == 0) ? 1.0 : 0.0)
TORVELAN_COMPARISON_LOOP(realEqualComplex, FromReal, FromComplex, both(x.re == y.re, y.im == 0) ? 1.0 : 0.0)
TORVELAN_COMPARISON_LOOP(complexUnequalComplex, FromComplex, FromComplex, both(x.re == y.re, x.im == y.im) ? 0.0 : 1.0)
TORVELAN_COMPARISON_LOOP(complexUnequalReal, FromComplex, FromReal, both(x.re == y.re, x.im == 0) ? 0.0 : 1.0)
TORVELAN_COMPARISON_LOOP(realUnequalComplex, FromReal, FromComplex, both(x.re == y.re, y.im == 0) ? 0.0 : 1.0)

#undef TORVELAN_COMPARISON_LOOP

// Sums and differences of pairs are those of their parts.
int complexAddComplex(double * out, double const * a, double const * b, std::size_t count) {
    return realAdd(out, a, b, 2 * count);
}

int complexSubtractComplex(double * out, double const * a, double const * b, std::size_t count) {
    return realSubtract(out, a, b, 2 * count);
}

TORVELAN_MULTIVERSION_UNFUSED int complexDivideReal(double * out, double const * a, double const * b,
                                                    std::size_t count) {
    std::int64_t zeros = 0;
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < count; ++i) {
        double const divisor = b[i];
        zeros += divisor == 0.0 ? 1 : 0;
        store(out, i, FromComplex::at(a, i) / divisor);
    }
    return zeros != 0 ? refusedDivisor : refusedNothing;
}

int complexDivideComplex(double * out, double const * a, double const * b, std::size_t count) {
    return divide<FromComplex>(out, a, b, count, 2, divideModerate);
}

int realDivideComplex(double * out, double const * a, double const * b, std::size_t count) {
    return divide<FromReal>(out, a, b, count, 1, divideModerateReal);
}

int complexPowerComplex(double * out, double const * a, double const * b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) store(out, i, pow(FromComplex::at(a, i), FromComplex::at(b, i)));
    return refusedNothing;
}

int complexPowerReal(double * out, double const * a, double const * b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) store(out, i, pow(FromComplex::at(a, i), b[i]));
    return refusedNothing;
}

int realPowerComplex(double * out, double const * a, double const * b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) store(out, i, pow(a[i], FromComplex::at(b, i)));
    return refusedNothing;
}

} // namespace kernels
