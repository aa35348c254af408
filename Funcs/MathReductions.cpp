// Routines that need the whole array, in order.

#include "Funcs/MathKernels.h"

#include "Evaluation/ElementBlocks.h"
#include "support/Multiversion.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace mathkernels {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double turn = 6.283185307179586;
constexpr std::size_t pieceLength = 256;

// Follows the arguments of consecutive elements. The first one is never moved; a step of more than half a turn moves
// all that come after by a whole one.
class Unwrapper {
public:
    double offsetAt(double argument) noexcept {
        double const step = argument - previous_;
        if (!first_ && step > pi) offset_ -= turn;
        if (!first_ && step < -pi) offset_ += turn;
        first_ = false;
        previous_ = argument;
        return offset_;
    }

private:
    bool first_ = true;
    double previous_ = 0;
    double offset_ = 0;
};

// Argument and offset are scaled apart and then added.
void unwrap(double * out, double const * in, std::size_t count, double scale) {
    Unwrapper unwrapper;
    double arguments[pieceLength];
    for (std::size_t i = 0; i < count; i += pieceLength) {
        std::size_t const n = std::min(pieceLength, count - i);
        argument(arguments, in + 2 * i, n);
        for (std::size_t k = 0; k < n; ++k) {
            double const offset = unwrapper.offsetAt(arguments[k]);
            out[i + k] = arguments[k] * scale + offset * scale;
        }
    }
}

constexpr std::size_t lanes = 8;

// The greatest magnitude, at least 0; a NaN has none. In lanes, since the order does not matter.
TORVELAN_MULTIVERSION double greatestMagnitude(double const * in, std::size_t count) {
    double best[lanes] = {};
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
        for (std::size_t k = 0; k < lanes; ++k) {
            double const x = std::fabs(in[i + k]);
            best[k] = x > best[k] ? x : best[k];
        }
    for (; i < count; ++i) best[0] = std::max(best[0], std::fabs(in[i]));
    return *std::max_element(best, best + lanes);
}

double greatestComplexMagnitude(double const * in, std::size_t count) {
    double best = 0, magnitudes[pieceLength];
    for (std::size_t i = 0; i < count; i += pieceLength) {
        std::size_t const n = std::min(pieceLength, count - i);
        complexMagnitude(magnitudes, in + 2 * i, n);
        best = std::max(best, greatestMagnitude(magnitudes, n));
    }
    return best;
}

int divideBy(double divisor, double * out, double const * in, std::size_t count) {
    if (divisor == 0) return zeroVector;
    kernels::runLoop(kernels::realDivide, out, 1, {in, 1, false}, {&divisor, 1, true}, count);
    return refusedNothing;
}

TORVELAN_MULTIVERSION std::int64_t countGreater(double const * in, std::size_t count, double than) {
    std::int64_t found = 0;
    for (std::size_t i = 0; i < count; ++i) found += in[i] > than ? 1 : 0;
    return found;
}

TORVELAN_MULTIVERSION std::int64_t countLess(double const * in, std::size_t count, double than) {
    std::int64_t found = 0;
    for (std::size_t i = 0; i < count; ++i) found += in[i] < than ? 1 : 0;
    return found;
}

bool isGreater(double a, double b) noexcept {
    return a > b;
}

bool isLess(double a, double b) noexcept {
    return a < b;
}

// The place of the best element so far; the first of equals wins.
template <auto countBetter, bool (*isBetter)(double, double)> class Search {
public:
    explicit Search(double start) noexcept : best_(start) {}

    // The elements of a piece, the first of which has an index. Most pieces hold none that is better.
    void look(double const * piece, std::size_t count, std::size_t index) {
        if (countBetter(piece, count, best_) == 0) return;
        for (std::size_t k = 0; k < count; ++k)
            if (isBetter(piece[k], best_)) {
                best_ = piece[k];
                index_ = index + k;
            }
        found_ = true;
    }
    int answer(double * out) const noexcept {
        if (found_) *out = static_cast<double>(index_);
        return refusedNothing;
    }

private:
    double best_;
    std::size_t index_ = 0;
    bool found_ = false;
};

using Greatest = Search<countGreater, isGreater>;
using Least = Search<countLess, isLess>;
constexpr double mostPositive = std::numeric_limits<double>::max();

template <class S> int searchReal(S search, double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; i += pieceLength) search.look(in + i, std::min(pieceLength, count - i), i);
    return search.answer(out);
}

template <class S> int searchMagnitudes(S search, double * out, double const * in, std::size_t count) {
    double magnitudes[pieceLength];
    for (std::size_t i = 0; i < count; i += pieceLength) {
        std::size_t const n = std::min(pieceLength, count - i);
        complexMagnitude(magnitudes, in + 2 * i, n);
        search.look(magnitudes, n, i);
    }
    return search.answer(out);
}

} // namespace

int phase(double * out, double const * in, std::size_t count) {
    unwrap(out, in, count, 1.0);
    return refusedNothing;
}

int phaseDegrees(double * out, double const * in, std::size_t count) {
    unwrap(out, in, count, 57.29577951308232);
    return refusedNothing;
}

int normalise(double * out, double const * in, std::size_t count) {
    return divideBy(greatestMagnitude(in, count), out, in, count);
}

int complexNormalise(double * out, double const * in, std::size_t count) {
    return divideBy(greatestComplexMagnitude(in, count), out, in, 2 * count);
}

RandomSeed & randomSeed() noexcept {
    static RandomSeed seed;
    return seed;
}

int random(double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = sp_Random(randomSeed()) * in[i] / 2147483647.0;
    return refusedNothing;
}

int sum(double * out, double const * in, std::size_t count) {
    double total = 0;
    for (std::size_t i = 0; i < count; ++i) total += in[i];
    *out = total;
    return refusedNothing;
}

int complexSum(double * out, double const * in, std::size_t count) {
    double re = 0, im = 0;
    for (std::size_t i = 0; i < count; ++i) {
        re += in[2 * i];
        im += in[2 * i + 1];
    }
    out[0] = re;
    out[1] = im;
    return refusedNothing;
}

int mean(double * out, double const * in, std::size_t count) {
    sum(out, in, count);
    *out /= static_cast<double>(count);
    return refusedNothing;
}

int complexMean(double * out, double const * in, std::size_t count) {
    complexSum(out, in, count);
    out[0] /= static_cast<double>(count);
    out[1] /= static_cast<double>(count);
    return refusedNothing;
}

int indexOfGreatest(double * out, double const * in, std::size_t count) {
    return searchReal(Greatest(-mostPositive), out, in, count);
}

int complexIndexOfGreatest(double * out, double const * in, std::size_t count) {
    return searchMagnitudes(Greatest(-mostPositive), out, in, count);
}

int indexOfLeast(double * out, double const * in, std::size_t count) {
    return searchReal(Least(mostPositive), out, in, count);
}

int complexIndexOfLeast(double * out, double const * in, std::size_t count) {
    return searchMagnitudes(Least(mostPositive), out, in, count);
}

} // namespace mathkernels
