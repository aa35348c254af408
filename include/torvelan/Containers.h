// The containers of the exported interface, over those of the standard library.
#pragma once

#include "torvelan/Exceptions.h"
#include "torvelan/YString.h"

#include <charconv>
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

// The words of a command line. A word that is not there reads as the empty text.
class WordArray : public YArray<YString> {
public:
    using YArray<YString>::YArray;
    YString const & operator[](std::size_t i) const noexcept {
        static YString const none;
        return i < size() ? YArray<YString>::operator[](i) : none;
    }
    // A word as a whole number; the other value when it is none, or too large for an int.
    int integer(std::size_t i, int otherwise) const noexcept {
        std::string_view const text = (*this)[i].view();
        int value = otherwise;
        auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        return error == std::errc() && end == text.data() + text.size() ? value : otherwise;
    }
};

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
