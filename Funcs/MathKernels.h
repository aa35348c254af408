// The element routines of the math table: what an elementwise or reducing function does to an array of numbers.
#pragma once

#include "support/System.h"

#include <cstddef>

namespace mathkernels {

// Writes `out` from the `count` elements of `in`: as many, or one when the routine reduces. Complex elements are pairs
// of doubles, real part first. `out` may be `in` where source and destination are of one kind, and overlaps it in no
// other way. The answer is 0, or why an element (or the whole array) was refused; what has been written then is of no
// use.
using Routine = int (*)(double * out, double const * in, std::size_t count);

enum Refusal : int {
    refusedNothing = 0,
    outOfRange = 3,
    overflow = 4,
    zeroVector = 5,
    noConvergence = 6,
};

// --- real to real, element by element
int absolute(double * out, double const * in, std::size_t count);
int copyReal(double * out, double const * in, std::size_t count);
int zeros(double * out, double const * in, std::size_t count);
int sign(double * out, double const * in, std::size_t count); // 1 for a positive element, else 0
int decibels(double * out, double const * in, std::size_t count);
int log10(double * out, double const * in, std::size_t count);
int log(double * out, double const * in, std::size_t count);
int exp(double * out, double const * in, std::size_t count);
int sin(double * out, double const * in, std::size_t count);
int cos(double * out, double const * in, std::size_t count);
int tan(double * out, double const * in, std::size_t count);
int atan(double * out, double const * in, std::size_t count);
int sinDegrees(double * out, double const * in, std::size_t count);
int cosDegrees(double * out, double const * in, std::size_t count);
int tanDegrees(double * out, double const * in, std::size_t count);
int atanDegrees(double * out, double const * in, std::size_t count);
int sinh(double * out, double const * in, std::size_t count);
int cosh(double * out, double const * in, std::size_t count);
int tanh(double * out, double const * in, std::size_t count);
int sqrt(double * out, double const * in, std::size_t count);
int negate(double * out, double const * in, std::size_t count);
int logicalNot(double * out, double const * in, std::size_t count);
int floor(double * out, double const * in, std::size_t count);

// --- complex to real, element by element
int complexMagnitude(double * out, double const * in, std::size_t count);
int realPart(double * out, double const * in, std::size_t count);
int imaginaryPart(double * out, double const * in, std::size_t count);
int complexDecibels(double * out, double const * in, std::size_t count);
int argument(double * out, double const * in, std::size_t count); // radians
int argumentDegrees(double * out, double const * in, std::size_t count);

// --- complex to complex, element by element
int complexLog10(double * out, double const * in, std::size_t count);
int complexLog(double * out, double const * in, std::size_t count);
int complexExp(double * out, double const * in, std::size_t count);
int complexSin(double * out, double const * in, std::size_t count);
int complexCos(double * out, double const * in, std::size_t count);
int complexTan(double * out, double const * in, std::size_t count);
int complexAtan(double * out, double const * in, std::size_t count);
int complexSinh(double * out, double const * in, std::size_t count);
int complexCosh(double * out, double const * in, std::size_t count);
int complexTanh(double * out, double const * in, std::size_t count);
int complexSqrt(double * out, double const * in, std::size_t count);
int complexNegate(double * out, double const * in, std::size_t count);

// --- the whole array, in order
int phase(double * out, double const * in, std::size_t count); // complex to real, unwrapped, radians
int phaseDegrees(double * out, double const * in, std::size_t count);
int normalise(double * out, double const * in, std::size_t count);
int complexNormalise(double * out, double const * in, std::size_t count);
int random(double * out, double const * in, std::size_t count); // uniform between 0 and each element

// --- reducing
int mean(double * out, double const * in, std::size_t count);
int complexMean(double * out, double const * in, std::size_t count);
int sum(double * out, double const * in, std::size_t count);
int complexSum(double * out, double const * in, std::size_t count);
// The index of the first of the best elements; without one that is a number, `out` keeps its value.
int indexOfGreatest(double * out, double const * in, std::size_t count);
int complexIndexOfGreatest(double * out, double const * in, std::size_t count); // by magnitude
int indexOfLeast(double * out, double const * in, std::size_t count);
int complexIndexOfLeast(double * out, double const * in, std::size_t count);

// The seed of `random`. It is 1 when the process starts, and nothing sets it back.
RandomSeed & randomSeed() noexcept;

} // namespace mathkernels
