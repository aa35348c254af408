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
std::optional<Limit> find(Samples const & v, double x, FuncArgs const & args, MessageHandler & messages) {
    InterpOpts options;
    options.order = 2;
    auto const places = findYFromX(v.y, v.x, v.length, x, options);
    if (places.size() == 1) return Limit{x, places[0].y, places[0].index};
    messages.error(places.empty() ? "The x value specified for the '%s' function is out of range"
                                  : "Argument to '%s' function is non-monotonic",
                   args.getFuncName());
    return std::nullopt;
}

// What the call asks for; nothing where a limit is left out.
struct Request {
    std::optional<double> start, end;
};

Request requestOf(FuncArgs const & args) {
    Request request;
    if (isGiven(args, 1)) request.start = numberOr(args, 1, 0);
    if (isGiven(args, 2)) request.end = numberOr(args, 2, 0);
    return request;
}

bool isOrderSensible(Request const & request, FuncArgs const & args, MessageHandler & messages) {
    if (!request.start || !request.end) return true;
    double const start = *request.start, end = *request.end;
    if (start > end) messages.error("Start is after end in '%s' function", args.getFuncName());
    if (start == end) messages.error("Start and end are identical in '%s' function", args.getFuncName());
    return !(start >= end);
}

std::optional<Limits> findLimits(Samples const & v, Request const & request, FuncArgs const & args,
                                 MessageHandler & messages) {
    std::int64_t const last = v.length - 1;
    Limits limits{{v.x[0], v.y[0], 1}, {v.x[last], v.y[last], last}};
    if (request.start) {
        auto const start = find(v, std::max(*request.start, v.x[0]), args, messages);
        if (!start) return std::nullopt;
        limits.start = {start->x, start->y, start->sample + 1};
    }
    if (request.end && !(*request.end >= v.x[last])) {
        auto const end = find(v, *request.end, args, messages);
        if (!end) return std::nullopt;
        limits.end = *end;
    }
    return limits;
}

template <class Mode> double integrate(Samples const & v, Limits const & limits) {
    double total = 0, x = limits.start.x, y = limits.start.y;
    for (std::int64_t i = limits.start.sample; i <= limits.end.sample; ++i) {
        total += Mode::piece(x, y, v.x[i], v.y[i]);
        x = v.x[i];
        y = v.y[i];
    }
    return total + Mode::piece(x, y, limits.end.x, limits.end.y);
}

// Gives valueOf(integral) for each division.
template <class Mode, class ValueOf>
FUNC_ERROR measure(FuncArgs const & args, FuncResult & result, MessageHandler & messages, PhysType type,
                   ValueOf const & valueOf) {
    Waveform const v(args, 0);
    if (!v.hasReference()) refuseMissingReference(args, 0, messages);
    Request const request = requestOf(args);
    if (!v.hasReference() || v.length == 0 || !isOrderSensible(request, args, messages)) return refusal;
    double * out = nullptr;
    bool const done = v.eachDivision([&](Samples const & part, std::int64_t division) {
        auto const limits = findLimits(part, request, args, messages);
        if (!limits) return false;
        if (out == nullptr) out = numberForEachDivision(args, result, type);
        out[division] = valueOf(Integral{integrate<Mode>(part, *limits), limits->end.x - limits->start.x});
        return true;
    });
    return done ? FUNC_OK : refusal;
}

} // namespace

namespace fft {

FUNC_ERROR mean1(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    return measure<Linear>(args, result, messages, args.physType(0),
                           [](Integral const & integral) { return integral.value / integral.range; });
}

FUNC_ERROR rms1(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    return measure<Square>(args, result, messages, args.physType(0), [](Integral const & integral) {
        return integral.range == 0 ? 0.0 : std::sqrt(integral.value / integral.range);
    });
}

FUNC_ERROR sumNoise(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    PhysType const type = args.physType(0), noise = sqrt(mult(mult(type, type), args.refPhysType(0)));
    return measure<Square>(args, result, messages, noise,
                           [](Integral const & integral) { return std::sqrt(integral.value); });
}

} // namespace fft
