#include "support/ObjectPool.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

constexpr std::size_t objectBytes = 192;
ObjectPool<objectBytes> pool;

// Ones that are alive never overlap, which their own marks show.
TEST(ObjectPool, ObjectsAreApartThroughAnyUse) {
    std::mt19937 random(3);
    std::vector<std::size_t *> alive;
    for (std::size_t step = 0; step < 20'000; ++step) {
        bool const grows = step % 4000 < 3000;
        if (alive.empty() || random() % 4 < (grows ? 3u : 1u)) {
            auto * const object = static_cast<std::size_t *>(pool.take());
            ASSERT_NE(object, nullptr);
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(object) % pool.alignment, 0u);
            std::fill_n(object, objectBytes / sizeof(std::size_t), reinterpret_cast<std::uintptr_t>(object));
            alive.push_back(object);
        } else {
            std::swap(alive[random() % alive.size()], alive.back());
            std::size_t const * const object = alive.back();
            ASSERT_EQ(std::count(object, object + objectBytes / sizeof(std::size_t),
                                 reinterpret_cast<std::uintptr_t>(object)),
                      static_cast<std::ptrdiff_t>(objectBytes / sizeof(std::size_t)));
            pool.give(alive.back());
            alive.pop_back();
        }
    }
    for (void * object : alive) pool.give(object);
}

#ifndef TORVELAN_SANITIZED
TEST(ObjectPool, WhatIsMadeInTurnLiesInTurn) {
    static ObjectPool<64> fresh;
    std::vector<char *> made;
    for (int i = 0; i < 100; ++i) made.push_back(static_cast<char *>(fresh.take()));
    for (std::size_t i = 1; i < made.size(); ++i) EXPECT_EQ(made[i], made[i - 1] + 64);
    for (char * object : made) fresh.give(object);
    EXPECT_EQ(fresh.take(), made[0]) << "an empty slab begins anew";
}
#endif

} // namespace
