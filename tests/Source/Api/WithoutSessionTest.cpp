// A host may call before a session has begun and after it has ended, and a script may pop contexts until the global
// group has gone: there is no group then, and nothing fails worse than with its code.
#include "Groups/GroupStore.h"
#include "Groups/LoosePool.h"
#include "RecordedMessages.h"
#include "torvelan/EngineSession.h"
#include "torvelan/Evaluate.h"
#include "torvelan/ForeignData.h"
#include "torvelan/Functions.h"
#include "torvelan/Substitution.h"
#include "torvelan/VectorStore.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <optional>

namespace {

enum class Store { neverBegun, ended, popped };

class WithoutSession : public testing::TestWithParam<Store> {
protected:
    WithoutSession() {
        if (GetParam() != Store::neverBegun) EngineSession();
        if (GetParam() != Store::popped) return;
        session.emplace();
        vec_PopContext();
    }
    ~WithoutSession() override {
        vec_CollectGarbage();
        while (groupListHead() != nullptr) destroyGroup(groupListHead());
    }

    std::string evaluated(char const * expression) {
        YString text = "none";
        VecEvalError const error = vec_Evaluate(&text, YString(expression), context);
        return error == VEC_EVAL_OK ? std::string(text.view()) : "failed";
    }

    std::shared_ptr<RecordedMessages> messages = std::make_shared<RecordedMessages>();
    ScpParseContext context{messages};
    std::optional<EngineSession> session;
};

INSTANTIATE_TEST_SUITE_P(NeverBegunEndedOrPopped, WithoutSession,
                         testing::Values(Store::neverBegun, Store::ended, Store::popped));

TEST_P(WithoutSession, ThereIsNoGroup) {
    YString out;
    EXPECT_EQ(vec_GetCurrentGroupName(out), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetCurrentGroupTitle(out), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetLocalGroupName(&out), VEC_NO_GROUP);
    EXPECT_EQ(vec_SetCurrentGroup("global"), VEC_NO_GROUP);
    YList<YString> names;
    vec_GetGroups(&names);
    EXPECT_TRUE(names.empty());
    bool flag = true;
    EXPECT_EQ(vec_GetGroupsInCollection(&names, &flag), VEC_NO_GROUP);
    EXPECT_FALSE(flag);
}

TEST_P(WithoutSession, WhatNeedsAGroupIsRefused) {
    for (char const * name : {"", "global"}) {
        YString out;
        NameArray labels;
        int count = 0;
        YList<YString> names;
        EXPECT_EQ(vec_GetGroupTitle(name, out), VEC_NO_GROUP);
        EXPECT_EQ(vec_EditGroupTitle(name, "t"), VEC_NO_GROUP);
        EXPECT_EQ(vec_GetGroupLabels(name, &labels), VEC_NO_GROUP);
        EXPECT_EQ(vec_GetNumVectorsInGroup(name, &count), VEC_NO_GROUP);
        EXPECT_EQ(vec_GetVectorsInGroup(&names, name), VEC_NO_GROUP);
        EXPECT_EQ(vec_GetVectorsInGroup(name, nullptr, 5), 0);
        EXPECT_EQ(vec_KeepGroup(name, true), VEC_NO_GROUP);
        EXPECT_EQ(vec_DestroyGroup(name, false), VEC_NO_GROUP);
        EXPECT_EQ(vec_GetCollectionName(name, out), VEC_NO_GROUP);
        EXPECT_EQ(vec_GetVectorPseudonym(name, "x", &out), VEC_NO_GROUP);
        EXPECT_EQ(vec_MakeString("s", "text", name), VEC_NO_GROUP);
        EXPECT_EQ(vec_MakeAliasVector("a", "1", name, PT_NONE), VEC_NO_GROUP);
        EXPECT_EQ(vec_InstallDeleteNotifyProc(
                      name, [](void *, void *) {}, nullptr),
                  VEC_NO_GROUP);
    }
}

TEST_P(WithoutSession, RecordsOfGroupsAreNeitherKeptNorRead) {
    YArray<YString> scripts;
    YArray<TraceDescription> traces;
    AnalysisInfo analysis;
    GroupInfo info;
    EXPECT_EQ(vec_AddPostProc("", "s"), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetPostProc("", &scripts), VEC_NO_GROUP);
    EXPECT_EQ(vec_AddTraceToGroup("", TraceDescription()), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetTraces("", &traces), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetAnalysisInfo("", &analysis), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetGroupInfo("", &info), VEC_OK);
    EXPECT_EQ(vec_AddGroupDivision("", "label"), VEC_OK);
    EXPECT_EQ(vec_FixGroup(""), VEC_OK);
    EXPECT_EQ(vec_DestroyAllGroups(), VEC_OK);
}

TEST_P(WithoutSession, NoVectorIsMade) {
    VectorParam y, x;
    y.name = "y";
    x.name = "x";
    IfVector yOut, xOut;
    for (char const * group : {"", "global"})
        EXPECT_EQ(vec_MakeVector(group, &y, &x, &yOut, &xOut, MakeVectorOptions()), VEC_NO_GROUP);
    EXPECT_EQ(yOut.addVal(1.0), VEC_NO_DATA_RECORD);
    EXPECT_EQ(xOut.addVal(complex{1, 2}), VEC_NO_DATA_RECORD);
    xOut.addDivision("group");
    EXPECT_EQ(xOut.getObjectSize(), 0U);
}

TEST_P(WithoutSession, DataFilesHaveNoGroup) {
    YString path = "untouched";
    for (char const * name : {"", "global"}) {
        EXPECT_EQ(vec_DataSent(name, true), VEC_NO_GROUP);
        EXPECT_EQ(vec_LinkDatafile(name, "f"), VEC_NO_GROUP);
        EXPECT_EQ(vec_AppendLinkedDatafiles(name), VEC_NO_GROUP);
        EXPECT_EQ(vec_AppendGroup(name, name, messages), VEC_NO_GROUP);
        EXPECT_EQ(vec_InitialiseSimulationGroup(true, "", name, true, false, messages, &path), VEC_NO_GROUP);
    }
    EXPECT_EQ(path.view(), "untouched");
}

TEST_P(WithoutSession, NamesOfVectorsAreUnknown) {
    XYVector * found = nullptr;
    EXPECT_EQ(vec_GetVector("", "pi", &found), VEC_NO_VECTOR);
    EXPECT_EQ(vec_GetVector("", ":pi", &found), VEC_NO_VECTOR);
    EXPECT_EQ(vec_GetVector("global", "pi", &found), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetNumericVector("", "pi", &found, messages, context), VEC_NO_VECTOR);
    EXPECT_EQ(vec_DestroyVector("pi", *messages, true), VEC_NOT_DONE);
    EXPECT_EQ(vec_DestroyVector(":pi", *messages, false), VEC_NOT_DONE);
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "pi", *messages), VEC_NOT_DONE);
    for (char const * name : {"pi", ":pi", "global:pi", "", ":"}) {
        bool exists = true;
        VectorExtInfo info{true};
        long long length = 0;
        EXPECT_EQ(vec_ExistVec(name, &exists, &info), VEC_OK);
        EXPECT_FALSE(exists || info.isAlias);
        EXPECT_EQ(vec_GetVectorLength(name, &length), VEC_OK);
        EXPECT_EQ(length, -1);
    }
    dvec const vector("v", 1.0);
    EXPECT_FALSE(vec_TestVectorUsesReference(&vector, "", "v"));
    EXPECT_FALSE(vec_TestVectorUsesReference(&vector, "global", "v"));
}

TEST_P(WithoutSession, ExpressionsOfNumbersHaveTheirValues) {
    double value = -1;
    EXPECT_EQ(vec_Evaluate(&value, "2+3*4", context), VEC_EVAL_OK);
    EXPECT_EQ(value, 14);
    EXPECT_EQ(evaluated("length('word')"), "1");
    EXPECT_EQ(evaluated("'a' & 'b'"), "ab");
    YArray<YString> texts;
    EXPECT_EQ(vec_Evaluate(&texts, -1, "abs(-4)", context, false), VEC_EVAL_OK);
    EXPECT_THAT(texts, testing::ElementsAre(YString("4")));
    char * text = nullptr;
    EXPECT_EQ(vec_Evaluate(&text, "'word'", context, false, false), 1);
    EXPECT_STREQ(text, "word");
    std::free(text);
}

TEST_P(WithoutSession, ExpressionsWithNamesFail) {
    for (char const * expression : {"pi", "global:pi", ":x", "x[0]", "sum(x)", "$0", "x:y:z", ""})
        EXPECT_EQ(evaluated(expression), "failed") << expression;
    YArray<XYVector *> values;
    EXPECT_EQ(vec_EvalVecList("x,1", &values, context, "", false), VEC_EXPRESSION_FAILED);
    for (XYVector * vector : values) vec_ReleaseVector(vector);
    vec_ReleaseVector(nullptr);
    EXPECT_FALSE(vec_IsAlias(nullptr));
}

TEST_P(WithoutSession, AssignedVectorIsATemporary) {
    EXPECT_EQ(evaluated("x=5"), "5");
    EXPECT_EQ(evaluated("x"), "failed");
    evaluated("x[0]=5");
    evaluated("group:x=5");
    evaluated(":x=5");
    vec_CollectGarbage();
    EXPECT_EQ(LoosePool::count(), 0U);
}

TEST_P(WithoutSession, VectorBelongsToNobody) {
    auto * vector = new dvec("v", 1.0);
    EXPECT_EQ(vector->owner(), nullptr);
    vector->enterGroup();
    vector->assign(*new dvec("w", "text", nullptr, PT_NONE));
    vector->leaveGroup();
    EXPECT_TRUE(vector->isTemporary());
    vector->setName("u");
    EXPECT_EQ(vector->fullName().view(), "u");
    vector->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(vector->resolveReferenceAlias(), nullptr);
    EXPECT_EQ((new dvec("a:b", messages.get()))->fullName().view(), "b");
    vector->addDivision("global");
    EXPECT_EQ(vector->divisionLabel(0).view(), "");
}

TEST_P(WithoutSession, GroupsAndContextsMayBeMade) {
    EXPECT_EQ(vec_MakeGroup("", "early", {.makeCurrent = true, .runId = 3}), VEC_OK);
    EXPECT_EQ(evaluated(":$$RunId"), "3");
    EXPECT_EQ(vec_PushContext(), VEC_OK);
    EXPECT_EQ(evaluated("x=7"), "7");
    EXPECT_EQ(evaluated("x"), "7");
    EXPECT_EQ(vec_PopContext(), VEC_OK);
    EXPECT_EQ(vec_PopContext(), VEC_OK);
    EXPECT_EQ(evaluated("x"), "failed");
    EXPECT_EQ(vec_OpenCollection("c", true), VEC_OK);
    EXPECT_EQ(vec_CloseCollection(), VEC_OK);
}

TEST_P(WithoutSession, LaterSessionBeginsBehindTheGroupsThatAreThere) {
    session.reset();
    EXPECT_EQ(vec_MakeGroup("", "early", {.makeCurrent = true}), VEC_OK);
    session.emplace();
    EXPECT_EQ(groupListHead()->next, nameSpace().global);
    EXPECT_EQ(nameSpace().current, nameSpace().global);
}

TEST_P(WithoutSession, FunctionsAreDescribedAndFound) {
    YList<FunctionInfo> functions;
    vec_GetFunctions(&functions, false);
    EXPECT_FALSE(functions.empty());
    YList<FuncInfo> sorted;
    vec_GetSortedFunctionList(&sorted);
    YList<FuncLocInfo> places;
    vec_GetFunctionLocs(&places);
    EXPECT_NE(vec_FindFunction("length"), nullptr);
}

TEST_P(WithoutSession, FilesAreReadOrRefused) {
    YString name;
    EXPECT_FALSE(vec_OpenForeignDataFile("/nowhere/at.all", DATA_SPICE3, {}, &name, messages));
    EngineSession::Command command; // collects, and nothing else happens
    EXPECT_EQ(groupListHead(), nullptr);
}

} // namespace
