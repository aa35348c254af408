#include "support/Timers.h"

#include "support/Numbers.h"

#include <chrono>
#include <functional>
#include <map>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

#if defined(__x86_64__)
// The time stamp counter: a fifth of the cost of the clock, which matters beside functions of a microsecond.
std::uint64_t ticksNow() noexcept {
    return __builtin_ia32_rdtsc();
}
#else
std::uint64_t ticksNow() noexcept {
    return static_cast<std::uint64_t>(Clock::now().time_since_epoch().count());
}
#endif

struct Moment {
    std::uint64_t ticks = ticksNow();
    Clock::time_point time = Clock::now();
};

Moment const loaded;

// From the ticks since the library was loaded, at least a few milliseconds of them.
double secondsPerTick() {
    constexpr auto shortest = std::chrono::milliseconds(5);
    Moment now;
    while (now.time - loaded.time < shortest) now = Moment();
    std::chrono::duration<double> const elapsed = now.time - loaded.time;
    return now.ticks > loaded.ticks ? elapsed.count() / static_cast<double>(now.ticks - loaded.ticks) : 0;
}

YString secondsText(double seconds) {
    constexpr int digits = 4;
    return YString::joined(sp_ConvertRealToJSEng(seconds, digits, false), {"s"});
}

// Never destroyed: a data file may close behind the statics of this library.
std::map<std::string, CommandTimer, std::less<>> & scopeTimers() {
    static auto & timers = *new std::map<std::string, CommandTimer, std::less<>>;
    return timers;
}

} // namespace

TvTimer::TvTimer(char const * name) : timer_(&scopeTimers().try_emplace(name, YString(name)).first->second) {
    timer_->start();
}

void TvTimer::endTimer() noexcept {
    if (timer_ != nullptr) timer_->end();
    timer_ = nullptr;
}

CommandTimer const * findTimer(std::string_view name) {
    auto const known = scopeTimers().find(name);
    return known != scopeTimers().end() ? &known->second : nullptr;
}

void CommandTimer::start() noexcept {
    ++calls_;
    if (depth_++ == 0) started_ = ticksNow();
}

void CommandTimer::end() noexcept {
    if (depth_ == 0 || --depth_ != 0) return;
    std::uint64_t const now = ticksNow();
    if (now > started_) ticks_ += now - started_; // counters of two processors may differ
}

YString CommandTimer::print() const {
    double const total = static_cast<double>(ticks_) * secondsPerTick();
    double const mean = calls_ != 0 ? total / static_cast<double>(calls_) : 0;
    return YString::joined(name_,
                           {": calls ", YString(calls_), ", total ", secondsText(total), ", mean ", secondsText(mean)});
}
