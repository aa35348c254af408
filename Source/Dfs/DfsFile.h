// DfsFile: a data file, a small file system in one file. Its numbered streams of bytes lie in pieces anywhere in the
// file, and in files that it is linked with; the directory knows where.
//
// Streams grow at their ends and never change otherwise. The process that writes sees everything at once; others see
// what update() has made known: all of time-buffered streams, and of byte streams what has left their buffers.
#pragma once

#include "Dfs/DfsDirectory.h"
#include "Dfs/FileTail.h"
#include "Dfs/SlotAllocator.h"
#include "Dfs/StreamWriter.h"
#include "support/FileSystem.h"
#include "torvelan/Containers.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

class SharedBlockManager;

enum class DfsMode {
    read = 0,
    create = 1,  // a new file, held as being written
    update = 2,  // an existing one, to be continued
    replace = 3, // a new file that is not held
};

// How the setting up of a file ends.
enum class DfsStatus {
    good = 0,
    unknownVersion = 2,
    refusedVersion = 3,
    unreadable = 4, // header, directory or settings
    linkMissing = 5,
    clash = 6,
    overlap = 7,
    missingNext = 8,  // streams may end early, all else is usable
    beyondTheEnd = 9, // the same
};
constexpr bool isUsable(DfsStatus status) noexcept {
    return status == DfsStatus::good || status == DfsStatus::missingNext || status == DfsStatus::beyondTheEnd;
}

class DfsFile {
public:
    static constexpr std::int64_t linkStream = 1, settingsStream = 2, firstBootStream = 100, lastBootStream = 1000;
    static constexpr int mostLinks = 4096;

    DfsFile(YString const & path, DfsMode mode);
    // The same on a file that is open, empty where it is to be written anew. `path` is its name. A new one may stand at
    // another `place` (a full path) until it takes its name; one that never does goes with this object.
    DfsFile(std::unique_ptr<OpenFile> file, YString const & path, DfsMode mode, YString const & place = {});
    ~DfsFile(); // closes the file
    DfsFile(DfsFile const &) = delete;
    DfsFile & operator=(DfsFile const &) = delete;

    bool isOpen() const noexcept { return file_ != nullptr; }
    int openError() const noexcept { return openError_; } // an errno; EBUSY: somebody else writes the file
    bool isWritable() const noexcept { return mode_ != DfsMode::read && file_ != nullptr && isReady_; }
    YString const & path() const noexcept { return path_; } // full
    // Writes what a new file begins with, or reads an existing one and looks for damage if asked. A file with damage
    // that is not usable is left alone, and a file that has lost bytes of its own is not opened for update.
    DfsStatus openOrCreate(bool verify);
    bool flushAll(); // everything that waits reaches the file; false when it does not
    bool sync();     // what is in the file is on the disk, as far as the machine can tell
    // Flushes everything; nothing can be written or read afterwards. False when the file is not complete.
    bool close() noexcept;
    // The file has its name from now on. Another one that had it until now goes only when all that has been written
    // here is on the disk. False, and that one is as it was, when this file is not complete or cannot have the name.
    bool takeName();
    void deleteWhenClosed() noexcept { deleteOnClose_ = true; }
    bool writeFailed() const noexcept { return writeFailed_; } // at any time since the file was opened

    // --- streams. New ones are empty; 0 when the file takes none.
    std::int64_t newStream(StreamType type);
    bool openStream(std::int64_t id, StreamType type); // makes a stream of an id from 1 to 1000 if it does not exist
    bool exists(std::int64_t id) const noexcept { return directory_.extent(id).has_value(); }
    bool isStream(std::int64_t id, StreamType type) const noexcept {
        auto const first = directory_.extent(id);
        return first && first->type == type;
    }

    // Appends. False when the file does not take it; nothing has been appended then.
    bool write(std::int64_t id, void const * data, std::size_t bytes);
    bool flush(std::int64_t id); // what waits of a byte stream goes to the file
    // The open end of a stream, made when it is not there; null when the file is not written or cannot grow. Valid as
    // long as the file is open and no file is linked into this stream.
    StreamWriter * writer(std::int64_t id);
    // Moves the first bytes of a block of shared memory to the end of a byte stream, in one step and without a copy in
    // this process, and gives the block back.
    bool writeSharedBlock(std::int64_t id, SharedBlockManager & blocks, int block, std::uint64_t bytes);
    // What time-buffered streams hold, and the directory, can be read by others from now on.
    bool update();

    // --- reading. Bytes moved, fewer at the end of the stream, or where the file has lost some.
    std::size_t readAt(std::int64_t id, void * dest, std::size_t bytes, std::uint64_t position);
    std::uint64_t length(std::int64_t id); // in bytes

    // --- links
    // Enters the streams of another file in this one. The answer is the number of the link for spliceLinkedStream;
    // alreadyLinked also when the file is this one, and notLinkable for one whose data can only be copied: one that
    // goes on in a file that is linked already, for instance.
    static constexpr int alreadyLinked = -1, notLinkable = INT32_MAX;
    int addLink(DfsFile & other);
    // Continues a stream with one of the linked file.
    bool spliceLinkedStream(std::int64_t id, int link, std::int64_t otherId);
    bool isLink(int link, DfsFile const & other) const; // whether the number stands for this file
    bool rewriteLinkTable();                            // the links made since the last time reach the file

    DfsDirectory const & directory() const noexcept { return directory_; }
    struct Link {
        std::unique_ptr<OpenFile> file;
        YString path; // as it stands in the table
        FileIdentity identity;
        std::uint64_t size = 0;
        std::int64_t idBase = 0; // 0 for one that was read
    };
    std::vector<Link> const & links() const noexcept { return links_; }
    std::int32_t timeBufferSize() const noexcept { return timeBufferSize_; }

private:
    // A place in a stream that a reader has come to.
    struct Cursor {
        std::int64_t extent = 0;
        std::uint64_t start = 0; // of the extent, in the stream
    };
    struct Piece;

    DfsStatus create();
    DfsStatus read(bool verify);
    DfsStatus readDirectory(bool verify);
    bool writeSettings();
    bool readSettings();
    DfsStatus openLinks();
    bool openLink(YString const & relativePath);
    bool openLinksTo(DfsFile const & other);
    bool allLinkedBytesPresent() const;
    bool isKnown(FileIdentity const & identity);
    bool prepareUpdate(DfsStatus own);

    bool newExtent(StreamType type, std::int64_t id);
    std::optional<DirectoryEntry> lastExtent(std::int64_t id) const;
    bool chainNew(DirectoryEntry * last);
    StreamWriter * openWriter(std::int64_t id);
    bool prepareSlot(DirectoryEntry last, StreamWriter & writer);
    bool canGrow(DirectoryEntry const & slot);
    FileTail * tail() noexcept { return tail_ ? &*tail_ : nullptr; }
    bool prepareSpare(StreamWriter & writer);
    void closeExtent(StreamWriter & writer, std::int64_t position, std::uint64_t bytes);
    bool writeExtent(StreamWriter & writer, OpenFile::Bytes data);
    bool writeSlots(StreamWriter & writer);
    bool writeChangedSlots();
    bool flushDirectory();
    bool flushByteStreams();
    bool failed() noexcept;

    Piece pieceOf(std::int64_t stream, std::int64_t extent);
    std::uint64_t present(DirectoryEntry const & extent) const noexcept;

    int openError_;
    DfsMode mode_;
    YString path_;
    YString place_; // where the file is until it takes its name; else empty
    std::unique_ptr<OpenFile> file_;
    std::uint64_t fileSize_ = 0; // of a file that is only read, when its directory was read
    bool isReady_ = false;
    bool deleteOnClose_ = false;
    bool writeFailed_ = false;
    std::int32_t timeBufferSize_ = 1024;
    DfsDirectory directory_;
    std::optional<FileTail> tail_; // of a file that is written
    SlotAllocator slots_;
    std::vector<std::int64_t> formerStarts_; // of what an earlier session has left, in order; made when it is needed
    std::unordered_map<std::int64_t, std::unique_ptr<StreamWriter>, SeededHash> writers_; // by stream
    std::vector<StreamWriter *> changed_;                                                 // time-buffered ones
    std::unordered_map<std::int64_t, Cursor, SeededHash> cursors_;                        // by stream
    std::vector<Link> links_;
    std::size_t linksInTable_ = 0; // the first of links_
};
