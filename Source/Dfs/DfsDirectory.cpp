#include "Dfs/DfsDirectory.h"

#include "Dfs/LittleEndian.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr std::uint64_t entryBytes = DirectoryEntry::bytes;
constexpr std::int64_t endOfChain = -1;
constexpr std::int64_t greatestId = std::int64_t{1} << 62; // far from where sums of ids overflow
constexpr std::int32_t mostEntries = 1 << 30;

// Of a plain entry beside a run that holds its id: stale, of the time before the extent went into the run.
bool standsFor(DirectoryEntry const & plain, DirectoryEntry const & ofRun) noexcept {
    bool const wasOpen = plain.size == 0 && plain.offset == 0;
    return plain.fileIndex == ofRun.fileIndex && (wasOpen || plain.offset == ofRun.offset);
}

} // namespace

bool DfsDirectory::create(FileTail & tail) {
    char size[sizeof(std::int64_t)];
    storeNumber<std::int64_t>(size, blockEntries * entryBytes);
    std::vector<char> const zeros(blockEntries * entryBytes);
    std::int64_t position;
    if (!tail.append(size, zeros, &position)) return false;
    appendBlock(position + static_cast<std::int64_t>(sizeof size), blockEntries);
    DirectoryEntry link;
    link.id = newId();
    link.next = endOfChain;
    store(used_, link);
    index_.insertPlain(link.id, used_++);
    return true;
}

void DfsDirectory::appendBlock(std::int64_t position, std::int32_t count) {
    blocks_.push_back({false, capacity(), count, position});
    entries_.resize(entries_.size() + index(count));
}

// --- reading

DfsDirectory::LoadResult DfsDirectory::load(OpenFile & file, std::uint64_t position) {
    LoadResult const read = readChain(file, position);
    return read == LoadResult::good ? indexEntries() : read;
}

// No chain of blocks that lie beside one another is longer than the file.
DfsDirectory::LoadResult DfsDirectory::readChain(OpenFile & file, std::uint64_t position) {
    char size[sizeof(std::int64_t)];
    if (file.readAt(size, sizeof size, position) != sizeof size) return LoadResult::unreadable;
    std::uint64_t const fileSize = file.size();
    auto bytes = loadNumber<std::uint64_t>(size);
    position += sizeof size;
    std::int64_t chain = 0;
    for (std::uint64_t left = fileSize; bytes <= left;) {
        left -= bytes;
        LoadResult const read = readBlock(file, position, bytes);
        if (read != LoadResult::good) return read;
        DirectoryEntry & link = entries_[index(blocks_.back().firstEntry)];
        bool const neverWritten = chain != 0 && !link.isLive();
        if (neverWritten) {
            link.id = missingBlock_ = chain;
            link.next = endOfChain;
        }
        if ((chain != 0 && link.id != chain) || link.isRun) return LoadResult::unreadable;
        if (link.offset <= 0) return LoadResult::good;
        chain = link.next;
        position = static_cast<std::uint64_t>(link.offset);
        bytes = static_cast<std::uint64_t>(link.size);
    }
    return LoadResult::unreadable;
}

// What lies behind the end of the file counts as zeros.
DfsDirectory::LoadResult DfsDirectory::readBlock(OpenFile & file, std::uint64_t position, std::uint64_t bytes) {
    if (bytes == 0 || bytes % entryBytes != 0 || bytes / entryBytes > mostEntries - index(capacity()))
        return LoadResult::unreadable;
    std::vector<char> block(bytes);
    file.readAt(block.data(), bytes, position);
    appendBlock(static_cast<std::int64_t>(position), static_cast<std::int32_t>(bytes / entryBytes));
    DirectoryEntry * to = &entries_[index(blocks_.back().firstEntry)];
    for (std::uint64_t at = 0; at < bytes; at += entryBytes) {
        auto const decoded = DirectoryEntry::decode(block.data() + at, to++);
        if (decoded == DirectoryEntry::Decoded::unknownForm) return LoadResult::unreadable;
        if (decoded == DirectoryEntry::Decoded::impossible) return LoadResult::impossibleExtent;
    }
    return LoadResult::good;
}

// Runs first: they tell which of the plain entries are leftovers.
DfsDirectory::LoadResult DfsDirectory::indexEntries() {
    index_.clear();
    used_ = capacity();
    while (used_ > 0 && !entries_[index(used_ - 1)].isLive()) --used_;
    index_.reserve(index(used_));
    for (std::int32_t slot = 0; slot < used_; ++slot) {
        DirectoryEntry const & entry = entries_[index(slot)];
        if (!entry.isLive() || !entry.isRun) continue;
        ExtentIndex::Slot const before = index_.findRun(entry.endId() - 1);
        if (before != ExtentIndex::none && entries_[index(before)].endId() > entry.id) return LoadResult::overlap;
        index_.insertRun(entry.id, slot);
    }
    for (std::int32_t slot = 0; slot < used_; ++slot) {
        DirectoryEntry & entry = entries_[index(slot)];
        if (entry.isLive()) {
            std::int64_t const last = std::max(entry.endId(), entry.next + entry.runLength);
            nextId_ = std::max(nextId_, std::max(last, entry.next + 1));
        }
        if (entry.isLive() && !entry.isRun) {
            if (isLeftover(entry))
                store(slot, {});
            else if (slotOf(entry.id) != ExtentIndex::none)
                return LoadResult::overlap;
            else
                index_.insertPlain(entry.id, slot);
        }
        if (!entry.isLive() && !straddles(slot) && !isLink(slot)) freeSlots_.push_back(slot);
    }
    return LoadResult::good;
}

bool DfsDirectory::isLeftover(DirectoryEntry const & plain) const noexcept {
    ExtentIndex::Slot const run = index_.findRun(plain.id);
    if (run == ExtentIndex::none || !entries_[index(run)].holds(plain.id)) return false;
    return standsFor(plain, entries_[index(run)].extent(plain.id));
}

// --- finding

std::int32_t DfsDirectory::slotOf(std::int64_t id) const noexcept {
    ExtentIndex::Slot const plain = index_.findPlain(id);
    if (plain != ExtentIndex::none) return plain;
    ExtentIndex::Slot const run = index_.findRun(id);
    return run != ExtentIndex::none && entries_[index(run)].holds(id) ? run : ExtentIndex::none;
}

std::optional<DirectoryEntry> DfsDirectory::extent(std::int64_t id) const noexcept {
    std::int32_t const slot = slotOf(id);
    if (slot == ExtentIndex::none) return std::nullopt;
    return entries_[index(slot)].extent(id);
}

DfsDirectory::Block const & DfsDirectory::blockOf(std::int32_t slot) const noexcept {
    auto const behind = std::upper_bound(blocks_.begin(), blocks_.end(), slot,
                                         [](std::int32_t s, Block const & block) { return s < block.firstEntry; });
    return *std::prev(behind);
}

DfsDirectory::Block & DfsDirectory::blockOf(std::int32_t slot) noexcept {
    return const_cast<Block &>(std::as_const(*this).blockOf(slot));
}

bool DfsDirectory::isLink(std::int32_t slot) const noexcept {
    return blockOf(slot).firstEntry == slot;
}

bool DfsDirectory::straddles(std::int32_t slot) const noexcept {
    Block const & block = blockOf(slot);
    std::uint64_t const at = static_cast<std::uint64_t>(block.position) + index(slot - block.firstEntry) * entryBytes;
    return at / FileTail::pageBytes != (at + entryBytes - 1) / FileTail::pageBytes;
}

std::int64_t DfsDirectory::liveEntries() const noexcept {
    return std::count_if(entries_.begin(), entries_.end(), [](DirectoryEntry const & e) { return e.isLive(); });
}

// --- changing

std::int64_t DfsDirectory::newId() noexcept {
    return nextId_ < greatestId ? nextId_++ : 0;
}

void DfsDirectory::store(std::int32_t slot, DirectoryEntry const & entry) {
    entries_[index(slot)] = entry;
    blockOf(slot).clean = false;
}

bool DfsDirectory::add(DirectoryEntry const & entry, FileTail * tail) {
    return insert(entry, tail, 1);
}

bool DfsDirectory::insert(DirectoryEntry const & entry, FileTail * tail, std::int64_t expected) {
    std::int32_t const slot = freeSlot(tail, expected);
    if (slot == ExtentIndex::none) return false;
    store(slot, entry);
    if (entry.isRun)
        index_.insertRun(entry.id, slot);
    else
        index_.insertPlain(entry.id, slot);
    return true;
}

// `expected` entries are to follow, this one among them.
std::int32_t DfsDirectory::freeSlot(FileTail * tail, std::int64_t expected) {
    if (!freeSlots_.empty()) {
        std::int32_t const slot = freeSlots_.back();
        freeSlots_.pop_back();
        return slot;
    }
    while (used_ < capacity() && straddles(used_)) ++used_;
    if (used_ == capacity() && !addBlock(expected, tail)) return ExtentIndex::none;
    return used_++;
}

// The first entry of the new block is the new end of the chain.
bool DfsDirectory::addBlock(std::int64_t expected, FileTail * tail) {
    if (expected >= mostEntries - capacity()) return false;
    auto const count = std::max(static_cast<std::int32_t>(expected) + 1, static_cast<std::int32_t>(blockEntries));
    std::uint64_t const bytes = index(count) * entryBytes;
    std::int64_t position = 0;
    if (tail != nullptr && (!tail->alignFor(entryBytes) || !tail->appendZeros(bytes, &position))) return false;
    DirectoryEntry link;
    link.id = newId();
    link.next = endOfChain;
    if (link.id == 0) return false;
    DirectoryEntry before = entries_[index(blocks_.back().firstEntry)];
    before.offset = position;
    before.size = static_cast<std::int64_t>(bytes);
    before.next = link.id;
    store(blocks_.back().firstEntry, before);
    appendBlock(position, count);
    store(used_, link);
    index_.insertPlain(link.id, used_++);
    return true;
}

bool DfsDirectory::set(DirectoryEntry const & entry) {
    ExtentIndex::Slot const slot = index_.findPlain(entry.id);
    if (slot == ExtentIndex::none) return false;
    store(slot, entry);
    std::int32_t const earlier = slotOf(entry.id - 1);
    if (earlier == ExtentIndex::none || isLink(earlier)) return true;
    if (!entries_[index(earlier)].isContinuedBy(entry)) return true;
    DirectoryEntry run = entries_[index(earlier)];
    if (!run.isRun) {
        index_.erasePlain(run.id);
        index_.insertRun(run.id, earlier);
    }
    run.isRun = true;
    ++run.runLength;
    store(earlier, run);
    index_.erasePlain(entry.id);
    absorbed_.push_back(slot);
    return true;
}

bool DfsDirectory::hasIdsFor(DfsDirectory const & other) const noexcept {
    return other.nextId_ <= greatestId - nextId_;
}

std::int64_t DfsDirectory::merge(DfsDirectory const & other, std::uint32_t links, std::uint32_t fileIndex,
                                 FileTail * tail) {
    std::int64_t const base = nextId_;
    if (!hasIdsFor(other)) return 0;
    DfsDirectory merged = *this; // nothing has happened when there is no room or memory
    merged.nextId_ += other.nextId_;
    std::int64_t left = other.liveEntries();
    bool whole = true;
    other.forEach([&](DirectoryEntry const & theirs) {
        if (theirs.fileIndex > links) return;
        DirectoryEntry ours = theirs;
        ours.fileIndex += fileIndex;
        ours.id += base;
        if (ours.next > 0) ours.next += base;
        whole = whole && merged.insert(ours, tail, left--);
    });
    if (!whole) return 0;
    *this = std::move(merged);
    return base;
}

// --- writing

bool DfsDirectory::flush(OpenFile & file) {
    if (!writeBlocks(file)) return false;
    if (absorbed_.empty()) return true;
    for (std::int32_t const slot : absorbed_) store(slot, {});
    if (!writeBlocks(file)) return false;
    freeSlots_.insert(freeSlots_.end(), absorbed_.begin(), absorbed_.end());
    absorbed_.clear();
    return true;
}

bool DfsDirectory::writeBlocks(OpenFile & file) {
    std::vector<char> bytes;
    for (Block & block : blocks_) {
        if (block.clean) continue;
        bytes.resize(index(block.entryCount) * entryBytes);
        for (std::int32_t i = 0; i < block.entryCount; ++i)
            entries_[index(block.firstEntry + i)].encode(bytes.data() + index(i) * entryBytes);
        if (!file.writeAt(bytes, static_cast<std::uint64_t>(block.position))) return false;
        block.clean = true;
    }
    return true;
}
