// What lies in streams.
#include "Dfs/DfsFile.h"

#include <algorithm>

// The bytes of an extent, in a file or in the buffer of the writer that will put them there.
struct DfsFile::Piece {
    OpenFile * file = nullptr; // null: `waiting` instead
    std::uint64_t offset = 0;
    std::uint64_t bytes = 0;
    OpenFile::Bytes waiting;
    std::int64_t next = 0; // extent that follows; 0 when the stream ends here, or the file has lost the rest

    Piece part(std::uint64_t from, std::uint64_t n) const noexcept {
        Piece cut = *this;
        cut.offset += from;
        cut.bytes = n;
        if (file == nullptr) cut.waiting = waiting.subspan(from, n);
        return cut;
    }
    // Takes in a piece that lies right behind this in the same file.
    bool join(Piece const & behind) noexcept {
        if (file == nullptr || file != behind.file || offset + bytes != behind.offset) return false;
        bytes += behind.bytes;
        return true;
    }
    std::size_t readTo(char * dest) const {
        if (file != nullptr) return file->readAt(dest, bytes, offset);
        std::copy(waiting.begin(), waiting.end(), dest);
        return waiting.size();
    }
};

// Of an extent, what its file holds. What this process has written is there.
std::uint64_t DfsFile::present(DirectoryEntry const & extent) const noexcept {
    if (extent.fileIndex == 0 && mode_ != DfsMode::read) return static_cast<std::uint64_t>(extent.size);
    if (extent.fileIndex > links_.size()) return 0;
    std::uint64_t const fileSize = extent.fileIndex == 0 ? fileSize_ : links_[extent.fileIndex - 1].size;
    auto const offset = static_cast<std::uint64_t>(extent.offset);
    return offset < fileSize ? std::min(static_cast<std::uint64_t>(extent.size), fileSize - offset) : 0;
}

DfsFile::Piece DfsFile::pieceOf(std::int64_t stream, std::int64_t id) {
    auto const open = writers_.find(stream);
    Piece piece;
    if (open != writers_.end() && open->second->extent == id) {
        piece.waiting = open->second->waiting();
        piece.bytes = piece.waiting.size();
        return piece;
    }
    auto const extent = directory_.extent(id);
    if (!extent) return piece;
    piece.bytes = present(*extent);
    piece.offset = static_cast<std::uint64_t>(extent->offset);
    if (extent->fileIndex == 0)
        piece.file = file_.get();
    else if (extent->fileIndex <= links_.size())
        piece.file = links_[extent->fileIndex - 1].file.get();
    bool const isWhole = piece.bytes == static_cast<std::uint64_t>(extent->size);
    piece.next = isWhole && piece.file != nullptr ? std::max<std::int64_t>(extent->next, 0) : 0;
    return piece;
}

// Reads go on where the last one of the stream ended, or start anew. Neighbours in the file are read in one go.
std::size_t DfsFile::readAt(std::int64_t id, void * dest, std::size_t bytes, std::uint64_t position) {
    if (file_ == nullptr) return 0;
    Cursor & at = cursors_[id];
    if (at.extent == 0 || at.start > position) at = {id, 0};
    auto * to = static_cast<char *>(dest);
    std::size_t planned = 0;
    std::size_t done = 0;
    Piece gathered;
    auto const fetch = [&] {
        done += gathered.readTo(to + done);
        return done == planned;
    };
    for (;;) {
        Piece const piece = pieceOf(id, at.extent);
        std::uint64_t const from = position + planned - at.start;
        if (from < piece.bytes && planned < bytes) {
            Piece const part = piece.part(from, std::min<std::uint64_t>(piece.bytes - from, bytes - planned));
            if (!gathered.join(part)) {
                if (!fetch()) return done;
                gathered = part;
            }
            planned += part.bytes;
        }
        if (planned == bytes || piece.next == 0) break;
        at = {piece.next, at.start + piece.bytes};
    }
    fetch();
    return done;
}

std::uint64_t DfsFile::length(std::int64_t id) {
    std::uint64_t total = 0;
    for (std::int64_t at = id; at != 0;) {
        Piece const piece = pieceOf(id, at);
        total += piece.bytes;
        at = piece.next;
    }
    return total;
}
