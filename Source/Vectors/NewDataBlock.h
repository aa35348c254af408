// NewDataBlock: the bytes of one array, the values of a vector or the table of its divisions. Owned through a count.
//
// A few bytes lie in the block itself, so that a scalar needs no memory of its own. All content lies in memory; `data`
// is null only when nothing has been put in.
#pragma once

#include "Vectors/BlockMemory.h"

#include <cstdint>
#include <cstring>
#include <utility>

class BlockRef;

class NewDataBlock {
public:
    static constexpr std::uint64_t inlineBytes = 16;

    static BlockRef make(); // empty
    // The first `bytes` bytes of this (at most its size) in a block of their own.
    BlockRef clone(std::uint64_t bytes) const;
    NewDataBlock(NewDataBlock const &) = delete;
    NewDataBlock & operator=(NewDataBlock const &) = delete;

    void retain() noexcept { ++count; }
    void release() noexcept {
        if (--count == 0) delete this;
    }
    bool isShared() const noexcept { return count > 1; }

    std::uint64_t size() const noexcept { return size_; }
    std::uint64_t capacity() const noexcept { return capacity_; }
    char * realise() noexcept { return data; } // the bytes, in memory

    // Appends bytes, which must not lie in this block. Throws MemoryException, and the block is as it was.
    void addData(void const * source, std::uint64_t bytes) {
        makeRoom(bytes);
        if (bytes) std::memcpy(data + size_, source, bytes);
        size_ += bytes;
    }
    template <class T> void append(T const & value) {
        makeRoom(sizeof(T));
        appendWithin(value);
    }
    // Appends where there is room already.
    template <class T> void appendWithin(T const & value) noexcept {
        std::memcpy(data + size_, &value, sizeof(T));
        size_ += sizeof(T);
    }
    // Room for so many bytes more, with some to spare when there was not.
    void makeRoom(std::uint64_t bytes) {
        if (bytes > capacity_ - size_) growFor(bytes);
    }

    // Copies from the block; the answer is the number of bytes copied, 0 when the block ends before `offset + bytes`.
    std::uint64_t read(void * dest, std::uint64_t bytes, std::uint64_t offset) const noexcept;
    // Sets the size. Bytes beyond the old one are not cleared; the room becomes exactly what is needed.
    void resize(std::uint64_t bytes);
    void reserve(std::uint64_t bytes); // room for so many bytes in all
    void shrink();                     // fits the memory to the size

    static void * operator new(std::size_t size);
    static void operator delete(void * memory) noexcept;

private:
    NewDataBlock() noexcept = default;
    ~NewDataBlock();

    bool isInline() const noexcept { return data == inlineData; }
    void growFor(std::uint64_t bytes);
    void setCapacity(std::uint64_t bytes);

    char * data = inlineData;
    std::uint64_t capacity_ = inlineBytes;
    std::uint64_t size_ = 0;
    std::uint32_t count = 0; // of BlockRefs
    alignas(16) char inlineData[inlineBytes];
};

// Holder of a counted block, or of none.
class BlockRef {
public:
    constexpr BlockRef() noexcept = default;
    explicit BlockRef(NewDataBlock * held) noexcept : block(held) {
        if (block) block->retain();
    }
    BlockRef(BlockRef const & other) noexcept : BlockRef(other.block) {}
    BlockRef(BlockRef && other) noexcept : block(std::exchange(other.block, nullptr)) {}
    BlockRef & operator=(BlockRef other) noexcept {
        std::swap(block, other.block);
        return *this;
    }
    ~BlockRef() {
        if (block) block->release();
    }

    explicit operator bool() const noexcept { return block != nullptr; }
    NewDataBlock * operator->() const noexcept { return block; }
    NewDataBlock * get() const noexcept { return block; }
    friend bool operator==(BlockRef const & a, BlockRef const & b) noexcept { return a.block == b.block; }

private:
    NewDataBlock * block = nullptr;
};
