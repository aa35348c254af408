#include "support/System.h"

#include "support/Streams.h"
#include "torvelan/Host.h"

#include <climits>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

__attribute__((noinline)) std::size_t availableBelow(int frames) {
    char volatile room[4096];
    room[0] = 1;
    std::size_t const available = frames == 0 ? sp_StackAvail() : availableBelow(frames - 1);
    room[1] = room[0]; // behind the call, so that the frame stays
    return available;
}

TEST(StackAvail, ShrinksWithEachFrame) {
    std::size_t const here = sp_StackAvail();
    std::size_t const deeper = availableBelow(10);
    EXPECT_GT(here, std::size_t{100} << 10);
    EXPECT_LE(deeper + 10 * 4096, here);
    EXPECT_GE(deeper + 100 * 4096, here);
}

TEST(StackAvail, IsThatOfTheCallingThread) {
    std::size_t available = 0;
    std::thread([&] { available = sp_StackAvail(); }).join();
    EXPECT_GT(available, std::size_t{10} << 10);
    EXPECT_LT(available, std::size_t{1} << 40);
}

TEST(RunningDllPath, NamesTheModuleOfAnAddress) {
    EXPECT_THAT(std::string(sp_GetRunningDllPath(reinterpret_cast<void const *>(&std::fopen)).view()),
                testing::HasSubstr("lib"));
    EXPECT_FALSE(sp_GetRunningDllPath(reinterpret_cast<void const *>(&availableBelow)).empty());
}

TEST(RunningDllPath, IsEmptyWhereNoModuleIs) {
    int local = 0;
    EXPECT_TRUE(sp_GetRunningDllPath(nullptr).empty());
    EXPECT_TRUE(sp_GetRunningDllPath(&local).empty());
}

TEST(Random, RepeatsFromTheSameSeed) {
    RandomSeed a, b;
    for (int i = 0; i < 100; ++i) ASSERT_EQ(sp_Random(a), sp_Random(b));
    EXPECT_NE(a.value, 1U);
}

TEST(Random, TheSequenceFromSeedOneIsFixed) {
    RandomSeed seed;
    std::vector<int> values;
    for (int i = 0; i < 4; ++i) values.push_back(sp_Random(seed));
    EXPECT_THAT(values, testing::ElementsAre(577245203, 2075528934, 201226835, 7378612));
}

TEST(Random, SpreadsEvenlyInItsHighAndLowBits) {
    RandomSeed seed;
    std::vector<int> high(16), low(16);
    constexpr int draws = 160000;
    for (int i = 0; i < draws; ++i) {
        int const value = sp_Random(seed);
        ASSERT_GE(value, 0);
        ++high[static_cast<std::size_t>(value >> 27)];
        ++low[static_cast<std::size_t>(value & 15)];
    }
    // Five standard deviations of a binomial count.
    EXPECT_THAT(high, testing::Each(testing::AllOf(testing::Gt(9515), testing::Lt(10485))));
    EXPECT_THAT(low, testing::Each(testing::AllOf(testing::Gt(9515), testing::Lt(10485))));
}

TEST(Random, VisitsEveryStateOnce) {
    // A linear congruential generator modulo 2^n has full period when the increment is odd and the multiplier is 1
    // modulo 4; so the states of low bits repeat with exactly their power of two.
    RandomSeed seed;
    std::vector<bool> seen(std::size_t{1} << 16);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        sp_Random(seed);
        ASSERT_FALSE(seen[seed.value & 0xFFFFU]);
        seen[seed.value & 0xFFFFU] = true;
    }
}

TEST(System, MemoryOfTheMachineIsKnown) {
    EXPECT_GT(sp_GetSystemRamSize(), 64u << 20);
}

int eventsProcessed = 0;

TEST(System, EventsAreTheHosts) {
    sp_ProcessEvents(); // of nobody
    EXPECT_EQ(eventsProcessed, 0);
    MakeDynamicFunction("ProcessEvents", [] { ++eventsProcessed; });
    sp_ProcessEvents();
    EXPECT_EQ(eventsProcessed, 1);
    MakeDynamicFunction("ProcessEvents", nullptr);
    sp_ProcessEvents();
    EXPECT_EQ(eventsProcessed, 1);
}

} // namespace
