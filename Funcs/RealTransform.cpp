#include "Funcs/RealTransform.h"

#include <cmath>
#include <utility>
#include <vector>

namespace realtransform {

namespace {

constexpr double turn = 6.283185307179586;

// e^(2 pi i k / n) for k from 0 to n: sine and cosine are asked for in the first octant only, where the angle is most
// exact, so that roots that mirror each other are the same numbers.
complex root(std::size_t k, std::size_t n) {
    if (2 * k > n) {
        complex const mirrored = root(n - k, n);
        return {mirrored.re, -mirrored.im};
    }
    if (4 * k > n) {
        complex const mirrored = root(n / 2 - k, n);
        return {-mirrored.re, mirrored.im};
    }
    if (8 * k > n) {
        complex const mirrored = root(n / 4 - k, n);
        return {mirrored.im, mirrored.re};
    }
    double const angle = turn * static_cast<double>(k) / static_cast<double>(n);
    return {std::cos(angle), std::sin(angle)};
}

// Decimation in frequency, in place: sums to the first half, turned differences to the second, and on in both.
void transform(double * re, double * im, double const * cosine, double const * sine, std::size_t n) {
    for (std::size_t half = n / 2, stride = 1; half > 0; half /= 2, stride *= 2)
        for (std::size_t block = 0; block < n; block += 2 * half)
            for (std::size_t i = block, j = 0; i < block + half; ++i, j += stride) {
                double const dr = re[i] - re[i + half], di = im[i] - im[i + half];
                re[i] += re[i + half];
                im[i] += im[i + half];
                re[i + half] = dr * cosine[j] - di * sine[j];
                im[i + half] = dr * sine[j] + di * cosine[j];
            }
}

std::size_t reversed(std::size_t k, std::size_t n) noexcept {
    std::size_t out = 0;
    for (std::size_t bit = 1; bit < n; bit *= 2, k /= 2) out = 2 * out + k % 2;
    return out;
}

} // namespace

void run(complex * out, complex *, Samples const & samples, Window window, double scale) {
    auto const n = static_cast<std::size_t>(samples.length), half = n / 2;
    std::vector<double> re(n), im(n), cosine(half), sine(half);
    for (std::size_t k = 0; k < half; ++k) {
        complex const r = root(k, n);
        cosine[k] = r.re;
        sine[k] = r.im;
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(samples.count); ++i) {
        double const c = i < half ? cosine[i] : -cosine[i - half];
        re[i] = samples.values[i] * (window.offset - window.swing * c);
    }
    transform(re.data(), im.data(), cosine.data(), sine.data(), n);
    for (std::size_t k = 0; k < half; ++k) {
        std::size_t const from = reversed(k, n);
        out[k] = {re[from] * scale, im[from] * scale};
    }
}

} // namespace realtransform
