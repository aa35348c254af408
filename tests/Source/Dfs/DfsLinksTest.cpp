// Linked files that are not what the file that links them says.
#include "Source/Dfs/DfsFixture.h"

#include "Dfs/LittleEndian.h"

namespace {

constexpr char const * first = "/d/first";
constexpr char const * second = "/d/second";

class DfsLinks : public DfsFixture {
protected:
    static constexpr std::size_t bytesOfEach = 40000;

    // Two streams in each file; the first of the one goes on with the first of the other.
    DfsLinks() {
        auto const a = create(first);
        streams[0] = a->newStream(StreamType::bytes);
        streams[1] = a->newStream(StreamType::bytes);
        append(*a, streams[0], pattern(0, 0, bytesOfEach));
        append(*a, streams[1], pattern(1, 0, bytesOfEach));
        auto const b = create(second);
        for (int i : {2, 3}) append(*b, b->newStream(StreamType::bytes), pattern(i, 0, bytesOfEach));
        int const link = a->addLink(*b);
        EXPECT_TRUE(a->spliceLinkedStream(streams[0], link, streams[0]));
        EXPECT_TRUE(a->rewriteLinkTable());
    }

    // The place of the record of an extent in the first file.
    std::size_t recordOf(DirectoryEntry const & entry) const {
        std::string id(8, '\0');
        storeNumber(id.data(), entry.id);
        return disk.bytes(first).find(id, 36) - 8;
    }
    std::vector<DirectoryEntry> linkedExtents() {
        std::vector<DirectoryEntry> found;
        open(DfsMode::read, first)->directory().forEach([&](DirectoryEntry const & entry) {
            if (entry.fileIndex == 1 && entry.size == bytesOfEach) found.push_back(entry);
        });
        return found;
    }

    std::int64_t streams[2];
};

// Otherwise a small file could be a long stream: each of its bytes many times.
TEST_F(DfsLinks, ExtentsOfALinkedFileShareNoBytes) {
    auto const extents = linkedExtents();
    ASSERT_EQ(extents.size(), 2U);
    std::string const whole = disk.bytes(first);
    for (std::int64_t distance : {std::int64_t{0}, std::int64_t{1}, std::int64_t{bytesOfEach - 1}}) {
        std::string bytes = whole;
        storeNumber(bytes.data() + recordOf(extents[1]) + 16, extents[0].offset + distance);
        disk.put(first, bytes);
        open(DfsMode::read, first, DfsStatus::overlap);
        open(DfsMode::update, first, DfsStatus::overlap);
    }
}

TEST_F(DfsLinks, AShortLinkedFileIsToldAndReadAsFarAsItGoes) {
    disk.put(second, disk.bytes(second).substr(0, static_cast<std::size_t>(linkedExtents()[0].offset) + 100));
    for (DfsMode mode : {DfsMode::read, DfsMode::update}) {
        auto const file = open(mode, first, DfsStatus::beyondTheEnd);
        EXPECT_EQ(all(*file, streams[0]), pattern(0, 0, bytesOfEach) + pattern(2, 0, 100));
        EXPECT_EQ(all(*file, streams[1]), pattern(1, 0, bytesOfEach));
    }
}

TEST_F(DfsLinks, NothingIsWrittenBehindLostBytes) {
    disk.put(second, disk.bytes(second).substr(0, static_cast<std::size_t>(linkedExtents()[0].offset) + 100));
    {
        auto const file = open(DfsMode::update, first, DfsStatus::beyondTheEnd);
        EXPECT_FALSE(append(*file, streams[0], "nobody would find it"));
        EXPECT_TRUE(append(*file, streams[1], "here"));
        EXPECT_TRUE(file->close());
    }
    auto const file = open(DfsMode::read, first, DfsStatus::beyondTheEnd);
    EXPECT_EQ(all(*file, streams[1]), pattern(1, 0, bytesOfEach) + "here");
}

} // namespace
