// StreamWriter: the open end of a stream, and the bytes that wait there to be written.
//
// A run appends to thousands of streams in turn, a number each; their buffers are far more than the cache holds. So
// the last bytes are gathered in one line of the cache, and only whole lines go to the buffer, past the cache.
#pragma once

#include "Dfs/DirectoryEntry.h"
#include "Dfs/OpenEnd.h"

#include <cstdint>
#include <span>
#include <vector>

class StreamWriter {
public:
    static constexpr std::size_t extentBytes = 32768; // byte streams are written in pieces of at least this size
    static constexpr std::size_t lineBytes = 64;      // of the cache

    StreamWriter(std::int64_t stream, StreamType type, std::int64_t extent, std::size_t initialSize);
    StreamWriter(StreamWriter const &) = delete;
    StreamWriter & operator=(StreamWriter const &) = delete;
    static void * operator new(std::size_t size);
    static void operator delete(void * memory) noexcept;

    // Takes bytes without a look at the file; false, and none is taken, when they are too many for the buffer.
    bool take(void const * data, std::size_t bytes) noexcept;
    void append(void const * data, std::size_t bytes); // the same with a buffer that grows
    std::size_t length() const noexcept { return whole + static_cast<std::size_t>(end->next - line.bytes); }
    std::span<char const> waiting() noexcept; // valid until the next change
    void drop(std::size_t bytes) noexcept;    // the first ones of those that wait
    void clear() noexcept { drop(length()); }

    // One that appends often to a byte stream gets the end of the line, which both move from then on, until it is given
    // back. False when another one has it, or the stream is no byte stream.
    bool lend(OpenEnd * borrower) noexcept;
    void takeBack() noexcept;

    std::int64_t const stream;
    StreamType const type;
    std::int64_t extent;    // where the bytes will go
    std::int64_t spare = 0; // an extent that is entered and will be the next one; 0: none
    bool changed = false;   // among those that the next update writes

private:
    struct alignas(lineBytes) Line {
        char bytes[lineBytes];
    };

    char * bytes() noexcept { return buffer.data()->bytes; }
    std::size_t room() const noexcept { return buffer.size() * lineBytes - length(); }
    void openLine(std::size_t filled) noexcept;
    void completeLine() noexcept;

    Line line; // the last bytes
    std::vector<Line> buffer;
    std::size_t whole = 0; // bytes of whole lines in the buffer
    OpenEnd ownEnd;
    OpenEnd * end = &ownEnd;
};
