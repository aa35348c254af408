// The registry of functions, and the timers that go with it.

#include "Evaluation/FunctionTimers.h"
#include "FrameTools.h"

namespace {

FUNC_ERROR nothing(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                   ScpParseContext const &) {
    return FUNC_OK;
}

FUNC_ERROR clearTimers(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                       ScpParseContext const &) {
    clearFunctionTimers();
    return FUNC_OK;
}

FuncInfo named(char const * name, int maxArgs = 1) {
    argType const types[2] = {ARG_REAL, ARG_STRING};
    return FuncInfo(name, types, 1, maxArgs, nothing, false);
}

FuncDef const staticFunction(named("funcdefTestStatic"));
FuncLoc const staticPlace("funcdefTestStatic", "FuncdefTest.cpp", 42, reinterpret_cast<void *>(nothing));

std::vector<std::string> names(YList<FunctionInfo> const & list) {
    std::vector<std::string> out;
    for (FunctionInfo const & info : list) out.emplace_back(info.name.view());
    return out;
}

std::size_t countNamed(std::vector<std::string> const & list, char const * name) {
    return static_cast<std::size_t>(std::count(list.begin(), list.end(), name));
}

} // namespace

TEST(Funcdef, FindsWithoutRegardToCase) {
    FuncInfo const * info = vec_FindFunction(YString("FUNCDEFTESTstatic"));
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->name, "funcdefTestStatic");
    EXPECT_EQ(vec_FindFunction(YString("funcdefTestStati")), nullptr);
    EXPECT_EQ(vec_FindFunction(YString()), nullptr);
}

TEST(Funcdef, EveryListedFunctionIsFoundByItsName) {
    YList<FunctionInfo> list;
    vec_GetFunctions(&list, false);
    ASSERT_FALSE(list.empty());
    for (FunctionInfo const & info : list) {
        FuncInfo const * found = vec_FindFunction(info.name);
        ASSERT_NE(found, nullptr) << info.name.c_str();
        EXPECT_TRUE(equalNoCase(found->name, info.name));
    }
}

TEST(Funcdef, ANewRecordHidesAnOldOneAndBothAreListed) {
    EngineSession const session;
    vec_AddNewFunction(named("hidden", 1));
    vec_AddNewFunction(named("Hidden", 2));
    EXPECT_EQ(vec_FindFunction(YString("hidden"))->maxArgs, 2);
    YList<FunctionInfo> list;
    vec_GetFunctions(&list, false);
    EXPECT_EQ(countNamed(names(list), "hidden"), 1u);
    EXPECT_EQ(countNamed(names(list), "Hidden"), 1u);
    auto const all = names(list);
    EXPECT_LT(std::find(all.begin(), all.end(), "Hidden"), std::find(all.begin(), all.end(), "hidden"));
}

TEST(Funcdef, RunTimeFunctionsEndWithTheSessionAndStaticOnesStay) {
    {
        EngineSession const session;
        vec_AddNewFunction(named("fleeting"));
        vec_AddNewFunction(named("funcdefTestStatic", 2));
        EXPECT_NE(vec_FindFunction(YString("fleeting")), nullptr);
    }
    EXPECT_EQ(vec_FindFunction(YString("fleeting")), nullptr);
    ASSERT_NE(vec_FindFunction(YString("funcdefTestStatic")), nullptr);
    EXPECT_EQ(vec_FindFunction(YString("funcdefTestStatic"))->maxArgs, 1);
}

TEST(Funcdef, AFunctionBeginsEverySessionWithAnEmptyStore) {
    {
        EngineSession const session;
        vec_FindFunction(YString("funcdefTestStatic"))->state.words[1] = 7;
    }
    EXPECT_EQ(vec_FindFunction(YString("funcdefTestStatic"))->state.words[1], 0u);
}

TEST(Funcdef, OnlyExportedFunctionsWhenAsked) {
    EngineSession const session;
    argType const types[1] = {ARG_NUMERIC};
    vec_AddNewFunction(FuncInfo("shown", types, 1, 1, nothing, true));
    vec_AddNewFunction(named("kept back"));
    YList<FunctionInfo> list;
    vec_GetFunctions(&list, true);
    EXPECT_EQ(countNamed(names(list), "shown"), 1u);
    EXPECT_EQ(countNamed(names(list), "kept back"), 0u);
}

TEST(Funcdef, TheSortedListLeavesOutNamesWithALeadingUnderscore) {
    EngineSession const session;
    for (char const * name : {"zz2", "_secret", "ZZ1", "zz3"}) vec_AddNewFunction(named(name));
    EXPECT_NE(vec_FindFunction(YString("_SECRET")), nullptr);
    YList<FuncInfo> list;
    vec_GetSortedFunctionList(&list);
    EXPECT_TRUE(std::is_sorted(list.begin(), list.end()));
    Texts last;
    for (auto info = std::prev(list.end(), 3); info != list.end(); ++info) last.emplace_back(info->name.view());
    EXPECT_EQ(last, (Texts{"ZZ1", "zz2", "zz3"}));
    for (FuncInfo const & info : list) EXPECT_FALSE(info.name.beginsWith("_"));
}

TEST(Funcdef, LocationsTellFileLineAndModule) {
    YList<FuncLocInfo> list;
    vec_GetFunctionLocs(&list);
    auto const found =
        std::find_if(list.begin(), list.end(), [](auto const & l) { return l.name == "funcdefTestStatic"; });
    ASSERT_NE(found, list.end());
    EXPECT_EQ(found->line, 42);
    EXPECT_EQ(found->file, "FuncdefTest.cpp");
    EXPECT_FALSE(found->modulePath.empty());
}

TEST(Funcdef, ConstructorsTakeAsManyEntriesAsArguments) {
    argType const types[2] = {ARG_REAL, ARG_STRING};
    MultiDef const multis[2] = {MULTI_WHOLE, MULTI_COLLAPSE};
    FuncInfo const info("f", types, 1, 2, nothing, multis, true);
    EXPECT_EQ(info.argTypes[0], ARG_REAL);
    EXPECT_EQ(info.argTypes[1], ARG_STRING);
    EXPECT_EQ(info.argTypes[2], ARG_NUMERIC);
    EXPECT_EQ(info.multiDefs[0], MULTI_WHOLE);
    EXPECT_EQ(info.multiDefs[1], MULTI_COLLAPSE);
    EXPECT_EQ(info.multiDefs[2], MULTI_REFUSED);
    EXPECT_TRUE(info.supportsIncremental);
    EXPECT_FALSE(info.matchArgs);
    EXPECT_FALSE(info.exported);
    EXPECT_EQ(info.directHandler, nullptr);
}

TEST(Funcdef, TheShorterConstructorRefusesDivisionsAndMayExport) {
    argType const types[1] = {ARG_REAL};
    FuncInfo const info("f", types, 1, 1, nothing, true);
    EXPECT_TRUE(info.exported);
    EXPECT_FALSE(info.supportsIncremental);
    EXPECT_EQ(info.multiDefs[0], MULTI_REFUSED);
    FuncInfo const bare("g", nullptr, -1, 99, nothing, nullptr, false);
    EXPECT_EQ(bare.minArgs, 0);
    EXPECT_EQ(bare.maxArgs, FuncInfo::maxArguments);
}

TEST(Funcdef, RecordsCompareAndHashWithoutRegardToCase) {
    EXPECT_LT(named("ABC"), named("abd"));
    EXPECT_FALSE(named("abc") < named("ABC"));
    EXPECT_EQ(named("abc").hashValue(), named("ABC").hashValue());
}

TEST(Funcdef, TheStoreOfAFunctionIsCopiedByValue) {
    FuncInfo a = named("f");
    a.state.words[0] = 5;
    FuncInfo const b = a;
    a.state.words[0] = 6;
    EXPECT_EQ(b.state.words[0], 5u);
}

class FunctionTimerTest : public FrameTest {
protected:
    FunctionTimerTest() { clearFunctionTimers(); }
};

TEST_F(FunctionTimerTest, OneTimerForEachNameInAnyCaseAndSorted) {
    FuncInfo b = makeInfo("bee", nothing, 0, 1);
    FuncInfo otherB = makeInfo("BEE", nothing, 0, 1);
    FuncInfo a = makeInfo("ant", nothing, 0, 1);
    for (FuncInfo * info : {&b, &otherB, &a}) call(*info, {});
    YArray<YString> const texts = functionTimerTexts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_TRUE(texts[0].beginsWith("ant: calls 1"));
    EXPECT_TRUE(texts[1].beginsWith("bee: calls 2"));
}

TEST_F(FunctionTimerTest, ACopyOfARecordFindsTheTimerOfItsOwnName) {
    FuncInfo a = makeInfo("ant", nothing, 0, 1);
    call(a, {});
    FuncInfo b = a;
    b.name = "bee";
    call(b, {});
    EXPECT_EQ(functionTimerTexts().size(), 2u);
}

TEST_F(FunctionTimerTest, AHandlerMayClearTheTimersWhileItIsTimed) {
    FuncInfo info = makeInfo("clears", clearTimers, 0, 1);
    call(info, {});
    EXPECT_TRUE(functionTimerTexts().empty());
    FuncInfo quiet = makeInfo("quiet", nothing, 0, 1);
    call(info, {});
    call(quiet, {});
    call(quiet, {});
    ASSERT_EQ(functionTimerTexts().size(), 1u);
    EXPECT_TRUE(functionTimerTexts()[0].beginsWith("quiet: calls 2"));
}
