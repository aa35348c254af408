// Histogram: how many values fall into each of several equal bins.

#include "Funcs/Funcs1.h"
#include "Funcs/Waveform.h"

#include "support/Multiversion.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

struct Bounds {
    double least = std::numeric_limits<double>::infinity();
    double greatest = -std::numeric_limits<double>::infinity();
};

constexpr std::size_t lanes = 8;

TORVELAN_MULTIVERSION Bounds boundsOf(double const * values, std::size_t count) {
    double least[lanes], greatest[lanes];
    std::fill_n(least, lanes, Bounds().least);
    std::fill_n(greatest, lanes, Bounds().greatest);
    for (std::size_t i = 0; i + lanes <= count; i += lanes)
        for (std::size_t k = 0; k < lanes; ++k) {
            double const value = values[i + k];
            least[k] = value < least[k] ? value : least[k];
            greatest[k] = value > greatest[k] ? value : greatest[k];
        }
    for (std::size_t i = count - count % lanes; i < count; ++i) {
        least[0] = std::min(least[0], values[i]);
        greatest[0] = std::max(greatest[0], values[i]);
    }
    return {*std::min_element(least, least + lanes), *std::max_element(greatest, greatest + lanes)};
}

struct Bins {
    double start, width;
    std::int64_t count;
};

Bins binsFor(Bounds bounds, double argument, bool fixedWidth) {
    double const span = bounds.greatest - bounds.least;
    std::int64_t const asked = countFrom(fixedWidth ? std::floor(span / argument + 1) : argument);
    std::int64_t const count = std::max<std::int64_t>(asked, 2);
    return {bounds.least, fixedWidth ? argument : span / static_cast<double>(count), count};
}

// A value that is no number falls nowhere.
void countInto(double * counts, Bins const & bins, double const * values, std::int64_t n) {
    double const last = static_cast<double>(bins.count - 1);
    for (std::int64_t i = 0; i < n; ++i) {
        double const place = (values[i] - bins.start) / bins.width;
        if (!std::isnan(place)) counts[static_cast<std::int64_t>(std::clamp(place, 0.0, last))] += 1;
    }
}

void giveBars(FuncResult & result, Bins const & bins, double const * values, std::int64_t n) {
    countInto(result.makeReal(bins.count, ALLOC_DIVISIONS, 0), bins, values, n);
    double * const middle = result.makeRealRef(bins.count, ALLOC_DIVISIONS, 0);
    for (std::int64_t i = 0; i < bins.count; ++i)
        middle[i] = static_cast<double>(i) * bins.width + bins.start + bins.width / 2;
}

// Two points a bin, which draw the outline of its bar.
void giveOutline(FuncResult & result, Bins const & bins, double const * values, std::int64_t n) {
    std::vector<double> counts(static_cast<std::size_t>(bins.count));
    countInto(counts.data(), bins, values, n);
    double * const y = result.makeReal(2 * bins.count, ALLOC_DIVISIONS, 0);
    double * const x = result.makeRealRef(2 * bins.count, ALLOC_DIVISIONS, 0);
    for (std::int64_t b = 0; b < bins.count; ++b) {
        y[2 * b] = y[2 * b + 1] = counts[static_cast<std::size_t>(b)];
        x[2 * b] = static_cast<double>(b) * bins.width + bins.start;
        x[2 * b + 1] = x[2 * b] + bins.width;
    }
}

// Twice as many points must still be countable, and bounded by what one vector may hold.
constexpr std::int64_t mostBins = std::int64_t{1} << 40;

} // namespace

namespace funcs1 {

FUNC_ERROR histogram(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    double const * const values = args.data(0);
    std::int64_t const n = args.length(0);
    double const argument = numberOr(args, 1, 0);
    if (values == nullptr || n == 0 || !(argument > 0)) return FUNC_OK;
    Bounds const bounds = boundsOf(values, static_cast<std::size_t>(n));
    if (!(bounds.least < bounds.greatest)) {
        messages.error("Constant values. Cannot build histogram");
        return FUNC_FAILED;
    }
    Bins const bins = binsFor(bounds, argument, hasWord(args, 2, "fixedBin"));
    if (bins.count > mostBins) throw MemoryException("Detected in Histogram");
    result.setPhysType(PT_NONE, args.physType(0));
    (hasWord(args, 2, "step") ? giveOutline : giveBars)(result, bins, values, n);
    return FUNC_OK;
}

} // namespace funcs1
