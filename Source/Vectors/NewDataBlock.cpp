#include "Vectors/NewDataBlock.h"

#include "support/ObjectPool.h"
#include "support/StreamingCopy.h"
#include "torvelan/SharedBlocks.h"

#include <algorithm>

namespace {

constexpr std::uint64_t leastGrowth = 1024;
constexpr std::uint64_t largestSize = PTRDIFF_MAX;

constexpr std::uint64_t leastBytesFromFile = 5;
constexpr std::uint64_t mostZeros = std::uint64_t{1} << 30; // that may stand for what did not come

// From this size on the beginning of a block has left the nearer caches before its end is there.
constexpr std::uint64_t beyondCache = std::uint64_t{4} << 20;

ObjectPool<sizeof(NewDataBlock)> freeBlocks;

// What does not come is zeros.
void readWhole(BlockBacking & from, char * dest, std::uint64_t bytes) {
    std::uint64_t const done = from.read(dest, bytes, 0);
    std::memset(dest + done, 0, bytes - done);
}

} // namespace

void * NewDataBlock::operator new(std::size_t) {
    void * memory = freeBlocks.take();
    if (!memory) throwVectorAllocationFailed();
    return memory;
}

void NewDataBlock::operator delete(void * memory) noexcept {
    freeBlocks.give(memory);
}

BlockBacking::~BlockBacking() = default;

BlockRef NewDataBlock::make() {
    return BlockRef(new NewDataBlock);
}

BlockRef NewDataBlock::clone(std::uint64_t bytes) const {
    BlockRef copy = make();
    copy->resize(std::min(bytes, size_));
    if (data != nullptr)
        std::memcpy(copy->data, data, copy->size_);
    else
        readWhole(*backing_, copy->data, copy->size_);
    return copy;
}

NewDataBlock::~NewDataBlock() {
    dropMemory();
}

void NewDataBlock::dropMemory() noexcept {
    if (data != nullptr && !isInline()) BlockMemory::release({data, capacity_});
    data = nullptr;
    capacity_ = 0;
}

void NewDataBlock::placeEnd() noexcept {
    if (backing_ == nullptr) {
        end = {data + size_, data + capacity()};
    } else if (data == nullptr) {
        backing_->lend(&end);
    } else {
        backing_->takeBack();
        end = {};
    }
}

char * NewDataBlock::readIn() {
    BlockMemory::Piece const piece = BlockMemory::allocate(std::max<std::uint64_t>(size_, sizeof(std::int32_t)));
    try {
        readWhole(*backing_, piece.data, size_);
    } catch (...) {
        BlockMemory::release(piece);
        throw;
    }
    data = piece.data;
    capacity_ = piece.bytes;
    placeEnd();
    return data;
}

void NewDataBlock::addData(void const * source, std::uint64_t bytes) {
    if (data == nullptr && backing_->take(source, bytes)) {
        size_ += bytes;
        return;
    }
    if (backing_ != nullptr && !backing_->isWritten()) prepareChange();
    if (data != nullptr) makeRoom(bytes);
    if (backing_ != nullptr) backing_->append(source, bytes);
    if (data != nullptr && bytes != 0) {
        if (capacity() < beyondCache)
            std::memcpy(data + size_, source, bytes);
        else
            sp_CopyPastCache(data + size_, static_cast<char const *>(source), bytes);
    }
    size_ += bytes;
    placeEnd();
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
    placeEnd();
}

std::uint64_t NewDataBlock::read(void * dest, std::uint64_t bytes, std::uint64_t offset) const {
    if (offset > size_ || bytes > size_ - offset) return 0;
    if (data == nullptr) return bytes >= leastBytesFromFile ? backing_->read(dest, bytes, offset) : 0;
    if (bytes) std::memcpy(dest, data + offset, bytes);
    return bytes;
}

void NewDataBlock::prepareChange() {
    if (backing_ == nullptr) return;
    realise();
    if (backing_->isWritten()) {
        changed_ = true;
    } else {
        backing_.reset();
        placeEnd();
    }
}

void NewDataBlock::resize(std::uint64_t bytes) {
    if (bytes == 0 && data == nullptr && !isWritten()) { // nothing is worth reading
        backing_.reset();
        data = inlineData;
        size_ = 0;
    }
    prepareChange();
    reserve(bytes);
    size_ = bytes;
    placeEnd();
}

void NewDataBlock::reserve(std::uint64_t bytes) {
    realise();
    if (bytes > capacity()) setCapacity(bytes);
}

void NewDataBlock::shrink() {
    if (isWritten()) backing_->flush();
    if (data == nullptr || isInline()) return;
    if (size_ > inlineBytes) return setCapacity(size_);
    BlockMemory::Piece old{data, capacity_};
    std::memcpy(inlineData, data, size_);
    data = inlineData;
    placeEnd();
    BlockMemory::release(old);
}

// --- files

void NewDataBlock::attach(std::unique_ptr<BlockBacking> backing) {
    dropMemory();
    size_ = backing->length();
    backing_ = std::move(backing);
    changed_ = false;
    placeEnd();
}

void NewDataBlock::moveTo(std::unique_ptr<BlockBacking> backing) {
    if (size_ != 0) backing->append(realise(), size_);
    backing_ = std::move(backing);
    changed_ = false;
    placeEnd();
}

void NewDataBlock::detach() {
    realise();
    backing_.reset();
    placeEnd();
}

void NewDataBlock::free() noexcept {
    if (backing_ == nullptr || changed_) return;
    dropMemory();
    placeEnd();
}

bool NewDataBlock::addSharedBlock(SharedBlockManager * blocks, int block, std::uint64_t bytes) {
    std::uint64_t const there = blocks != nullptr ? std::min(bytes, blocks->getBlockSize()) : 0;
    if (bytes > largestSize - size_ || bytes - there > mostZeros) throwVectorAllocationFailed();
    bool taken = false;
    if (data == nullptr && isWritten()) {
        taken = there != 0 && backing_->appendShared(*blocks, block, there);
        if (taken) size_ += there;
    } else if (there != 0) {
        if (hasBacking() && !isWritten()) prepareChange();
        makeRoom(there);
        taken = blocks->read(block, data + size_, there) == SHARED_BLOCK_OK;
        if (taken && hasBacking()) backing_->append(data + size_, there);
        if (taken) blocks->free(block);
        if (taken) size_ += there;
        placeEnd();
    }
    appendZeros(taken ? bytes - there : bytes);
    return taken;
}

// Memory for all of them is asked for first: a number that no machine can hold ends there.
void NewDataBlock::appendZeros(std::uint64_t bytes) {
    if (bytes == 0) return;
    BlockMemory::Piece const zeros = BlockMemory::allocate(bytes);
    std::memset(zeros.data, 0, bytes);
    try {
        addData(zeros.data, bytes);
    } catch (...) {
        BlockMemory::release(zeros);
        throw;
    }
    BlockMemory::release(zeros);
}

// The memory, if there is any, would lack what comes by reference.
bool NewDataBlock::splice(int link, NewDataBlock const & other) {
    bool const canBe = backing_ != nullptr && other.backing_ != nullptr && !changed_ && !other.changed_;
    bool const isDone = canBe && backing_->splice(link, *other.backing_);
    if (isDone) size_ += other.size_;
    if (isDone) dropMemory();
    placeEnd();
    return isDone;
}
