#include "Evaluation/VectorMath.h"

#include "support/Multiversion.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace vectormath {

namespace {

using Unary = void (*)(double * out, double const * in, std::size_t count);
using Binary = void (*)(double * out, double const * a, double const * b, std::size_t count);

// The loops of one instruction set.
struct Routines {
    Unary sin, cos, tan, atan, exp, log, log10, sinh, cosh, tanh;
    Binary atan2, pow;
};

} // namespace

} // namespace vectormath

#if defined(__x86_64__)

// The routines of libsleef whose results are the same in every lane ("finz" with fused multiply-add, "cinz" without).
// The library's own header declares those of wider registers only where the whole file is compiled for them.
#define TORVELAN_UNARY_ROUTINES(X) X(sin) X(cos) X(tan) X(atan) X(exp) X(log) X(log10) X(sinh) X(cosh) X(tanh)
#define TORVELAN_BINARY_ROUTINES(X) X(atan2) X(pow)

#define TORVELAN_FOR(features) extern "C" __attribute__((target(features)))
#define TORVELAN_DECLARE_UNARY(f)                                                                                      \
    TORVELAN_FOR("avx512f") __m512d Sleef_finz_##f##d8_u10avx512f(__m512d);                                            \
    TORVELAN_FOR("avx2,fma") __m256d Sleef_finz_##f##d4_u10avx2(__m256d);                                              \
    TORVELAN_FOR("sse2") __m128d Sleef_cinz_##f##d2_u10sse2(__m128d);
#define TORVELAN_DECLARE_BINARY(f)                                                                                     \
    TORVELAN_FOR("avx512f") __m512d Sleef_finz_##f##d8_u10avx512f(__m512d, __m512d);                                   \
    TORVELAN_FOR("avx2,fma") __m256d Sleef_finz_##f##d4_u10avx2(__m256d, __m256d);                                     \
    TORVELAN_FOR("sse2") __m128d Sleef_cinz_##f##d2_u10sse2(__m128d, __m128d);
TORVELAN_UNARY_ROUTINES(TORVELAN_DECLARE_UNARY)
TORVELAN_BINARY_ROUTINES(TORVELAN_DECLARE_BINARY)
#undef TORVELAN_DECLARE_UNARY
#undef TORVELAN_DECLARE_BINARY
#undef TORVELAN_FOR

namespace vectormath {

namespace {

// Elements left over go through the same routine, padded with ones.
#define TORVELAN_UNARY_LOOP(name, features, lanes, load, store, routine)                                               \
    __attribute__((target(features))) void name(double * out, double const * in, std::size_t count) {                  \
        std::size_t i = 0;                                                                                             \
        for (; i + lanes <= count; i += lanes) store(out + i, routine(load(in + i)));                                  \
        if (i == count) return;                                                                                        \
        double pad[lanes];                                                                                             \
        std::fill(std::begin(pad), std::end(pad), 1.0);                                                                \
        std::copy(in + i, in + count, pad);                                                                            \
        store(pad, routine(load(pad)));                                                                                \
        std::copy(pad, pad + (count - i), out + i);                                                                    \
    }

#define TORVELAN_BINARY_LOOP(name, features, lanes, load, store, routine)                                              \
    __attribute__((target(features))) void name(double * out, double const * a, double const * b, std::size_t count) { \
        std::size_t i = 0;                                                                                             \
        for (; i + lanes <= count; i += lanes) store(out + i, routine(load(a + i), load(b + i)));                      \
        if (i == count) return;                                                                                        \
        double padA[lanes], padB[lanes];                                                                               \
        std::fill(std::begin(padA), std::end(padA), 1.0);                                                              \
        std::fill(std::begin(padB), std::end(padB), 1.0);                                                              \
        std::copy(a + i, a + count, padA);                                                                             \
        std::copy(b + i, b + count, padB);                                                                             \
        store(padA, routine(load(padA), load(padB)));                                                                  \
        std::copy(padA, padA + (count - i), out + i);                                                                  \
    }

#define TORVELAN_LOOPS(LOOP, f)                                                                                        \
    LOOP(f##512, "avx512f", 8, _mm512_loadu_pd, _mm512_storeu_pd, Sleef_finz_##f##d8_u10avx512f)                       \
    LOOP(f##256, "avx2,fma", 4, _mm256_loadu_pd, _mm256_storeu_pd, Sleef_finz_##f##d4_u10avx2)                         \
    LOOP(f##128, "sse2", 2, _mm_loadu_pd, _mm_storeu_pd, Sleef_cinz_##f##d2_u10sse2)
#define TORVELAN_UNARY_LOOPS(f) TORVELAN_LOOPS(TORVELAN_UNARY_LOOP, f)
#define TORVELAN_BINARY_LOOPS(f) TORVELAN_LOOPS(TORVELAN_BINARY_LOOP, f)
TORVELAN_UNARY_ROUTINES(TORVELAN_UNARY_LOOPS)
TORVELAN_BINARY_ROUTINES(TORVELAN_BINARY_LOOPS)

#define TORVELAN_NAME_512(f) f##512,
#define TORVELAN_NAME_256(f) f##256,
#define TORVELAN_NAME_128(f) f##128,
constexpr Routines avx512Routines = {TORVELAN_UNARY_ROUTINES(TORVELAN_NAME_512)
                                         TORVELAN_BINARY_ROUTINES(TORVELAN_NAME_512)};
constexpr Routines avx2Routines = {TORVELAN_UNARY_ROUTINES(TORVELAN_NAME_256)
                                       TORVELAN_BINARY_ROUTINES(TORVELAN_NAME_256)};
constexpr Routines sse2Routines = {TORVELAN_UNARY_ROUTINES(TORVELAN_NAME_128)
                                       TORVELAN_BINARY_ROUTINES(TORVELAN_NAME_128)};

bool supports(Level level) noexcept {
    switch (level) {
    case Level::avx512: return __builtin_cpu_supports("avx512f") != 0;
    case Level::avx2: return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
    case Level::sse2: return true;
    default: return false;
    }
}

Routines const & routinesOf(Level level) noexcept {
    switch (level) {
    case Level::avx512: return avx512Routines;
    case Level::avx2: return avx2Routines;
    default: return sse2Routines;
    }
}

} // namespace

} // namespace vectormath

#else

namespace vectormath {

namespace {

template <double (*f)(double)> void loop(double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = f(in[i]);
}

template <double (*f)(double, double)> void loop(double * out, double const * a, double const * b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = f(a[i], b[i]);
}

constexpr Routines libraryRoutines = {loop<std::sin>,  loop<std::cos>,  loop<std::tan>,   loop<std::atan>,
                                      loop<std::exp>,  loop<std::log>,  loop<std::log10>, loop<std::sinh>,
                                      loop<std::cosh>, loop<std::tanh>, loop<std::atan2>, loop<std::pow>};

bool supports(Level level) noexcept {
    return level == Level::library;
}

Routines const & routinesOf(Level) noexcept {
    return libraryRoutines;
}

} // namespace

} // namespace vectormath

#endif

namespace vectormath {

namespace {

Level bestLevel() noexcept {
    for (Level level : {Level::avx512, Level::avx2, Level::sse2})
        if (supports(level)) return level;
    return Level::library;
}

Routines const *& chosenRoutines() noexcept {
    static Routines const * chosen = &routinesOf(bestLevel());
    return chosen;
}

Routines const & routines() noexcept {
    return *chosenRoutines();
}

// Counts as wide as the elements, which makes it a vector loop.
template <bool (*test)(double)> bool anyIs(double const * in, std::size_t count) {
    std::int64_t found = 0;
    for (std::size_t i = 0; i < count; ++i) found += test(in[i]) ? 1 : 0;
    return found != 0;
}

// Runs a loop, and puts the exact function in the place of the few elements where the loop is not good enough.
template <bool (*isHard)(double), double (*exact)(double)>
void corrected(Unary loop, double * out, double const * in, std::size_t count) {
    constexpr std::size_t piece = 64;
    double kept[piece];
    for (std::size_t i = 0; i < count; i += piece) {
        std::size_t const n = std::min(piece, count - i);
        std::copy(in + i, in + i + n, kept);
        loop(out + i, kept, n);
        if (!anyIs<isHard>(kept, n)) continue;
        for (std::size_t k = 0; k < n; ++k)
            if (isHard(kept[k])) out[i + k] = exact(kept[k]);
    }
}

// The vector routines of hyperbolic functions overflow a little before the functions do, and the C library is a few
// ulps off there.
bool isNearOverflow(double x) {
    return std::fabs(x) > 709.0;
}

double exactSinh(double x) {
    return static_cast<double>(std::sinh(static_cast<long double>(x)));
}

double exactCosh(double x) {
    return static_cast<double>(std::cosh(static_cast<long double>(x)));
}

// The vector routine of the tangent halves its argument, which takes a bit from a denormal.
bool isNearDenormal(double x) {
    return both(std::fabs(x) < 1e-300, x != 0);
}

double itself(double x) {
    return x;
}

} // namespace

bool useLevel(Level level) noexcept {
    if (!supports(level)) return false;
    chosenRoutines() = &routinesOf(level);
    return true;
}

void useBestLevel() noexcept {
    useLevel(bestLevel());
}

void sin(double * out, double const * in, std::size_t count) {
    routines().sin(out, in, count);
}

void cos(double * out, double const * in, std::size_t count) {
    routines().cos(out, in, count);
}

void tan(double * out, double const * in, std::size_t count) {
    corrected<isNearDenormal, itself>(routines().tan, out, in, count);
}

void atan(double * out, double const * in, std::size_t count) {
    routines().atan(out, in, count);
}

void exp(double * out, double const * in, std::size_t count) {
    routines().exp(out, in, count);
}

void log(double * out, double const * in, std::size_t count) {
    routines().log(out, in, count);
}

void log10(double * out, double const * in, std::size_t count) {
    routines().log10(out, in, count);
}

void sinh(double * out, double const * in, std::size_t count) {
    corrected<isNearOverflow, exactSinh>(routines().sinh, out, in, count);
}

void cosh(double * out, double const * in, std::size_t count) {
    corrected<isNearOverflow, exactCosh>(routines().cosh, out, in, count);
}

void tanh(double * out, double const * in, std::size_t count) {
    routines().tanh(out, in, count);
}

void atan2(double * out, double const * y, double const * x, std::size_t count) {
    routines().atan2(out, y, x, count);
}

void pow(double * out, double const * base, double const * exponent, std::size_t count) {
    routines().pow(out, base, exponent, count);
}

} // namespace vectormath
