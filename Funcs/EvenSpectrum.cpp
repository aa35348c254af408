// The spectrum of evenly spaced samples.

#include "Funcs/Fft.h"
#include "Funcs/Fourier.h"
#include "Funcs/RealTransform.h"
#include "Funcs/Waveform.h"

#include "support/Lanes.h"
#include "support/Multiversion.h"

#include <bit>

namespace {

using realtransform::Window;

// Twice the usual forms: the scale of the result makes up for it.
constexpr Window hanning = {1, 1}, hamming = {1.08, 0.92}, none = {1, 0};

Window windowOf(FuncArgs const & args) {
    if (equalNoCase(textOf(args, 1), "hamming")) return hamming;
    return equalNoCase(textOf(args, 1), "none") ? none : hanning;
}

// Past the cache, a line of four at a time.
TORVELAN_MULTIVERSION void writeFrequencies(complex * out, double step, std::int64_t count) {
    std::int64_t k = 0;
    Lanes const steps = {step, 0, step, 0, step, 0, step, 0};
    Lanes numbers = {0, 0, 1, 0, 2, 0, 3, 0};
    for (; k + 4 <= count; k += 4) {
        streamLanes(&out[k].re, numbers * steps);
        numbers += Lanes{4, 0, 4, 0, 4, 0, 4, 0};
    }
    for (; k < count; ++k) out[k] = {static_cast<double>(k) * step, 0};
    endStreaming();
}

} // namespace

namespace fft {

FUNC_ERROR spectrum(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Waveform const v(args, 0);
    if (v.length < 2) {
        messages.error("Need at least two points for FFT");
        return FUNC_FAILED;
    }
    if (!v.hasReference()) return refuseMissingReference(args, 0, messages);
    auto const length = static_cast<std::int64_t>(std::bit_ceil(static_cast<std::uint64_t>(v.length)));
    std::int64_t const count = length / 2;
    fourier::makeSpectrum(args, result, count);
    complex * const out = result.complexData();
    complex * const frequencies = result.complexRefData(); // lends its room until it is written
    realtransform::run(out, frequencies, {v.y, v.length, length}, windowOf(args), 1 / static_cast<double>(count));
    out[0].re /= 2;
    writeFrequencies(frequencies, 1 / (v.x[1] - v.x[0]) / static_cast<double>(length), count);
    return FUNC_OK;
}

} // namespace fft
