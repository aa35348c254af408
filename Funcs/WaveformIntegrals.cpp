// Measures that rest on one integral of a waveform between two x values.

#include "Funcs/Fft.h"
#include "Funcs/Waveform.h"

#include "support/Interpolate.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

// --- what is added on a straight piece

struct Linear {
    static double piece(double xa, double ya, double xb, double yb) noexcept { return (yb + ya) * 0.5 * (xb - xa); }
};

// The exact integral of the square of a straight line.
struct Square {
    static double piece(double xa, double ya, double xb, double yb) noexcept {
        return (yb * yb + ya * ya + yb * ya) / 3 * (xb - xa);
    }
};

// A limit of the integral, and the sample that goes with it: the first behind a start, the last before an end.
struct Limit {
    double x, y;
    std::int64_t sample;
};

struct Limits {
    Limit start, end;
};

struct Integral {
    double value, range;
};

constexpr FUNC_ERROR refusal = FUNC_NO_RESULT;

// The sample in front of x, and the value there; nothing after a message.
std::optional<Limit> find(Waveform const & v, double x, FuncArgs const & args, MessageHandler & messages) {
    InterpOpts options;
    options.order = 2;
    auto const places = findYFromX(v.y, v.x, v.length, x, options);
    if (places.size() == 1) return Limit{x, places[0].y, places[0].index};
    messages.error(places.empty() ? "The x value specified for the '%s' function is out of range"
                                  : "Argument to '%s' function is non-monotonic",
                   args.getFuncName());
    return std::nullopt;
}

bool isOrderSensible(FuncArgs const & args, MessageHandler & messages) {
    if (!isGiven(args, 1) || !isGiven(args, 2)) return true;
    double const start = numberOr(args, 1, 0), end = numberOr(args, 2, 0);
    if (start > end) messages.error("Start is after end in '%s' function", args.getFuncName());
    if (start == end) messages.error("Start and end are identical in '%s' function", args.getFuncName());
    return !(start >= end);
}

std::optional<Limits> findLimits(Waveform const & v, FuncArgs const & args, MessageHandler & messages) {
    std::int64_t const last = v.length - 1;
    Limits limits{{v.x[0], v.y[0], 1}, {v.x[last], v.y[last], last}};
    if (isGiven(args, 1)) {
        auto const start = find(v, std::max(numberOr(args, 1, 0), v.x[0]), args, messages);
        if (!start) return std::nullopt;
        limits.start = {start->x, start->y, start->sample + 1};
    }
    if (isGiven(args, 2) && !(numberOr(args, 2, 0) >= v.x[last])) {
        auto const end = find(v, numberOr(args, 2, 0), args, messages);
        if (!end) return std::nullopt;
        limits.end = *end;
    }
    return limits;
}

template <class Mode> double integrate(Waveform const & v, Limits const & limits) {
    double total = 0, x = limits.start.x, y = limits.start.y;
    for (std::int64_t i = limits.start.sample; i <= limits.end.sample; ++i) {
        total += Mode::piece(x, y, v.x[i], v.y[i]);
        x = v.x[i];
        y = v.y[i];
    }
    return total + Mode::piece(x, y, limits.end.x, limits.end.y);
}

template <class Mode> std::optional<Integral> measure(FuncArgs const & args, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (!v.hasReference()) {
        refuseMissingReference(args, 0, messages);
        return std::nullopt;
    }
    if (v.length == 0 || !isOrderSensible(args, messages)) return std::nullopt;
    auto const limits = findLimits(v, args, messages);
    if (!limits) return std::nullopt;
    return Integral{integrate<Mode>(v, *limits), limits->end.x - limits->start.x};
}

} // namespace

namespace fft {

FUNC_ERROR mean1(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    auto const integral = measure<Linear>(args, messages);
    if (!integral) return refusal;
    giveNumber(result, integral->value / integral->range, args.physType(0));
    return FUNC_OK;
}

FUNC_ERROR rms1(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    auto const integral = measure<Square>(args, messages);
    if (!integral) return refusal;
    giveNumber(result, integral->range == 0 ? 0.0 : std::sqrt(integral->value / integral->range), args.physType(0));
    return FUNC_OK;
}

FUNC_ERROR sumNoise(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    auto const integral = measure<Square>(args, messages);
    if (!integral) return refusal;
    PhysType const type = args.physType(0);
    giveNumber(result, std::sqrt(integral->value), sqrt(mult(mult(type, type), args.refPhysType(0))));
    return FUNC_OK;
}

} // namespace fft
