#include "support/Timers.h"

#include "support/Numbers.h"

#include <chrono>
#include <gmock/gmock.h>
#include <regex>
#include <thread>

namespace {

// The number behind a word of the printed text.
double printed(CommandTimer const & timer, std::string const & word) {
    std::string const text(timer.print().view());
    return sp_ConvertEngToReal(text.c_str() + text.find(word) + word.size(), nullptr);
}

TEST(CommandTimer, OneNeverStartedHasNothingToTell) {
    EXPECT_EQ(CommandTimer("fft").print(), "fft: calls 0, total 0s, mean 0s");
}

TEST(CommandTimer, PrintsCallsTotalAndMean) {
    CommandTimer timer("name");
    for (int i = 0; i < 3; ++i) {
        timer.start();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        timer.end();
    }
    EXPECT_EQ(timer.calls(), 3U);
    EXPECT_TRUE(std::regex_match(std::string(timer.print().view()),
                                 std::regex("name: calls 3, total [0-9.]+m?s, mean [0-9.]+m?s")))
        << timer.print().c_str();
    EXPECT_GE(printed(timer, "total "), 0.0055);
    EXPECT_NEAR(printed(timer, "mean "), printed(timer, "total ") / 3, 1e-3 * printed(timer, "total "));
}

TEST(CommandTimer, InnerCallsCountButTheirTimeCountsOnce) {
    CommandTimer timer("recursive");
    auto const begin = std::chrono::steady_clock::now();
    timer.start();
    timer.start();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    timer.end();
    timer.end();
    std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(timer.calls(), 2U);
    EXPECT_GE(printed(timer, "total "), 0.0045);
    EXPECT_LE(printed(timer, "total "), elapsed.count() * 1.05);
}

TEST(CommandTimer, AnEndWithoutAStartIsNothing) {
    CommandTimer timer("t");
    timer.end();
    EXPECT_EQ(timer.print(), "t: calls 0, total 0s, mean 0s");
}

TEST(CommandTimer, EqualByNameInAnyCase) {
    EXPECT_TRUE(CommandTimer("Field") == CommandTimer("FIELD"));
    EXPECT_FALSE(CommandTimer("Field") == CommandTimer("abs"));
}

TEST(TvTimer, TheTimesOfANameAddUp) {
    EXPECT_EQ(findTimer("a scope"), nullptr);
    for (int i = 0; i < 3; ++i) TvTimer const timer("a scope");
    TvTimer ended("a scope");
    ended.endTimer();
    ended.endTimer();
    EXPECT_EQ(findTimer("a scope")->calls(), 4U);
}

} // namespace
