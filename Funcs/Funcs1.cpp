// Registers the filters, histograms and builders of vectors; holds those of a few lines.

#include "Funcs/Funcs1.h"

#include "Funcs/FunctionFamily.h"
#include "Funcs/Waveform.h"

#include "torvelan/Host.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

// For the host, when it asks for the outline of a histogram.
MakeOption const histoCurveStyle("HistoCurveStyle", "Stepped", OptionPersistence::stored, __FILE__, __LINE__);

// --- the index of a value in a monotonic vector

// Which of `length` elements stands in front of the value, which lies among them; -1 when the rounds run out.
std::int64_t bisect(double const * v, std::int64_t length, double value, bool rises) {
    std::int64_t low = 0, high = length - 1;
    auto const rounds = static_cast<int>(std::bit_width(static_cast<std::uint64_t>(length - 1)));
    for (int round = 0; round < rounds && high - low > 1; ++round) {
        std::int64_t const middle = low + (high - low) / 2;
        bool const atOrBefore = rises ? v[middle] <= value : v[middle] >= value;
        (atOrBefore ? low : high) = middle;
    }
    return high - low == 1 ? low : -1;
}

FUNC_ERROR locate(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    double const * const v = args.data(0);
    std::int64_t const length = args.length(0), last = length - 1;
    if (v == nullptr || length == 0 || !isGiven(args, 1)) return FUNC_OK;
    double const value = numberOr(args, 1, 0);
    bool const rises = v[last] > v[0];
    std::int64_t index;
    if (length == 1) {
        index = 0;
    } else if (rises ? v[0] > value : value > v[0]) {
        index = -1;
    } else if (rises ? value >= v[last] : value <= v[last]) {
        index = last;
    } else {
        index = bisect(v, length, value, rises);
        if (index < 0) return FUNC_OK;
    }
    giveNumber(result, static_cast<double>(index), PT_NONE);
    return FUNC_OK;
}

// --- running root mean square of a waveform. `out` may be the memory of v.y.

void runningRms(double * out, Samples const & v) {
    double total = 0, before = v.y[0], start = v.x[0];
    out[0] = std::fabs(before);
    for (std::int64_t i = 1; i < v.length; ++i) {
        double const here = v.y[i], step = v.x[i] - v.x[i - 1];
        if (v.x[i] == v.x[i - 1]) {
            out[i] = v.x[i] == start ? std::fabs(here) : out[i - 1];
        } else {
            total += (here * here + before * before + here * before) / 3 * step;
            out[i] = std::sqrt(total / (v.x[i] - start));
        }
        before = here;
    }
}

FUNC_ERROR rms(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (!v.hasReference()) return refuseMissingReference(args, 0, messages);
    if (v.length == 0) return FUNC_OK;
    v.eachDivision(resultLike(args, result, v.length, args.physType(0)), runningRms);
    return FUNC_OK;
}

// --- tests of all elements

FUNC_ERROR giveWhetherAllAre(double wanted, FuncArgs const & args, FuncResult & result) {
    double const * const v = args.data(0);
    auto const isWanted = [wanted](double value) { return value == wanted; };
    bool const all = v == nullptr || std::all_of(v, v + args.length(0), isWanted);
    giveNumber(result, all ? 1.0 : 0.0, PT_NONE);
    return FUNC_OK;
}

FUNC_ERROR ones(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    return giveWhetherAllAre(1.0, args, result);
}

FUNC_ERROR zeros(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    return giveWhetherAllAre(0.0, args, result);
}

constexpr argType real = ARG_REAL;
constexpr MultiDef each = MULTI_EACH, refused = MULTI_REFUSED;

constexpr FunctionRow rows[] = {
    {"FIR", handlerOf<funcs1::fir>, 2, 3, {real, real, real}, {each}, "Filter with a finite impulse response"},
    {"IIR", handlerOf<funcs1::iir>, 2, 3, {real, real, real}, {each}, "Filter that feeds its output back"},
    {"GroupDelay", handlerOf<funcs1::groupDelay>, 1, 1, {ARG_NUMERIC}, {each}, "Group delay of a frequency response"},
    {"Histogram", handlerOf<funcs1::histogram>, 2, 3, {real, real, ARG_STRING}, {each}, "Counts of values in bins"},
    {"Locate", handlerOf<locate>, 2, 2, {real, real}, {}, "Index of a value in a monotonic vector"},
    {"Maximum", handlerOf<funcs1::maximum>, 1, 3, {ARG_NUMERIC, real, real}, {each}, "Greatest value between two x"},
    {"Minimum", handlerOf<funcs1::minimum>, 1, 3, {ARG_NUMERIC, real, real}, {each}, "Least value between two x"},
    {"Range", handlerOf<funcs1::range>, 1, 3, {ARG_AS_IS, real, real}, {each}, "Elements from one index to another"},
    {"Ref", handlerOf<funcs1::ref>, 1, 1, {ARG_NUMERIC}, {each}, "The reference as a vector"},
    {"Rms", handlerOf<rms>, 1, 1, {real}, {each}, "Running root mean square over x", walks},
    {"Truncate", handlerOf<funcs1::truncate>, 1, 3, {real, real, real}, {each}, "Part of a waveform between two x"},
    {"XY", handlerOf<funcs1::xy>, 2, 2, {real, real}, {each, each}, "A vector of given values over given x"},
    {"Ones", handlerOf<ones>, 1, 1, {real}, {refused}, "Whether every element is 1"},
    {"Zeros", handlerOf<zeros>, 1, 1, {real}, {refused}, "Whether every element is 0"},
};

FunctionFamily const family(rows);

} // namespace
