// DfsDirectory: the directory of a data file, in memory as a whole. On disk it is a chain of blocks of entries. Entry 0
// and the first entry of each later block describe the block that follows; all others describe extents of streams.
//
// A flush can be cut off at any page. So that each state it may leave is a directory again, no entry lies across two
// pages, and entries that have gone into a run are cleared only after the run itself is on disk.
#pragma once

#include "Dfs/DirectoryEntry.h"
#include "Dfs/ExtentIndex.h"
#include "Dfs/FileTail.h"

#include <cstdint>
#include <optional>
#include <vector>

class DfsDirectory {
public:
    static constexpr std::int64_t firstFreeId = 1001; // smaller ones are given out on request only
    static constexpr std::uint64_t blockEntries = 800;

    enum class LoadResult { good, unreadable, impossibleExtent, overlap };

    // The blocks of the directory, as places in the file.
    struct Block {
        bool clean = false;
        std::int32_t firstEntry = 0;
        std::int32_t entryCount = 0;
        std::int64_t position = 0;
    };

    // Makes the directory of a new file: its first block is written at the end of the file, behind its size.
    bool create(FileTail & tail);
    // Reads that of a file, whose header ends at `position`.
    LoadResult load(OpenFile & file, std::uint64_t position);
    // Writes what has changed. False when the file does not take it; what was not written is written next time.
    bool flush(OpenFile & file);

    std::optional<DirectoryEntry> extent(std::int64_t id) const noexcept; // a plain entry
    std::int64_t newId() noexcept;                                        // 0 when there are no more
    // Enters a plain entry of a new id. False when the directory cannot grow. A null tail is for a file that is only
    // read: the entry is in memory alone.
    bool add(DirectoryEntry const & entry, FileTail * tail);
    // Changes the plain entry of its id; a regular sequence of extents becomes one entry.
    // False for an extent inside a run, which stays.
    bool set(DirectoryEntry const & entry);
    // Whether there are ids for the extents of another file's directory.
    bool hasIdsFor(DfsDirectory const & other) const noexcept;
    // Enters the extents of another file's directory, with fileIndex and ids raised. The answer is what the ids were
    // raised by; 0 when the directory cannot grow.
    // Entries of that file that belong to no link of its `links` stay behind.
    std::int64_t merge(DfsDirectory const & other, std::uint32_t links, std::uint32_t fileIndex, FileTail * tail);

    // Every live entry that describes data, in the order of the directory.
    template <class Visit> void forEach(Visit visit) const {
        for (Block const & block : blocks_)
            for (std::int32_t i = 1; i < block.entryCount; ++i)
                if (DirectoryEntry const & entry = entries_[index(block.firstEntry + i)]; entry.isLive()) visit(entry);
    }
    std::vector<Block> const & blocks() const noexcept { return blocks_; }
    // The id that the last block's chain entry waits for and that no block has brought; 0 when the chain is whole.
    std::int64_t missingBlock() const noexcept { return missingBlock_; }
    DirectoryEntry const & chainEntry(Block const & block) const noexcept { return entries_[index(block.firstEntry)]; }
    std::int64_t liveEntries() const noexcept;

private:
    static std::size_t index(std::int32_t slot) noexcept { return static_cast<std::size_t>(slot); }
    bool isLink(std::int32_t slot) const noexcept; // first entry of a block
    bool straddles(std::int32_t slot) const noexcept;
    Block & blockOf(std::int32_t slot) noexcept;
    Block const & blockOf(std::int32_t slot) const noexcept;
    void store(std::int32_t slot, DirectoryEntry const & entry);
    std::int32_t capacity() const noexcept { return static_cast<std::int32_t>(entries_.size()); }
    void appendBlock(std::int64_t position, std::int32_t count);
    bool addBlock(std::int64_t entries, FileTail * tail);
    std::int32_t freeSlot(FileTail * tail, std::int64_t expected);
    bool insert(DirectoryEntry const & entry, FileTail * tail, std::int64_t expected);
    LoadResult readBlock(OpenFile & file, std::uint64_t position, std::uint64_t bytes);
    LoadResult readChain(OpenFile & file, std::uint64_t position);
    LoadResult indexEntries();
    bool isLeftover(DirectoryEntry const & plain) const noexcept;
    bool writeBlocks(OpenFile & file);
    std::int32_t slotOf(std::int64_t id) const noexcept;

    std::int32_t used_ = 0; // slots in use, with the gaps among them
    std::vector<DirectoryEntry> entries_;
    std::vector<Block> blocks_;
    ExtentIndex index_;
    std::vector<std::int32_t> freeSlots_;
    std::vector<std::int32_t> absorbed_; // gone into a run, not yet cleared on disk
    std::int64_t nextId_ = firstFreeId;
    std::int64_t missingBlock_ = 0;
};
