#include "Funcs/RealTransform.h"

#include "Funcs/BlockedTransform.h"
#include "Funcs/LaneTransform.h"

#include <memory>

namespace realtransform {

namespace {

// Decimation in frequency, in place: sums to the first half, turned differences to the second, and on in both.
void transform(double * re, double * im, complex const * roots, std::size_t n) {
    for (std::size_t half = n / 2, stride = 1; half > 0; half /= 2, stride *= 2)
        for (std::size_t block = 0; block < n; block += 2 * half)
            for (std::size_t i = block, j = 0; i < block + half; ++i, j += stride) {
                double const dr = re[i] - re[i + half], di = im[i] - im[i + half];
                re[i] += re[i + half];
                im[i] += im[i + half];
                re[i + half] = dr * roots[j].re - di * roots[j].im;
                im[i + half] = dr * roots[j].im + di * roots[j].re;
            }
}

// A transform of few samples, one by one.
void runSmall(complex * out, Samples const & samples, Window window, double scale) {
    double re[BlockedTransform::shortest] = {}, im[BlockedTransform::shortest] = {};
    complex roots[BlockedTransform::shortest];
    auto const n = static_cast<std::size_t>(samples.length);
    for (std::size_t k = 0; k < n; ++k) roots[k] = root(k, n);
    for (std::size_t i = 0; i < static_cast<std::size_t>(samples.count); ++i)
        re[i] = samples.values[i] * (window.offset - window.swing * roots[i].re);
    transform(re, im, roots, n);
    for (std::size_t k = 0; k < n / 2; ++k) {
        std::size_t const from = reversed(k, n);
        out[k] = {re[from] * scale, im[from] * scale};
    }
}

} // namespace

void run(complex * out, complex * scratch, Samples const & samples, Window window, double scale) {
    // What the last length needed is kept: divisions are mostly of one length.
    static std::unique_ptr<BlockedTransform> kept;
    auto const length = static_cast<std::size_t>(samples.length);
    if (length < BlockedTransform::shortest) return runSmall(out, samples, window, scale);
    if (kept == nullptr || kept->length() != length) kept = std::make_unique<BlockedTransform>(length);
    kept->run(out, scratch, samples, window, scale);
}

} // namespace realtransform
