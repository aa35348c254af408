// Points of 32-bit floats on their way from a binary file to vectors of doubles.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/dvec.h"

#include <cstddef>
#include <cstdint>
#include <span>

class tvfstream;

// Points that lie one behind the other: a value for each vector in turn, of one float, or of two if complex.
class FloatPoints {
public:
    enum class Reference { asOthers, real }; // of a complex file: whether imaginary parts of the first vector count

    // `gap` bytes stand behind each point; those behind the last need not be there.
    FloatPoints(std::span<dvec * const> vectors, bool isComplex, Reference reference = Reference::asOthers,
                std::size_t gap = 0)
        : vectors_(vectors), isComplex_(isComplex), reference_(reference), stride_(vectors.size() * valueBytes() + gap),
          gap_(gap) {}

    std::size_t valueBytes() const noexcept { return bytesOfValue(isComplex_); }
    std::size_t pointBytes() const noexcept { return stride_ - gap_; }
    std::size_t stride() const noexcept { return stride_; }
    static constexpr std::size_t bytesOfValue(bool isComplex) noexcept { return isComplex ? 8 : 4; }

    // Whether there were as many points as wanted, and if not, the bytes of the one that the end of the file cut. One
    // that lacks its gap alone has been appended.
    struct [[nodiscard]] Outcome {
        bool complete;
        std::size_t rest;
    };
    Outcome read(tvfstream & stream, std::uint64_t wanted) const;

private:
    void append(char const * bytes, std::size_t points) const;
    template <class Element> void appendColumn(dvec & vector, char const * bytes, std::size_t points) const;

    std::span<dvec * const> vectors_;
    bool isComplex_;
    Reference reference_;
    std::size_t stride_; // from point to point
    std::size_t gap_;
};
