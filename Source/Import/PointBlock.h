// Values on their way from a file of points, which come point by point, to the vectors, which lie column by column.
#pragma once

#include "torvelan/Complex.h"
#include "torvelan/Containers.h"
#include "torvelan/dvec.h"

#include <algorithm>
#include <cstdint>
#include <memory>

// Gathers some thousand values in file order and appends them to the vectors in turn. Whoever fills it flushes the
// last.
template <class Element> class PointBlock {
public:
    static constexpr std::size_t usualValues = 4096;

    explicit PointBlock(YArray<dvec *> const & vectors, std::size_t leastValues = usualValues)
        : vectors_(vectors), size_((leastValues + columns() - 1) / columns() * columns()),
          values_(std::make_unique_for_overwrite<Element[]>(size_)) {}

    // Room for whole points, one at the least, at the start of one; addValues takes over what has been written there.
    // Only the last may be a part of a point.
    Element * room() noexcept { return &values_[used_]; }
    std::size_t roomValues() const noexcept { return size_ - used_; }
    void addValues(std::size_t n) {
        used_ += n;
        if (used_ == size_) flush();
    }
    void addPoint() { addValues(columns()); }
    void add(Element value) {
        values_[used_] = value;
        addValues(1);
    }
    void flush() {
        std::size_t const part = std::max(usualValues / columns(), std::size_t{1}) * columns();
        for (std::size_t first = 0; first < used_; first += part) append(first, std::min(first + part, used_));
        flushed_ += used_;
        used_ = 0;
    }
    std::size_t columns() const noexcept { return std::max<std::size_t>(vectors_.size(), 1); }
    std::uint64_t total() const noexcept { return flushed_ + used_; }

private:
    // A part that fits the processor's nearest cache, since each column goes through it again.
    void append(std::size_t first, std::size_t last) {
        Element column[usualValues];
        for (std::size_t c = 0; c < vectors_.size(); ++c) {
            std::size_t n = 0;
            for (std::size_t i = first + c; i < last; i += columns()) column[n++] = values_[i];
            vectors_[c]->addVals(column, n);
        }
    }

    YArray<dvec *> const & vectors_;
    std::size_t size_; // whole points
    std::unique_ptr<Element[]> values_;
    std::size_t used_ = 0;
    std::uint64_t flushed_ = 0;
};
