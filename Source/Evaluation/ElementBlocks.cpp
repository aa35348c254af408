#include "Evaluation/ElementBlocks.h"

#include <algorithm>
#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace kernels {

namespace {

constexpr std::size_t blockLength = 256;   // elements computed at a time when an operand is repeated
constexpr std::size_t streamedLength = 64; // the same when the result is written past the cache
constexpr std::size_t prefetchAhead = 512; // doubles between what is computed and what is fetched
constexpr std::size_t cacheLine = 8;       // doubles
constexpr std::size_t lineBytes = cacheLine * sizeof(double);

struct alignas(lineBytes) Block {
    double values[2 * blockLength]; // not initialised
};

#if defined(__x86_64__)

// Copies whole lines past the cache; `to` is aligned to lines. `from` is too where the compiler keeps its word about an
// object on the stack, which GCC does not under the address sanitizer.
__attribute__((target("avx512f"))) void streamWide(double * to, double const * from, std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; i += cacheLine) _mm512_stream_pd(to + i, _mm512_loadu_pd(from + i));
}

void streamNarrow(double * to, double const * from, std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; i += 2) _mm_stream_pd(to + i, _mm_loadu_pd(from + i));
}

void streamLines(double * to, double const * from, std::size_t count) noexcept {
    static bool const wide = __builtin_cpu_supports("avx512f") != 0;
    return wide ? streamWide(to, from, count) : streamNarrow(to, from, count);
}

void endStreaming() noexcept {
    _mm_sfence();
}

constexpr bool canStream = true;

#else

void streamLines(double * to, double const * from, std::size_t count) noexcept {
    std::copy(from, from + count, to);
}

void endStreaming() noexcept {}

constexpr bool canStream = false;

#endif

// One operand as the blocks go by.
class Source {
public:
    Source(Operand const & operand, Block & store, std::size_t count) noexcept : operand_(operand), at_(operand.data) {
        if (!operand.repeated) return;
        std::size_t const size = std::min(count, blockLength) * operand.width;
        for (std::size_t i = 0; i < size; ++i) store.values[i] = operand.data[i % operand.width];
        at_ = store.values;
    }

    double const * at(std::size_t i) const noexcept { return operand_.repeated ? at_ : at_ + i * operand_.width; }

    // Asks for the block of elements that comes prefetchAhead doubles after element i.
    void prefetch(std::size_t i, std::size_t count) const noexcept {
        std::size_t const begin = i * operand_.width + prefetchAhead, end = begin + streamedLength * operand_.width;
        if (operand_.repeated || end > count * operand_.width) return;
        for (std::size_t k = begin; k < end; k += cacheLine) __builtin_prefetch(at_ + k);
    }

private:
    Operand operand_;
    double const * at_;
};

// A result that is large, apart from its operands and whose elements do not straddle lines.
bool shouldStream(double const * out, std::size_t outWidth, double const * a, double const * b, std::size_t count) {
    return canStream && count * outWidth * sizeof(double) >= streamingSize && out != a && out != b &&
           reinterpret_cast<std::uintptr_t>(out) % (outWidth * sizeof(double)) == 0;
}

// Elements before the first that begins a line.
std::size_t elementsToLine(double const * out, std::size_t outWidth) noexcept {
    std::size_t const behind = reinterpret_cast<std::uintptr_t>(out) % lineBytes;
    return behind == 0 ? 0 : (lineBytes - behind) / (outWidth * sizeof(double));
}

// compute(to, i, n) does the elements from i to i + n; fetch(i) asks for coming ones.
int inBlocks(double * out, std::size_t outWidth, std::size_t count, auto compute) {
    for (std::size_t i = 0; i < count; i += blockLength)
        if (int const code = compute(out + i * outWidth, i, std::min(blockLength, count - i)); code != 0) return code;
    return 0;
}

// The lines that are not whole, at both ends, are written in place.
int inStreamedBlocks(double * out, std::size_t outWidth, std::size_t count, auto compute, auto fetch) {
    Block result;
    std::size_t const first = elementsToLine(out, outWidth);
    std::size_t const last = first + (count - first) / streamedLength * streamedLength;
    int code = compute(out, 0, first);
    for (std::size_t i = first; i < last && code == 0; i += streamedLength) {
        fetch(i);
        code = compute(result.values, i, streamedLength);
        streamLines(out + i * outWidth, result.values, streamedLength * outWidth);
    }
    endStreaming();
    return code != 0 ? code : compute(out + last * outWidth, last, count - last);
}

} // namespace

int runLoop(Loop loop, double * out, std::size_t outWidth, Operand a, Operand b, std::size_t count) {
    bool const streams = shouldStream(out, outWidth, a.data, b.data, count);
    if (!streams && !a.repeated && !b.repeated) return loop(out, a.data, b.data, count);
    Block storeA, storeB;
    Source const left(a, storeA, count), right(b, storeB, count);
    auto const compute = [&](double * to, std::size_t i, std::size_t n) {
        return loop(to, left.at(i), right.at(i), n);
    };
    if (!streams) return inBlocks(out, outWidth, count, compute);
    return inStreamedBlocks(out, outWidth, count, compute, [&](std::size_t i) {
        left.prefetch(i, count);
        right.prefetch(i, count);
    });
}

int runLoop(UnaryLoop loop, double * out, std::size_t outWidth, Operand in, std::size_t count) {
    if (!shouldStream(out, outWidth, in.data, in.data, count)) return loop(out, in.data, count);
    Block store;
    Source const source(in, store, count);
    return inStreamedBlocks(
        out, outWidth, count, [&](double * to, std::size_t i, std::size_t n) { return loop(to, source.at(i), n); },
        [&](std::size_t i) { source.prefetch(i, count); });
}

} // namespace kernels
