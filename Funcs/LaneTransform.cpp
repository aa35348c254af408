#include "Funcs/LaneTransform.h"

#include "support/Multiversion.h"

#include <cmath>

namespace realtransform {

namespace {

// The last pass, of blocks of up to eight rows that need no turns.
TORVELAN_INLINE void finishBlocks(Row * rows, std::size_t count, std::size_t block) noexcept {
    if (block == 8) {
        for (std::size_t i = 0; i < count; i += 8) transformEight(*reinterpret_cast<Row(*)[8]>(rows + i));
    } else if (block == 4) {
        for (std::size_t i = 0; i < count; i += 4) transformFour(rows[i], rows[i + 1], rows[i + 2], rows[i + 3]);
    } else {
        for (std::size_t i = 0; i < count; i += 2) add(rows[i], rows[i + 1]);
    }
}

// All passes of the blocks that a pass of span 8 * n has left in `count` rows. One block is finished before the next is
// begun, so that the last passes find their rows in the first cache.
TORVELAN_MULTIVERSION void transformBlocks(Row * rows, std::size_t count, std::size_t n, complex const * turns) {
    if (n <= 8) return finishBlocks(rows, count, n);
    for (std::size_t block = 0; block < count; block += n) {
        Row * const from = rows + block;
        pass(
            from, n, turns, [from](Row & row, std::size_t i) __attribute__((always_inline)) { row = from[i]; });
        transformBlocks(from, n, n / 8, turns + n / 8 * 7);
    }
}

} // namespace

std::size_t reversed(std::size_t k, std::size_t n) noexcept {
    std::size_t out = 0;
    for (std::size_t bit = 1; bit < n; bit *= 2, k /= 2) out = 2 * out + k % 2;
    return out;
}

// The octants mirror each other, so that sine and cosine are asked for where the angle is most exact only.
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
    double const angle = 6.283185307179586 * static_cast<double>(k) / static_cast<double>(n);
    return {std::cos(angle), std::sin(angle)};
}

LaneTransform::LaneTransform(std::size_t n) : length_(n), places_(n) {
    for (std::size_t span = n; span > 8; span /= 8)
        for (std::size_t i = 0; i < span / 8; ++i)
            for (std::size_t m = 1; m < 8; ++m) turns_.push_back(root(i * reversed(m, 8), span));
    for (std::size_t k = 0; k < n; ++k) places_[k] = static_cast<std::uint32_t>(reversed(k, n));
}

void LaneTransform::finish(Row * rows) const {
    transformBlocks(rows, length_, length_ / 8, turns_.data() + length_ / 8 * 7);
}

} // namespace realtransform
