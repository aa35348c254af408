// CommandTimer: how often something ran and how long it took.
#pragma once

#include "torvelan/YString.h"

#include <cstdint>
#include <string_view>

class CommandTimer {
public:
    explicit CommandTimer(YString timerName) : name_(std::move(timerName)) {}

    void start() noexcept;
    void end() noexcept;
    YString print() const; // "name: calls 3, total 1.2ms, mean 400us"
    YString const & name() const noexcept { return name_; }
    std::uint64_t calls() const noexcept { return calls_; }
    friend bool operator==(CommandTimer const & a, CommandTimer const & b) { return equalNoCase(a.name_, b.name_); }

private:
    YString name_;
    std::uint64_t calls_ = 0;
    std::uint64_t ticks_ = 0;
    std::uint64_t started_ = 0; // of the outermost call
    std::uint32_t depth_ = 0;   // calls under way, since functions may call themselves
};

// Times its scope under a name; the times of a name add up.
class TvTimer {
public:
    explicit TvTimer(char const * name);
    ~TvTimer() { endTimer(); }
    TvTimer(TvTimer const &) = delete;
    TvTimer & operator=(TvTimer const &) = delete;

    void endTimer() noexcept; // ahead of the end of the scope

private:
    CommandTimer * timer_;
};
CommandTimer const * findTimer(std::string_view name); // of a TvTimer; null before the first one
