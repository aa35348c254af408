// Marks for element loops: compiled once for each kind of processor, and free to be vectorised.
#pragma once

// A function so marked exists for AVX-512, for AVX2 and for the baseline, and the loader picks one. The loops contain
// no fused operations, so that all of them give the same numbers.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(TORVELAN_SANITIZED)
#define TORVELAN_MULTIVERSION __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define TORVELAN_MULTIVERSION
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
