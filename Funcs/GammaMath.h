// The gamma family and the error functions, as loops over numbers.
#pragma once

#include <cstddef>

namespace gammamath {

// Routines of the math table (see MathKernels.h for their contract).
// Pairs: log |gamma(x)| in the real part where gamma(x) is positive, in the imaginary part where it is negative.
int logGamma(double * out, double const * in, std::size_t count);
int gamma(double * out, double const * in, std::size_t count);
int erf(double * out, double const * in, std::size_t count);
int erfc(double * out, double const * in, std::size_t count);

// Loops over two operands (see Kernels.h); the answer is one of mathkernels::Refusal.
// The regularised incomplete gamma functions P(a, x) and Q(a, x) = 1 - P(a, x).
int lowerGamma(double * out, double const * a, double const * x, std::size_t count);
int upperGamma(double * out, double const * a, double const * x, std::size_t count);
// The probability that chi square exceeds x with n degrees of freedom; n is cut to whole.
int chiSquare(double * out, double const * x, double const * n, std::size_t count);

} // namespace gammamath
