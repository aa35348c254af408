#include "Vectors/NewDataBlock.h"

#include "Vectors/FreeList.h"

#include <algorithm>

namespace {

constexpr std::uint64_t leastGrowth = 1024;
constexpr std::uint64_t largestSize = PTRDIFF_MAX;

FreeList<sizeof(NewDataBlock), 4096> freeBlocks;

} // namespace

void * NewDataBlock::operator new(std::size_t) {
    void * memory = freeBlocks.take();
    if (!memory) throwVectorAllocationFailed();
    return memory;
}

void NewDataBlock::operator delete(void * memory) noexcept {
    freeBlocks.give(memory);
}

BlockRef NewDataBlock::make() {
    return BlockRef(new NewDataBlock);
}

BlockRef NewDataBlock::clone(std::uint64_t bytes) const {
    BlockRef copy = make();
    copy->resize(std::min(bytes, size_));
    std::memcpy(copy->data, data, copy->size_);
    return copy;
}

NewDataBlock::~NewDataBlock() {
    if (!isInline()) BlockMemory::release({data, capacity_});
}

void NewDataBlock::growFor(std::uint64_t bytes) {
    if (bytes > largestSize - size_) throwVectorAllocationFailed();
    std::uint64_t need = size_ + bytes;
    setCapacity(need < leastGrowth ? leastGrowth : std::min(need + need / 2, largestSize));
}

void NewDataBlock::setCapacity(std::uint64_t bytes) {
    BlockMemory::Piece piece;
    if (isInline()) {
        piece = BlockMemory::allocate(bytes);
        std::memcpy(piece.data, data, size_);
    } else {
        piece = BlockMemory::resize({data, capacity_}, size_, bytes);
    }
    data = piece.data;
    capacity_ = piece.bytes;
}

std::uint64_t NewDataBlock::read(void * dest, std::uint64_t bytes, std::uint64_t offset) const noexcept {
    if (offset > size_ || bytes > size_ - offset) return 0;
    if (bytes) std::memcpy(dest, data + offset, bytes);
    return bytes;
}

void NewDataBlock::resize(std::uint64_t bytes) {
    reserve(bytes);
    size_ = bytes;
}

void NewDataBlock::reserve(std::uint64_t bytes) {
    if (bytes > capacity_) setCapacity(bytes);
}

void NewDataBlock::shrink() {
    if (isInline()) return;
    if (size_ > inlineBytes) return setCapacity(size_);
    BlockMemory::Piece old{data, capacity_};
    std::memcpy(inlineData, data, size_);
    data = inlineData;
    capacity_ = inlineBytes;
    BlockMemory::release(old);
}
