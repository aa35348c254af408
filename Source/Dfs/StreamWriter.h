// StreamWriter: the open end of a stream, and the bytes that wait there to be written.
#pragma once

#include "Dfs/DirectoryEntry.h"
#include "torvelan/Containers.h"

#include <cstdint>
#include <cstring>
#include <span>

class StreamWriter {
public:
    static constexpr std::size_t extentBytes = 32768; // byte streams are written in pieces of at least this size

    StreamWriter(std::int64_t stream, StreamType type, std::int64_t extent, std::size_t initialSize);

    // Takes bytes without a look at the file; false when they are too many for that.
    bool take(void const * data, std::size_t bytes) noexcept {
        if (bytes > room) return false;
        std::memcpy(buffer.data() + length, data, bytes);
        length += bytes;
        room -= bytes;
        return true;
    }
    std::span<char const> waiting() const noexcept { return {buffer.data(), length}; }
    void append(void const * data, std::size_t bytes); // grows where it must
    void drop(std::size_t bytes) noexcept;             // the first ones
    void clear() noexcept { drop(length); }

    std::int64_t const stream;
    StreamType const type;
    std::int64_t extent;    // where the bytes will go
    std::int64_t spare = 0; // an extent that is entered and will be the next one; 0: none
    bool changed = false;   // among those that the next update writes

private:
    YVector<char> buffer;
    std::size_t length = 0;
    std::size_t room; // what take() takes: nothing of streams that are to be told apart when they change
};
