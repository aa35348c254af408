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
    explicit PointBlock(YArray<dvec *> const & vectors) : vectors_(vectors) {
        std::size_t const columns = std::max<std::size_t>(vectors.size(), 1);
        size_ = std::max<std::size_t>(blockValues / columns, 1) * columns;
        values_ = std::make_unique_for_overwrite<Element[]>(size_);
    }

    // Room for a whole point, at the start of one; addPoint takes over what has been written there.
    Element * room() noexcept { return &values_[used_]; }
    void addPoint() {
        used_ += columns();
        if (used_ == size_) flush();
    }
    void add(Element value) {
        values_[used_++] = value;
        if (used_ == size_) flush();
    }
    void flush() {
        for (std::size_t column = 0; column < vectors_.size(); ++column)
            for (std::size_t i = column; i < used_; i += vectors_.size()) vectors_[column]->addVal(values_[i]);
        flushed_ += used_;
        used_ = 0;
    }
    std::size_t columns() const noexcept { return vectors_.size(); }
    std::uint64_t total() const noexcept { return flushed_ + used_; }

private:
    static constexpr std::size_t blockValues = 4096;

    YArray<dvec *> const & vectors_;
    std::unique_ptr<Element[]> values_; // whole points; only the last block may end within one
    std::size_t size_ = 0;
    std::size_t used_ = 0;
    std::uint64_t flushed_ = 0;
};
