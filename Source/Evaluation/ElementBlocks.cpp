#include "Evaluation/ElementBlocks.h"

#include <algorithm>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kernels {

namespace {

constexpr std::size_t blockLength = 128; // elements computed at a time; two operands and the result fit the first cache
constexpr std::size_t prefetchAhead = 512; // doubles between what is computed and what is fetched
constexpr std::size_t cacheLine = 8;       // doubles

struct alignas(64) Block {
    double values[2 * blockLength]; // not initialised
};

#if defined(__SSE2__)

// Copies past the cache; `to` is aligned to 16 bytes.
void streamOut(double * to, double const * from, std::size_t count) noexcept {
    std::size_t const pairs = count / 2;
    for (std::size_t i = 0; i < pairs; ++i) _mm_stream_pd(to + 2 * i, _mm_load_pd(from + 2 * i));
    if (count % 2 != 0) to[count - 1] = from[count - 1];
}

void endStreaming() noexcept {
    _mm_sfence();
}

constexpr bool canStream = true;

#else

void streamOut(double * to, double const * from, std::size_t count) noexcept {
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
        std::size_t const begin = i * operand_.width + prefetchAhead, end = begin + blockLength * operand_.width;
        if (operand_.repeated || end > count * operand_.width) return;
        for (std::size_t k = begin; k < end; k += cacheLine) __builtin_prefetch(at_ + k);
    }

private:
    Operand operand_;
    double const * at_;
};

// A result that is large, apart from its operands and well placed.
bool shouldStream(double const * out, std::size_t outWidth, double const * a, double const * b, std::size_t count) {
    return canStream && count * outWidth * sizeof(double) >= streamingSize && out != a && out != b &&
           reinterpret_cast<std::uintptr_t>(out) % sizeof(double[2]) == 0;
}

// compute(to, i, n) does the elements from i to i + n; fetch(i) asks for coming ones.
int inBlocks(double * out, std::size_t outWidth, std::size_t count, auto compute) {
    for (std::size_t i = 0; i < count; i += blockLength)
        if (int const code = compute(out + i * outWidth, i, std::min(blockLength, count - i)); code != 0) return code;
    return 0;
}

int inStreamedBlocks(double * out, std::size_t outWidth, std::size_t count, auto compute, auto fetch) {
    Block result;
    int code = 0;
    for (std::size_t i = 0; i < count && code == 0; i += blockLength) {
        std::size_t const n = std::min(blockLength, count - i);
        fetch(i);
        code = compute(result.values, i, n);
        streamOut(out + i * outWidth, result.values, n * outWidth);
    }
    endStreaming();
    return code;
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
