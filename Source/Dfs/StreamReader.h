// StreamReader: reads a stream from its beginning, piece by piece. The records of a file are read with it: what it
// gives is never more than what the stream holds.
#pragma once

#include "torvelan/Containers.h"

#include <cstdint>
#include <cstring>
#include <string_view>

class DfsFile;

class StreamReader {
public:
    static constexpr std::size_t readAhead = 32768;

    StreamReader(DfsFile & file, std::int64_t stream) noexcept : file_(file), stream_(stream) {}

    std::size_t read(void * dest, std::size_t bytes); // bytes moved; fewer at the end
    // False, and the value as it was, when the stream ends before. A text of negative length is no text.
    bool readString(YString * text);
    template <class Number> bool readNumber(Number * value) {
        char bytes[sizeof(Number)];
        if (read(bytes, sizeof bytes) != sizeof bytes) return false;
        std::memcpy(value, bytes, sizeof bytes);
        return true;
    }
    std::uint64_t left(); // bytes to come

private:
    bool refill();

    DfsFile & file_;
    std::int64_t stream_;
    std::uint64_t position_ = 0; // in the stream, of the buffer's end
    std::uint64_t length_ = UINT64_MAX;
    YVector<char> buffer_;
    std::size_t begin_ = 0, end_ = 0;
};
