// NewDataBlock: the bytes of one array, the values of a vector or the table of its divisions. Owned through a count.
//
// A few bytes lie in the block itself, so that a scalar needs no memory of its own. A block with a backing has its
// bytes in a file, and in memory only from the moment that somebody asks for them. While a run writes them, its block
// is one append to the file; a memory copy that is there follows.
#pragma once

#include "Vectors/BlockBacking.h"
#include "Vectors/BlockMemory.h"

#include <cstdint>
#include <cstring>
#include <memory>
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
    std::uint64_t capacity() const noexcept { return isInline() ? inlineBytes : capacity_; }
    // The bytes, in memory. Reads them in if need be; what the file has lost is zeros. Throws MemoryException.
    char * realise() { return data != nullptr ? data : readIn(); }
    bool isRealised() const noexcept { return data != nullptr; }

    // Appends bytes, which must not lie in this block. Throws MemoryException or, when the file does not take them,
    // FatalException; the block is as it was.
    void addData(void const * source, std::uint64_t bytes);
    template <class T> void append(T const & value) {
        if (!tryAppend(value)) addData(&value, sizeof(T));
    }
    // Appends where that is a matter of a moment.
    template <class T> bool tryAppend(T const & value) noexcept {
        if (!end.take(&value, sizeof(T))) return false;
        size_ += sizeof(T);
        return true;
    }
    // Room in memory for so many bytes more, with some to spare when there was not.
    void makeRoom(std::uint64_t bytes) {
        realise();
        if (bytes > capacity() - size_) growFor(bytes);
    }

    // Copies from the block without bringing it into memory; the answer is the number of bytes copied: 0 when the block
    // ends before `offset + bytes`, or for less than 5 bytes that are not in memory.
    std::uint64_t read(void * dest, std::uint64_t bytes, std::uint64_t offset) const;
    // Sets the size. Bytes beyond the old one are not cleared; the room becomes exactly what is needed.
    void resize(std::uint64_t bytes);
    void reserve(std::uint64_t bytes); // room for so many bytes in all
    void shrink();                     // fits the memory to the size, and a file that is written gets what waits
    // The bytes in memory are about to change otherwise than by appending. A file that is not written is let go.
    void prepareChange();

    // --- files
    bool hasBacking() const noexcept { return backing_ != nullptr; }
    bool isWritten() const noexcept { return backing_ != nullptr && backing_->isWritten(); }
    // Takes the contents of a backing in place of its own, which are none.
    void attach(std::unique_ptr<BlockBacking> backing);
    // Puts its contents into an empty backing that is written, and goes on there, with a copy in memory as long as it
    // is not freed. Throws FatalException.
    void moveTo(std::unique_ptr<BlockBacking> backing);
    void detach();        // from the backing; the contents are in memory
    void free() noexcept; // gives the memory back, where the file has all that is in it
    // Appends a block of shared memory, which is given back: straight to the file, where nothing is in memory. The
    // block grows by `bytes`, of which those that are refused are zeros. False when it was refused.
    bool addSharedBlock(SharedBlockManager * blocks, int block, std::uint64_t bytes);
    // Goes on with the bytes of a block in a linked file, by reference. False when that cannot be.
    bool splice(int link, NewDataBlock const & other);

    static void * operator new(std::size_t size);
    static void operator delete(void * memory) noexcept;

private:
    NewDataBlock() noexcept = default;
    ~NewDataBlock();

    bool isInline() const noexcept { return data == inlineData; }
    void growFor(std::uint64_t bytes);
    void setCapacity(std::uint64_t bytes);
    void placeEnd() noexcept; // after every change but an append at the end
    char * readIn();
    void dropMemory() noexcept;
    void appendZeros(std::uint64_t bytes);

    // What appending looks at comes first. The end is that of the memory, or of a written backing that is all there is;
    // without room where both are to be kept.
    OpenEnd end{inlineData, inlineData + inlineBytes};
    std::uint64_t size_ = 0;
    std::uint32_t count = 0;  // of BlockRefs
    bool changed_ = false;    // the memory holds what the backing does not
    char * data = inlineData; // null while the bytes are in the backing only
    std::unique_ptr<BlockBacking> backing_;
    union {
        alignas(16) char inlineData[inlineBytes];
        std::uint64_t capacity_; // of memory that is not in the block
    };
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
