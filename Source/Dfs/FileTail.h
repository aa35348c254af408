// FileTail: the end of a data file that is being written, where everything new goes.
#pragma once

#include "support/FileSystem.h"

class FileTail {
public:
    static constexpr std::uint64_t pageBytes = 4096;

    FileTail(OpenFile & file, std::uint64_t end) noexcept : file_(&file), end_(end) {}

    std::uint64_t end() const noexcept { return end_; }
    // Writes at the end and hands out where. False, and the end is where it was, when that fails.
    bool append(OpenFile::Bytes first, OpenFile::Bytes second, std::int64_t * position);
    bool appendZeros(std::uint64_t bytes, std::int64_t * position);
    // Zeros up to the next page, unless the next so many bytes lie within one.
    bool alignFor(std::uint64_t bytes);

private:
    OpenFile * file_;
    std::uint64_t end_;
};
