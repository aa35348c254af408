// Peaks and troughs of a waveform.

#include "Funcs/Fft.h"
#include "Funcs/Waveform.h"

#include "support/Interpolate.h"
#include "support/Multiversion.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

constexpr double greatest = std::numeric_limits<double>::max();
constexpr std::int64_t pieceLength = 512;

// A sample, or what stands for samples of equal y; a marker stands beyond the ends of the data.
struct UMinMaxPoint {
    double x, y;
    bool isMarker = false;
};

// What tells a peak from a trough.
struct Upward {
    static constexpr double worst = -greatest;
    static bool beats(double a, double b) noexcept { return a > b; }
};

struct Downward {
    static constexpr double worst = greatest;
    static bool beats(double a, double b) noexcept { return a < b; }
};

// Marks the samples that beat their left neighbour and are not beaten by the right one. Reads one on either side.
template <class Sense> void markTopsOf(unsigned char * isTop, double const * y, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i)
        isTop[i] = both(Sense::beats(y[i], y[i - 1]), !Sense::beats(y[i + 1], y[i])) ? 1 : 0;
}

TORVELAN_MULTIVERSION void markTops(Upward, unsigned char * isTop, double const * y, std::int64_t count) {
    markTopsOf<Upward>(isTop, y, count);
}

TORVELAN_MULTIVERSION void markTops(Downward, unsigned char * isTop, double const * y, std::int64_t count) {
    markTopsOf<Downward>(isTop, y, count);
}

struct Options {
    double const * limits;
    std::int64_t limitCount;
    double spacing;
    bool sortByX, interpolates, hasEnds;
};

Options optionsOf(FuncArgs const & args) {
    return {args.data(1),
            args.length(1),
            numberOr(args, 3, 0),
            hasWord(args, 2, "xsort"),
            !hasWord(args, 2, "nointerp"),
            !hasWord(args, 2, "noendpts")};
}

// The top of the parabola through three points.
UMinMaxPoint vertex(UMinMaxPoint const & a, UMinMaxPoint const & b, UMinMaxPoint const & c) {
    double const slope = (a.y - b.y) / (a.x - b.x);
    double const bend = ((b.y - c.y) / (b.x - c.x) - slope) / (c.x - a.x);
    double const at = (slope - (a.x + b.x) * bend) * (-0.5) / bend;
    double const xs[] = {a.x, b.x, c.x}, ys[] = {a.y, b.y, c.y};
    InterpOpts options;
    options.order = 2;
    return {at, support_Interp(ys, xs, at, options)};
}

template <class Sense> class PeakSearch {
public:
    PeakSearch(Waveform const & waveform, Options const & options) : v(waveform), opts(options) {}

    std::vector<UMinMaxPoint> run() {
        look(0);
        for (std::int64_t i = 1; i + 1 < v.length; i += pieceLength)
            lookInside(i, std::min(pieceLength, v.length - 1 - i));
        if (Sense::beats(v.y[v.length - 1], v.y[v.length - 2])) look(v.length - 1);
        return std::move(peaks);
    }

private:
    // Two equal samples at the very end are no plateau: nothing behind them has shown that it ends.
    bool isOpenPlateau(std::int64_t first, std::int64_t last) const noexcept {
        return last == v.length - 1 && last - first == 1;
    }
    UMinMaxPoint pointFor(std::int64_t first, std::int64_t last) const noexcept {
        if (first == last || isOpenPlateau(first, last)) return {v.x[first], v.y[first]};
        return {(v.x[first] + v.x[last]) / 2, v.y[last]};
    }
    std::int64_t endOfPlateau(std::int64_t i) const noexcept {
        while (i + 1 < v.length && v.y[i + 1] == v.y[i]) ++i;
        return i;
    }
    std::int64_t startOfPlateau(std::int64_t i) const noexcept {
        while (i > 0 && v.y[i - 1] == v.y[i]) --i;
        return i;
    }
    UMinMaxPoint marker(bool atStart) const noexcept {
        bool const falls = v.x[0] > v.x[v.length - 1];
        return {falls == atStart ? greatest : -greatest, Sense::worst, true};
    }

    // The x of all tops are fetched before the first is looked at: they lie far from each other.
    void lookInside(std::int64_t first, std::int64_t count) {
        unsigned char isTop[pieceLength];
        std::int64_t tops[pieceLength], found = 0;
        markTops(Sense(), isTop, v.y + first, count);
        auto const next = [&](std::int64_t i) {
            void const * const at = std::memchr(isTop + i, 1, static_cast<std::size_t>(count - i));
            return at != nullptr ? static_cast<unsigned char const *>(at) - isTop : count;
        };
        for (std::int64_t i = next(0); i < count; i = next(i + 1)) {
            __builtin_prefetch(v.x + first + i);
            tops[found++] = first + i;
        }
        for (std::int64_t k = 0; k < found; ++k) look(tops[k]);
    }
    // At the first sample of a plateau, or at a single sample.
    void look(std::int64_t first) {
        std::int64_t const last = endOfPlateau(first), behind = last + 1;
        bool const atStart = first == 0, atEnd = behind == v.length;
        if ((atStart || atEnd) && !opts.hasEnds) return;
        if ((atStart && atEnd) || isOpenPlateau(first, last)) return;
        UMinMaxPoint const left = atStart ? marker(true) : pointFor(startOfPlateau(first - 1), first - 1);
        UMinMaxPoint const right = atEnd ? marker(false) : pointFor(behind, endOfPlateau(behind));
        judge(left, pointFor(first, last), right);
    }
    void judge(UMinMaxPoint const & left, UMinMaxPoint const & centre, UMinMaxPoint const & right) {
        if (!Sense::beats(centre.y, left.y) || !Sense::beats(centre.y, right.y)) return;
        if (!isWithinLimits(centre.y) || isTooNear(right.x - centre.x, centre.x - left.x)) return;
        bool const plain = !opts.interpolates || left.isMarker || right.isMarker || left.x == centre.x ||
                           centre.x == right.x || right.x == left.x;
        peaks.push_back(plain ? centre : vertex(left, centre, right));
    }
    // The first limit is the edge that a peak must pass, the second one that it must not reach.
    bool isWithinLimits(double y) const noexcept {
        if (opts.limitCount > 0 && !Sense::beats(y, opts.limits[0])) return false;
        return opts.limitCount < 2 || Sense::beats(opts.limits[1], y);
    }
    bool isTooNear(double behind, double before) const noexcept {
        double const w = opts.spacing;
        if (w == 0) return false;
        if (behind > 0 && before > 0) return behind < w || before < w;
        return behind < 0 && before < 0 && (behind > w || before > w);
    }

    Waveform const & v;
    Options const & opts;
    std::vector<UMinMaxPoint> peaks;
};

// The best first; what is no number comes last.
template <class Sense> bool standsBefore(UMinMaxPoint const & a, UMinMaxPoint const & b) {
    return std::isnan(b.y) ? !std::isnan(a.y) : Sense::beats(a.y, b.y);
}

void give(FuncArgs const & args, FuncResult & result, std::vector<UMinMaxPoint> const & peaks) {
    auto const n = static_cast<std::int64_t>(peaks.size());
    result.setType(VD_REAL, VD_REAL);
    result.setPhysType(args.physType(0), args.refPhysType(0));
    result.allocate(n, ALLOC_HINT, n);
    result.allocateRef(n, ALLOC_HINT, n);
    result.setRefName(args.refName(0));
    double *y = result.data(), *x = result.refData();
    for (UMinMaxPoint const & peak : peaks) {
        *y++ = peak.y;
        *x++ = peak.x;
    }
}

template <class Sense> FUNC_ERROR findPeaks(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (!v.hasReference()) return refuseMissingReference(args, 0, messages);
    if (v.length < 2) return FUNC_OK;
    Options const options = optionsOf(args);
    std::vector<UMinMaxPoint> peaks = PeakSearch<Sense>(v, options).run();
    if (peaks.empty()) return FUNC_OK;
    if (!options.sortByX) std::stable_sort(peaks.begin(), peaks.end(), standsBefore<Sense>);
    give(args, result, peaks);
    return FUNC_OK;
}

} // namespace

namespace fft {

FUNC_ERROR maxima(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    return findPeaks<Upward>(args, result, messages);
}

FUNC_ERROR minima(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    return findPeaks<Downward>(args, result, messages);
}

} // namespace fft
