// Harmonics of a waveform, by exact integrals of a piecewise polynomial through its points.
#pragma once

#include "Funcs/PolynomialChanges.h"
#include "torvelan/Complex.h"

#include <cstdint>

namespace fourier {

struct Harmonics {
    double first; // number of the first one, whole
    std::int64_t count;
    double fundamental; // cycles for a unit of x

    double number(std::int64_t k) const noexcept { return first + static_cast<double>(k); }
};

// out[k] = 2/span times the integral of p(x) e^(iwx), with w = 2 pi times the frequency of harmonic k; 1/span for
// number 0. p is the piecewise polynomial through the points.
void calculate(complex * out, Points const & points, bool parabolas, Harmonics const & harmonics, double span);

} // namespace fourier
