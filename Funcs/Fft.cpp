// Registers the measures of waveforms and their spectrum.

#include "Funcs/Fft.h"

#include "Funcs/FunctionFamily.h"

namespace {

constexpr argType real = ARG_REAL, text = ARG_STRING;
constexpr MultiDef each = MULTI_EACH;

constexpr FunctionRow rows[] = {
    {"fft", handlerOf<fft::spectrum>, 1, 2, {real, text}, {each}, "Spectrum of evenly spaced samples"},
    {"Interp", handlerOf<fft::interp>, 2, 4, {real, real, real, real}, {each}, "Values on an even grid"},
    {"Maxima", handlerOf<fft::maxima>, 1, 4, {real, real, text, real}, {each}, "Peaks and where they stand"},
    {"Minima", handlerOf<fft::minima>, 1, 4, {real, real, text, real}, {each}, "Troughs and where they stand"},
    {"XFromY", handlerOf<fft::xFromY>, 2, 4, {real, real, real, real}, {each, each}, "Where a value is crossed"},
    {"YFromX", handlerOf<fft::yFromX>, 2, 3, {real, real, real}, {each, each}, "The value at an x"},
    {"CyclePeriod", handlerOf<fft::cyclePeriod>, 2, 4, {real, real, real, real}, {each, each}, "Periods over x"},
    {"DiffMergeVecs", handlerOf<fft::diffMergeVecs>, 2, 2, {real, real}, {}, "Difference on the merged x values"},
    {"Mean1", handlerOf<fft::mean1>, 1, 3, {real, real, real}, {each, each, each}, "Mean over x", walks},
    {"RMS1", handlerOf<fft::rms1>, 1, 3, {real, real, real}, {each, each, each}, "Root mean square over x", walks},
    {"RootSumOfSquares",
     handlerOf<fft::sumNoise>,
     1,
     3,
     {real, real, real},
     {each, each, each},
     "Root of the integral of squares over x",
     walks},
    {"SumNoise",
     handlerOf<fft::sumNoise>,
     1,
     3,
     {real, real, real},
     {each, each, each},
     "Noise in a band: root of the integral of squares",
     walks},
};

FunctionFamily const family(rows);

} // namespace
