#include "Import/BinaryPoints.h"

#include "support/Streams.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

// Points that are taken together. They stay in the processor's nearest cache, since each column goes through them; but
// a vector is not called for a few values.
constexpr std::size_t pieceBytes = std::size_t{16} << 10, pieceLeast = 64, pieceMost = 512;

struct FloatPair {
    float re, im;
};

double widened(double value) {
    return value;
}
double widened(float value) {
    return value;
}
complex widened(FloatPair value) {
    return {value.re, value.im};
}

} // namespace

// Where whole points lie in the stream's buffer they are taken from there.
BinaryPoints::Outcome BinaryPoints::read(tvfstream & stream, std::uint64_t wanted) const {
    std::size_t const pieceFor = std::clamp(pieceBytes / stride_, pieceLeast, pieceMost);
    std::unique_ptr<char[]> point; // one at the edge of the buffer
    while (wanted != 0) {
        std::string_view const ahead = stream.buffered();
        std::size_t const n = std::min<std::uint64_t>({wanted, pieceFor, ahead.size() / stride_});
        if (n != 0) {
            append(ahead.data(), n, vectors_.size());
            stream.skipBuffered(n * stride_);
            wanted -= n;
            continue;
        }
        if (point == nullptr) point = std::make_unique_for_overwrite<char[]>(stride_);
        std::size_t const got = stream.read(point.get(), stride_);
        append(point.get(), 1, std::min(got / valueBytes(), vectors_.size()));
        if (got != stride_) return {false, got};
        --wanted;
    }
    return {true, 0};
}

template <class Stored> void BinaryPoints::appendColumn(dvec & vector, char const * bytes, std::size_t points) const {
    decltype(widened(Stored())) values[pieceMost];
    for (std::size_t i = 0; i < points; ++i) {
        Stored stored;
        std::memcpy(&stored, bytes + i * stride_, sizeof stored);
        values[i] = widened(stored);
    }
    vector.addVals(values, points);
}

// The first columns of some points, at most pieceMost.
void BinaryPoints::append(char const * bytes, std::size_t points, std::size_t columns) const {
    for (std::size_t column = 0; column < columns; ++column) {
        char const * const first = bytes + column * valueBytes();
        bool const isPair = values_ == Values::floatPairs && (column != 0 || reference_ == Reference::asOthers);
        if (values_ == Values::doubles)
            appendColumn<double>(*vectors_[column], first, points);
        else if (isPair)
            appendColumn<FloatPair>(*vectors_[column], first, points);
        else
            appendColumn<float>(*vectors_[column], first, points);
    }
}
