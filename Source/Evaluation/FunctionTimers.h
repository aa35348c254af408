// One CommandTimer for each name of a function that has been called, operators included.
#pragma once

#include "support/Timers.h"
#include "torvelan/Containers.h"
#include "torvelan/Functions.h"

// Times one call of a handler, from its construction to its end. The handler may clear the timers meanwhile.
class TimedCall {
public:
    explicit TimedCall(FuncInfo & info);
    ~TimedCall();
    TimedCall(TimedCall const &) = delete;
    TimedCall & operator=(TimedCall const &) = delete;

private:
    CommandTimer * timer;
    std::uint32_t generation;
};

YArray<YString> functionTimerTexts(); // of every timer, sorted
void clearFunctionTimers();
