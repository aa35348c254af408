// Polynomial interpolation, crossings of a level, and search in monotonic data.
#pragma once

#include "torvelan/Complex.h"
#include "torvelan/Containers.h"

#include <cstdint>
#include <vector>

struct InterpOpts {
    // First byte: all crossings of a level by a waveform are meant, with the two sides exchanged, not one place among
    // monotonic x. What is found then stays between the samples of its piece.
    std::uint32_t flags = 0;
    std::int32_t order = 1; // of the polynomial
    int direction = 0;      // 1 rising crossings, -1 falling ones, 0 either
    double reserved = 0.0;
};

// A higher order counts as this one.
constexpr int highestInterpOrder = 64;

// The polynomial of the order in the options through the order + 1 points that begin at the two pointers, at a place
// (A. C. Aitken, On interpolation by iteration of proportional parts, 1932). Points of equal x make it infinite or NaN.
double support_Interp(double const * y, double const * x, double at, InterpOpts const & options);

// The value between two polynomials that share all points but the first and the last: one without the last point, and
// one without the first.
inline double joinedValue(double firstX, double withoutLast, double lastX, double withoutFirst, double at) noexcept {
    return ((at - firstX) * withoutFirst - (at - lastX) * withoutLast) / (lastX - firstX);
}

// support_Interp for an order known when it is compiled.
template <int order> double interpolateBy(double const * y, double const * x, double at) noexcept {
    if constexpr (order == 0)
        return y[0];
    else
        return joinedValue(x[0], interpolateBy<order - 1>(y, x, at), x[order],
                           interpolateBy<order - 1>(y + 1, x + 1, at), at);
}

struct CrossingPlace {
    double y;           // interpolated
    std::int64_t index; // of the sample in front
};

// Every place where the x values pass through the target, the one in front first. A piece holds its first point and not
// its last, but for the last piece of all. A polynomial that is not finite, or leaves a piece that it has to stay in,
// gives way to the straight line. One point is found by its own x.
std::vector<CrossingPlace> findYFromX(double const * y, double const * x, std::int64_t length, double target,
                                      InterpOpts const & options);
// The same as two lists, newest first.
void support_FindYFromX(YList<double> * ys, YList<std::int64_t> * indices, double const * y, double const * x,
                        std::int64_t length, double target, InterpOpts const & options);

// The neighbours between which a value lies in monotonic data that rise (direction 1 or more) or fall: *lower is the
// last index whose element is not past the value, *upper the one behind it. Outside the data one of them is -1 or
// `length`. Complex elements go by magnitude.
void sp_BinarySearch(double const * data, std::int64_t length, double value, std::int64_t * lower, std::int64_t * upper,
                     int direction);
void sp_BinarySearch(complex const * data, std::int64_t length, double value, std::int64_t * lower,
                     std::int64_t * upper, int direction);
