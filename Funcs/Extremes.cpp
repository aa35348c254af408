// The greatest and the least value of a vector between two x.

#include "Funcs/Funcs1.h"
#include "Funcs/Waveform.h"

#include "support/Interpolate.h"

#include <cmath>
#include <limits>

namespace {

double magnitude(complex z) noexcept {
    return std::hypot(z.re, z.im);
}

// One side of an argument, in which complex elements count by their magnitude.
struct Side {
    double const * reals;
    complex const * pairs;
    std::int64_t length;

    bool exists() const noexcept { return length > 0 && (reals != nullptr || pairs != nullptr); }
    double at(std::int64_t i) const noexcept { return reals != nullptr ? reals[i] : magnitude(pairs[i]); }
};

Side valuesOf(FuncArgs const & args) {
    return {args.data(0), args.complexData(0), args.length(0)};
}

Side placesOf(FuncArgs const & args) {
    return {args.refData(0), args.complexRefData(0), args.refLength(0)};
}

struct Window {
    double start = -std::numeric_limits<double>::infinity();
    double end = std::numeric_limits<double>::infinity();
};

Window windowOf(FuncArgs const & args) {
    Window window;
    window.start = numberOr(args, 1, window.start);
    window.end = numberOr(args, 2, window.end);
    return window;
}

// The first of the samples at x = start, by search in a reference that is taken to be monotonic.
std::int64_t searchStart(Side const & x, double start) {
    std::int64_t lower = 0, upper = 0;
    int const direction = x.at(x.length - 1) >= x.at(0) ? 1 : -1;
    if (x.reals != nullptr)
        sp_BinarySearch(x.reals, x.length, start, &lower, &upper, direction);
    else
        sp_BinarySearch(x.pairs, x.length, start, &lower, &upper, direction);
    while (lower > 0 && x.at(lower - 1) == x.at(lower)) --lower;
    return lower > 0 ? lower : 0;
}

// The index of the best sample in the window, or -1. `isBetter` is strict, so the first of equals wins.
template <class IsBetter>
std::int64_t search(Side const & y, Side const & x, Window const & window, std::int64_t first, double worst,
                    IsBetter const & isBetter) {
    std::int64_t found = -1;
    double best = worst;
    for (std::int64_t i = first; i < y.length; ++i) {
        if (i < x.length && x.at(i) < window.start) continue;
        if (i < x.length && x.at(i) > window.end) break;
        double const value = y.at(i);
        if (!isBetter(value, best)) continue;
        best = value;
        found = i;
    }
    return found;
}

void giveSample(FuncArgs const & args, FuncResult & result, std::int64_t i) {
    Side const x = placesOf(args);
    result.setPhysType(args.physType(0), PT_UNCHANGED);
    *result.makeReal(1, ALLOC_DIVISIONS, 0) = valuesOf(args).at(i);
    if (i >= x.length || !x.exists()) return;
    *result.makeRealRef(1, ALLOC_DIVISIONS, 0) = x.at(i);
    result.setPhysType(PT_UNCHANGED, args.refPhysType(0));
    result.setRefName(args.refName(0));
}

constexpr double lowest = -1.7976931348623157e308;

} // namespace

namespace funcs1 {

FUNC_ERROR maximum(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Side const y = valuesOf(args), x = placesOf(args);
    Window const window = x.exists() ? windowOf(args) : Window();
    auto const isGreater = [](double a, double b) { return a > b; };
    std::int64_t const found = search(y, x, window, 0, lowest, isGreater);
    if (found >= 0) giveSample(args, result, found);
    return FUNC_OK;
}

// Looks for its start in a monotonic reference, and so sees other samples than the maximum where x turns.
FUNC_ERROR minimum(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Side const y = valuesOf(args), x = placesOf(args);
    Window const window = x.exists() ? windowOf(args) : Window();
    std::int64_t const first = x.exists() && isGiven(args, 1) ? searchStart(x, window.start) : 0;
    auto const isLess = [](double a, double b) { return a < b; };
    std::int64_t const found = search(y, x, window, first, -lowest, isLess);
    if (found >= 0) giveSample(args, result, found);
    return FUNC_OK;
}

} // namespace funcs1
