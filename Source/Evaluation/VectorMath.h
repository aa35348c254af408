// Transcendental functions of whole arrays of reals, several elements at a time, by the vector routines of the
// processor at hand.
//
// A result is within 1 ulp of the correctly rounded one; special values (zeros with their sign, NaN, infinities,
// denormals) are those of the C library. An element's result depends on the element alone, never on its place or on its
// neighbours, so that a vector evaluated in parts equals the vector evaluated at once. `out` may be an input and
// overlaps it in no other way.
#pragma once

#include <cstddef>

namespace vectormath {

void sin(double * out, double const * in, std::size_t count);
void cos(double * out, double const * in, std::size_t count);
void tan(double * out, double const * in, std::size_t count);
void atan(double * out, double const * in, std::size_t count);
void exp(double * out, double const * in, std::size_t count);
void log(double * out, double const * in, std::size_t count);
void log10(double * out, double const * in, std::size_t count);
void sinh(double * out, double const * in, std::size_t count);
void cosh(double * out, double const * in, std::size_t count);
void tanh(double * out, double const * in, std::size_t count);
void atan2(double * out, double const * y, double const * x, std::size_t count);
void pow(double * out, double const * base, double const * exponent, std::size_t count);

// Instruction sets that the routines are made for. The best that this processor has is used, unless a test asks for
// another one; false, and nothing changed, when the processor lacks it.
enum class Level { library, sse2, avx2, avx512 };
bool useLevel(Level level) noexcept;
void useBestLevel() noexcept;

} // namespace vectormath
