// Calculus: integral and derivative of a waveform over uneven steps of x, and two ramps.

#include "Funcs/FunctionFamily.h"
#include "Funcs/Waveform.h"

#include "support/Interpolate.h"
#include "support/Multiversion.h"
#include "torvelan/Host.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

MakeOption const derivAcceptFactor("DerivAcceptFactor", 1e-6, OptionPersistence::stored, __FILE__, __LINE__);

// --- loops. `out` may be the memory of v.y, so an element is kept before its place is written.

void integrate(double * out, Samples const & v) {
    double total = 0, before = v.y[0];
    out[0] = 0;
    for (std::int64_t i = 1; i < v.length; ++i) {
        double const here = v.y[i];
        out[i] = total += (here + before) * 0.5 * (v.x[i] - v.x[i - 1]);
        before = here;
    }
}

void average(double * out, Samples const & v) {
    double total = 0, before = v.y[0];
    out[0] = 0;
    for (std::int64_t i = 1; i < v.length; ++i) {
        double const here = v.y[i];
        total += (here + before) * 0.5 * (v.x[i] - v.x[i - 1]);
        out[i] = total / (v.x[i] - v.x[0]);
        before = here;
    }
}

void subtractNeighbours(double * out, Samples const & v) {
    double before = v.y[0];
    for (std::int64_t i = 1; i < v.length; ++i) {
        double const here = v.y[i];
        out[i] = here - before;
        before = here;
    }
    out[0] = out[1];
}

// Slopes between `count` + 1 neighbours. False, and the slopes of no use, where a step is not above the threshold.
TORVELAN_MULTIVERSION bool neighbourSlopes(double * out, double const * y, double const * x, std::int64_t count,
                                           double threshold) {
    std::int64_t refused = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        double const step = x[i + 1] - x[i];
        refused += std::fabs(step) > threshold ? 0 : 1;
        out[i] = (y[i + 1] - y[i]) / step;
    }
    return refused == 0;
}

// Slopes at the right ends of steps longer than the threshold; samples inside a step lie on the line between slopes.
// The anchor is the sample that the last step ended on.
class Differentiation {
public:
    Differentiation(double * out, Samples const & v, double threshold) noexcept
        : out_(out), v_(v), threshold_(threshold), anchorY_(v.y[0]) {}

    // Where steps are short a block of samples is walked one by one.
    void run() {
        while (anchor_ + 1 < v_.length) {
            std::int64_t const end = std::min(anchor_ + blockLength, v_.length - 1);
            if (takeBlock(end - anchor_)) continue;
            while (anchor_ < end) takeStep();
        }
    }

private:
    static constexpr std::int64_t blockLength = 256;

    bool takeBlock(std::int64_t count) {
        double y[blockLength + 1], slopes[blockLength];
        std::copy_n(v_.y + anchor_, count + 1, y);
        y[0] = anchorY_;
        if (!neighbourSlopes(slopes, y, v_.x + anchor_, count, threshold_)) return false;
        std::copy_n(slopes, count, out_ + anchor_ + 1);
        moveTo(anchor_ + count, y[count], slopes[0]);
        return true;
    }
    void takeStep() {
        std::int64_t const a = anchor_, b = stepEnd();
        double const y = v_.y[b], width = v_.x[b] - v_.x[a], slope = (y - anchorY_) / width;
        double const before = a == 0 ? slope : out_[a];
        out_[b] = slope;
        if (b > a + 1) {
            double const bend = (slope - before) / width;
            for (std::int64_t j = a + 1; j < b; ++j) out_[j] = bend * (v_.x[j] - v_.x[a]) + before;
        }
        moveTo(b, y, slope);
    }
    // The first sample farther away than the threshold, or the last one.
    std::int64_t stepEnd() const noexcept {
        std::int64_t b = anchor_ + 1;
        while (b + 1 < v_.length && !(std::fabs(v_.x[b] - v_.x[anchor_]) > threshold_)) ++b;
        return b;
    }
    void moveTo(std::int64_t sample, double y, double firstSlope) noexcept {
        if (anchor_ == 0) out_[0] = firstSlope;
        anchor_ = sample;
        anchorY_ = y;
    }

    double * out_; // may be the memory of v.y, so that behind the anchor there are only slopes
    Samples const & v_;
    double threshold_;
    std::int64_t anchor_ = 0;
    double anchorY_;
};

// --- handlers

FUNC_ERROR refuseUnlessWaveform(Samples const & v, char const * name, FuncArgs const & args,
                                MessageHandler & messages) {
    if (v.length == 0 && args.length(0) == 0) return refuseRange(name, messages);
    return v.hasReference() ? FUNC_OK : refuseMissingReference(args, 0, messages);
}

FUNC_ERROR integ(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (FUNC_ERROR const error = refuseUnlessWaveform(v, "integ", args, messages)) return error;
    v.eachDivision(resultLike(args, result, v.length, mult(args.physType(0), args.refPhysType(0))), integrate);
    return FUNC_OK;
}

FUNC_ERROR avg(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (FUNC_ERROR const error = refuseUnlessWaveform(v, "avg", args, messages)) return error;
    v.eachDivision(resultLike(args, result, v.length, args.physType(0)), average);
    return FUNC_OK;
}

void differentiate(double * out, Samples const & v) {
    double const meanStep = std::fabs(v.x[v.length - 1] - v.x[0]) / static_cast<double>(v.length - 1);
    Differentiation(out, v, meanStep * sp_GetDoubleOption("DerivAcceptFactor")).run();
}

FUNC_ERROR diff(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    bool const hasSteps = v.eachDivision([](Samples const & part, std::int64_t) { return part.length >= 2; });
    if (!hasSteps) return refuseRange("diff", messages);
    PhysType const type = args.physType(0);
    if (v.hasReference())
        v.eachDivision(resultLike(args, result, v.length, div(type, args.refPhysType(0))), differentiate);
    else
        v.eachDivision(resultLike(args, result, v.length, type), subtractNeighbours);
    return FUNC_OK;
}

// --- the area between two limits

struct Limit {
    double x, y;
    std::int64_t index; // of the sample in front
};

// False when x lies outside the waveform.
bool findLimit(Samples const & v, double x, Limit * limit) {
    auto const places = findYFromX(v.y, v.x, v.length, x, InterpOpts());
    if (places.empty()) return false;
    *limit = {x, places.front().y, places.front().index};
    return true;
}

double trapezoid(double xl, double yl, double xr, double yr) noexcept {
    return (yl + yr) * 0.5 * (xr - xl);
}

double areaBetween(Samples const & v, Limit const & start, Limit const & end) {
    double total = 0, x = start.x, y = start.y;
    for (std::int64_t i = start.index + 1; i <= end.index; ++i) {
        total += trapezoid(x, y, v.x[i], v.y[i]);
        x = v.x[i];
        y = v.y[i];
    }
    return total + trapezoid(x, y, end.x, end.y);
}

// Refusals are silent: no result is the sign.
FUNC_ERROR area(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Waveform const v(args, 0);
    if (v.length == 0 || !v.hasReference() || !v.isStrictlyMonotonic()) return FUNC_OK;
    bool const falls = v.length > 1 && v.x[0] > v.x[1];
    double from = numberOr(args, 1, v.x[0]), to = numberOr(args, 2, v.x[v.length - 1]);
    bool const turned = falls ? from < to : from > to;
    if (turned) std::swap(from, to);
    Limit start{}, end{};
    if (!findLimit(v, from, &start) || !findLimit(v, to, &end)) return FUNC_OK;
    giveNumber(result, turned ? -areaBetween(v, start, end) : areaBetween(v, start, end), args.physType(0));
    return FUNC_OK;
}

// --- ramps

std::int64_t elementCount(FuncArgs const & args) {
    return countFrom(std::fabs(numberOr(args, 0, 0)));
}

// Real elements for a handler that fills all of them, without a reference.
double * ramp(FuncResult & result, std::int64_t n) {
    result.setType(VD_REAL, VD_UNSET);
    result.setPhysType(PT_NONE, PT_UNCHANGED);
    result.allocate(n, ALLOC_HINT, n);
    return result.data();
}

FUNC_ERROR unitvec(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    std::int64_t const n = elementCount(args);
    if (n > 0) std::fill_n(ramp(result, n), n, 1.0);
    return FUNC_OK;
}

FUNC_ERROR vector(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    std::int64_t const n = std::max<std::int64_t>(elementCount(args), 1);
    double * const out = ramp(result, n);
    for (std::int64_t i = 0; i < n; ++i) out[i] = static_cast<double>(i);
    return FUNC_OK;
}

constexpr FunctionRow rows[] = {
    {"area", handlerOf<area>, 1, 3, {ARG_REAL, ARG_REAL, ARG_REAL}, {}, "Area under a waveform between two x values"},
    {"avg", handlerOf<avg>, 1, 1, {ARG_REAL}, {MULTI_EACH}, "Running average over x", walks},
    {"integ", handlerOf<integ>, 1, 1, {ARG_REAL}, {MULTI_EACH}, "Running integral over x", walks},
    {"diff", handlerOf<diff>, 1, 1, {ARG_REAL}, {MULTI_EACH}, "Derivative by x", walks},
    {"unitvec", handlerOf<unitvec>, 1, 1, {ARG_REAL}, {}, "So many ones"},
    {"vector", handlerOf<vector>, 1, 1, {ARG_REAL}, {}, "The numbers 0, 1, 2, ... up to a count"},
};

FunctionFamily const family(rows);

} // namespace
