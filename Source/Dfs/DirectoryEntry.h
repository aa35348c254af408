// DirectoryEntry: one record of the directory of a data file. It describes an extent, a piece of a stream, or a run of
// extents of one size.
#pragma once

#include <cstdint>

enum class StreamType : std::uint8_t {
    bytes = 0,        // written in large pieces
    timeBuffered = 1, // grows in small pieces, in slots that are rewritten
};

struct DirectoryEntry {
    static constexpr std::uint64_t bytes = 40; // on disk

    std::uint32_t fileIndex = 0; // 0: this file; n: the nth linked one
    StreamType type = StreamType::bytes;
    bool isRun = false;
    std::int64_t id = 0;        // of the extent, or of the first of a run; 0 or below: the entry is free
    std::int64_t offset = 0;    // in the file
    std::int64_t size = 0;      // of the extent, or of each of a run
    std::int32_t runLength = 1; // extents
    std::int64_t next = 0;      // extent that follows (that of the first of a run); 0: none

    bool isLive() const noexcept { return id > 0; }
    std::int64_t endId() const noexcept { return id + runLength; }
    bool holds(std::int64_t extent) const noexcept { return extent >= id && extent < endId(); }
    // One extent of a run, as an entry of its own.
    DirectoryEntry extent(std::int64_t extentId) const noexcept;
    // The extent behind the last one of this has the same shape, and stands where the run would have it.
    bool isContinuedBy(DirectoryEntry const & extent) const noexcept;

    enum class Decoded { good, unknownForm, impossible };
    // 40 bytes, little-endian. An extent that no file can hold is impossible; a free entry is always good.
    static Decoded decode(char const * from, DirectoryEntry * to) noexcept;
    void encode(char * to) const noexcept;
};
