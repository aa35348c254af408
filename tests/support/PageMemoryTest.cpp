#include "support/PageMemory.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>

TEST(PageMemory, FreshPagesAreZero) {
    auto * pages = static_cast<char *>(sp_MapPages(3 * pageBytes));
    ASSERT_NE(pages, nullptr);
    EXPECT_TRUE(std::all_of(pages, pages + 3 * pageBytes, [](char c) { return c == 0; }));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pages) % pageBytes, 0u);
    sp_UnmapPages(pages, 3 * pageBytes);
}

TEST(PageMemory, LargeMapsStartAtAHugePage) {
    for (std::size_t bytes : {4 * hugePageBytes, 5 * hugePageBytes + pageBytes}) {
        auto * pages = static_cast<char *>(sp_MapPages(bytes));
        ASSERT_NE(pages, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pages) % hugePageBytes, 0u);
        pages[0] = pages[bytes - 1] = 1;
        sp_UnmapPages(pages, bytes);
    }
}

TEST(PageMemory, RemappedPagesKeepTheirContents) {
    auto * pages = static_cast<char *>(sp_MapPages(2 * pageBytes));
    ASSERT_NE(pages, nullptr);
    std::memset(pages, 5, 2 * pageBytes);
    pages = static_cast<char *>(sp_RemapPages(pages, 2 * pageBytes, 1000 * pageBytes));
    ASSERT_NE(pages, nullptr);
    EXPECT_EQ(pages[2 * pageBytes - 1], 5);
    EXPECT_EQ(pages[2 * pageBytes], 0);
    pages = static_cast<char *>(sp_RemapPages(pages, 1000 * pageBytes, pageBytes));
    ASSERT_NE(pages, nullptr);
    EXPECT_EQ(pages[pageBytes - 1], 5);
    sp_UnmapPages(pages, pageBytes);
}

TEST(PageMemory, WhatCannotBeIsNull) {
    EXPECT_EQ(sp_MapPages(std::size_t{1} << 60), nullptr);
    void * pages = sp_MapPages(pageBytes);
    EXPECT_EQ(sp_RemapPages(pages, pageBytes, std::size_t{1} << 60), nullptr);
    std::memset(pages, 1, pageBytes);
    sp_UnmapPages(pages, pageBytes);
}

TEST(PageMemory, TheMachineHasMemory) {
    EXPECT_GT(sp_PhysicalMemory(), 64u << 20);
    EXPECT_GE(sp_AddressSpaceLimit(), 64u << 20);
}
