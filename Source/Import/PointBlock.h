// Values on their way from a file of points, which come point by point, to the vectors, which lie column by column.
#pragma once

#include "torvelan/Complex.h"
#include "torvelan/Containers.h"
#include "torvelan/dvec.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <type_traits>

// Gathers some thousand values in file order and appends them to the vectors in turn. Whoever fills it flushes the
// last. Of complex values, a vector that is real takes the real parts.
template <class Element> class PointBlock {
public:
    explicit PointBlock(YArray<dvec *> const & vectors)
        : vectors_(vectors), size_((usualValues + columns() - 1) / columns() * columns()),
          values_(std::make_unique_for_overwrite<Element[]>(size_)) {}

    // Room for a point, at the start of one; addPoint takes over what has been written there. By single values, only
    // the last point may be a part of one.
    Element * room() noexcept { return &values_[used_]; }
    void addPoint() { addValues(columns()); }
    void add(Element value) {
        values_[used_] = value;
        addValues(1);
    }
    void flush() {
        for (std::size_t c = 0; c < vectors_.size(); ++c)
            if (vectors_[c]->isReal())
                append<double>(c);
            else
                append<Element>(c);
        flushed_ += used_;
        used_ = 0;
    }
    std::size_t columns() const noexcept { return std::max<std::size_t>(vectors_.size(), 1); }
    std::uint64_t total() const noexcept { return flushed_ + used_; }

private:
    static constexpr std::size_t usualValues = 4096; // fit the processor's nearest caches

    template <class Value> void append(std::size_t column) {
        Value values[usualValues];
        std::size_t n = 0;
        for (std::size_t i = column; i < used_; i += columns()) values[n++] = as<Value>(values_[i]);
        vectors_[column]->addVals(values, n);
    }
    template <class Value> static Value as(Element const & element) noexcept {
        if constexpr (std::is_same_v<Value, Element>)
            return element;
        else
            return element.re;
    }

    void addValues(std::size_t n) {
        used_ += n;
        if (used_ == size_) flush();
    }

    YArray<dvec *> const & vectors_;
    std::size_t size_; // whole points
    std::unique_ptr<Element[]> values_;
    std::size_t used_ = 0;
    std::uint64_t flushed_ = 0;
};
