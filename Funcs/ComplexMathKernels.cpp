// Element by element: the complex routines with a complex result.

#include "Funcs/MathKernels.h"

#include "torvelan/Complex.h"

namespace mathkernels {

namespace {

constexpr double exponentLimit = 709.016; // exp of anything with a greater real part is refused

complex at(double const * in, std::size_t i) noexcept {
    return {in[2 * i], in[2 * i + 1]};
}

void store(double * out, std::size_t i, complex z) noexcept {
    out[2 * i] = z.re;
    out[2 * i + 1] = z.im;
}

using Function = complex (*)(complex);
using Test = bool (*)(complex);

template <Function f> int apply(double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) store(out, i, f(at(in, i)));
    return refusedNothing;
}

// Stops with `code` at the first element that is refused.
template <Function f, Test refused, Refusal code> int guarded(double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        complex const z = at(in, i);
        if (refused(z)) return code;
        store(out, i, f(z));
    }
    return refusedNothing;
}

bool isZero(complex z) {
    return z.re == 0 && z.im == 0;
}

bool overflows(complex z) {
    return z.re > exponentLimit;
}

bool isPoleOfAtan(complex z) {
    return z.re == 0 && (z.im == 1 || z.im == -1);
}

} // namespace

int complexLog10(double * out, double const * in, std::size_t count) {
    return guarded<::log10, isZero, outOfRange>(out, in, count);
}

int complexLog(double * out, double const * in, std::size_t count) {
    return guarded<::log, isZero, outOfRange>(out, in, count);
}

int complexExp(double * out, double const * in, std::size_t count) {
    return guarded<::exp, overflows, overflow>(out, in, count);
}

int complexSin(double * out, double const * in, std::size_t count) {
    return apply<::sin>(out, in, count);
}

int complexCos(double * out, double const * in, std::size_t count) {
    return apply<::cos>(out, in, count);
}

// The poles lie between the doubles.
int complexTan(double * out, double const * in, std::size_t count) {
    return apply<::tan>(out, in, count);
}

int complexAtan(double * out, double const * in, std::size_t count) {
    return guarded<::atan, isPoleOfAtan, overflow>(out, in, count);
}

int complexSinh(double * out, double const * in, std::size_t count) {
    return apply<::sinh>(out, in, count);
}

int complexCosh(double * out, double const * in, std::size_t count) {
    return apply<::cosh>(out, in, count);
}

int complexTanh(double * out, double const * in, std::size_t count) {
    return apply<::tanh>(out, in, count);
}

int complexSqrt(double * out, double const * in, std::size_t count) {
    return apply<::sqrt>(out, in, count);
}

int complexNegate(double * out, double const * in, std::size_t count) {
    return negate(out, in, 2 * count);
}

} // namespace mathkernels
