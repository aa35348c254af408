#include "Funcs/PolynomialChanges.h"

#include "support/Multiversion.h"

#include <algorithm>
#include <cmath>

namespace fourier {

namespace {

bool isDistinct(double const * x, std::int64_t i) noexcept {
    return i == 0 || !(x[i] * 1e-10 > x[i] - x[i - 1]);
}

TORVELAN_MULTIVERSION void chords(double * step, double * slope, double const * x, double const * y, std::int64_t n) {
    for (std::int64_t i = 0; i < n; ++i) {
        step[i] = x[i + 1] - x[i];
        slope[i] = (y[i + 1] - y[i]) / step[i];
    }
}

// Half the second derivative of the parabola through a piece and the next; fits[i] is 0 where there is none.
TORVELAN_MULTIVERSION void bends(double * bend, double * fits, double const * step, double const * slope,
                                 std::int64_t n) {
    for (std::int64_t i = 0; i < n; ++i) {
        double const left = std::fabs(slope[i]), right = std::fabs(slope[i + 1]);
        bool const even = both(step[i] > 0.1 * step[i + 1], 10 * step[i + 1] > step[i]);
        bool const smooth = both(left > 0.1 * right, 10 * right > left);
        double const parabola = (slope[i + 1] - slope[i]) / (step[i] + step[i + 1]);
        fits[i] = both(even, smooth) ? 1.0 : 0.0;
        bend[i] = both(even, smooth) ? parabola : 0.0;
    }
}

// Of each piece but the first: with the next one, else with the one before.
TORVELAN_MULTIVERSION void choose(double * chosen, double const * bend, double const * fits, std::int64_t n) {
    for (std::int64_t i = 1; i < n; ++i) chosen[i] = fits[i] != 0 ? bend[i] : bend[i - 1];
}

} // namespace

DistinctPoints::DistinctPoints(Points const & points) : kept_(points) {
    std::int64_t count = 0;
    for (std::int64_t i = 0; i < points.count; ++i) count += isDistinct(points.x, i) ? 1 : 0;
    if (count == points.count) return;
    y_.reserve(static_cast<std::size_t>(count));
    x_.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < points.count; ++i) {
        if (!isDistinct(points.x, i)) continue;
        y_.push_back(points.y[i]);
        x_.push_back(points.x[i]);
    }
    kept_ = {y_.data(), x_.data(), count};
}

// Pieces from two in front of a point to the one behind the last, with zeros where there are none.
struct PiecewisePolynomial::Pieces {
    static constexpr std::int64_t ahead = 2, room = Changes::room + 3;

    double step[room], slope[room], bend[room], fits[room], curve[room];
};

void PiecewisePolynomial::examine(Pieces & pieces, std::int64_t first, std::int64_t count) const {
    std::int64_t const start = first - Pieces::ahead, size = count + 3;
    std::int64_t const begin = std::max<std::int64_t>(start, 0), end = std::min(start + size, points_.count - 1);
    std::fill_n(pieces.step, size, 0.0);
    std::fill_n(pieces.slope, size, 0.0);
    std::fill_n(pieces.curve, size, 0.0);
    std::int64_t const at = begin - start;
    chords(pieces.step + at, pieces.slope + at, points_.x + begin, points_.y + begin, end - begin);
    if (!parabolas_) return;
    bends(pieces.bend, pieces.fits, pieces.step, pieces.slope, size - 1);
    choose(pieces.curve, pieces.bend, pieces.fits, size - 1);
}

void PiecewisePolynomial::findChanges(Changes & out, std::int64_t first) const {
    Pieces pieces;
    std::int64_t const count = std::min(Changes::room, points_.count - first);
    examine(pieces, first, count);
    out.count = 0;
    out.curved = false;
    for (std::int64_t i = 0; i < count; ++i) {
        std::int64_t const front = i + 1, behind = i + 2;
        double const left = pieces.slope[front] + pieces.curve[front] * pieces.step[front];
        double const right = pieces.slope[behind] - pieces.curve[behind] * pieces.step[behind];
        double const slope = left - right, curvature = 2 * (pieces.curve[front] - pieces.curve[behind]);
        out.x[out.count] = points_.x[first + i];
        out.slope[out.count] = slope;
        out.curvature[out.count] = curvature;
        out.curved = either(out.curved, curvature != 0);
        out.count += either(slope != 0, curvature != 0) ? 1 : 0;
    }
}

// Written so that a piece without width has no number for an integral.
double PiecewisePolynomial::integral() const {
    double total = 0;
    Pieces pieces;
    for (std::int64_t first = 0; first + 1 < points_.count; first += Changes::room) {
        std::int64_t const count = std::min(Changes::room, points_.count - 1 - first);
        examine(pieces, first, count);
        for (std::int64_t i = 0; i < count; ++i) {
            double const step = pieces.step[i + 2], bend = pieces.curve[i + 2];
            double const mean = points_.y[first + i] + 0.5 * pieces.slope[i + 2] * step;
            total += step * (mean - bend * step * step / 6);
        }
    }
    return total;
}

} // namespace fourier
