#include "Import/FloatPoints.h"

#include <algorithm>
#include <cstring>

namespace {

template <class Element> Element load(char const * bytes) {
    float parts[sizeof(Element) / sizeof(double)];
    std::memcpy(parts, bytes, sizeof parts);
    if constexpr (sizeof(Element) == sizeof(double))
        return parts[0];
    else
        return {parts[0], parts[1]};
}

} // namespace

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
        if (isComplex_)
            appendColumn<complex>(*vectors_[column], first, points);
        else
            appendColumn<double>(*vectors_[column], first, points);
    }
}
