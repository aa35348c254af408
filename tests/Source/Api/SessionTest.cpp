#include "Evaluation/ScriptFunctions.h"
#include "Source/Groups/StoreFixture.h"
#include "torvelan/Evaluate.h"
#include "torvelan/Functions.h"

#include <fstream>
#include <numbers>

namespace {

Texts phases;
template <char Mark> void notePhase() {
    phases.push_back(std::string(1, Mark));
}
AutoFunc const atInit("Init", notePhase<'1'>, "note");
AutoFunc const atInitCli("InitCli", notePhase<'2'>, "note");
AutoFunc const atPostInit("PostInit", notePhase<'3'>, "note");
AutoFunc const atPreExec("PreExec", notePhase<'4'>, "note");
AutoFunc const atPreCli("PreCli", notePhase<'5'>, "note");
AutoFunc const atPostCli("PostCli", notePhase<'6'>, "note");
AutoFunc const atExitCli("ExitCli", notePhase<'7'>, "note");
AutoFunc const atExit("Exit", notePhase<'8'>, "note");

// What the store looks like in the "Exit" phase before its own last callback, which comes after all others.
bool globalStoodAtExit = false;
AutoFunc const lookAtExit(
    "Exit", [] { globalStoodAtExit = nameSpace().global != nullptr; }, "look", 999);

TEST(Session, PhasesRunInOrder) {
    phases.clear();
    {
        EngineSession session;
        EXPECT_EQ(phases, (Texts{"1", "2", "3", "4"}));
        { EngineSession::Command command; }
        EXPECT_EQ(phases, (Texts{"1", "2", "3", "4", "5", "6"}));
    }
    EXPECT_EQ(phases, (Texts{"1", "2", "3", "4", "5", "6", "7", "8"}));
}

TEST(Session, StartsWithTheGlobalGroupInEveryRole) {
    EngineSession session;
    NameSpace const & groups = nameSpace();
    ASSERT_NE(groups.global, nullptr);
    EXPECT_EQ(groups.local, groups.global);
    EXPECT_EQ(groups.current, groups.global);
    EXPECT_EQ(groupListHead(), groups.global);
    EXPECT_EQ(groups.global->name.view(), "global");
    EXPECT_EQ(groups.global->title.view(), "Global vars");
    EXPECT_EQ(groups.global->flags, 4U);
}

TEST(Session, GlobalGroupHoldsTheConstantsReadOnly) {
    EngineSession session;
    struct Constant {
        char const * name;
        double value;
    };
    for (Constant const & constant :
         {Constant{"true", 1}, {"false", 0}, {"pi", std::numbers::pi}, {"e", std::numbers::e}}) {
        dvec const * vector = nameSpace().global->find(constant.name);
        ASSERT_NE(vector, nullptr) << constant.name;
        EXPECT_EQ(vector->type(), VD_REAL);
        ASSERT_EQ(vector->length(), 1);
        EXPECT_EQ(vector->getReal(0), constant.value);
        EXPECT_TRUE(vector->isReadOnly());
    }
    EXPECT_EQ(nameSpace().global->vectors.size(), 4U);
}

TEST(Session, CommandCollectsTheTemporariesOfTheOneBefore) {
    int deaths = 0;
    EngineSession session;
    {
        EngineSession::Command command;
        new WatchedVector("temporary", nullptr, &deaths);
    }
    EXPECT_EQ(deaths, 0);
    EngineSession::Command command;
    EXPECT_EQ(deaths, 1);
}

// It ends among the static objects of the program then, behind those that calls have made on first use.
TEST(SessionDeathTest, ASessionMayLastAsLongAsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto const runToTheEnd = [] {
        static EngineSession const session;
        registerScriptFunction("f", "s", 0, 1);
        double value;
        std::exit(vec_Evaluate(&value, YString("sin(0)"), ScpParseContext(std::make_shared<NullMessageHandler>())));
    };
    EXPECT_EXIT(runToTheEnd(), testing::ExitedWithCode(VEC_EVAL_OK), "");
}

TEST(Session, EndsEverythingAndAnotherMayStart) {
    int deaths = 0;
    for (int i = 0; i < 3; ++i) {
        EngineSession session;
        EXPECT_TRUE(currentCollection().empty());
        EXPECT_EQ(groupListHead(), nameSpace().global);
        vec_OpenCollection("coll", true);
        vec_MakeGroup("", "session", {.makeCurrent = true, .runId = 5});
        (new WatchedVector("member", nameSpace().current, &deaths))->enterGroup();
        vec_PushContext(); // never popped
        (new WatchedVector("local", nullptr, &deaths))->enterGroup();
        new WatchedVector("loose", nullptr, &deaths);
    }
    EXPECT_EQ(deaths, 9);
    EXPECT_TRUE(globalStoodAtExit);
    EXPECT_EQ(groupListHead(), nullptr);
    EXPECT_EQ(LoosePool::count(), 0U);
    EXPECT_EQ(nameSpace().global, nullptr);
    EXPECT_EQ(nameSpace().local, nullptr);
    EXPECT_EQ(nameSpace().current, nullptr);
}

TEST(Session, BuiltInFunctionsAreThereInALaterSession) {
    YList<FunctionInfo> first, later;
    {
        EngineSession session;
        vec_GetFunctions(&first, false);
    }
    EngineSession session;
    vec_GetFunctions(&later, false);
    EXPECT_FALSE(first.empty());
    EXPECT_EQ(later.size(), first.size());
}

TEST(Session, GroupsEndBeforeTheGlobalOne) {
    static bool globalStood = false;
    {
        EngineSession session;
        vec_MakeGroup("", "session", {.makeCurrent = true});
        vec_InstallDeleteNotifyProc(
            "", [](void *, void *) { globalStood = findGroup("global") != nullptr; }, nullptr);
    }
    EXPECT_TRUE(globalStood);
}

TEST(Session, ReportsOfNoCommandGoToTheSessionsHandler) {
    auto const reports = std::make_shared<RecordedMessages>();
    {
        EngineSession session{reports};
        EXPECT_EQ(defaultMessageHandler(), reports);
        internal_error("said %d", 1);
    }
    EXPECT_EQ(reports->texts, Texts{"said 1"});
    EXPECT_NE(defaultMessageHandler(), reports);
    EXPECT_EQ(reports.use_count(), 1);
}

std::shared_ptr<RecordedMessages> hostReports;
YRef<MessageHandler> hostGetter() {
    return hostReports;
}

TEST(Session, HandlerOfTheHostStandsBesideASessionWithoutOne) {
    hostReports = std::make_shared<RecordedMessages>();
    auto const reports = std::make_shared<RecordedMessages>();
    MakeDynamicFunction const registration("getDefaultMessageHandler", reinterpret_cast<DynamicFunction>(hostGetter));
    {
        EngineSession session;
        EXPECT_EQ(defaultMessageHandler(), hostReports);
    }
    {
        EngineSession session{reports};
        EXPECT_EQ(defaultMessageHandler(), reports);
    }
    EXPECT_EQ(defaultMessageHandler(), hostReports);
    MakeDynamicFunction("getDefaultMessageHandler", nullptr);
}

TEST(Session, HandlerThatTheHostRegistersDuringASessionStays) {
    hostReports = std::make_shared<RecordedMessages>();
    auto const registerHostGetter = [] {
        MakeDynamicFunction("getDefaultMessageHandler", reinterpret_cast<DynamicFunction>(hostGetter));
    };
    {
        EngineSession session;
        registerHostGetter();
    }
    EXPECT_EQ(defaultMessageHandler(), hostReports);
    MakeDynamicFunction("getDefaultMessageHandler", nullptr);
    {
        EngineSession session{std::make_shared<RecordedMessages>()};
        registerHostGetter();
    }
    EXPECT_EQ(defaultMessageHandler(), hostReports);
    MakeDynamicFunction("getDefaultMessageHandler", nullptr);
}

TEST(Session, SecondSessionBesideARunningOneIsAnInternalErrorAndInert) {
    auto const reports = std::make_shared<RecordedMessages>();
    EngineSession session{reports};
    phases.clear();
    { EngineSession second; }
    EXPECT_TRUE(phases.empty());
    ASSERT_EQ(reports->texts.size(), 1U);
    EXPECT_THAT(reports->texts[0], testing::StartsWith("Error found in module "));
    EXPECT_NE(nameSpace().global, nullptr);
}

TEST(Session, VersionIsThatOfTheProject) {
    std::ifstream file(TORVELAN_SOURCE_DIR "/CMakeLists.txt");
    std::string const cmake{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(cmake, testing::HasSubstr("VERSION " + std::string(vec_Version()) + " "));
}

} // namespace
