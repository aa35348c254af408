// The part of a waveform between two x values, cut where it crosses them.

#include "Funcs/Funcs1.h"
#include "Funcs/Waveform.h"

#include <algorithm>
#include <limits>
#include <utility>

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

class Count {
public:
    void sample(Waveform const &, std::int64_t) noexcept { ++points; }
    void cut(Waveform const &, std::int64_t, double) noexcept { ++points; }

    std::int64_t points = 0;
};

class Write {
public:
    Write(double * toY, double * toX) noexcept : y_(toY), x_(toX) {}

    void sample(Waveform const & v, std::int64_t i) noexcept { put(v.x[i], v.y[i]); }
    // On the line from sample i - 1 to sample i.
    void cut(Waveform const & v, std::int64_t i, double limit) noexcept {
        double const x0 = v.x[i - 1], x1 = v.x[i];
        put(limit, ((limit - x0) * v.y[i] - (limit - x1) * v.y[i - 1]) / (x1 - x0));
    }

private:
    void put(double x, double y) noexcept {
        *x_++ = x;
        *y_++ = y;
    }

    double * y_;
    double * x_;
};

// Where the way from the last sample enters the band, and where it leaves.
template <class Sink>
void step(Waveform const & v, std::int64_t i, Band const & band, Zone before, Zone now, Sink & to) {
    if (before == below && now >= inside) to.cut(v, i, band.low);
    if (before == above && now <= inside) to.cut(v, i, band.high);
    if (now == below && before >= inside) to.cut(v, i, band.low);
    if (now == above && before != none && before <= inside) to.cut(v, i, band.high);
    if (now != below && now != above) to.sample(v, i);
}

template <class Sink> void walk(Waveform const & v, Band const & band, Sink & to) {
    Zone before = none;
    for (std::int64_t i = 0; i < v.length; ++i) {
        Zone const now = band.zoneOf(v.x[i]);
        if (now == inside && before == inside)
            to.sample(v, i);
        else if (now != before || (now != below && now != above))
            step(v, i, band, before, now, to);
        before = now;
    }
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
    Count count;
    walk(v, band, count);
    if (count.points == 0) return FUNC_OK;
    result.setType(VD_REAL, VD_REAL);
    result.setPhysType(args.physType(0), args.refPhysType(0));
    result.allocate(count.points, ALLOC_DIVISIONS, 0);
    result.allocateRef(count.points, ALLOC_DIVISIONS, 0);
    Write write(result.data(), result.refData());
    walk(v, band, write);
    result.setRefName(args.refName(0));
    return FUNC_OK;
}

} // namespace funcs1
