#include "support/Interpolate.h"

#include "support/Multiversion.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::int64_t pieceLength = 512;

int orderFor(InterpOpts const & options, std::int64_t length) noexcept {
    std::int64_t const highest = std::clamp<std::int64_t>(length - 1, 1, highestInterpOrder); // one point has no pieces
    return static_cast<int>(std::clamp<std::int64_t>(options.order, 1, highest));
}

// How many pieces of a stretch hold the target, whichever way they run.
TORVELAN_MULTIVERSION std::int64_t countCrossings(double const * x, std::int64_t pieces, double target) {
    std::int64_t found = 0;
    for (std::int64_t i = 0; i < pieces; ++i) {
        bool const rises = both(x[i] <= target, target < x[i + 1]);
        bool const falls = both(x[i] >= target, target > x[i + 1]);
        found += either(rises, falls) ? 1 : 0;
    }
    return found;
}

// 1 where the piece passes the target rising, -1 falling, 0 where it does not.
int passes(double from, double to, double target) noexcept {
    if (from <= target && target < to) return 1;
    return from >= target && target > to ? -1 : 0;
}

bool isBetween(double value, double a, double b) noexcept {
    return value >= std::min(a, b) && value <= std::max(a, b);
}

class CrossingSearch {
public:
    CrossingSearch(double const * ys, double const * xs, std::int64_t n, double at, InterpOpts const & options) noexcept
        : y(ys), x(xs), length(n), target(at), opts(options) {
        opts.order = orderFor(options, n);
    }

    template <class Found> void run(Found && found) const {
        std::int64_t const pieces = length - 1;
        for (std::int64_t i = 0; i < pieces; i += pieceLength) {
            std::int64_t const end = std::min(i + pieceLength, pieces);
            if (countCrossings(x + i, end - i, target) == 0) continue;
            for (std::int64_t k = i; k < end; ++k)
                if (isWanted(passes(x[k], x[k + 1], target))) found({valueIn(k), k});
        }
        if (x[pieces] == target && isWanted(lastDirection())) found({y[pieces], std::max<std::int64_t>(pieces - 1, 0)});
    }

private:
    static constexpr int level = 2; // the last piece reaches the target without a slope

    bool searchesWaveform() const noexcept { return (opts.flags & 0xFF) != 0; }
    bool isWanted(int way) const noexcept { return way != 0 && (opts.direction == 0 || opts.direction == way); }
    int lastDirection() const noexcept {
        if (length < 2 || x[length - 1] == x[length - 2]) return level;
        return x[length - 1] > x[length - 2] ? 1 : -1;
    }
    double valueIn(std::int64_t i) const {
        if (x[i] == target) return y[i];
        std::int64_t const first = std::clamp<std::int64_t>(i - (opts.order - 1) / 2, 0, length - 1 - opts.order);
        double const value = support_Interp(y + first, x + first, target, opts);
        bool const fits = searchesWaveform() ? isBetween(value, y[i], y[i + 1]) : std::isfinite(value);
        return fits ? value : y[i] + (y[i + 1] - y[i]) * ((target - x[i]) / (x[i + 1] - x[i]));
    }

    double const * y;
    double const * x;
    std::int64_t length;
    double target;
    InterpOpts opts;
};

// The first index whose element is past the value.
template <class At> std::int64_t firstPast(std::int64_t length, double value, int direction, At const & at) {
    std::int64_t low = 0, high = length;
    while (low < high) {
        std::int64_t const middle = low + (high - low) / 2;
        double const element = at(middle);
        if (direction > 0 ? element > value : element < value)
            high = middle;
        else
            low = middle + 1;
    }
    return low;
}

} // namespace

double support_Interp(double const * y, double const * x, double at, InterpOpts const & options) {
    int const order = std::clamp(options.order, 0, highestInterpOrder);
    double value[highestInterpOrder + 1];
    std::copy_n(y, order + 1, value);
    for (int step = 1; step <= order; ++step)
        for (int i = order; i >= step; --i) value[i] = joinedValue(x[i - step], value[i - 1], x[i], value[i], at);
    return value[order];
}

std::vector<CrossingPlace> findYFromX(double const * y, double const * x, std::int64_t length, double target,
                                      InterpOpts const & options) {
    std::vector<CrossingPlace> places;
    if (length > 0)
        CrossingSearch(y, x, length, target, options).run([&places](CrossingPlace const & place) {
            places.push_back(place);
        });
    return places;
}

void support_FindYFromX(YList<double> * ys, YList<std::int64_t> * indices, double const * y, double const * x,
                        std::int64_t length, double target, InterpOpts const & options) {
    for (CrossingPlace const & place : findYFromX(y, x, length, target, options)) {
        ys->push_front(place.y);
        indices->push_front(place.index);
    }
}

void sp_BinarySearch(double const * data, std::int64_t length, double value, std::int64_t * lower, std::int64_t * upper,
                     int direction) {
    *upper = firstPast(length, value, direction, [data](std::int64_t i) { return data[i]; });
    *lower = *upper - 1;
}

void sp_BinarySearch(complex const * data, std::int64_t length, double value, std::int64_t * lower,
                     std::int64_t * upper, int direction) {
    *upper = firstPast(length, value, direction, [data](std::int64_t i) { return std::hypot(data[i].re, data[i].im); });
    *lower = *upper - 1;
}
