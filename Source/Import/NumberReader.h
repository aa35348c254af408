// Numbers of a text file at speed.
#pragma once

#include "support/Streams.h"

#include <memory>

// Reads what the stream's own extraction would read, with the same results and flags. Plain numbers are converted where
// they lie in a block of the file; whatever is unusual there, or lies at the end of the file, goes through the stream.
class NumberReader {
public:
    explicit NumberReader(tvfstream & stream);
    ~NumberReader(); // leaves the stream behind the last character taken
    NumberReader(NumberReader const &) = delete;
    NumberReader & operator=(NumberReader const &) = delete;

    // False, the value unchanged, and everything later fails as well, when no number stands there.
    bool real(double & value);
    bool skipInteger();
    int get(); // one character; -1 at the end

    bool failed() const noexcept { return failed_; }
    bool atEnd() const noexcept { return atEnd_; } // the last read met the end of the file

private:
    static constexpr std::size_t blockBytes = 1 << 16;

    template <class Number> bool read(Number & value);
    template <class Number> bool readThroughStream(Number & value);
    bool takePlain(double & value);
    bool takePlain(int & value);
    bool refill(); // false when no more could be had
    std::int64_t position() const { return blockEnd_ - (end_ - cursor_); }
    void resumeAt(std::int64_t filePosition);

    tvfstream & stream_;
    std::unique_ptr<char[]> block_;
    char const * cursor_; // unread part of the block
    char const * end_;
    std::int64_t blockEnd_; // file position behind the block's last character
    std::int64_t const fileSize_;
    bool failed_ = false;
    bool atEnd_ = false;
};
