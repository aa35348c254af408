#include "torvelan/Host.h"

#include <gtest/gtest.h>
#include <string>

namespace {

std::string trace;

template <char letter> void note() {
    trace += letter;
}

AutoFunc const late("TestOrder", note<'l'>, "late", 200);
AutoFunc const first("TestOrder", note<'a'>, "first");
AutoFunc const second("TestOrder", note<'b'>, "second");
AutoFunc const early("TestOrder", note<'e'>, "early", 1);
AutoFunc const elsewhere("TestElsewhere", note<'x'>, "elsewhere");

TEST(Phases, CallbacksRunByPriorityThenByRegistration) {
    trace.clear();
    support_RunPhase("TestOrder");
    EXPECT_EQ(trace, "eabl");
}

TEST(Phases, APhaseRunsItsOwnCallbacksEachTime) {
    trace.clear();
    support_RunPhase("TestElsewhere");
    support_RunPhase("TestElsewhere");
    EXPECT_EQ(trace, "xx");
}

TEST(Phases, AnUnknownPhaseDoesNothing) {
    trace.clear();
    support_RunPhase("TestNobody");
    support_RunPhase("testorder");
    EXPECT_EQ(trace, "");
}

void registerAnother() {
    trace += 'r';
    AutoFunc("TestGrowing", note<'n'>, "another", 1);
}

TEST(Phases, ACallbackThatRegistersOneSeesItInTheNextRun) {
    AutoFunc("TestGrowing", registerAnother, "growing");
    trace.clear();
    support_RunPhase("TestGrowing");
    EXPECT_EQ(trace, "r");
    support_RunPhase("TestGrowing");
    EXPECT_EQ(trace, "rnr");
}

} // namespace
