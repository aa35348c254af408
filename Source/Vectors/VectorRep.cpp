#include "Vectors/VectorRep.h"

#include "support/ObjectPool.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

// Keeps the record alive to the very end of the process: vectors in static storage may outlive everything else.
union UntouchedRecord {
    VectorRep record;

    constexpr explicit UntouchedRecord(bool isMultiple) noexcept : record(VectorRep::untouchedCount, isMultiple) {}
    ~UntouchedRecord() {}
};

namespace {

constinit UntouchedRecord untouchedPlain(false);
constinit UntouchedRecord untouchedMultiple(true);

ObjectPool<sizeof(VectorRep)> freeRecords;

void freeSlots(char ** first, char ** last) noexcept {
    for (; first != last; ++first) {
        std::free(*first);
        *first = nullptr;
    }
}

void duplicateSlots(char const * const * from, char ** to, std::int64_t n) {
    std::fill_n(to, n, nullptr);
    try {
        for (std::int64_t i = 0; i < n; ++i) to[i] = duplicateString(from[i]);
    } catch (MemoryException const &) {
        freeSlots(to, to + n);
        throw;
    }
}

// A block that a file is written with goes on with one holder only: the other one gets a copy of what is there.
BlockRef sharedBlock(VectorRep const & rep) {
    bool const isWritten = rep.block && rep.block->isWritten();
    return isWritten ? rep.block->clone(rep.bytes()) : rep.block;
}

} // namespace

std::uint64_t byteCount(std::int64_t n, VD_type type) {
    std::uint64_t width = elementWidth(type);
    if (n < 0 || (width != 0 && static_cast<std::uint64_t>(n) > PTRDIFF_MAX / width)) throwVectorAllocationFailed();
    return static_cast<std::uint64_t>(n) * width;
}

char * duplicateString(char const * s) {
    if (!s) return nullptr;
    char * copy = strdup(s);
    if (!copy) throwVectorAllocationFailed();
    return copy;
}

BlockRef copiedBlock(NewDataBlock & from, std::uint64_t keep, std::uint64_t room, bool strings) {
    BlockRef copy = NewDataBlock::make();
    copy->reserve(std::max(keep, room));
    if (strings) {
        duplicateSlots(reinterpret_cast<char **>(from.realise()), reinterpret_cast<char **>(copy->realise()),
                       elementCount(keep, VD_STRING));
        copy->resize(keep);
    } else {
        copy->addData(from.realise(), keep);
    }
    return copy;
}

void * VectorRep::operator new(std::size_t size) {
    void * memory = operator new(size, std::nothrow);
    if (!memory) throwVectorAllocationFailed();
    return memory;
}

void * VectorRep::operator new(std::size_t, std::nothrow_t const &) noexcept {
    return freeRecords.take();
}

void VectorRep::operator delete(void * memory) noexcept {
    freeRecords.give(memory);
}

void VectorRep::operator delete(void * memory, std::nothrow_t const &) noexcept {
    freeRecords.give(memory);
}

VectorRep * VectorRep::untouched(bool multiple) noexcept {
    return multiple ? &untouchedMultiple.record : &untouchedPlain.record;
}

VectorRep * VectorRep::make() {
    return new VectorRep(1, false);
}

VectorRep * VectorRep::makeSharing() const {
    return new VectorRep(*this);
}

VectorRep * VectorRep::tryMakeOwn() const noexcept {
    return new (std::nothrow) VectorRep(1, multiple);
}

VectorRep::VectorRep(VectorRep const & other)
    : block(sharedBlock(other)), range(other.range), type(other.type), multiple(other.multiple),
      physType(other.physType), divisionRanges(other.divisionRanges), divisionIndex(other.divisionIndex),
      labels(other.labels), labelGroup(other.labelGroup) {}

VectorRep::~VectorRep() {
    if (type == VD_STRING) dropContents();
}

std::int64_t VectorRep::divisionStart(std::int64_t division) const {
    if (division <= 0) return 0;
    if (division >= divisions()) return elements();
    return elementCount(std::min(divisionIndex.entry(division), bytes()), type);
}

std::int64_t VectorRep::divisionLength(std::int64_t division) const {
    std::int64_t n = divisions();
    if (division < 0 || division >= n) return 0;
    if (n == 1) return elements();
    std::uint64_t start = divisionIndex.entry(division);
    std::uint64_t end = division + 1 < n ? std::min(divisionIndex.entry(division + 1), bytes()) : bytes();
    return start < end ? elementCount(end - start, type) : 0;
}

void VectorRep::prepare(std::uint64_t room, std::uint64_t keep, Growth growth) {
    if (!block) block = NewDataBlock::make();
    if (!block->isShared()) block->prepareChange();
    if (block->isShared())
        block = copiedBlock(*block.get(), std::min(keep, bytes()), room, type == VD_STRING);
    else if (growth == Growth::inSteps && bytes() != 0 && room > bytes())
        block->makeRoom(room - bytes());
    else
        block->reserve(room);
}

void VectorRep::resize(std::int64_t n, VD_type newType, Growth growth) {
    std::uint64_t newBytes = byteCount(n, newType);
    if (divisionIndex.exists() && newBytes < bytes() && keepsContents(newType)) return cut(n, newType);
    prepare(newBytes, keepsContents(newType) ? newBytes : 0, growth);
    if (!keepsContents(newType)) dropContents();
    setElements(n, newType);
}

// The divisions behind the cut go with the data; an entry that stayed would come back to life when data grow again.
void VectorRep::cut(std::int64_t n, VD_type newType) {
    std::uint64_t newBytes = byteCount(n, newType);
    divisionIndex.reserve(0); // what may fail comes first
    prepare(newBytes, newBytes, Growth::exact);
    setElements(n, newType);
    divisionIndex.cut(divisionIndex.live(newBytes));
}

// Within the room that the block has.
void VectorRep::setElements(std::int64_t n, VD_type newType) noexcept {
    type = newType;
    std::int64_t before = elements();
    if (type == VD_STRING) clearStrings(n);
    block->resize(byteCount(n, type));
    if (type == VD_STRING && n > before) std::fill_n(element<char *>(before), n - before, nullptr);
    invalidateRanges();
}

void VectorRep::reserve(std::int64_t n, VD_type newType) {
    prepare(byteCount(n, newType), keepsContents(newType) ? UINT64_MAX : 0, Growth::exact);
    if (!keepsContents(newType)) dropContents();
    if (newType != type) invalidateRanges();
    type = newType;
}

void VectorRep::appendElements(VectorRep const & from, int link) {
    if (from.bytes() == 0) return;
    if (link != noLink && block && from.block && from.type == type && block->splice(link, *from.block.get()))
        return invalidateRanges();
    if (from.type == VD_STRING)
        appendStrings(from);
    else
        appendNumbers(from);
    type = from.type;
    invalidateRanges();
}

void VectorRep::appendStrings(VectorRep const & from) {
    ownBlock();
    block->makeRoom(from.bytes());
    char * behind = block->realise() + bytes();
    duplicateSlots(from.element<char *>(0), reinterpret_cast<char **>(behind), from.elements());
    block->resize(bytes() + from.bytes());
}

void VectorRep::appendNumbers(VectorRep const & from) {
    if (!block || block->isShared()) ownBlock();
    BlockRef const source = from.block == block ? block->clone(bytes()) : from.block; // may be this
    block->addData(source->realise(), source->size());
}

// What was noted of the value goes when the value does not come.
void VectorRep::appendSlowly(void const * value, std::uint64_t bytes) {
    try {
        block->addData(value, bytes);
    } catch (...) {
        invalidateRanges();
        throw;
    }
}

bool VectorRep::addSharedBlock(SharedBlockManager * blocks, int id, std::uint64_t bytes) {
    if (!block || block->isShared()) ownBlock();
    invalidateRanges();
    return block->addSharedBlock(blocks, id, bytes);
}

void VectorRep::clearStrings(std::int64_t from) noexcept {
    std::int64_t n = elements();
    if (from < n) freeSlots(element<char *>(from), element<char *>(n));
}

// The strings of a block belong to its last holder.
void VectorRep::dropContents() noexcept {
    if (!block || block->isShared()) return;
    if (type == VD_STRING) clearStrings(0);
    block->resize(0);
    becomeOneDivision();
}

void VectorRep::replaceContents(BlockRef newBlock, VD_type newType, DivisionTable newDivisions) noexcept {
    dropContents();
    block = std::move(newBlock);
    type = newType;
    divisionIndex = std::move(newDivisions);
    invalidateRanges();
}

void VectorRep::becomeOneDivision() noexcept {
    divisionIndex.clear();
    divisionRanges.clear();
}

ValueRange & VectorRep::divisionRange(std::int64_t division) {
    auto index = static_cast<std::size_t>(division);
    if (index >= divisionRanges.size()) divisionRanges.resize(index + 1);
    return divisionRanges[index];
}

void VectorRep::invalidateRanges() noexcept {
    range.invalidate();
    divisionRanges.clear();
}

void VectorRep::invalidateRange(std::int64_t division) noexcept {
    range.invalidate();
    auto index = static_cast<std::size_t>(division);
    if (index < divisionRanges.size()) divisionRanges[index].invalidate();
}

// The value goes to the last division that exists with it, which it may bring into being.
void VectorRep::noteAppended(std::uint64_t newBytes, double measure) {
    std::int64_t division = divisionIndex.live(newBytes) - 1;
    bool isFirst = divisionStart(division) >= elements();
    ValueRange & known = divisionRange(division);
    if (isFirst)
        known.set(measure);
    else if (known.isValid())
        known.widen(measure);
}
