// Points of 32-bit floats on their way from a binary file to vectors of doubles.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/dvec.h"

#include <cstddef>
#include <span>

// Points that lie one behind the other: a value for each vector in turn, of one float, or of two if complex.
class FloatPoints {
public:
    static constexpr std::size_t realBytes = 4, complexBytes = 8;

    // `gap` bytes stand between points.
    FloatPoints(std::span<dvec * const> vectors, bool isComplex, std::size_t gap = 0)
        : vectors_(vectors), isComplex_(isComplex), stride_(vectors.size() * valueBytes() + gap), gap_(gap) {}

    std::size_t valueBytes() const noexcept { return isComplex_ ? complexBytes : realBytes; }
    std::size_t pointBytes() const noexcept { return stride_ - gap_; }
    std::size_t stride() const noexcept { return stride_; }
    // The gap behind the last point need not be there.
    void append(char const * bytes, std::size_t points) const;

private:
    template <class Element> void appendColumn(dvec & vector, char const * bytes, std::size_t points) const;

    std::span<dvec * const> vectors_;
    bool isComplex_;
    std::size_t stride_; // from point to point
    std::size_t gap_;
};
