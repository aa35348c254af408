#include "Vectors/NewDataBlock.h"

#include "VectorTestSupport.h"

#include <gtest/gtest.h>
#include <numeric>
#include <string>

namespace {

BlockRef blockOf(std::string_view text) {
    BlockRef block = NewDataBlock::make();
    block->addData(text.data(), text.size());
    return block;
}

// A file that is only read.
class TextBacking final : public BlockBacking {
public:
    explicit TextBacking(std::string_view text_) : text(text_) {}
    std::uint64_t read(void * dest, std::uint64_t bytes, std::uint64_t offset) override {
        return text.copy(static_cast<char *>(dest), bytes, offset);
    }
    std::uint64_t length() override { return text.size(); }

private:
    std::string_view text;
};

BlockRef blockOnFile(std::string_view text) {
    BlockRef block = NewDataBlock::make();
    block->attach(std::make_unique<TextBacking>(text));
    return block;
}

std::string_view textOf(BlockRef const & block) {
    return {block->realise(), block->size()};
}

} // namespace

TEST(NewDataBlock, AScalarNeedsNoMemoryOfItsOwn) {
    std::size_t before = BlockMemory::bytesInUse();
    FailingAllocations none;
    BlockRef block = blockOf("0123456789abcdef");
    EXPECT_EQ(BlockMemory::bytesInUse(), before);
    EXPECT_EQ(textOf(block), "0123456789abcdef");
}

TEST(NewDataBlock, GrowsByHalfAsMuchAgainFrom1024) {
    BlockRef block = NewDataBlock::make();
    std::uint64_t const inlineCapacity = block->capacity();
    EXPECT_EQ(inlineCapacity, NewDataBlock::inlineBytes);
    for (int i = 0; i < 3; ++i) block->append(double(i));
    EXPECT_EQ(block->capacity(), 1024u);
    while (block->size() < 1024) block->append(0.0);
    EXPECT_EQ(block->capacity(), 1024u); // nothing grows while it fits
    block->append(0.0);
    EXPECT_EQ(block->capacity(), 1600u); // 1032 x 1.5 is 1548, and pieces are multiples of 64
}

TEST(NewDataBlock, AppendingKeepsEveryValueAndAllocatesRarely) {
    BlockRef block = NewDataBlock::make();
    constexpr int n = 100000;
    int moves = 0;
    char const * last = block->realise();
    for (int i = 0; i < n; ++i) {
        block->append(double(i));
        if (block->realise() != last) ++moves;
        last = block->realise();
    }
    EXPECT_LT(moves, 20);
    for (int i = 0; i < n; ++i) {
        double value = -1;
        ASSERT_EQ(block->read(&value, sizeof value, static_cast<std::uint64_t>(i) * sizeof value), sizeof value);
        ASSERT_EQ(value, i);
    }
}

TEST(NewDataBlock, ResizeTakesExactlyWhatIsNeeded) {
    BlockRef block = blockOf("abc");
    block->resize(6400);
    EXPECT_EQ(block->size(), 6400u);
    EXPECT_EQ(block->capacity(), 6400u);
    EXPECT_EQ(std::string_view(block->realise(), 3), "abc");
    block->resize(2);
    EXPECT_EQ(block->capacity(), 6400u);
    EXPECT_EQ(textOf(block), "ab");
}

TEST(NewDataBlock, ReadEndsWithTheBlock) {
    BlockRef block = blockOf("abcdef");
    char out[8] = "-------";
    EXPECT_EQ(block->read(out, 3, 3), 3u);
    EXPECT_EQ(std::string_view(out, 3), "def");
    EXPECT_EQ(block->read(out, 4, 3), 0u);
    EXPECT_EQ(block->read(out, 1, 6), 0u);
    EXPECT_EQ(block->read(out, 2, UINT64_MAX), 0u); // a sum that wraps
    EXPECT_EQ(block->read(out, UINT64_MAX, 2), 0u);
    EXPECT_EQ(block->read(out, 0, 6), 0u);
    EXPECT_EQ(std::string_view(out, 4), "def-");
}

TEST(NewDataBlock, ShrinkFitsTheMemoryToTheSize) {
    BlockRef block = NewDataBlock::make();
    std::string text(1000, 'x');
    block->reserve(100000);
    block->addData(text.data(), text.size());
    block->shrink();
    EXPECT_EQ(block->capacity(), 1024u);
    EXPECT_EQ(textOf(block), text);
    block->resize(5);
    block->shrink();
    EXPECT_EQ(block->capacity(), NewDataBlock::inlineBytes);
    EXPECT_EQ(textOf(block), "xxxxx");
    block->addData(text.data(), text.size());
    EXPECT_EQ(block->size(), 1005u);
}

TEST(NewDataBlock, ACloneIsIndependent) {
    BlockRef block = blockOf("a text that does not lie in the block itself");
    BlockRef all = block->clone(1000);
    BlockRef part = block->clone(6);
    block->realise()[0] = 'A';
    EXPECT_EQ(textOf(all), "a text that does not lie in the block itself");
    EXPECT_EQ(textOf(part), "a text");
}

TEST(NewDataBlock, AFailureLeavesItAsItWas) {
    BlockRef block = blockOf("a text that does not lie in the block itself");
    std::string const before(textOf(block));
    std::uint64_t const capacity = block->capacity();
    char const * const data = block->realise();
    std::string more(5000, 'y');
    {
        FailingAllocations all;
        EXPECT_THROW(block->addData(more.data(), more.size()), MemoryException);
        EXPECT_THROW(block->resize(5000), MemoryException);
        EXPECT_THROW(block->reserve(5000), MemoryException);
        EXPECT_THROW(block->clone(44), MemoryException);
    }
    EXPECT_EQ(textOf(block), before);
    EXPECT_EQ(block->capacity(), capacity);
    EXPECT_EQ(block->realise(), data);
}

TEST(NewDataBlock, SizesNearTheEndOfTheNumbersFail) {
    BlockRef block = blockOf("abc");
    for (std::uint64_t bytes : {UINT64_MAX, UINT64_MAX - 2, static_cast<std::uint64_t>(PTRDIFF_MAX)}) {
        EXPECT_THROW(block->resize(bytes), MemoryException);
        EXPECT_THROW(block->makeRoom(bytes), MemoryException);
        EXPECT_THROW(block->addData("", bytes), MemoryException);
    }
    EXPECT_EQ(textOf(block), "abc");
}

TEST(NewDataBlock, TheLastHolderReleasesTheMemory) {
    std::size_t const before = BlockMemory::bytesInUse();
    {
        BlockRef first = blockOf(std::string(100, 'z'));
        BlockRef second = first;
        EXPECT_TRUE(first->isShared());
        first = BlockRef();
        EXPECT_FALSE(second->isShared());
        EXPECT_EQ(BlockMemory::bytesInUse(), before + 1024);
    }
    EXPECT_EQ(BlockMemory::bytesInUse(), before);
}

// --- of a file

TEST(NewDataBlock, FewerThanFiveBytesAreNotReadFromAFile) {
    BlockRef const block = blockOnFile("0123456789");
    char bytes[10] = {};
    for (std::uint64_t n = 0; n < 5; ++n) EXPECT_EQ(block->read(bytes, n, 0), 0u) << n;
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(block->read(bytes, 5, 5), 5u);
    EXPECT_EQ(std::string_view(bytes, 5), "56789");
    EXPECT_EQ(block->read(bytes, 5, 6), 0u) << "not in part";
    block->realise();
    EXPECT_EQ(block->read(bytes, 4, 0), 4u) << "from memory any number";
    EXPECT_EQ(std::string_view(bytes, 4), "0123");
}

TEST(NewDataBlock, AnEmptyOneOfAFileIsNotNull) {
    BlockRef const block = blockOnFile("");
    char * const data = block->realise();
    ASSERT_NE(data, nullptr);
    EXPECT_GE(block->capacity(), 4u);
    EXPECT_EQ(block->size(), 0u);
}

TEST(NewDataBlock, OnlyWhatAFileHasIsFreed) {
    BlockRef const memory = blockOf(std::string(1000, 'm'));
    memory->free();
    EXPECT_EQ(textOf(memory), std::string(1000, 'm'));
    std::string const contents(1000, 'f');
    BlockRef const file = blockOnFile(contents);
    std::size_t const before = BlockMemory::bytesInUse();
    EXPECT_EQ(textOf(file), contents);
    EXPECT_GT(BlockMemory::bytesInUse(), before);
    file->free();
    EXPECT_EQ(BlockMemory::bytesInUse(), before);
    EXPECT_EQ(textOf(file), contents);
    file->addData("more", 4);
    file->free();
    EXPECT_EQ(textOf(file), contents + "more") << "the file has not got the rest";
}
