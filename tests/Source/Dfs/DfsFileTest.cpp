#include "Source/Dfs/DfsFixture.h"

#include "Dfs/FileHeader.h"
#include "Dfs/LittleEndian.h"
#include "Dfs/StreamReader.h"

#include <numeric>
#include <random>

namespace {

using Dfs = DfsFixture;
constexpr std::size_t extent = StreamWriter::extentBytes;

TEST_F(Dfs, ANewFileBeginsWithHeaderAndFirstBlock) {
    create();
    std::string const & bytes = disk.bytes(defaultName);
    std::string const header("\x11\0\0\0Torvelan datafile\3\0\0\0007.0", 28);
    ASSERT_GE(bytes.size(), 36U + 32000U);
    EXPECT_EQ(bytes.substr(0, 28), header);
    EXPECT_EQ(loadNumber<std::int64_t>(bytes.data() + 28), 32000);
    EXPECT_EQ(loadNumber<std::int64_t>(bytes.data() + 36 + 8), 1001) << "the chain's entry";
    EXPECT_EQ(loadNumber<std::int64_t>(bytes.data() + 36 + 32), -1);
    EXPECT_EQ(loadNumber<std::int64_t>(bytes.data() + 76 + 8), 2) << "the settings";
    EXPECT_EQ(bytes.substr(36 + 32000, 30), std::string("\x16\0\0\0TimeBufferedBufferSize\0\4\0\0", 30));
}

TEST_F(Dfs, AnEmptyStreamHasOneExtentAndNothingInIt) {
    auto const file = create();
    std::int64_t const id = file->newStream(StreamType::bytes);
    auto const only = file->directory().extent(id);
    ASSERT_TRUE(only.has_value());
    EXPECT_EQ(only->size, 0);
    EXPECT_EQ(only->next, 0);
    EXPECT_EQ(file->length(id), 0U);
    char byte;
    EXPECT_EQ(file->readAt(id, &byte, 1, 0), 0U);
}

TEST_F(Dfs, ReservedStreamsAreGivenOutOnRequestOnly) {
    auto const file = create();
    EXPECT_GT(file->newStream(StreamType::bytes), 1000);
    EXPECT_TRUE(file->openStream(1000, StreamType::bytes));
    EXPECT_FALSE(file->openStream(1001, StreamType::bytes));
    EXPECT_FALSE(file->openStream(0, StreamType::bytes));
}

TEST_F(Dfs, ByteStreamsAreWrittenInPiecesOfAtLeast32KiB) {
    auto const file = create();
    std::int64_t const id = file->newStream(StreamType::bytes);
    append(*file, id, pattern(id, 0, extent));
    EXPECT_EQ(file->directory().extent(id)->size, 0) << "the buffer holds it";
    append(*file, id, pattern(id, extent, 1));
    auto const first = file->directory().extent(id);
    EXPECT_EQ(first->size, static_cast<std::int64_t>(extent + 1));
    EXPECT_EQ(file->directory().extent(first->next)->size, 0) << "the last extent is empty and open";
    EXPECT_EQ(all(*file, id), pattern(id, 0, extent + 1));
}

TEST_F(Dfs, TheWriterReadsWhatWaits) {
    auto const file = create();
    std::int64_t const bytes = file->newStream(StreamType::bytes);
    std::int64_t const slots = file->newStream(StreamType::timeBuffered);
    append(*file, bytes, "abc");
    append(*file, slots, "defg");
    EXPECT_EQ(all(*file, bytes), "abc");
    EXPECT_EQ(all(*file, slots), "defg");
    file->update();
    append(*file, slots, "hi");
    EXPECT_EQ(all(*file, slots), "defghi");
    EXPECT_EQ(open()->length(slots), 4U) << "others see the last update";
    EXPECT_EQ(open()->length(bytes), 0U);
}

TEST_F(Dfs, SlotsGrowInPlaceAndGoOnInOthers) {
    auto const file = create();
    std::int64_t const id = file->newStream(StreamType::timeBuffered);
    std::string whole;
    for (std::size_t n = 0; whole.size() < 5000; ++n) {
        std::string const part = pattern(id, whole.size(), n % 300);
        append(*file, id, part);
        whole += part;
        ASSERT_TRUE(file->update());
        ASSERT_EQ(all(*open(), id), whole);
    }
    std::int64_t extents = 0;
    for (auto at = file->directory().extent(id); at; at = file->directory().extent(at->next)) {
        EXPECT_LE(at->size, 1024);
        ++extents;
    }
    EXPECT_EQ(extents, static_cast<std::int64_t>((whole.size() + 1023) / 1024));
}

TEST_F(Dfs, EqualExtentsOfStreamsThatGrowTogetherTakeOneEntry) {
    auto const file = create();
    std::vector<std::int64_t> ids(100);
    for (auto & id : ids) id = file->newStream(StreamType::bytes);
    std::int64_t const before = entries(*file);
    for (std::size_t round = 0; round < 50; ++round) {
        for (auto id : ids) append(*file, id, pattern(id, round * 40000, 40000));
        ASSERT_TRUE(file->update());
    }
    EXPECT_LT(entries(*file), before + 300) << "of 5,000 extents";
    for (auto id : ids) ASSERT_EQ(all(*file, id), pattern(id, 0, 50 * 40000));
    auto const reader = open();
    for (auto id : ids) ASSERT_EQ(all(*reader, id), pattern(id, 0, 50 * 40000));
}

TEST_F(Dfs, TheMiddleOfARunIsAPlainExtent) {
    DirectoryEntry run;
    run.isRun = true;
    run.id = 1010;
    run.runLength = 10;
    run.offset = 5000;
    run.size = 100;
    run.next = 2000;
    DirectoryEntry const middle = run.extent(1015);
    EXPECT_FALSE(middle.isRun);
    EXPECT_EQ(middle.offset, 5500);
    EXPECT_EQ(middle.next, 2005);
    run.next = 0;
    EXPECT_EQ(run.extent(1015).next, 0);
}

// 799 entries stand beside the chain's own, less those that would lie across two pages.
TEST_F(Dfs, TheDirectoryGrowsByBlocksAtTheEndOfTheFile) {
    auto const file = create();
    while (file->directory().blocks().size() < 4) ASSERT_NE(file->newStream(StreamType::bytes), 0);
    EXPECT_GT(entries(*file), 3 * 785);
    EXPECT_LE(entries(*file), 3 * 799 + 1);
    ASSERT_TRUE(file->update());
    auto const reader = open();
    EXPECT_EQ(reader->directory().blocks().size(), 4U);
    EXPECT_EQ(entries(*reader), entries(*file));
    for (auto const & block : file->directory().blocks()) EXPECT_EQ(block.entryCount, 800);
}

TEST_F(Dfs, NoLiveEntryLiesAcrossTwoPages) {
    auto const file = create();
    for (int i = 0; i < 3000; ++i) file->newStream(StreamType::bytes);
    ASSERT_TRUE(file->update());
    std::string const & bytes = disk.bytes(defaultName);
    for (auto const & block : file->directory().blocks())
        for (int i = 0; i < block.entryCount; ++i) {
            auto const at = static_cast<std::uint64_t>(block.position) + static_cast<std::uint64_t>(i) * 40;
            if (loadNumber<std::int64_t>(bytes.data() + at + 8) > 0) {
                ASSERT_EQ(at / 4096, (at + 39) / 4096) << "entry " << i;
            }
        }
}

TEST_F(Dfs, AFileIsContinuedWhereItEnded) {
    std::int64_t bytes, slots;
    {
        auto const file = create();
        bytes = file->newStream(StreamType::bytes);
        slots = file->newStream(StreamType::timeBuffered);
        append(*file, bytes, pattern(bytes, 0, 50000));
        append(*file, slots, pattern(slots, 0, 1500));
    }
    for (std::size_t round = 1; round <= 5; ++round) {
        auto const file = open(DfsMode::update);
        append(*file, bytes, pattern(bytes, round * 50000, 50000));
        append(*file, slots, pattern(slots, round * 1500, 1500));
        ASSERT_EQ(all(*file, bytes), pattern(bytes, 0, (round + 1) * 50000));
    }
    auto const reader = open();
    EXPECT_EQ(all(*reader, bytes), pattern(bytes, 0, 300000));
    EXPECT_EQ(all(*reader, slots), pattern(slots, 0, 9000));
    std::int64_t extents = 0;
    for (auto at = reader->directory().extent(slots); at; at = reader->directory().extent(at->next)) ++extents;
    EXPECT_EQ(extents, 9) << "slots that were begun have been filled";
}

TEST_F(Dfs, AReaderTakesNothing) {
    std::int64_t id;
    {
        auto const file = create();
        id = file->newStream(StreamType::bytes);
    }
    auto const reader = open();
    EXPECT_FALSE(append(*reader, id, "x"));
    EXPECT_EQ(reader->newStream(StreamType::bytes), 0);
    EXPECT_FALSE(reader->update());
}

TEST_F(Dfs, StreamsAreReadAtAnyPlace) {
    auto const file = create();
    std::int64_t const id = file->newStream(StreamType::bytes), other = file->newStream(StreamType::bytes);
    for (std::size_t i = 0; i < 40; ++i) {
        append(*file, id, pattern(id, i * 9000, 9000));
        append(*file, other, pattern(other, i * 9000, 9000));
    }
    std::string const whole = pattern(id, 0, 360000);
    std::mt19937 random(5);
    for (int i = 0; i < 500; ++i) {
        std::size_t const from = random() % whole.size();
        std::size_t const n = random() % 100000;
        std::string part(n, '\0');
        part.resize(file->readAt(id, part.data(), n, from));
        ASSERT_EQ(part, whole.substr(from, n));
    }
}

TEST_F(Dfs, OffsetsBeyond4GiBAreKept) {
    constexpr std::int64_t far = (std::int64_t{1} << 40) + 12345;
    DirectoryEntry entry;
    entry.id = far;
    entry.offset = far * 2;
    entry.size = far;
    entry.next = far + 1;
    char bytes[DirectoryEntry::bytes];
    entry.encode(bytes);
    DirectoryEntry back;
    ASSERT_EQ(DirectoryEntry::decode(bytes, &back), DirectoryEntry::Decoded::good);
    EXPECT_EQ(back.offset, far * 2);
    EXPECT_EQ(back.size, far);
    EXPECT_EQ(back.next, far + 1);
}

TEST_F(Dfs, AReaderOfPiecesSeesWhatIsThere) {
    auto const file = create();
    std::int64_t const id = file->newStream(StreamType::bytes);
    std::string const text(70000, 't');
    append(*file, id, std::string("\3\0\0\0abc", 7) + std::string("\x70\x11\1\0", 4) + text + std::string("\1\0", 2));
    StreamReader reader(*file, id);
    YString string;
    ASSERT_TRUE(reader.readString(&string));
    EXPECT_EQ(string.view(), "abc");
    ASSERT_TRUE(reader.readString(&string));
    EXPECT_EQ(string.view(), text);
    std::int32_t number = 7;
    EXPECT_FALSE(reader.readNumber(&number));
    EXPECT_EQ(number, 7);
}

TEST_F(Dfs, ATextOfImpossibleLengthIsNone) {
    auto const file = create();
    for (std::string const & count : {std::string("\xff\xff\xff\xff", 4), std::string("\xff\xff\xff\x7f", 4)}) {
        std::int64_t const id = file->newStream(StreamType::bytes);
        append(*file, id, count + "abc");
        YString text = "as it was";
        EXPECT_FALSE(StreamReader(*file, id).readString(&text));
        EXPECT_EQ(text.view(), "as it was");
    }
}

// --- links

TEST_F(Dfs, AStreamGoesOnInALinkedFile) {
    std::int64_t first, second;
    {
        auto const a = create("/d/a");
        first = a->newStream(StreamType::bytes);
        append(*a, first, pattern(first, 0, 40000));
        auto const b = create("/d/sub/b");
        second = b->newStream(StreamType::bytes);
        append(*b, second, pattern(9, 0, 70000));
    }
    {
        auto const a = open(DfsMode::update, "/d/a");
        auto const b = open(DfsMode::read, "/d/sub/b");
        int const link = a->addLink(*b);
        ASSERT_GE(link, 0);
        EXPECT_EQ(a->addLink(*b), -1) << "linked already";
        EXPECT_EQ(a->addLink(*a), -1);
        ASSERT_TRUE(a->spliceLinkedStream(first, link, second));
        ASSERT_TRUE(a->rewriteLinkTable());
        EXPECT_EQ(all(*a, first), pattern(first, 0, 40000) + pattern(9, 0, 70000));
        append(*a, first, "and on");
    }
    auto const a = open(DfsMode::read, "/d/a");
    EXPECT_EQ(all(*a, first), pattern(first, 0, 40000) + pattern(9, 0, 70000) + "and on");
    ASSERT_EQ(a->links().size(), 1U);
    EXPECT_EQ(a->links()[0].path.view(), "sub/b");
    disk.contents.erase("/d/sub/b");
    open(DfsMode::read, "/d/a", DfsStatus::linkMissing);
}

TEST_F(Dfs, LinksOfALinkedFileAreLinksToo) {
    std::int64_t ids[3];
    char const * const names[] = {"/d/a", "/d/b", "/d/c"};
    for (int i = 0; i < 3; ++i) {
        auto const file = create(names[i]);
        ids[i] = file->newStream(StreamType::bytes);
        append(*file, ids[i], pattern(i, 0, 1000));
    }
    for (int i = 1; i >= 0; --i) {
        auto const file = open(DfsMode::update, names[i]);
        auto const other = open(DfsMode::read, names[i + 1]);
        int const link = file->addLink(*other);
        ASSERT_TRUE(file->spliceLinkedStream(ids[i], link, ids[i + 1]));
        ASSERT_TRUE(file->rewriteLinkTable());
    }
    auto const a = open(DfsMode::read, names[0]);
    EXPECT_EQ(all(*a, ids[0]), pattern(0, 0, 1000) + pattern(1, 0, 1000) + pattern(2, 0, 1000));
}

} // namespace
