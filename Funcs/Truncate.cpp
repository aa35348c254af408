// The part of a waveform between two x values, cut where it crosses them.

#include "Funcs/Funcs1.h"
#include "Funcs/Waveform.h"

#include "support/Multiversion.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace {

enum Zone { none, below, atLow, inside, atHigh, above };

struct Band {
    double low = -std::numeric_limits<double>::infinity();
    double high = std::numeric_limits<double>::infinity();

    Zone zoneOf(double x) const noexcept {
        if (x < low) return below;
        if (x > high) return above;
        return x == low ? atLow : x == high ? atHigh : inside;
    }
};

// A run of samples, or (count 0) the point where the line to sample `first` meets a limit.
struct Part {
    std::int64_t first, count;
    double limit;
};

class Parts {
public:
    void samples(std::int64_t first, std::int64_t count) {
        points += count;
        if (!parts_.empty() && parts_.back().count > 0 && parts_.back().first + parts_.back().count == first)
            parts_.back().count += count;
        else
            parts_.push_back({first, count, 0});
    }
    void cut(std::int64_t i, double limit) {
        ++points;
        parts_.push_back({i, 0, limit});
    }
    void write(Waveform const & v, double * y, double * x) const {
        for (Part const & part : parts_) {
            std::int64_t const i = part.first;
            if (part.count > 0) {
                y = std::copy_n(v.y + i, part.count, y);
                x = std::copy_n(v.x + i, part.count, x);
            } else {
                *y++ = valueAt(v, i, part.limit);
                *x++ = part.limit;
            }
        }
    }

    std::int64_t points = 0;

private:
    // On the line from sample i - 1 to sample i.
    static double valueAt(Waveform const & v, std::int64_t i, double limit) noexcept {
        double const x0 = v.x[i - 1], x1 = v.x[i];
        return ((limit - x0) * v.y[i] - (limit - x1) * v.y[i - 1]) / (x1 - x0);
    }

    std::vector<Part> parts_;
};

// Where the way from the last sample enters the band, and where it leaves.
void step(std::int64_t i, Band const & band, Zone before, Zone now, Parts & to) {
    if (before == below && now >= inside) to.cut(i, band.low);
    if (before == above && now <= inside) to.cut(i, band.high);
    if (now == below && before >= inside) to.cut(i, band.low);
    if (now == above && before != none && before <= inside) to.cut(i, band.high);
    if (now != below && now != above) to.samples(i, 1);
}

constexpr std::int64_t pieceLength = 512;

TORVELAN_MULTIVERSION std::int64_t countInside(double const * x, std::int64_t count, double low, double high) {
    std::int64_t found = 0;
    for (std::int64_t i = 0; i < count; ++i) found += both(low < x[i], x[i] < high) ? 1 : 0;
    return found;
}

// Whether all places lie in a zone that takes up more than a limit.
bool areAllIn(Zone zone, Band const & band, double const * x, std::int64_t count) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    switch (zone) {
    case below: return countInside(x, count, -infinity, band.low) == count;
    case inside: return countInside(x, count, band.low, band.high) == count;
    case above: return countInside(x, count, band.high, infinity) == count;
    default: return false;
    }
}

// Most pieces stay where the sample in front of them is.
Parts partsInside(Waveform const & v, Band const & band) {
    Parts parts;
    Zone before = none;
    for (std::int64_t first = 0; first < v.length; first += pieceLength) {
        std::int64_t const end = std::min(first + pieceLength, v.length);
        if (areAllIn(before, band, v.x + first, end - first)) {
            if (before == inside) parts.samples(first, end - first);
            continue;
        }
        for (std::int64_t i = first; i < end; ++i) {
            Zone const now = band.zoneOf(v.x[i]);
            step(i, band, before, now, parts);
            before = now;
        }
    }
    return parts;
}

Band bandOf(FuncArgs const & args) {
    Band band;
    band.low = numberOr(args, 1, band.low);
    band.high = numberOr(args, 2, band.high);
    if (band.low > band.high) std::swap(band.low, band.high);
    return band;
}

} // namespace

namespace funcs1 {

FUNC_ERROR truncate(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (!v.hasReference()) return refuseMissingReference(args, 0, messages);
    if (args.type(0) == VD_COMPLEX) {
        messages.error("Argument %d in function '%s' is complex. Expected real", 1, args.getFuncName());
        return FUNC_FAILED;
    }
    Band const band = bandOf(args);
    Parts const parts = partsInside(v, band);
    if (parts.points == 0) return FUNC_OK;
    result.setType(VD_REAL, VD_REAL);
    result.setPhysType(args.physType(0), args.refPhysType(0));
    result.allocate(parts.points, ALLOC_DIVISIONS, 0);
    result.allocateRef(parts.points, ALLOC_DIVISIONS, 0);
    parts.write(v, result.data(), result.refData());
    result.setRefName(args.refName(0));
    return FUNC_OK;
}

} // namespace funcs1
