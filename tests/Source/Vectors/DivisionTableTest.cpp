#include "Vectors/DivisionTable.h"

#include "VectorTestSupport.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

DivisionTable tableOf(std::vector<std::uint64_t> const & offsets) {
    DivisionTable table;
    for (std::uint64_t offset : offsets) table.append(offset);
    return table;
}

// The rule as a walk: back from the last entry to the first that fits.
std::int64_t liveByWalking(std::vector<std::uint64_t> const & offsets, std::uint64_t size) {
    std::int64_t n = static_cast<std::int64_t>(offsets.size()) + 1; // entry 0 stands before them
    while (n > 1 && offsets[static_cast<std::size_t>(n - 2)] >= size) --n;
    return std::max<std::int64_t>(n, 1);
}

} // namespace

TEST(DivisionTable, WithoutEntriesThereIsOneDivision) {
    DivisionTable table;
    EXPECT_FALSE(table.exists());
    EXPECT_EQ(table.count(), 0);
    EXPECT_EQ(table.live(0), 1);
    EXPECT_EQ(table.live(1000), 1);
}

TEST(DivisionTable, TheFirstAppendedPutsInEntry0) {
    DivisionTable table = tableOf({80});
    EXPECT_EQ(table.count(), 2);
    EXPECT_EQ(table.entry(0), 0u);
    EXPECT_EQ(table.entry(1), 80u);
}

TEST(DivisionTable, AnEntryLivesWhenDataStandBehindIt) {
    DivisionTable table = tableOf({80, 160});
    EXPECT_EQ(table.live(161), 3);
    EXPECT_EQ(table.live(160), 2);
    EXPECT_EQ(table.live(80), 1);
    EXPECT_EQ(table.live(0), 1);
}

TEST(DivisionTable, CountsLikeAWalkForAnyEntries) {
    unsigned const seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        std::vector<std::uint64_t> offsets(random() % 12);
        for (auto & offset : offsets) offset = random() % 20;
        if (round % 3) std::ranges::sort(offsets);
        DivisionTable table = tableOf(offsets);
        for (std::uint64_t size : {0u, 1u, 5u, 10u, 10u, 19u, 25u, 3u})
            ASSERT_EQ(table.live(size), offsets.empty() ? 1 : liveByWalking(offsets, size));
    }
}

TEST(DivisionTable, KnowsWhetherEntriesRiseByWholeElements) {
    EXPECT_TRUE(DivisionTable().risesBy(8));
    EXPECT_TRUE(tableOf({8, 16}).risesBy(8));
    EXPECT_FALSE(tableOf({8, 16}).risesBy(16));
    EXPECT_TRUE(tableOf({16, 48}).risesBy(16));
    EXPECT_FALSE(tableOf({12, 16}).risesBy(8));
    EXPECT_FALSE(tableOf({0}).risesBy(8));
    EXPECT_FALSE(tableOf({8, 8}).risesBy(8));
    EXPECT_FALSE(tableOf({16, 8, 24}).risesBy(8));
}

TEST(DivisionTable, CopiesShareUntilOneChanges) {
    DivisionTable a = tableOf({8, 16});
    DivisionTable b = a;
    EXPECT_TRUE(a.sharesEntries(b));
    b.append(24);
    EXPECT_FALSE(a.sharesEntries(b));
    EXPECT_EQ(a.count(), 3);
    EXPECT_EQ(b.count(), 4);
    DivisionTable c = a;
    c.cut(2);
    EXPECT_EQ(a.count(), 3);
    EXPECT_EQ(c.count(), 2);
}

TEST(DivisionTable, ATableCutToOneDivisionIsDropped) {
    DivisionTable table = tableOf({8, 16});
    table.cut(5);
    EXPECT_EQ(table.count(), 3);
    table.cut(1);
    EXPECT_FALSE(table.exists());
}

TEST(DivisionTable, AFailureLeavesItAsItWas) {
    DivisionTable table = tableOf({8});
    {
        FailingAllocations all;
        EXPECT_THROW(table.append(16), MemoryException);
        DivisionTable empty;
        EXPECT_NO_THROW(empty.append(8)); // two entries lie in the block itself
    }
    EXPECT_EQ(table.count(), 2);
    table.append(16);
    EXPECT_EQ(table.entry(2), 16u);
}
