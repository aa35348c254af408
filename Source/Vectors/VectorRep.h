// VectorRep: the record of data that vector handles share by counting.
//
// Two records may hold one block of elements, or one table of divisions: a change of the unit or the labels then copies
// no element. Whoever changes elements or appends gives the record a block of its own first (ownBlock).
#pragma once

#include "Vectors/DivisionTable.h"
#include "Vectors/NewDataBlock.h"
#include "torvelan/Containers.h"
#include "torvelan/PhysType.h"
#include "torvelan/Vectors.h"

#include <cfloat>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

// Bytes of one element; 0 for a kind without elements.
inline constexpr std::uint64_t elementWidth(VD_type type) noexcept {
    return type == VD_REAL || type == VD_STRING ? 8 : type == VD_COMPLEX ? 16 : 0;
}
// Elements in so many bytes.
inline constexpr std::int64_t elementCount(std::uint64_t bytes, VD_type type) noexcept {
    constexpr unsigned noShift = 64;
    unsigned shift = type == VD_REAL || type == VD_STRING ? 3 : type == VD_COMPLEX ? 4 : noShift;
    return shift == noShift ? 0 : static_cast<std::int64_t>(bytes >> shift);
}
// Bytes of n elements. Throws MemoryException when n is negative or there can be no such block.
std::uint64_t byteCount(std::int64_t n, VD_type type);

// A heap copy, null of null. Throws MemoryException.
char * duplicateString(char const * s);

// Least and greatest value so far. There is none until a value has come in, nor while the only one is no number.
struct ValueRange {
    double max = -DBL_MAX;
    double min = DBL_MAX;

    bool isValid() const noexcept { return max >= min; }
    void invalidate() noexcept { *this = {}; }
    void set(double value) noexcept { max = min = value; }
    void widen(double value) noexcept {
        if (value > max) max = value;
        if (value < min) min = value;
    }
};

// The first `keep` bytes of a block that others hold, in a block with room for `room` bytes; strings are duplicated.
// Throws MemoryException.
BlockRef copiedBlock(NewDataBlock & from, std::uint64_t keep, std::uint64_t room, bool strings);

struct VectorRep {
    static constexpr int noLink = -1;
    // The count of the records of untouched vectors: no number of real handles comes near.
    static constexpr std::uint32_t untouchedCount = 0x80000000;

    static VectorRep * make();       // with a count of 1; throws MemoryException
    VectorRep * makeSharing() const; // a second record of the same contents, elements shared; throws MemoryException
    // An empty record as this one, which is that of untouched vectors. Null when memory is exhausted.
    VectorRep * tryMakeOwn() const noexcept;
    // The record of all vectors that hold nothing. It is never written: a vector gets a record of its own first.
    static VectorRep * untouched(bool multiple) noexcept;
    ~VectorRep();
    VectorRep & operator=(VectorRep const &) = delete;

    bool isUntouched() const noexcept { return refCount >= untouchedCount; }
    bool isShared() const noexcept { return refCount > 1; }
    void retain() noexcept {
        if (!isUntouched()) ++refCount;
    }
    void release() noexcept {
        if (!isUntouched() && --refCount == 0) end();
    }

    // --- counting; divisions by absolute index. One that does not exist has length 0.
    std::uint64_t bytes() const noexcept { return block ? block->size() : 0; }
    std::int64_t elements() const noexcept { return elementCount(bytes(), type); }
    std::int64_t divisions() const { return divisionIndex.exists() ? divisionIndex.live(bytes()) : 1; }
    std::int64_t divisionStart(std::int64_t division) const; // element number; the end for one too far
    std::int64_t divisionLength(std::int64_t division) const;
    // Address of an element, for a kind that T fits.
    template <class T> T * element(std::int64_t i) const { return reinterpret_cast<T *>(block->realise()) + i; }

    // --- writing. The record must be the vector's own; all give it a block of its own first and leave it as it was
    // when they throw.
    void ownBlock() { prepare(0, UINT64_MAX, Growth::exact); }
    // Sets the kind and the number of elements. New string slots are null; strings that do not stay are freed.
    void resize(std::int64_t n, VD_type newType) { resize(n, newType, Growth::exact); }
    void resizeInSteps(std::int64_t n) { resize(n, type, Growth::inSteps); } // for lengths that rise step by step
    // Sets the kind; the length stays, unless numbers become strings or strings numbers.
    void reserve(std::int64_t n, VD_type newType);
    void clearStrings(std::int64_t from) noexcept; // frees the strings from there on and leaves null; the block is own
    template <class T> void append(T const & value, double measure);
    // Appends n values of the vector's kind, which do not lie in its block.
    void append(double const * values, std::size_t n);
    void append(complex const * values, std::size_t n);
    // Of the same kind, or this is empty and takes the kind; may be this. With a link, by reference where it can be.
    void appendElements(VectorRep const & from, int link = noLink);
    // As the block's.
    bool addSharedBlock(SharedBlockManager * blocks, int id, std::uint64_t bytes);
    // Frees what there is and takes a block that nobody else holds.
    void replaceContents(BlockRef newBlock, VD_type newType, DivisionTable newDivisions) noexcept;
    void becomeOneDivision() noexcept; // without touching the elements

    void setLabels(std::shared_ptr<NameArray const> newLabels) noexcept {
        labels = std::move(newLabels);
        labelGroup = {};
    }

    // --- ranges
    ValueRange & divisionRange(std::int64_t division); // made when it is not there
    void invalidateRanges() noexcept;
    void invalidateRange(std::int64_t division) noexcept; // that of all data, and of one division

    static void * operator new(std::size_t size);
    static void * operator new(std::size_t size, std::nothrow_t const &) noexcept;
    static void operator delete(void * memory) noexcept;
    static void operator delete(void * memory, std::nothrow_t const &) noexcept;

    // What appending looks at comes first, in one line of the cache.
    BlockRef block;   // null until there are data
    ValueRange range; // cached, of all data
    std::uint32_t refCount = 1;
    VD_type type = VD_REAL;
    bool multiple = false;
    PhysType physType = PT_UNKNOWN;
    YVector<ValueRange> divisionRanges; // cached, one a division; empty until somebody asks, and for one division
    DivisionTable divisionIndex;
    std::shared_ptr<NameArray const> labels;
    YString labelGroup; // group whose labels are to be fetched; empty when `labels` is current

private:
    enum class Growth { exact, inSteps };

    friend union UntouchedRecord;
    constexpr VectorRep(std::uint32_t count, bool isMultiple) noexcept : refCount(count), multiple(isMultiple) {}
    VectorRep(VectorRep const & other); // with a count of 1

    // Not inlined: the compiler would see the untouched records pass by and warn of their deletion, blind to the count.
    [[gnu::noinline]] void end() noexcept { delete this; }
    bool keepsContents(VD_type newType) const noexcept { return (type == VD_STRING) == (newType == VD_STRING); }
    // A block of its own with room for so many bytes. When it must be copied for that, only the first `keep` bytes are.
    void prepare(std::uint64_t room, std::uint64_t keep, Growth growth);
    void resize(std::int64_t n, VD_type newType, Growth growth);
    void cut(std::int64_t n, VD_type newType);
    void setElements(std::int64_t n, VD_type newType) noexcept;
    void dropContents() noexcept;
    void noteAppended(std::uint64_t newBytes, double measure);
    void appendStrings(VectorRep const & from);
    void appendNumbers(VectorRep const & from);
    void appendSlowly(void const * value, std::uint64_t bytes);
};

// Values of a running simulation come in here one by one.
template <class T> [[gnu::always_inline]] inline void VectorRep::append(T const & value, double measure) {
    if (!block || block->isShared()) ownBlock();
    if (!divisionRanges.empty()) noteAppended(block->size() + sizeof(T), measure);
    if (block->size() == 0)
        range.set(measure);
    else if (range.isValid())
        range.widen(measure);
    if (!block->tryAppend(value)) appendSlowly(&value, sizeof(T));
}
