// The open ends of streams.
#include "Dfs/DfsFile.h"

#include "support/Timers.h"
#include "torvelan/SharedBlocks.h"

#include <algorithm>

std::int64_t DfsFile::newStream(StreamType type) {
    std::int64_t const id = isWritable() ? directory_.newId() : 0;
    return id != 0 && newExtent(type, id) ? id : 0;
}

bool DfsFile::openStream(std::int64_t id, StreamType type) {
    if (id < linkStream || id >= DfsDirectory::firstFreeId || !isWritable()) return false;
    return exists(id) || newExtent(type, id);
}

bool DfsFile::newExtent(StreamType type, std::int64_t id) {
    DirectoryEntry entry;
    entry.id = id;
    entry.type = type;
    return (id != 0 && directory_.add(entry, tail())) || failed();
}

// The walk ends at an extent whose successor has been lost. There is none where a linked file has lost bytes: nobody
// would find what were written behind them.
std::optional<DirectoryEntry> DfsFile::lastExtent(std::int64_t id) const {
    std::optional<DirectoryEntry> last;
    for (auto at = directory_.extent(id); at; at = directory_.extent(at->next)) {
        if (present(*at) != static_cast<std::uint64_t>(at->size)) return std::nullopt;
        last = at;
    }
    return last;
}

// A new, empty last extent.
bool DfsFile::chainNew(DirectoryEntry * last) {
    std::int64_t const id = directory_.newId();
    StreamType const type = last->type;
    if (!newExtent(type, id)) return false;
    last->next = id;
    if (!directory_.set(*last)) return failed(); // damage has left the end of the stream inside a run
    *last = *directory_.extent(id);
    return true;
}

StreamWriter * DfsFile::writer(std::int64_t id) {
    auto const known = writers_.find(id);
    if (known != writers_.end()) return known->second.get();
    return isWritable() ? openWriter(id) : nullptr;
}

StreamWriter * DfsFile::openWriter(std::int64_t id) {
    auto last = lastExtent(id);
    if (!last) return nullptr;
    bool const isSlot = last->type == StreamType::timeBuffered;
    bool const isClosed = last->fileIndex != 0 || last->next > 0 || (last->size > 0 && !isSlot);
    if (isClosed && !chainNew(&*last)) return nullptr;
    std::size_t const initialSize = isSlot ? static_cast<std::size_t>(timeBufferSize_) : StreamWriter::extentBytes;
    auto made = std::make_unique<StreamWriter>(id, last->type, last->id, initialSize);
    if (isSlot && !prepareSlot(*last, *made)) return nullptr;
    return writers_.emplace(id, std::move(made)).first->second.get();
}

// The bytes of a slot that is to grow are written again with those that come.
bool DfsFile::prepareSlot(DirectoryEntry last, StreamWriter & writer) {
    if (last.size > 0 && canGrow(last)) {
        std::vector<char> bytes(static_cast<std::size_t>(last.size));
        bytes.resize(file_->readAt(bytes.data(), bytes.size(), static_cast<std::uint64_t>(last.offset)));
        writer.append(bytes.data(), bytes.size());
        return static_cast<std::int64_t>(bytes.size()) == last.size || failed();
    }
    if (last.size > 0 && !chainNew(&last)) return false;
    writer.extent = last.id;
    last.offset = slots_.allocate(timeBufferSize_, *tail_);
    if (last.offset < 0) return failed();
    directory_.set(last);
    return true;
}

// Nothing lies in the rest of a slot that an earlier session has made, as it should be.
bool DfsFile::canGrow(DirectoryEntry const & slot) {
    if (formerStarts_.empty()) {
        directory_.forEach([this](DirectoryEntry const & entry) { formerStarts_.push_back(entry.offset); });
        for (DfsDirectory::Block const & block : directory_.blocks()) formerStarts_.push_back(block.position);
        std::sort(formerStarts_.begin(), formerStarts_.end());
    }
    auto const next = std::upper_bound(formerStarts_.begin(), formerStarts_.end(), slot.offset);
    std::int64_t const end = next != formerStarts_.end() ? *next : static_cast<std::int64_t>(fileSize_);
    return end - slot.offset >= timeBufferSize_;
}

bool DfsFile::write(std::int64_t id, void const * data, std::size_t bytes) {
    if (bytes == 0) return exists(id);
    StreamWriter * const to = writer(id);
    if (to == nullptr) return false;
    if (to->type == StreamType::bytes)
        return to->take(data, bytes) || writeExtent(*to, {static_cast<char const *>(data), bytes});
    to->append(data, bytes);
    if (!to->changed) changed_.push_back(to);
    to->changed = true;
    return true;
}

bool DfsFile::flush(std::int64_t id) {
    auto const known = writers_.find(id);
    if (known == writers_.end() || known->second->type != StreamType::bytes) return true;
    return known->second->length() == 0 || writeExtent(*known->second, {});
}

// What waits and what comes, in one piece at the end of the file.
bool DfsFile::writeExtent(StreamWriter & writer, OpenFile::Bytes data) {
    OpenFile::Bytes const waiting = writer.waiting();
    std::int64_t position;
    if (!prepareSpare(writer) || !tail_->append(waiting, data, &position)) return failed();
    closeExtent(writer, position, waiting.size() + data.size());
    writer.clear();
    return true;
}

// The successor is entered first: when that fails, nothing has happened.
bool DfsFile::prepareSpare(StreamWriter & writer) {
    if (writer.spare != 0) return true;
    std::int64_t const id = directory_.newId();
    if (!newExtent(writer.type, id)) return false;
    writer.spare = id;
    return true;
}

void DfsFile::closeExtent(StreamWriter & writer, std::int64_t position, std::uint64_t bytes) {
    DirectoryEntry closed = *directory_.extent(writer.extent);
    closed.offset = position;
    closed.size = static_cast<std::int64_t>(bytes);
    closed.next = writer.spare;
    directory_.set(closed);
    writer.extent = std::exchange(writer.spare, 0);
}

bool DfsFile::writeSlots(StreamWriter & writer) {
    auto const slotSize = static_cast<std::size_t>(timeBufferSize_);
    for (;;) {
        DirectoryEntry slot = *directory_.extent(writer.extent);
        OpenFile::Bytes const bytes = writer.waiting();
        bool const isFull = bytes.size() > slotSize;
        if (!file_->writeAt(bytes.first(std::min(bytes.size(), slotSize)), static_cast<std::uint64_t>(slot.offset)))
            return failed();
        if (!isFull) {
            slot.size = static_cast<std::int64_t>(bytes.size());
            directory_.set(slot);
            return true;
        }
        if (!prepareSpare(writer)) return false;
        DirectoryEntry next = *directory_.extent(writer.spare);
        if (next.offset <= 0) next.offset = slots_.allocate(timeBufferSize_, *tail_);
        if (next.offset < 0) return failed();
        directory_.set(next);
        closeExtent(writer, slot.offset, slotSize);
        writer.drop(slotSize);
    }
}

bool DfsFile::writeSharedBlock(std::int64_t id, SharedBlockManager & blocks, int block, std::uint64_t bytes) {
    TvTimer const timer("writeSharedBlock");
    StreamWriter * const to = writer(id);
    char const * const from = blocks.address(block);
    bool const isAcceptable = to != nullptr && to->type == StreamType::bytes && from != nullptr && bytes > 0;
    if (!isAcceptable || bytes > blocks.getBlockSize() || !flush(id) || !prepareSpare(*to)) return false;
    std::int64_t position;
    if (!tail_->append({from, bytes}, {}, &position)) return failed();
    closeExtent(*to, position, bytes);
    blocks.free(block);
    return true;
}
