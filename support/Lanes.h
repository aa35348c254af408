// Eight doubles worked on side by side: one register, or several, of the processor that a function is compiled for.
// They are handed to functions by reference only, since how registers of this width are passed differs between
// processors.
#pragma once

#include <cstddef>

inline constexpr std::size_t laneCount = 8;

// The alignment is said, since of itself it would be that of the registers of the oldest processor.
inline constexpr std::size_t laneBytes = laneCount * sizeof(double);
using Lanes = double __attribute__((vector_size(laneBytes), aligned(laneBytes), may_alias));
// The same anywhere in memory.
using LooseLanes = double __attribute__((vector_size(laneBytes), aligned(sizeof(double)), may_alias));

// For the parts of a function that exists for several kinds of processors.
#define TORVELAN_INLINE inline __attribute__((always_inline))

inline Lanes * lanesAt(double * aligned) noexcept {
    return reinterpret_cast<Lanes *>(aligned);
}
inline Lanes const * lanesAt(double const * aligned) noexcept {
    return reinterpret_cast<Lanes const *>(aligned);
}
inline LooseLanes * looseLanesAt(double * p) noexcept {
    return reinterpret_cast<LooseLanes *>(p);
}
inline LooseLanes const * looseLanesAt(double const * p) noexcept {
    return reinterpret_cast<LooseLanes const *>(p);
}
