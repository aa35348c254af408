#include "Dfs/ExtentIndex.h"

#include <chrono>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr std::int64_t pageSize = 16; // ids that share a place

// Ids in pages whose products with a factor that is known to everybody have equal high bits.
std::vector<std::int64_t> collidingIds(std::size_t n) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15;
    std::uint64_t inverse = factor; // five steps of Newton's method
    for (int i = 0; i < 5; ++i) inverse *= 2 - factor * inverse;
    EXPECT_EQ(inverse * factor, 1U);
    std::vector<std::int64_t> ids;
    for (std::uint64_t product = 1; ids.size() < n; ++product)
        if (std::uint64_t const id = product * inverse; id < (std::uint64_t{1} << 62) / pageSize)
            ids.push_back(static_cast<std::int64_t>(id) * pageSize);
    return ids;
}

TEST(ExtentIndex, IdsThatAreMadeToCollideTakeNoLonger) {
    auto const ids = collidingIds(200'000);
    ExtentIndex index;
    auto const start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < ids.size(); ++i) index.insertPlain(ids[i], static_cast<ExtentIndex::Slot>(i));
    for (std::size_t i = 0; i < ids.size(); ++i) ASSERT_EQ(index.findPlain(ids[i]), static_cast<ExtentIndex::Slot>(i));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(ExtentIndex, FindsWhatIsLeft) {
    ExtentIndex index;
    constexpr int n = 5000;
    for (int i = 1; i <= n; ++i) index.insertPlain(i, i);
    for (int i = 1; i <= n; i += 3) index.erasePlain(i);
    index.erasePlain(n + 1);
    for (int i = 1; i <= n; ++i) ASSERT_EQ(index.findPlain(i), i % 3 == 1 ? ExtentIndex::none : i);
    auto const isGone = [](int i) { return i % 3 == 1 || i / pageSize % 2 == 0; }; // half of the pages wholly
    for (int i = 1; i <= n; ++i)
        if (isGone(i)) index.erasePlain(i);
    for (int i = 1; i <= n; ++i) ASSERT_EQ(index.findPlain(i), isGone(i) ? ExtentIndex::none : i);
    for (int i = 1; i <= n; ++i)
        if (isGone(i)) index.insertPlain(i, -i - 1);
    for (int i = 1; i <= n; ++i) ASSERT_EQ(index.findPlain(i), isGone(i) ? -i - 1 : i);
    index.insertRun(10, 7);
    EXPECT_EQ(index.findRun(9), ExtentIndex::none);
    EXPECT_EQ(index.findRun(1000), 7);
}

} // namespace
