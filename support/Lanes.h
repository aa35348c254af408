// Eight doubles worked on side by side: one register, or several, of the processor that a function is compiled for.
// They are handed to functions by reference only, since how registers of this width are passed differs between
// processors.
#pragma once

#include <cstddef>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

inline constexpr std::size_t laneCount = 8;
inline constexpr std::size_t laneBytes = laneCount * sizeof(double);

// The alignment is stated, since of itself it would be that of the registers of the oldest processor. GCC does not
// align objects to whole lanes on a stack that it checks; the code of checked builds is that of the oldest processor
// anyway.
#ifdef TORVELAN_SANITIZED
inline constexpr std::size_t laneAlignment = 16;
#else
inline constexpr std::size_t laneAlignment = laneBytes;
#endif
using Lanes = double __attribute__((vector_size(laneBytes), aligned(laneAlignment), may_alias));
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

// Writes lanes past the cache, where the processor can; `to` is aligned to 16 bytes. It pays for results that are large
// or scattered, when whole lines are written. Before anybody reads: endStreaming.
TORVELAN_INLINE void streamLanes(double * to, Lanes const & lanes) noexcept {
#if defined(__x86_64__)
    double const * const from = reinterpret_cast<double const *>(&lanes);
    for (std::size_t i = 0; i < laneCount; i += 2) _mm_stream_pd(to + i, _mm_load_pd(from + i));
#else
    *looseLanesAt(to) = lanes;
#endif
}
inline void endStreaming() noexcept {
#if defined(__x86_64__)
    _mm_sfence();
#endif
}
