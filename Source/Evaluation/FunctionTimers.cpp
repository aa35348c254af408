#include "Evaluation/FunctionTimers.h"

#include "Groups/Group.h"

#include <algorithm>

namespace {

struct TimerSet {
    NameTable<CommandTimer> timers;
    std::uint32_t generation = 1; // raised when the timers end, so that whoever knows one can tell
};

// Never destroyed: a session among the static objects of a program ends after what its calls have made.
TimerSet & timerSet() {
    static auto & set = *new TimerSet;
    return set;
}

CommandTimer * findTimer(TimerSet & set, FuncInfo & info) {
    FuncInfo::TimerLink & link = info.timerLink;
    if (link.timer == nullptr || link.generation != set.generation) {
        link.timer = &set.timers.try_emplace(info.name, info.name).first->second;
        link.generation = set.generation;
    }
    return link.timer;
}

} // namespace

TimedCall::TimedCall(FuncInfo & info) : timer(findTimer(timerSet(), info)), generation(timerSet().generation) {
    timer->start();
}

TimedCall::~TimedCall() {
    if (generation == timerSet().generation) timer->end();
}

YArray<YString> functionTimerTexts() {
    YArray<YString> texts;
    for (auto const & [name, timer] : timerSet().timers) texts.push_back(timer.print());
    std::sort(texts.begin(), texts.end());
    return texts;
}

void clearFunctionTimers() {
    timerSet().timers.clear();
    ++timerSet().generation;
}
