// Digital filters over the samples of a vector.

#include "Funcs/Funcs1.h"
#include "Funcs/Waveform.h"

#include "support/Multiversion.h"

#include <algorithm>
#include <vector>

namespace {

using Reals = std::vector<double>;

constexpr std::int64_t blockLength = 512;

// Outputs that see no sample before the first one: taps in order, many outputs side by side.
TORVELAN_MULTIVERSION void filterBlock(double * out, double const * in, std::int64_t count, double const * taps,
                                       std::int64_t tapCount) {
    for (std::int64_t i = 0; i < count; ++i) out[i] = 0 + taps[0] * in[i];
    for (std::int64_t k = 1; k < tapCount; ++k) {
        double const tap = taps[k];
        double const * const earlier = in - k;
        for (std::int64_t i = 0; i < count; ++i) out[i] += tap * earlier[i];
    }
}

struct Filter {
    double const * taps;
    std::int64_t tapCount;
    Reals history; // history[k-1] stands for every sample before the first that tap k meets
};

// Values for the taps 1 and on: those given, zeros behind them, and `otherwise` where none are given.
Reals historyOf(FuncArgs const & args, std::int64_t count, double otherwise) {
    Reals history(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)), isGiven(args, 2) ? 0.0 : otherwise);
    if (isGiven(args, 2)) std::copy_n(args.data(2), std::min(count, args.length(2)), history.begin());
    return history;
}

void runFir(double * out, double const * in, std::int64_t count, Filter const & filter) {
    std::int64_t const early = std::min(count, filter.tapCount - 1);
    for (std::int64_t i = 0; i < early; ++i) {
        double total = 0;
        for (std::int64_t k = 0; k < filter.tapCount; ++k)
            total += filter.taps[k] * (k <= i ? in[i - k] : filter.history[static_cast<std::size_t>(k - 1)]);
        out[i] = total;
    }
    for (std::int64_t i = early; i < count; i += blockLength)
        filterBlock(out + i, in + i, std::min(blockLength, count - i), filter.taps, filter.tapCount);
}

void runIir(double * out, double const * in, std::int64_t count, Filter const & filter) {
    for (std::int64_t i = 0; i < count; ++i) {
        double total = in[i] * filter.taps[0];
        for (std::int64_t k = 1; k < filter.tapCount; ++k)
            total += filter.taps[k] * (k <= i ? out[i - k] : filter.history[static_cast<std::size_t>(k - 1)]);
        out[i] = total;
    }
}

FUNC_ERROR filter(void (*run)(double *, double const *, std::int64_t, Filter const &), double beforeFirst,
                  FuncArgs const & args, FuncResult & result) {
    std::int64_t const count = args.length(0), tapCount = args.length(1);
    if (count == 0 || tapCount == 0) return FUNC_OK;
    result.setType(VD_REAL, args.refType(0));
    result.setPhysType(args.physType(0), args.refPhysType(0));
    result.allocate(count, ALLOC_HINT, args.totalLength(0));
    run(result.data(), args.data(0), count, {args.data(1), tapCount, historyOf(args, tapCount - 1, beforeFirst)});
    result.copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    return FUNC_OK;
}

} // namespace

namespace funcs1 {

FUNC_ERROR fir(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    return filter(runFir, numberOr(args, 0, 0), args, result);
}

FUNC_ERROR iir(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    return filter(runIir, 0, args, result);
}

} // namespace funcs1
