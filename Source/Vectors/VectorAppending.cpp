// Values that come in many at a time.
#include "Vectors/VectorRep.h"
#include "support/Multiversion.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// Several values that the processor compares at once. Numbers that are none change nothing.
using Pack = double __attribute__((vector_size(64)));
constexpr std::size_t packValues = sizeof(Pack) / sizeof(double);
constexpr std::size_t stride = 2 * packValues;

#define TORVELAN_LESSER(a, b) ((a) < (b) ? (a) : (b))
#define TORVELAN_GREATER(a, b) ((a) > (b) ? (a) : (b))

// Widens by a multiple of `stride` values. Two chains, so that one need not wait for the other.
TORVELAN_MULTIVERSION void widenByPacks(ValueRange & range, double const * values, std::size_t n) {
    Pack least = Pack{} + range.min, greatest = Pack{} + range.max;
    Pack otherLeast = least, otherGreatest = greatest;
    for (std::size_t i = 0; i < n; i += stride) {
        Pack first, second;
        std::memcpy(&first, values + i, sizeof first);
        std::memcpy(&second, values + i + packValues, sizeof second);
        least = TORVELAN_LESSER(first, least);
        greatest = TORVELAN_GREATER(first, greatest);
        otherLeast = TORVELAN_LESSER(second, otherLeast);
        otherGreatest = TORVELAN_GREATER(second, otherGreatest);
    }
    least = TORVELAN_LESSER(otherLeast, least);
    greatest = TORVELAN_GREATER(otherGreatest, greatest);
    for (std::size_t k = 0; k < packValues; ++k) {
        range.min = TORVELAN_LESSER(least[k], range.min);
        range.max = TORVELAN_GREATER(greatest[k], range.max);
    }
}

#undef TORVELAN_LESSER
#undef TORVELAN_GREATER

TORVELAN_MULTIVERSION void squaredMagnitudes(double * squares, complex const * values, std::size_t n) {
    TORVELAN_INDEPENDENT
    for (std::size_t i = 0; i < n; ++i) squares[i] = values[i].re * values[i].re + values[i].im * values[i].im;
}

void widen(ValueRange & range, double const * values, std::size_t n) {
    std::size_t const whole = n / stride * stride;
    widenByPacks(range, values, whole);
    for (std::size_t i = whole; i < n; ++i) range.widen(values[i]);
}

// Squares of magnitudes rise with them, so one root at the end is enough.
void widen(ValueRange & range, complex const * values, std::size_t n) {
    constexpr std::size_t pieceValues = 512;
    double squares[pieceValues];
    ValueRange found;
    for (std::size_t done = 0; done < n; done += pieceValues) {
        std::size_t const count = std::min(pieceValues, n - done);
        squaredMagnitudes(squares, values + done, count);
        widen(found, squares, count);
    }
    if (!found.isValid()) return;
    range.widen(std::sqrt(found.min));
    range.widen(std::sqrt(found.max));
}

double measureOf(double value) {
    return value;
}
double measureOf(complex const & value) {
    return std::sqrt(value.re * value.re + value.im * value.im);
}

template <class T> void appendAll(VectorRep & rep, T const * values, std::size_t n) {
    if (n < 2 || !rep.divisionRanges.empty()) {
        for (std::size_t i = 0; i < n; ++i) rep.append(values[i], measureOf(values[i]));
        return;
    }
    if (!rep.block || rep.block->isShared()) rep.ownBlock();
    bool const isFirst = rep.block->size() == 0; // and decides whether there is a range
    rep.block->addData(values, n * sizeof(T));
    if (isFirst) rep.range.set(measureOf(*values));
    if (rep.range.isValid()) widen(rep.range, values, n);
}

} // namespace

void VectorRep::append(double const * values, std::size_t n) {
    appendAll(*this, values, n);
}

void VectorRep::append(complex const * values, std::size_t n) {
    appendAll(*this, values, n);
}

VEC_ERROR IfVector::addVals(double const * values, std::size_t n) {
    VectorRep * own = appendable();
    if (!own) return VEC_NO_DATA_RECORD;
    if (own->type == VD_REAL)
        own->append(values, n);
    else if (own->type == VD_COMPLEX)
        for (std::size_t i = 0; i < n; ++i) own->append(complex{values[i], 0}, values[i]);
    return VEC_OK;
}

VEC_ERROR IfVector::addVals(complex const * values, std::size_t n) {
    VectorRep * own = appendable();
    if (!own) return VEC_NO_DATA_RECORD;
    if (own->type == VD_COMPLEX) own->append(values, n);
    return VEC_OK;
}

void IfVector::expectVals(std::int64_t n) {
    VectorRep * own = appendable();
    bool const isNumeric = own && (own->type == VD_REAL || own->type == VD_COMPLEX);
    bool const goesToFile = own && own->block && own->block->isWritten();
    if (!isNumeric || goesToFile || n <= 0) return;
    own->ownBlock();
    own->block->reserve(own->bytes() + byteCount(n, own->type));
}
