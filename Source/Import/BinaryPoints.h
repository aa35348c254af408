// Points on their way from a binary file to vectors.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/dvec.h"

#include <cstddef>
#include <cstdint>
#include <span>

class tvfstream;

// Points that lie one behind the other: a value for each vector in turn.
class BinaryPoints {
public:
    enum class Values { doubles, floats, floatPairs }; // as they stand in the file; pairs are complex
    enum class Reference { asOthers, real };           // of pairs: whether imaginary parts of the first vector count

    // `gap` bytes stand behind each point; those behind the last need not be there.
    BinaryPoints(std::span<dvec * const> vectors, Values values, Reference reference = Reference::asOthers,
                 std::size_t gap = 0)
        : vectors_(vectors), values_(values), reference_(reference), stride_(vectors.size() * valueBytes() + gap),
          gap_(gap) {}

    std::size_t valueBytes() const noexcept { return bytesOf(values_); }
    std::size_t pointBytes() const noexcept { return stride_ - gap_; }
    std::size_t stride() const noexcept { return stride_; }
    static constexpr std::size_t bytesOf(Values values) noexcept { return values == Values::floats ? 4 : 8; }

    // Whether there were as many points as wanted, and if not, the bytes of the one that the end of the file cut, of
    // which whole values have been appended. One that lacks its gap alone is a point.
    struct [[nodiscard]] Outcome {
        bool complete;
        std::size_t rest;
    };
    Outcome read(tvfstream & stream, std::uint64_t wanted) const;

private:
    void append(char const * bytes, std::size_t points, std::size_t columns) const;
    template <class Stored> void appendColumn(dvec & vector, char const * bytes, std::size_t points) const;

    std::span<dvec * const> vectors_;
    Values values_;
    Reference reference_;
    std::size_t stride_; // from point to point
    std::size_t gap_;
};
