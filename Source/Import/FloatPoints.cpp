#include "Import/FloatPoints.h"

#include "support/Streams.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

// Points that are taken together, which stay in the processor's nearest cache, since each column goes through them.
constexpr std::size_t pieceBytes = std::size_t{16} << 10;

template <class Element> Element load(char const * bytes) {
    float parts[sizeof(Element) / sizeof(double)];
    std::memcpy(parts, bytes, sizeof parts);
    if constexpr (sizeof(Element) == sizeof(double))
        return parts[0];
    else
        return {parts[0], parts[1]};
}

} // namespace

// Where whole points lie in the stream's buffer they are taken from there.
FloatPoints::Outcome FloatPoints::read(tvfstream & stream, std::uint64_t wanted) const {
    std::size_t const pieceFor = std::max<std::size_t>(pieceBytes / stride_, 1);
    std::unique_ptr<char[]> point; // one at the edge of the buffer
    while (wanted != 0) {
        std::string_view const ahead = stream.buffered();
        std::size_t const n = std::min<std::uint64_t>({wanted, pieceFor, ahead.size() / stride_});
        if (n != 0) {
            append(ahead.data(), n);
            stream.skipBuffered(n * stride_);
            wanted -= n;
            continue;
        }
        if (point == nullptr) point = std::make_unique_for_overwrite<char[]>(stride_);
        std::size_t const got = stream.read(point.get(), stride_);
        if (got >= pointBytes()) append(point.get(), 1);
        if (got != stride_) return {false, got};
        --wanted;
    }
    return {true, 0};
}

template <class Element> void FloatPoints::appendColumn(dvec & vector, char const * bytes, std::size_t points) const {
    constexpr std::size_t piece = 512;
    Element values[piece];
    for (std::size_t done = 0; done < points; done += piece) {
        std::size_t const n = std::min(piece, points - done);
        for (std::size_t i = 0; i < n; ++i) values[i] = load<Element>(bytes + (done + i) * stride_);
        vector.addVals(values, n);
    }
}

void FloatPoints::append(char const * bytes, std::size_t points) const {
    for (std::size_t column = 0; column < vectors_.size(); ++column) {
        char const * const first = bytes + column * valueBytes();
        bool const isPair = isComplex_ && (column != 0 || reference_ == Reference::asOthers);
        if (isPair)
            appendColumn<complex>(*vectors_[column], first, points);
        else
            appendColumn<double>(*vectors_[column], first, points);
    }
}
