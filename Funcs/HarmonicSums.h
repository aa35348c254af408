// Sums of e^(iwx) over points, for harmonics w side by side.
#pragma once

#include "Funcs/PolynomialChanges.h"
#include "torvelan/Complex.h"

#include <cstddef>

namespace fourier {

// Sums over the changes at points x of change * e^(iwx): of the slopes and of the curvatures.
struct HarmonicSums {
    complex slope, curvature;
};

// Adds to the sums of `count` harmonics, whose w is first * w0, (first + 1) * w0 and so on.
void addHarmonicSums(HarmonicSums * sums, std::size_t count, Changes const & changes, double first, double w0);

} // namespace fourier
