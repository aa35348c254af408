// Element by element: the real routines, and the complex ones with a real result.

#include "Funcs/MathKernels.h"

#include "Evaluation/VectorMath.h"
#include "support/Multiversion.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace mathkernels {

namespace {

constexpr double radiansPerDegree = 0.017453292519943295;
constexpr double degreesPerRadian = 57.29577951308232;
constexpr double exponentLimit = 709.016; // exp of anything greater is refused
constexpr double zeroDecibels = -6160.0;  // the floor of the scale

// Elements that are worked on in several passes; they stay in the first cache.
constexpr std::size_t pieceLength = 256;

// Calls work(first, n) for one piece after the other; stops at the first answer that is not 0.
int inPieces(std::size_t count, auto work) {
    for (std::size_t i = 0; i < count; i += pieceLength)
        if (int const code = work(i, std::min(pieceLength, count - i)); code != refusedNothing) return code;
    return refusedNothing;
}

// --- tests; counted as wide as the elements, so that the loops are vector loops

TORVELAN_MULTIVERSION std::int64_t countNotPositive(double const * in, std::size_t count) {
    std::int64_t found = 0;
    for (std::size_t i = 0; i < count; ++i) found += in[i] <= 0 ? 1 : 0;
    return found;
}

TORVELAN_MULTIVERSION std::int64_t countOverflowing(double const * in, std::size_t count) {
    std::int64_t found = 0;
    for (std::size_t i = 0; i < count; ++i) found += in[i] > exponentLimit ? 1 : 0;
    return found;
}

TORVELAN_MULTIVERSION void scale(double * out, double const * in, double factor, std::size_t count) {
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < count; ++i) out[i] = in[i] * factor;
}

// From magnitudes and their logarithms. `out` may be `logarithms`.
TORVELAN_MULTIVERSION void finishDecibels(double * out, double const * magnitudes, double const * logarithms,
                                          std::size_t count) {
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < count; ++i) {
        double const level = 20.0 * logarithms[i];
        out[i] = magnitudes[i] == 0 ? zeroDecibels : level;
    }
}

int decibelsOfMagnitudes(double * out, double const * magnitudes, std::size_t count) {
    double logarithms[pieceLength];
    vectormath::log10(logarithms, magnitudes, count);
    finishDecibels(out, magnitudes, logarithms, count);
    return refusedNothing;
}

// --- magnitudes

// Those whose squares neither overflow nor lose bits are exact to an ulp; the answer counts the others.
TORVELAN_MULTIVERSION std::int64_t moderateMagnitudes(double * out, double const * in, std::size_t count) {
    std::int64_t extremes = 0;
    for (std::size_t i = 0; i < count; ++i) {
        double const re = in[2 * i], im = in[2 * i + 1], square = re * re + im * im;
        bool const moderate = either(both(square > 1e-280, square < 1e280), both(re == 0, im == 0));
        extremes += moderate ? 0 : 1;
        out[i] = std::sqrt(square);
    }
    return extremes;
}

void correctExtremes(double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        double const re = in[2 * i], im = in[2 * i + 1], square = re * re + im * im;
        if (!(square > 1e-280 && square < 1e280)) out[i] = std::hypot(re, im);
    }
}

// --- arguments

TORVELAN_MULTIVERSION void splitParts(double * re, double * im, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        re[i] = in[2 * i];
        im[i] = in[2 * i + 1];
    }
}

} // namespace

// A routine that refuses nothing: `expression` of the element x.
#define TORVELAN_ELEMENT_LOOP(name, expression)                                                                        \
    TORVELAN_MULTIVERSION int name(double * out, double const * in, std::size_t count) {                               \
        TORVELAN_INDEPENDENT                                                                                           \
        for (std::size_t i = 0; i < count; ++i) {                                                                      \
            double const x = in[i];                                                                                    \
            out[i] = expression;                                                                                       \
        }                                                                                                              \
        return refusedNothing;                                                                                         \
    }

TORVELAN_ELEMENT_LOOP(absolute, std::fabs(x))
TORVELAN_ELEMENT_LOOP(sign, x > 0 ? 1.0 : 0.0)
TORVELAN_ELEMENT_LOOP(negate, -x)
TORVELAN_ELEMENT_LOOP(logicalNot, x == 0 ? 1.0 : 0.0)
TORVELAN_ELEMENT_LOOP(floor, std::floor(x))

#undef TORVELAN_ELEMENT_LOOP

int copyReal(double * out, double const * in, std::size_t count) {
    if (out != in) std::copy(in, in + count, out);
    return refusedNothing;
}

int zeros(double * out, double const *, std::size_t count) {
    std::fill_n(out, count, 0.0);
    return refusedNothing;
}

int decibels(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) {
        double magnitudes[pieceLength];
        absolute(magnitudes, in + i, n);
        return decibelsOfMagnitudes(out + i, magnitudes, n);
    });
}

int log10(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) -> int {
        if (countNotPositive(in + i, n) != 0) return outOfRange;
        vectormath::log10(out + i, in + i, n);
        return refusedNothing;
    });
}

int log(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) -> int {
        if (countNotPositive(in + i, n) != 0) return outOfRange;
        vectormath::log(out + i, in + i, n);
        return refusedNothing;
    });
}

int exp(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) -> int {
        if (countOverflowing(in + i, n) != 0) return overflow;
        vectormath::exp(out + i, in + i, n);
        return refusedNothing;
    });
}

int sin(double * out, double const * in, std::size_t count) {
    vectormath::sin(out, in, count);
    return refusedNothing;
}

int cos(double * out, double const * in, std::size_t count) {
    vectormath::cos(out, in, count);
    return refusedNothing;
}

// No double has a cosine of zero, so there is nothing to refuse.
int tan(double * out, double const * in, std::size_t count) {
    vectormath::tan(out, in, count);
    return refusedNothing;
}

int atan(double * out, double const * in, std::size_t count) {
    vectormath::atan(out, in, count);
    return refusedNothing;
}

int sinDegrees(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) {
        scale(out + i, in + i, radiansPerDegree, n);
        return sin(out + i, out + i, n);
    });
}

int cosDegrees(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) {
        scale(out + i, in + i, radiansPerDegree, n);
        return cos(out + i, out + i, n);
    });
}

int tanDegrees(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) {
        scale(out + i, in + i, radiansPerDegree, n);
        return tan(out + i, out + i, n);
    });
}

int atanDegrees(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) -> int {
        vectormath::atan(out + i, in + i, n);
        scale(out + i, out + i, degreesPerRadian, n);
        return refusedNothing;
    });
}

int sinh(double * out, double const * in, std::size_t count) {
    vectormath::sinh(out, in, count);
    return refusedNothing;
}

int cosh(double * out, double const * in, std::size_t count) {
    vectormath::cosh(out, in, count);
    return refusedNothing;
}

int tanh(double * out, double const * in, std::size_t count) {
    vectormath::tanh(out, in, count);
    return refusedNothing;
}

TORVELAN_MULTIVERSION int sqrt(double * out, double const * in, std::size_t count) {
    std::int64_t negative = 0;
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < count; ++i) {
        double const x = in[i];
        negative += x < 0 ? 1 : 0;
        out[i] = std::sqrt(x);
    }
    return negative != 0 ? outOfRange : refusedNothing;
}

int complexMagnitude(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) -> int {
        if (moderateMagnitudes(out + i, in + 2 * i, n) != 0) correctExtremes(out + i, in + 2 * i, n);
        return refusedNothing;
    });
}

TORVELAN_MULTIVERSION int realPart(double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = in[2 * i];
    return refusedNothing;
}

TORVELAN_MULTIVERSION int imaginaryPart(double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = in[2 * i + 1];
    return refusedNothing;
}

int complexDecibels(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) {
        double magnitudes[pieceLength];
        complexMagnitude(magnitudes, in + 2 * i, n);
        return decibelsOfMagnitudes(out + i, magnitudes, n);
    });
}

int argument(double * out, double const * in, std::size_t count) {
    return inPieces(count, [&](std::size_t i, std::size_t n) -> int {
        double re[pieceLength], im[pieceLength];
        splitParts(re, im, in + 2 * i, n);
        vectormath::atan2(out + i, im, re, n);
        return refusedNothing;
    });
}

int argumentDegrees(double * out, double const * in, std::size_t count) {
    argument(out, in, count);
    scale(out, out, degreesPerRadian, count);
    return refusedNothing;
}

} // namespace mathkernels
