// Marks for element loops: compiled once for each kind of processor, and free to be vectorised.
#pragma once

// A function so marked exists for AVX-512, for AVX2 and for the baseline, and the loader picks one. All of them give
// the same numbers, since nothing is fused. AVX-512 is left out for TORVELAN_MULTIVERSION_UNFUSED: there GCC 12 fuses
// products that are alternately added and subtracted, as in a complex multiplication, even when told not to.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(TORVELAN_SANITIZED)
#define TORVELAN_MULTIVERSION __attribute__((target_clones("avx512f", "avx2", "default")))
#define TORVELAN_MULTIVERSION_UNFUSED __attribute__((target_clones("avx2", "default")))
#else
#define TORVELAN_MULTIVERSION
#define TORVELAN_MULTIVERSION_UNFUSED
#endif

// Stands before a loop whose iterations touch no element of each other: source and destination are apart or the same.
#if defined(__clang__)
#define TORVELAN_INDEPENDENT _Pragma("clang loop vectorize(assume_safety)")
#elif defined(__GNUC__)
#define TORVELAN_INDEPENDENT _Pragma("GCC ivdep")
#else
#define TORVELAN_INDEPENDENT
#endif

// Without the branch that && and || may be, so that a loop over them can be vectorised.
constexpr bool both(bool a, bool b) noexcept {
    return (static_cast<int>(a) & static_cast<int>(b)) != 0;
}
constexpr bool either(bool a, bool b) noexcept {
    return (static_cast<int>(a) | static_cast<int>(b)) != 0;
}
