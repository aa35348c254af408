// The discrete Fourier transform of real samples, windowed on the way.
#pragma once

#include "torvelan/Complex.h"

#include <cstdint>

namespace realtransform {

// Sample n of N is multiplied by offset - swing * cos(2 pi n / N).
struct Window {
    double offset, swing;
};

struct Samples {
    double const * values;
    std::int64_t count;  // of the values; zeros stand behind them
    std::int64_t length; // N, a power of two, at least 2 and not below count
};

// The lower half of the spectrum: out[k] = scale * sum over n of x[n] e^(+2 pi i n k / N), for k from 0 to N/2 - 1.
// `out` and `scratch` have room for N/2 elements each and lie apart from the samples and from each other.
void run(complex * out, complex * scratch, Samples const & samples, Window window, double scale);

} // namespace realtransform
