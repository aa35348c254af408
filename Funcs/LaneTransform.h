// Eight complex transforms side by side: a row holds one element of each.
#pragma once

#include "support/Lanes.h"
#include "torvelan/Complex.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace realtransform {

struct Row {
    Lanes re, im;
};

// e^(2 pi i k / n) for k from 0 to n.
complex root(std::size_t k, std::size_t n);
// k with the bits below n in reverse order.
std::size_t reversed(std::size_t k, std::size_t n) noexcept;

// What a transform of n elements looks up; n is a power of two, at least 16.
class LaneTransform {
public:
    explicit LaneTransform(std::size_t n);

    std::size_t length() const noexcept { return length_; }
    // Row in which element k stands in the end.
    std::size_t placeOf(std::size_t k) const noexcept { return places_[k]; }

    // Out of place the first pass: load(row, i) gives the elements i; then in place. Element k is the sum over i of
    // element i times e^(+2 pi i k i / n).
    template <class Load> TORVELAN_INLINE void run(Row * rows, Load const & load) const;

private:
    void finish(Row * rows) const;

    std::size_t length_;
    std::vector<complex> turns_; // of each pass but the last, seven for each butterfly
    std::vector<std::uint32_t> places_;
};

TORVELAN_INLINE void add(Row & a, Row & b) noexcept { // a + b, a - b
    Row const difference{a.re - b.re, a.im - b.im};
    a = {a.re + b.re, a.im + b.im};
    b = difference;
}

TORVELAN_INLINE void turn(Row & a, complex const & w) noexcept {
    a = {a.re * w.re - a.im * w.im, a.re * w.im + a.im * w.re};
}

TORVELAN_INLINE void turnQuarter(Row & a) noexcept {
    a = {-a.im, a.re};
}

// Four elements; the results stand in the order 0, 2, 1, 3.
TORVELAN_INLINE void transformFour(Row & a, Row & b, Row & c, Row & d) noexcept {
    add(a, c);
    add(b, d);
    turnQuarter(d);
    add(a, b);
    add(c, d);
}

// Eight elements; the results stand in the order 0, 4, 2, 6, 1, 5, 3, 7.
TORVELAN_INLINE void transformEight(Row (&a)[8]) noexcept {
    constexpr double half = 0.7071067811865476; // root of 1/2
    for (std::size_t i = 0; i < 4; ++i) add(a[i], a[i + 4]);
    a[5] = {(a[5].re - a[5].im) * half, (a[5].re + a[5].im) * half};
    turnQuarter(a[6]);
    a[7] = {(a[7].re + a[7].im) * -half, (a[7].re - a[7].im) * half};
    transformFour(a[0], a[1], a[2], a[3]);
    transformFour(a[4], a[5], a[6], a[7]);
}

// One pass of span n: butterflies of eight rows, n/8 apart, and the turns behind them.
template <class Load>
TORVELAN_INLINE void pass(Row * rows, std::size_t n, complex const * turns, Load const & load) noexcept {
    std::size_t const apart = n / 8;
    for (std::size_t i = 0; i < apart; ++i, turns += 7) {
        Row a[8];
        for (std::size_t m = 0; m < 8; ++m) load(a[m], i + m * apart);
        transformEight(a);
        for (std::size_t m = 1; m < 8; ++m) turn(a[m], turns[m - 1]);
        for (std::size_t m = 0; m < 8; ++m) rows[i + m * apart] = a[m];
    }
}

template <class Load> TORVELAN_INLINE void LaneTransform::run(Row * rows, Load const & load) const {
    pass(rows, length_, turns_.data(), load);
    finish(rows);
}

} // namespace realtransform
