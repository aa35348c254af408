// The containers of the exported interface, over those of the standard library.
#pragma once

#include "torvelan/Exceptions.h"
#include "torvelan/YString.h"

#include <cstdlib>
#include <list>
#include <memory>
#include <new>
#include <string>
#include <typeinfo>
#include <vector>

// Allocator whose exhaustion is a MemoryException that names the container.
template <class T> struct YVectorAllocator {
    using value_type = T;
    YVectorAllocator() = default;
    template <class U> YVectorAllocator(YVectorAllocator<U> const &) noexcept {}

    T * allocate(std::size_t n) {
        if (n <= static_cast<std::size_t>(PTRDIFF_MAX) / sizeof(T)) {
            if (void * p = ::operator new(n * sizeof(T), std::nothrow)) return static_cast<T *>(p);
        }
        throw MemoryException(std::string("Detected in YVector<") + typeid(T).name() + ">::allocPrim");
    }
    void deallocate(T * p, std::size_t) noexcept { ::operator delete(p); }
    friend bool operator==(YVectorAllocator const &, YVectorAllocator const &) noexcept { return true; }
};

template <class T> using YArray = std::vector<T>;
template <class T> using YVector = std::vector<T, YVectorAllocator<T>>;
template <class T> using YList = std::list<T>;
template <class T> using YRef = std::shared_ptr<T>;

// Array of names, such as the labels of divisions.
class NameArray : public YArray<YString> {
public:
    using YArray<YString>::YArray;
    // True when both hold the same names in the same order, without regard to case.
    bool compare(NameArray const & other) const noexcept {
        if (size() != other.size()) return false;
        for (std::size_t i = 0; i < size(); ++i)
            if (!equalNoCase((*this)[i], other[i])) return false;
        return true;
    }
};
