// The element loops of the binary operators. Plain loops over numbers: they know no vectors, divisions or messages.
#pragma once

#include "torvelan/Complex.h"

#include <cstddef>

namespace kernels {

// out[i] = a[i] op b[i] for `count` elements. Complex elements are pairs of doubles, real part first. `out` may be `a`
// or `b`, where the elements are of one size, and overlaps them in no other way. 0, or a code when an element was
// refused; what has been written then is of no use.
using Loop = int (*)(double * out, double const * a, double const * b, std::size_t count);

enum Refusal : int {
    refusedNothing = 0,
    refusedDivisor = 1,
    refusedExponent = 2,
    refusedModulo = 3,
};

// Real operands.
int realAdd(double * out, double const * a, double const * b, std::size_t count);
int realSubtract(double * out, double const * a, double const * b, std::size_t count);
int realMultiply(double * out, double const * a, double const * b, std::size_t count);
int realDivide(double * out, double const * a, double const * b, std::size_t count); // refuses 0
int realPower(double * out, double const * a, double const * b, std::size_t count);  // refuses (-x)^fraction
// The whole magnitudes' remainder. Throws OsException for a divisor whose whole part is 0.
int realModulo(double * out, double const * a, double const * b, std::size_t count);
int realEqual(double * out, double const * a, double const * b, std::size_t count);
int realUnequal(double * out, double const * a, double const * b, std::size_t count);
int realGreater(double * out, double const * a, double const * b, std::size_t count);
int realLess(double * out, double const * a, double const * b, std::size_t count);
int realGreaterOrEqual(double * out, double const * a, double const * b, std::size_t count);
int realLessOrEqual(double * out, double const * a, double const * b, std::size_t count);
int realAnd(double * out, double const * a, double const * b, std::size_t count); // a NaN is true
int realOr(double * out, double const * a, double const * b, std::size_t count);
int realMax(double * out, double const * a, double const * b, std::size_t count);
int realMin(double * out, double const * a, double const * b, std::size_t count);
int realPair(double * out, double const * a, double const * b, std::size_t count); // (a, b)

// The first word tells the left operand, the second the right one. Complex results.
int complexAddComplex(double * out, double const * a, double const * b, std::size_t count);
int complexAddReal(double * out, double const * a, double const * b, std::size_t count);
int realAddComplex(double * out, double const * a, double const * b, std::size_t count);
int complexSubtractComplex(double * out, double const * a, double const * b, std::size_t count);
int complexSubtractReal(double * out, double const * a, double const * b, std::size_t count);
int realSubtractComplex(double * out, double const * a, double const * b, std::size_t count);
int complexMultiplyComplex(double * out, double const * a, double const * b, std::size_t count);
int complexMultiplyReal(double * out, double const * a, double const * b, std::size_t count);
int realMultiplyComplex(double * out, double const * a, double const * b, std::size_t count);
int complexDivideComplex(double * out, double const * a, double const * b, std::size_t count);
int complexDivideReal(double * out, double const * a, double const * b, std::size_t count);
int realDivideComplex(double * out, double const * a, double const * b, std::size_t count);
int complexPowerComplex(double * out, double const * a, double const * b, std::size_t count);
int complexPowerReal(double * out, double const * a, double const * b, std::size_t count);
int realPowerComplex(double * out, double const * a, double const * b, std::size_t count);
int complexPairComplex(double * out, double const * a, double const * b, std::size_t count); // a + i b
int complexPairReal(double * out, double const * a, double const * b, std::size_t count);
int realPairComplex(double * out, double const * a, double const * b, std::size_t count);

// Real results: equality, a real operand having imaginary part 0.
int complexEqualComplex(double * out, double const * a, double const * b, std::size_t count);
int complexEqualReal(double * out, double const * a, double const * b, std::size_t count);
int realEqualComplex(double * out, double const * a, double const * b, std::size_t count);
int complexUnequalComplex(double * out, double const * a, double const * b, std::size_t count);
int complexUnequalReal(double * out, double const * a, double const * b, std::size_t count);
int realUnequalComplex(double * out, double const * a, double const * b, std::size_t count);

} // namespace kernels
