// Group delay: the slope of the unwrapped phase.

#include "Funcs/Funcs1.h"
#include "Funcs/MathKernels.h"
#include "Funcs/Waveform.h"

#include <vector>

namespace {

constexpr double minusTurn = -6.283185307179586;

double slope(double xa, double a, double xb, double b) noexcept {
    return (a - b) / (xa - xb);
}

// Derivative in the middle of the parabola through three points.
double slopeInMiddle(double const * x, double a, double b, double c) noexcept {
    double const first = slope(x[0], a, x[1], b);
    double const bend = (slope(x[1], b, x[2], c) - first) / (x[2] - x[0]);
    return 2 * bend * x[1] + (first - (x[1] + x[0]) * bend);
}

bool hasInfiniteSlope(double const * x, std::int64_t n) noexcept {
    for (std::int64_t i = 1; i < n; ++i)
        if (x[i] == x[i - 1] || (i > 1 && x[i] == x[i - 2])) return true;
    return false;
}

// Phases become delays in their own place, so the next ones are kept at hand.
void differentiate(double * phase, double const * x, std::int64_t n) {
    double a = phase[0], b = phase[1];
    phase[0] = slope(x[1], b, x[0], a) / minusTurn;
    for (std::int64_t i = 1; i + 1 < n; ++i) {
        double const c = phase[i + 1];
        phase[i] = slopeInMiddle(x + i - 1, a, b, c) / minusTurn;
        a = b;
        b = c;
    }
    phase[n - 1] = slope(x[n - 1], b, x[n - 2], a) / minusTurn;
}

std::vector<double> frequencies(FuncArgs const & args) {
    std::vector<double> x(static_cast<std::size_t>(args.refLength(0)));
    double const * const reals = args.refData(0);
    complex const * const pairs = args.complexRefData(0);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = reals != nullptr ? reals[i] : pairs[i].re;
    return x;
}

double * resultOver(FuncArgs const & args, FuncResult & result, std::int64_t n) {
    result.setType(VD_REAL, VD_REAL);
    result.setPhysType(div(PT_NONE, args.refPhysType(0)), PT_UNCHANGED);
    result.allocate(n, ALLOC_HINT, args.totalLength(0));
    result.copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    return result.data();
}

} // namespace

namespace funcs1 {

FUNC_ERROR groupDelay(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    std::int64_t const n = args.length(0);
    if (n < 2) {
        messages.error("Need at least two points to find group delay");
        return FUNC_FAILED;
    }
    complex const * const response = args.complexData(0);
    if (response == nullptr) {
        std::fill_n(resultOver(args, result, n), n, 0.0);
        return FUNC_OK;
    }
    bool const hasX = args.refData(0) != nullptr || args.complexRefData(0) != nullptr;
    if (!hasX || args.refLength(0) < n) return refuseMissingReference(args, 0, messages);
    std::vector<double> const x = frequencies(args);
    if (hasInfiniteSlope(x.data(), n)) {
        messages.error("Cannot find group delay. Argument has infinite slope");
        return FUNC_FAILED;
    }
    double * const out = resultOver(args, result, n);
    mathkernels::phase(out, reinterpret_cast<double const *>(response), static_cast<std::size_t>(n));
    differentiate(out, x.data(), n);
    return FUNC_OK;
}

} // namespace funcs1
