// Data files in memory.
#pragma once

#include "Dfs/DfsFile.h"
#include "support/MemoryFiles.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

class DfsFixture : public testing::Test {
protected:
    static constexpr char const * defaultName = "/f";

    YRef<DfsFile> create(char const * name = defaultName) {
        auto file = std::make_shared<DfsFile>(name, DfsMode::create);
        EXPECT_EQ(file->openOrCreate(false), DfsStatus::good);
        return file;
    }
    YRef<DfsFile> open(DfsMode mode = DfsMode::read, char const * name = defaultName,
                       DfsStatus expected = DfsStatus::good) {
        auto file = std::make_shared<DfsFile>(name, mode);
        EXPECT_TRUE(file->isOpen());
        if (file->isOpen()) {
            EXPECT_EQ(file->openOrCreate(true), expected);
        }
        return file;
    }
    static bool append(DfsFile & file, std::int64_t stream, std::string const & bytes) {
        return file.write(stream, bytes.data(), bytes.size());
    }
    static std::string all(DfsFile & file, std::int64_t stream) {
        std::string bytes(file.length(stream), '\0');
        EXPECT_EQ(file.readAt(stream, bytes.data(), bytes.size(), 0), bytes.size());
        return bytes;
    }
    // Bytes that differ from place to place and from stream to stream.
    static std::string pattern(std::int64_t stream, std::size_t from, std::size_t n) {
        std::string bytes(n, '\0');
        for (std::size_t i = 0; i < n; ++i)
            bytes[i] =
                static_cast<char>((static_cast<std::size_t>(stream) * 131 + (from + i) * 7 + (from + i) / 251) & 0xff);
        return bytes;
    }
    static std::int64_t entries(DfsFile const & file) {
        std::int64_t n = 0;
        file.directory().forEach([&n](DirectoryEntry const &) { ++n; });
        return n;
    }

    MemoryFiles disk;
    FileSystemInUse inUse{disk};
};
