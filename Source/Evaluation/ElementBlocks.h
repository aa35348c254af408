// Runs element loops over arrays of any size: repeats an operand that has one element, and writes results too large for
// the cache past it.
#pragma once

#include "Evaluation/Kernels.h"

namespace kernels {

// out[i] = f(in[i]), otherwise as Loop.
using UnaryLoop = int (*)(double * out, double const * in, std::size_t count);

struct Operand {
    double const * data = nullptr;
    std::size_t width = 1; // doubles in an element: 1 real, 2 complex
    bool repeated = false; // data[0 .. width) stands for every element
};

// Answer of the loop: 0, or the code of the first piece in which an element was refused.
int runLoop(Loop loop, double * out, std::size_t outWidth, Operand a, Operand b, std::size_t count);
// For a loop whose elements do not know each other.
int runLoop(UnaryLoop loop, double * out, std::size_t outWidth, Operand in, std::size_t count);

// Bytes of result from which on it is written past the cache.
inline constexpr std::size_t streamingSize = std::size_t{16} << 20;

} // namespace kernels
