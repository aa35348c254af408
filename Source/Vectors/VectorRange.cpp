// Least and greatest value, found once and cached in the shared record.
#include "torvelan/Vectors.h"

#include "Vectors/VectorRep.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

// What is compared of an element. Squares of magnitudes rise with them, so one root at the end is enough.
struct Value {
    double operator()(double v) const noexcept { return v; }
};
struct RealPart {
    double operator()(complex v) const noexcept { return v.re; }
};
struct SquaredMagnitude {
    double operator()(complex v) const noexcept { return v.re * v.re + v.im * v.im; }
};

// Elements that are no number before the first number leave the range invalid, later ones change nothing. Independent
// lanes let the processor compare several elements at a time.
template <class T, class Measure> ValueRange scan(T const * data, std::int64_t n, Measure measure) {
    constexpr std::int64_t lanes = 8;
    ValueRange range;
    std::int64_t i = 0;
    for (; i < n && !range.isValid(); ++i) range.set(measure(data[i]));
    double max[lanes];
    double min[lanes];
    std::fill_n(max, lanes, range.max);
    std::fill_n(min, lanes, range.min);
    for (; i + lanes <= n; i += lanes)
        for (std::int64_t k = 0; k < lanes; ++k) {
            double v = measure(data[i + k]);
            max[k] = v > max[k] ? v : max[k];
            min[k] = v < min[k] ? v : min[k];
        }
    for (double m : max) range.max = std::max(range.max, m);
    for (double m : min) range.min = std::min(range.min, m);
    for (; i < n; ++i) range.widen(measure(data[i]));
    return range;
}

ValueRange rootOf(ValueRange squares) {
    return {std::sqrt(squares.max), std::sqrt(squares.min)};
}

// Elements that are only in a file are looked at piece by piece, and stay there; what the file has lost is zeros.
template <class T, class Measure>
ValueRange scanInFile(NewDataBlock const & block, std::int64_t start, std::int64_t n, Measure measure) {
    constexpr std::int64_t pieceLength = 65536 / sizeof(T);
    ValueRange range;
    std::vector<T> piece(static_cast<std::size_t>(std::min(n, pieceLength)));
    for (std::int64_t const end = start + n; start < end; start += pieceLength) {
        std::int64_t const length = std::min(end - start, pieceLength);
        std::uint64_t const bytes = static_cast<std::uint64_t>(length) * sizeof(T);
        std::uint64_t const read = block.read(piece.data(), bytes, static_cast<std::uint64_t>(start) * sizeof(T));
        std::memset(reinterpret_cast<char *>(piece.data()) + read, 0, bytes - read);
        ValueRange const found = scan(piece.data(), length, measure);
        if (!range.isValid()) {
            range = found;
        } else if (found.isValid()) {
            range.widen(found.max);
            range.widen(found.min);
        }
    }
    return range;
}

template <class T, class Measure>
ValueRange scanBlock(NewDataBlock & block, std::int64_t start, std::int64_t n, Measure measure) {
    if (!block.isRealised()) return scanInFile<T>(block, start, n, measure);
    return scan(reinterpret_cast<T const *>(block.realise()) + start, n, measure);
}

ValueRange scanElements(VectorRep const & rep, std::int64_t start, std::int64_t n, bool useMagnitude) {
    if (n == 0) return {};
    NewDataBlock & block = *rep.block.get();
    if (rep.type == VD_REAL) return scanBlock<double>(block, start, n, Value{});
    if (rep.type != VD_COMPLEX) return {};
    return useMagnitude ? rootOf(scanBlock<complex>(block, start, n, SquaredMagnitude{}))
                        : scanBlock<complex>(block, start, n, RealPart{});
}

} // namespace

BaseVector::Range BaseVector::getRange(bool useMagnitude) const {
    ValueRange found;
    if (rep && !rep->isUntouched()) {
        bool allData = (firstDivision == 0 && endDivision == -1) || rep->divisions() == 1;
        std::int64_t start = allData ? 0 : rep->divisionStart(currentDivision);
        std::int64_t n = allData ? totalLength() : length();
        if (forcedLength != -1)
            found = scanElements(*rep, start, n, useMagnitude);
        else if (n > 0) {
            ValueRange & cached = allData ? rep->range : rep->divisionRange(currentDivision);
            if (!cached.isValid()) cached = scanElements(*rep, start, n, useMagnitude);
            found = cached;
        }
    }
    return {found.min, found.max};
}
