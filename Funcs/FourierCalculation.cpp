#include "Funcs/FourierCalculation.h"

#include "Funcs/Fourier.h"
#include "Funcs/HarmonicSums.h"
#include "Funcs/Waveform.h"

#include <cmath>
#include <vector>

namespace fourier {

namespace {

constexpr double turn = 6.283185307179586;

complex unit(double angle) noexcept {
    return {std::cos(angle), std::sin(angle)};
}

constexpr complex timesI(complex z) noexcept {
    return {-z.im, z.re};
}

std::vector<HarmonicSums> sumChanges(PiecewisePolynomial const & p, std::int64_t pointCount,
                                     Harmonics const & harmonics, double w0) {
    std::vector<HarmonicSums> sums(static_cast<std::size_t>(harmonics.count));
    Changes changes;
    for (std::int64_t first = 0; first < pointCount; first += Changes::room) {
        p.findChanges(changes, first);
        addHarmonicSums(sums.data(), sums.size(), changes, harmonics.first, w0);
    }
    return sums;
}

// The integral of p(x) e^(iwx): by parts it is e^(iwx) (p' / w^2 + i p'' / w^3 - i p / w) between the ends of each
// piece, and at an inner point only the changes of p' and p'' are left of two pieces.
complex integral(HarmonicSums const & sums, Points const & points, double w) noexcept {
    std::int64_t const last = points.count - 1;
    complex const ends = points.y[last] * unit(w * points.x[last]) - points.y[0] * unit(w * points.x[0]);
    complex const inner = sums.slope + timesI(sums.curvature / w);
    return inner / (w * w) - timesI(ends / w);
}

} // namespace

void calculate(complex * out, Points const & points, bool parabolas, Harmonics const & harmonics, double span) {
    double const w0 = turn * harmonics.fundamental;
    PiecewisePolynomial const p(points, parabolas);
    std::vector<HarmonicSums> const sums = sumChanges(p, points.count, harmonics, w0);
    for (std::int64_t k = 0; k < harmonics.count; ++k) {
        double const number = harmonics.number(k);
        if (number == 0)
            out[k] = complex{p.integral(), 0} * (1 / span);
        else
            out[k] = integral(sums[static_cast<std::size_t>(k)], points, number * w0) * (2 / span);
    }
}

FUNC_ERROR transform(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Waveform const v(args, 0);
    double const fundamental = numberOr(args, 1, 0);
    auto const first = static_cast<double>(countFrom(numberOr(args, 3, 0)));
    Harmonics const harmonics{first, countFrom(numberOr(args, 2, 0)), fundamental};
    if (!v.hasReference() || v.length < 3 || !(fundamental > 0) || harmonics.count <= 0) return FUNC_OK;
    makeSpectrum(args, result, harmonics.count);
    DistinctPoints const points({v.y, v.x, v.length});
    calculate(result.complexData(), points.get(), numberOr(args, 3, 2, 1) >= 2, harmonics, v.x[v.length - 1] - v.x[0]);
    complex * const frequencies = result.complexRefData();
    for (std::int64_t k = 0; k < harmonics.count; ++k) frequencies[k] = {harmonics.number(k) * fundamental, 0};
    return FUNC_OK;
}

} // namespace fourier
