#include "Vectors/BlockMemory.h"

#include "VectorTestSupport.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string_view>
#include <sys/resource.h>
#include <vector>

namespace {

constexpr std::uint64_t KiB = 1024;
constexpr std::uint64_t MiB = 1024 * KiB;

// Keeps a known amount whatever the build does by default, and starts with nothing kept.
class BlockMemoryKeeping : public testing::Test {
protected:
    BlockMemoryKeeping() : formerLimit(BlockMemory::setKeepLimit(0)) { BlockMemory::setKeepLimit(64 * MiB); }
    ~BlockMemoryKeeping() override {
        BlockMemory::setKeepLimit(0);
        BlockMemory::setKeepLimit(formerLimit);
    }

    // Pieces of these sizes, released in this order.
    static void freed(std::initializer_list<std::uint64_t> sizes) {
        std::vector<BlockMemory::Piece> pieces;
        for (std::uint64_t bytes : sizes) pieces.push_back(BlockMemory::allocate(bytes));
        for (BlockMemory::Piece piece : pieces) BlockMemory::release(piece);
    }

private:
    std::size_t formerLimit;
};

std::string_view textOf(MemoryException const & e) {
    return e.text;
}

} // namespace

TEST(BlockMemory, PiecesOfEverySizeAreAlignedAndLargeEnough) {
    for (std::uint64_t bytes :
         {1ull, 63ull, 64ull, 65ull, 2048ull, 2049ull, 65536ull, 1048575ull, 1048577ull, 9000001ull}) {
        BlockMemory::Piece piece = BlockMemory::allocate(bytes);
        EXPECT_GE(piece.bytes, bytes);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(piece.data) % BlockMemory::alignment, 0u) << bytes;
        std::memset(piece.data, 1, piece.bytes);
        BlockMemory::release(piece);
    }
}

TEST(BlockMemory, NothingIsAnEmptyPiece) {
    std::size_t before = BlockMemory::bytesInUse();
    BlockMemory::Piece piece = BlockMemory::allocate(0);
    EXPECT_EQ(piece.data, nullptr);
    EXPECT_EQ(BlockMemory::bytesInUse(), before);
    BlockMemory::release(piece);
}

TEST(BlockMemory, CountsWhatItHandsOutAndThePeak) {
    std::size_t before = BlockMemory::bytesInUse();
    BlockMemory::resetPeak();
    BlockMemory::Piece a = BlockMemory::allocate(100 * KiB);
    BlockMemory::Piece b = BlockMemory::allocate(50 * KiB);
    EXPECT_EQ(BlockMemory::bytesInUse(), before + a.bytes + b.bytes);
    BlockMemory::release(a);
    EXPECT_EQ(BlockMemory::bytesInUse(), before + b.bytes);
    EXPECT_EQ(BlockMemory::peakBytes(), before + a.bytes + b.bytes);
    BlockMemory::resetPeak();
    EXPECT_EQ(BlockMemory::peakBytes(), before + b.bytes);
    BlockMemory::release(b);
}

TEST(BlockMemory, ResizeKeepsTheUsedContentsAcrossAllSizeClasses) {
    std::vector<char> pattern(300 * MiB / 100);
    std::mt19937 random(7);
    std::ranges::generate(pattern, [&] { return static_cast<char>(random()); });
    BlockMemory::Piece piece = BlockMemory::allocate(64);
    std::size_t used = 64;
    std::memcpy(piece.data, pattern.data(), used);
    for (std::uint64_t bytes : {200ull, 3000ull, 70000ull, 1200000ull, 2900000ull, 1500000ull, 80000ull, 100ull}) {
        piece = BlockMemory::resize(piece, used, bytes);
        used = std::min<std::size_t>(used, bytes);
        ASSERT_EQ(std::memcmp(piece.data, pattern.data(), used), 0) << bytes;
        used = std::min<std::size_t>(piece.bytes, pattern.size());
        std::memcpy(piece.data, pattern.data(), used);
    }
    BlockMemory::release(piece);
}

TEST(BlockMemory, ResizeToNothingReleases) {
    std::size_t before = BlockMemory::bytesInUse();
    BlockMemory::Piece piece = BlockMemory::resize(BlockMemory::allocate(500), 500, 0);
    EXPECT_EQ(piece.data, nullptr);
    EXPECT_EQ(BlockMemory::bytesInUse(), before);
}

TEST_F(BlockMemoryKeeping, AFreedLargePieceServesTheNextRequestOfItsSize) {
    BlockMemory::Piece first = BlockMemory::allocate(8 * MiB);
    BlockMemory::release(first);
    EXPECT_EQ(BlockMemory::bytesKept(), first.bytes);
    BlockMemory::Piece second = BlockMemory::allocate(8 * MiB);
    EXPECT_EQ(second.data, first.data);
    EXPECT_EQ(BlockMemory::bytesKept(), 0u);
    BlockMemory::release(second);
}

TEST_F(BlockMemoryKeeping, TheSmallestSufficientPieceIsTaken) {
    freed({300 * KiB, 200 * KiB, 260 * KiB});
    BlockMemory::Piece piece = BlockMemory::allocate(220 * KiB);
    EXPECT_EQ(piece.bytes, 260 * KiB);
    BlockMemory::release(piece);
}

TEST_F(BlockMemoryKeeping, APieceThatShrinksDoesNotTakeALargerOne) {
    BlockMemory::Piece piece = BlockMemory::allocate(256 * KiB);
    freed({320 * KiB});
    piece = BlockMemory::resize(piece, 100, 170 * KiB);
    EXPECT_EQ(piece.bytes, 170 * KiB);
    BlockMemory::release(piece);
}

TEST_F(BlockMemoryKeeping, APieceOfMoreThanTwiceTheSizeIsNotTaken) {
    freed({201 * KiB});
    BlockMemory::Piece piece = BlockMemory::allocate(100 * KiB);
    EXPECT_EQ(piece.bytes, 100 * KiB);
    BlockMemory::release(piece);
}

TEST_F(BlockMemoryKeeping, AHugePieceIsNotTakenForMuchLess) {
    freed({13 * MiB});
    BlockMemory::Piece wasteful = BlockMemory::allocate(10 * MiB);
    EXPECT_EQ(wasteful.bytes, 10 * MiB);
    BlockMemory::Piece fitting = BlockMemory::allocate(11 * MiB);
    EXPECT_EQ(fitting.bytes, 13 * MiB);
    BlockMemory::release(wasteful);
    BlockMemory::release(fitting);
}

TEST_F(BlockMemoryKeeping, TheOldestIsDroppedWhenTheBoundIsReached) {
    freed({20 * MiB, 30 * MiB, 25 * MiB}); // 75 MiB would be kept, 64 may
    EXPECT_EQ(BlockMemory::bytesKept(), 55 * MiB);
    BlockMemory::Piece other = BlockMemory::allocate(20 * MiB);
    EXPECT_EQ(other.bytes, 25 * MiB);
    BlockMemory::release(other);
}

TEST_F(BlockMemoryKeeping, APieceBeyondTheBoundIsNotKept) {
    freed({65 * MiB});
    EXPECT_EQ(BlockMemory::bytesKept(), 0u);
}

TEST_F(BlockMemoryKeeping, MoreThanAFewHundredPiecesAreNotKept) {
    std::vector<BlockMemory::Piece> pieces;
    for (int i = 0; i < 400; ++i) pieces.push_back(BlockMemory::allocate(64 * KiB));
    for (BlockMemory::Piece piece : pieces) BlockMemory::release(piece);
    EXPECT_EQ(BlockMemory::bytesKept(), 256 * 64 * KiB);
}

TEST_F(BlockMemoryKeeping, SmallPiecesAreReusedBySize) {
    BlockMemory::Piece first = BlockMemory::allocate(500);
    BlockMemory::release(first);
    BlockMemory::Piece other = BlockMemory::allocate(400);
    BlockMemory::Piece same = BlockMemory::allocate(460);
    EXPECT_NE(other.data, first.data);
    EXPECT_EQ(same.data, first.data);
    BlockMemory::release(other);
    BlockMemory::release(same);
}

TEST_F(BlockMemoryKeeping, DropKeptGivesAllBack) {
    freed({300, 2 * MiB});
    EXPECT_GT(BlockMemory::bytesKept(), 2 * MiB);
    BlockMemory::dropKept();
    EXPECT_EQ(BlockMemory::bytesKept(), 0u);
}

TEST(BlockMemory, ASizeThatCannotBeFailsWithTheText) {
    for (std::uint64_t bytes : {UINT64_MAX, static_cast<std::uint64_t>(PTRDIFF_MAX), std::uint64_t{1} << 48}) {
        try {
            BlockMemory::release(BlockMemory::allocate(bytes));
            FAIL() << bytes;
        } catch (MemoryException const & e) {
            EXPECT_EQ(textOf(e), "*** Fatal error, out of memory ***\nVector allocation failed");
            EXPECT_EQ(e.errorClass, 5);
        }
    }
}

#ifndef TORVELAN_SANITIZED
TEST(BlockMemory, TheLimitOfTheAddressSpaceIsObservedAndOldContentsStay) {
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &former), 0);
    BlockMemory::Piece piece = BlockMemory::allocate(2 * MiB);
    std::memset(piece.data, 7, piece.bytes);
    rlimit tight = former;
    tight.rlim_cur = 512 * MiB;
    ASSERT_EQ(setrlimit(RLIMIT_AS, &tight), 0);
    std::size_t before = BlockMemory::bytesInUse();
    EXPECT_THROW(BlockMemory::allocate(600 * MiB), MemoryException);
    EXPECT_THROW(BlockMemory::allocate(511 * MiB), MemoryException);
    EXPECT_THROW(BlockMemory::resize(piece, piece.bytes, 511 * MiB), MemoryException);
    EXPECT_EQ(BlockMemory::bytesInUse(), before);
    setrlimit(RLIMIT_AS, &former);
    EXPECT_TRUE(std::all_of(piece.data, piece.data + piece.bytes, [](char c) { return c == 7; }));
    BlockMemory::release(piece);
}

TEST_F(BlockMemoryKeeping, WhatIsKeptIsGivenUpBeforeARequestFails) {
    BlockMemory::setKeepLimit(512 * MiB);
    freed({300 * MiB});
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &former), 0);
    rlimit tight = former;
    tight.rlim_cur = 512 * MiB;
    ASSERT_EQ(setrlimit(RLIMIT_AS, &tight), 0);
    BlockMemory::Piece piece = BlockMemory::allocate(310 * MiB);
    setrlimit(RLIMIT_AS, &former);
    EXPECT_EQ(BlockMemory::bytesKept(), 0u);
    BlockMemory::release(piece);
}
#endif

TEST(BlockMemory, TheNthRequestFailsOnce) {
    BlockMemory::failAt(2);
    BlockMemory::Piece first = BlockMemory::allocate(100);
    EXPECT_THROW(BlockMemory::allocate(100), MemoryException);
    BlockMemory::Piece third = BlockMemory::allocate(100);
    BlockMemory::release(first);
    BlockMemory::release(third);
}

TEST(BlockMemory, AllRequestsFailFromTheNthOn) {
    BlockMemory::failAt(2, true);
    BlockMemory::Piece first = BlockMemory::allocate(100);
    EXPECT_THROW(BlockMemory::allocate(100), MemoryException);
    EXPECT_THROW(BlockMemory::allocate(1), MemoryException);
    BlockMemory::failAt(0);
    BlockMemory::release(first);
    BlockMemory::release(BlockMemory::allocate(1));
}
