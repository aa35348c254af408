// Lanes put in another order.
#pragma once

#include "support/Lanes.h"

// out[i] has lane i of all rows.
TORVELAN_INLINE void transpose(Lanes (&out)[laneCount], Lanes const (&rows)[laneCount]) noexcept {
    Lanes quads[laneCount]; // lanes i and i + 4 of four rows; those of the other four rows in i + 4
    for (std::size_t half = 0; half < laneCount; half += 4) {
        Lanes const * const r = rows + half;
        Lanes const even01 = __builtin_shufflevector(r[0], r[1], 0, 8, 2, 10, 4, 12, 6, 14);
        Lanes const odd01 = __builtin_shufflevector(r[0], r[1], 1, 9, 3, 11, 5, 13, 7, 15);
        Lanes const even23 = __builtin_shufflevector(r[2], r[3], 0, 8, 2, 10, 4, 12, 6, 14);
        Lanes const odd23 = __builtin_shufflevector(r[2], r[3], 1, 9, 3, 11, 5, 13, 7, 15);
        quads[half] = __builtin_shufflevector(even01, even23, 0, 1, 8, 9, 4, 5, 12, 13);
        quads[half + 1] = __builtin_shufflevector(odd01, odd23, 0, 1, 8, 9, 4, 5, 12, 13);
        quads[half + 2] = __builtin_shufflevector(even01, even23, 2, 3, 10, 11, 6, 7, 14, 15);
        quads[half + 3] = __builtin_shufflevector(odd01, odd23, 2, 3, 10, 11, 6, 7, 14, 15);
    }
    for (std::size_t i = 0; i < 4; ++i) {
        out[i] = __builtin_shufflevector(quads[i], quads[i + 4], 0, 1, 2, 3, 8, 9, 10, 11);
        out[i + 4] = __builtin_shufflevector(quads[i], quads[i + 4], 4, 5, 6, 7, 12, 13, 14, 15);
    }
}

// Real and imaginary parts as pairs.
TORVELAN_INLINE void interleave(Lanes & low, Lanes & high, Lanes const & re, Lanes const & im) noexcept {
    low = __builtin_shufflevector(re, im, 0, 8, 1, 9, 2, 10, 3, 11);
    high = __builtin_shufflevector(re, im, 4, 12, 5, 13, 6, 14, 7, 15);
}

// The value behind the lanes, then lanes 7 to 1.
TORVELAN_INLINE void reverseBehind(Lanes & out, Lanes const & lanes, double behind) noexcept {
    Lanes const last = {behind};
    out = __builtin_shufflevector(lanes, last, 8, 7, 6, 5, 4, 3, 2, 1);
}
