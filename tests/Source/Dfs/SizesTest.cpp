// Streams and files of more than 4 GiB, in a layer that keeps only the bytes that are not zeros.
#include "Dfs/DfsFile.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <vector>

namespace {

constexpr std::uint64_t fourGiB = std::uint64_t{1} << 32;
constexpr std::uint64_t pageBytes = 1 << 16;

class SparseFiles final : public FileSystem {
public:
    struct Content {
        std::map<std::uint64_t, std::vector<char>> pages; // by number
        std::uint64_t size = 0;
    };

    std::unique_ptr<OpenFile> open(YString const &, FileMode) override { return std::make_unique<File>(content); }
    std::unique_ptr<OpenFile> openUnique(YString const &, YString *) override { return nullptr; }
    bool replace(YString const &, YString const &) override { return false; }
    bool remove(YString const &) override { return false; }

    Content content; // of the one file

private:
    class File final : public OpenFile {
    public:
        explicit File(Content & content_) : content(content_) {}

        std::size_t readAt(void * dest, std::size_t bytes, std::uint64_t offset) override {
            if (offset >= content.size) return 0;
            bytes = std::min<std::uint64_t>(bytes, content.size - offset);
            for (std::size_t done = 0; done < bytes;) {
                std::uint64_t const at = (offset + done) % pageBytes;
                std::size_t const n = std::min<std::uint64_t>(pageBytes - at, bytes - done);
                auto const page = content.pages.find((offset + done) / pageBytes);
                char * const to = static_cast<char *>(dest) + done;
                if (page == content.pages.end())
                    std::fill_n(to, n, '\0');
                else
                    std::copy_n(page->second.begin() + static_cast<std::ptrdiff_t>(at), n, to);
                done += n;
            }
            return bytes;
        }
        bool writeAt(Bytes first, Bytes second, std::uint64_t offset) override {
            put(first, offset);
            put(second, offset + first.size());
            return true;
        }
        using OpenFile::writeAt;
        std::uint64_t size() override { return content.size; }
        bool truncate() override {
            content = {};
            return true;
        }
        bool sync() override { return true; }
        FileIdentity identity() override { return {1, 1}; }
        int descriptor() const noexcept override { return -1; }

    private:
        void put(Bytes bytes, std::uint64_t offset) {
            content.size = std::max(content.size, offset + bytes.size());
            for (std::size_t done = 0; done < bytes.size();) {
                std::uint64_t const at = (offset + done) % pageBytes;
                std::size_t const n = std::min<std::uint64_t>(pageBytes - at, bytes.size() - done);
                putInPage((offset + done) / pageBytes, at, bytes.subspan(done, n));
                done += n;
            }
        }
        void putInPage(std::uint64_t number, std::uint64_t at, Bytes bytes) {
            bool const isZero = std::all_of(bytes.begin(), bytes.end(), [](char c) { return c == 0; });
            if (isZero && content.pages.find(number) == content.pages.end()) return;
            auto & page = content.pages[number];
            page.resize(pageBytes);
            std::copy(bytes.begin(), bytes.end(), page.begin() + static_cast<std::ptrdiff_t>(at));
        }

        Content & content;
    };
};

class Sizes : public testing::Test {
protected:
    static std::string readAt(DfsFile & file, std::int64_t stream, std::uint64_t position, std::size_t n) {
        std::string bytes(n, '?');
        bytes.resize(file.readAt(stream, bytes.data(), n, position));
        return bytes;
    }

    SparseFiles disk;
    FileSystemInUse inUse{disk};
};

// A stream of more than 4 GiB, in extents of which most lie beyond 4 GiB.
TEST_F(Sizes, AStreamIsLongerThan4GiB) {
    constexpr std::size_t piece = 1 << 22;
    constexpr std::uint64_t pieces = fourGiB / piece + 100;
    std::vector<char> bytes(piece);
    std::int64_t id, behind;
    // Each piece begins with its number and ends with a mark; the rest is zeros.
    auto const beginning = [](std::uint64_t n) { return "<" + std::to_string(1000000 + n); };
    auto const fill = [&](std::uint64_t n) {
        std::string const text = beginning(n);
        std::copy(text.begin(), text.end(), bytes.begin());
        bytes.back() = '>';
    };
    {
        DfsFile file("/large", DfsMode::create);
        ASSERT_EQ(file.openOrCreate(false), DfsStatus::good);
        id = file.newStream(StreamType::bytes);
        for (std::uint64_t n = 0; n < pieces; ++n) {
            fill(n);
            ASSERT_TRUE(file.write(id, bytes.data(), bytes.size()));
        }
        behind = file.newStream(StreamType::timeBuffered);
        ASSERT_TRUE(file.write(behind, "beyond", 6));
        ASSERT_TRUE(file.close());
    }
    EXPECT_GT(disk.content.size, fourGiB);
    for (DfsMode mode : {DfsMode::read, DfsMode::update}) {
        DfsFile file("/large", mode);
        ASSERT_EQ(file.openOrCreate(true), DfsStatus::good);
        ASSERT_EQ(file.length(id), pieces * piece);
        for (std::uint64_t n : {std::uint64_t{0}, fourGiB / piece - 1, fourGiB / piece, pieces - 1}) {
            ASSERT_EQ(readAt(file, id, n * piece, 8), beginning(n));
            ASSERT_EQ(readAt(file, id, (n + 1) * piece - 2, 2), std::string("\0>", 2));
        }
        EXPECT_EQ(readAt(file, id, fourGiB - 1, 9), ">" + beginning(fourGiB / piece)) << "across the mark";
        EXPECT_EQ(readAt(file, id, pieces * piece - 1, 100), ">") << "the end";
        EXPECT_EQ(readAt(file, id, pieces * piece, 1), "");
        EXPECT_EQ(readAt(file, behind, 0, 100), "beyond");
        if (mode == DfsMode::update) {
            ASSERT_TRUE(file.write(id, "more", 4));
            EXPECT_EQ(readAt(file, id, pieces * piece - 1, 100), ">more");
        }
    }
}

// One extent alone is longer.
TEST_F(Sizes, AnExtentIsLongerThan4GiB) {
    constexpr std::uint64_t bytes = fourGiB + (1 << 20);
    std::int64_t id;
    {
        DfsFile file("/large", DfsMode::create);
        ASSERT_EQ(file.openOrCreate(false), DfsStatus::good);
        id = file.newStream(StreamType::bytes);
        ASSERT_TRUE(file.write(id, "begin", 5) && file.flush(id) && file.write(id, "end", 3) && file.close());
    }
    // As if the first piece had been written with a great many zeros behind it.
    DirectoryEntry head, tail;
    {
        DfsFile file("/large", DfsMode::read);
        ASSERT_EQ(file.openOrCreate(true), DfsStatus::good);
        head = *file.directory().extent(id);
        tail = *file.directory().extent(head.next);
    }
    auto const file = files().open("/large", FileMode::update);
    std::uint64_t const end = static_cast<std::uint64_t>(head.offset) + bytes;
    ASSERT_TRUE(file->writeAt(std::string("end"), end));
    std::string directory(32000, '\0');
    ASSERT_EQ(file->readAt(directory.data(), directory.size(), 36), directory.size());
    for (DirectoryEntry * entry : {&head, &tail}) {
        char encoded[DirectoryEntry::bytes];
        entry->encode(encoded);
        std::size_t const at = directory.find(std::string(encoded, sizeof encoded));
        ASSERT_NE(at, std::string::npos);
        entry->size = entry == &head ? static_cast<std::int64_t>(bytes) : 3;
        if (entry == &tail) entry->offset = static_cast<std::int64_t>(end);
        entry->encode(encoded);
        ASSERT_TRUE(file->writeAt(encoded, 36 + at));
    }
    DfsFile again("/large", DfsMode::read);
    ASSERT_EQ(again.openOrCreate(true), DfsStatus::good);
    EXPECT_EQ(again.length(id), bytes + 3);
    EXPECT_EQ(readAt(again, id, 0, 5), "begin");
    EXPECT_EQ(readAt(again, id, bytes - 2, 9), std::string("\0\0end", 5));
    EXPECT_EQ(readAt(again, id, fourGiB, 4), std::string(4, '\0'));
}

} // namespace
