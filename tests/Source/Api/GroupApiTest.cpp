#include "Source/Groups/StoreFixture.h"

namespace {

class GroupApiTest : public StoreFixture {
protected:
    static YString made(char const * name, std::uint32_t runId = 0, bool makeCurrent = false) {
        EXPECT_EQ(vec_MakeGroup("", name, {.makeCurrent = makeCurrent, .runId = runId}), VEC_OK);
        return groupListHead()->name;
    }
    static Texts texts(YList<YString> const & list) {
        Texts all;
        for (YString const & item : list) all.push_back(text(item));
        return all;
    }
};

TEST_F(GroupApiTest, TitleComesBeforeTheName) {
    vec_MakeGroup("the title", "apititle", VecMakeGroupOptions());
    EXPECT_EQ(text(groupListHead()->title), "the title");
    EXPECT_EQ(text(groupListHead()->name), "apititle1");
    YString name;
    vec_MakeGroup("the title", "apititle", name, 0, AnalysisInfo());
    EXPECT_EQ(text(name), "apititle2");
    EXPECT_EQ(text(groupListHead()->title), "the title");
}

TEST_F(GroupApiTest, OptionsOfANewGroup) {
    vec_MakeGroup("", "api", {.temporary = true, .makeCurrent = true, .runId = 77});
    Group const * group = groupListHead();
    EXPECT_EQ(nameSpace().current, group);
    EXPECT_FALSE(group->keepDataFile);
    EXPECT_EQ(group->runId, 77U);
    EXPECT_EQ(group->find("$$RunId")->getReal(0), 77);
    vec_MakeGroup("", "api", VecMakeGroupOptions());
    EXPECT_TRUE(groupListHead()->keepDataFile);
    EXPECT_EQ(groupListHead()->runId, 0U);
    EXPECT_EQ(nameSpace().current, group);
}

TEST_F(GroupApiTest, AnalysisIsCopiedInAndOut) {
    AnalysisInfo const analysis = {1ULL << 63, 2, true, false, true, "one", "two"};
    YString name;
    EXPECT_EQ(vec_MakeGroup("", "api", name, 5, analysis), VEC_OK);
    Group const * group = findGroup(name);
    EXPECT_FALSE(group->keepDataFile);
    EXPECT_EQ(group->runId, 5U);
    EXPECT_NE(nameSpace().current, group);
    AnalysisInfo read;
    EXPECT_EQ(vec_GetAnalysisInfo(name, &read), VEC_OK);
    EXPECT_EQ(read.value1, 1ULL << 63);
    EXPECT_EQ(read.value2, 2U);
    EXPECT_TRUE(read.flag1 && !read.flag2 && read.flag3);
    EXPECT_EQ(text(read.text1), "one");
    EXPECT_EQ(text(read.text2), "two");
    EXPECT_EQ(vec_GetAnalysisInfo("nowhere", &read), VEC_NO_GROUP);
}

TEST_F(GroupApiTest, CurrentGroupIsSetByName) {
    YString const name = made("api");
    YString current, title;
    EXPECT_EQ(vec_GetCurrentGroupName(current), VEC_OK);
    EXPECT_EQ(text(current), "global");
    EXPECT_EQ(vec_GetCurrentGroupTitle(title), VEC_OK);
    EXPECT_EQ(text(title), "Global vars");
    EXPECT_EQ(vec_SetCurrentGroup(name), VEC_OK);
    vec_GetCurrentGroupName(current);
    EXPECT_EQ(text(current), text(name));
    EXPECT_EQ(vec_SetCurrentGroup("nowhere"), VEC_NO_GROUP);
    vec_GetCurrentGroupName(current);
    EXPECT_EQ(text(current), text(name));
}

TEST_F(GroupApiTest, LocalGroupNameIsThatOfTheContextOrTheGlobalGroup) {
    YString name;
    EXPECT_EQ(vec_GetLocalGroupName(&name), VEC_OK);
    EXPECT_EQ(text(name), "global");
    EXPECT_EQ(vec_PushContext(), VEC_OK);
    vec_GetLocalGroupName(&name);
    EXPECT_EQ(text(name).substr(0, 5), "local");
    nameSpace().local = nullptr;
    vec_GetLocalGroupName(&name);
    EXPECT_EQ(text(name), "global");
    EXPECT_EQ(vec_PopContext(), VEC_OK);
}

TEST_F(GroupApiTest, EmptyNameIsTheCurrentGroupWhereSaid) {
    YString const name = made("api", 3, true);
    Group * group = findGroup(name);
    member(group, "x");
    group->title = "current";
    group->addLabel("label");
    YString out;
    EXPECT_EQ(vec_GetGroupTitle("", out), VEC_OK);
    EXPECT_EQ(text(out), "current");
    GroupInfo info;
    EXPECT_EQ(vec_GetGroupInfo("", &info), VEC_OK);
    EXPECT_EQ(text(info.title), "current");
    NameArray labels;
    EXPECT_EQ(vec_GetGroupLabels("", &labels), VEC_OK);
    EXPECT_EQ(labels.size(), 1U);
    int count = 0;
    EXPECT_EQ(vec_GetNumVectorsInGroup("", &count), VEC_OK);
    EXPECT_EQ(count, 2);
    YList<YString> names;
    EXPECT_EQ(vec_GetVectorsInGroup(&names, ""), VEC_OK);
    EXPECT_EQ(texts(names), (Texts{"$$RunId", "x"}));
    EXPECT_EQ(vec_KeepGroup("", true), VEC_OK);
    EXPECT_EQ(group->runId, 0U);
    EXPECT_EQ(vec_GetCollectionName("", out), VEC_OK);
}

TEST_F(GroupApiTest, UnknownGroupsAreRefused) {
    YString out;
    NameArray labels;
    int count = 5;
    YList<YString> names;
    YArray<YString> scripts;
    YArray<TraceDescription> traces;
    EXPECT_EQ(vec_GetGroupTitle("nowhere", out), VEC_NO_GROUP);
    EXPECT_EQ(vec_EditGroupTitle("nowhere", "t"), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetGroupLabels("nowhere", &labels), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetNumVectorsInGroup("nowhere", &count), VEC_NO_GROUP);
    EXPECT_EQ(count, 5);
    EXPECT_EQ(vec_GetVectorsInGroup(&names, "nowhere"), VEC_NO_GROUP);
    EXPECT_EQ(vec_AddPostProc("nowhere", "s"), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetPostProc("nowhere", &scripts), VEC_NO_GROUP);
    EXPECT_EQ(vec_AddTraceToGroup("nowhere", TraceDescription()), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetTraces("nowhere", &traces), VEC_NO_GROUP);
    EXPECT_EQ(vec_InstallDeleteNotifyProc(
                  "nowhere", [](void *, void *) {}, nullptr),
              VEC_NO_GROUP);
    EXPECT_EQ(vec_KeepGroup("nowhere", true), VEC_NO_GROUP);
    EXPECT_EQ(vec_DestroyGroup("nowhere", false), VEC_NO_GROUP);
    EXPECT_EQ(vec_DestroyGroup("", false), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetCollectionName("nowhere", out), VEC_NO_GROUP);
}

TEST_F(GroupApiTest, SomeOperationsPassOverUnknownGroups) {
    GroupInfo info;
    info.title = "untouched";
    info.keep = true;
    EXPECT_EQ(vec_GetGroupInfo("nowhere", &info), VEC_OK);
    EXPECT_EQ(text(info.title), "untouched");
    EXPECT_TRUE(info.keep);
    EXPECT_EQ(vec_AddGroupDivision("nowhere", "label"), VEC_OK);
    EXPECT_EQ(vec_FixGroup("nowhere"), VEC_OK);
}

TEST_F(GroupApiTest, TitleOfAProtectedGroupStays) {
    YString const name = made("api");
    EXPECT_EQ(vec_EditGroupTitle(name, "new"), VEC_OK);
    EXPECT_EQ(text(findGroup(name)->title), "new");
    EXPECT_EQ(vec_EditGroupTitle("global", "new"), VEC_OK);
    EXPECT_EQ(text(nameSpace().global->title), "Global vars");
}

TEST_F(GroupApiTest, InfoTellsDateTitleAndKeeping) {
    YString const name = made("api", 8);
    findGroup(name)->date = "a date";
    findGroup(name)->addLabel("label");
    GroupInfo info;
    vec_GetGroupInfo(name, &info);
    EXPECT_EQ(text(info.date), "a date");
    EXPECT_EQ(text(info.title), "Untitled");
    EXPECT_TRUE(info.dataFile.empty());
    EXPECT_TRUE(info.labels.empty());
    EXPECT_FALSE(info.keep);
    vec_KeepGroup(name, true);
    vec_GetGroupInfo(name, &info);
    EXPECT_TRUE(info.keep);
    setRunId(nameSpace().global, 4);
    vec_GetGroupInfo("global", &info);
    EXPECT_TRUE(info.keep);
    Group * context = pushContext();
    setRunId(context, 5);
    vec_GetGroupInfo(context->name, &info);
    EXPECT_TRUE(info.keep);
    popContext();
}

TEST_F(GroupApiTest, LabelsAreAppendedAndRead) {
    YString const name = made("api");
    vec_AddGroupDivision(name, "a");
    vec_AddGroupDivision(name, "b");
    NameArray labels = {"old"};
    EXPECT_EQ(vec_GetGroupLabels(name, &labels), VEC_OK);
    EXPECT_THAT(labels, testing::ElementsAre(YString("a"), YString("b")));
}

TEST_F(GroupApiTest, VectorsAreDescribedInNameOrder) {
    YString const name = made("api");
    Group * group = findGroup(name);
    auto * number = member(group, "b", 1);
    number->addVal(2);
    number->addDivision("");
    number->addVal(3);
    number->setPhysType(PT_VOLTAGE);
    stringMember(group, "C", "text")->flags |= VF_ALIAS;
    member(group, "a", 1)->setComplexFlag();
    VectorInfo records[3];
    ASSERT_EQ(vec_GetVectorsInGroup(name, records, 3), 3);
    EXPECT_EQ(text(records[0].name), "a");
    EXPECT_EQ(records[0].type, VD_COMPLEX);
    EXPECT_EQ(text(records[1].name), "b");
    EXPECT_EQ(records[1].type, VD_REAL);
    EXPECT_EQ(records[1].physType, PT_VOLTAGE);
    EXPECT_EQ(records[1].length, 3);
    EXPECT_EQ(records[1].numDivisions, 2);
    EXPECT_FALSE(records[1].isAlias);
    EXPECT_EQ(text(records[2].name), "C");
    EXPECT_EQ(records[2].type, VD_STRING);
    EXPECT_TRUE(records[2].isAlias);
    VectorInfo one[1];
    EXPECT_EQ(vec_GetVectorsInGroup(name, one, 1), 1);
    EXPECT_EQ(text(one[0].name), "a");
    EXPECT_EQ(vec_GetVectorsInGroup(name, nullptr, 0), 0);
    EXPECT_EQ(vec_GetVectorsInGroup(name, nullptr, -1), 0);
    EXPECT_EQ(vec_GetVectorsInGroup("nowhere", one, 1), 0);
}

TEST_F(GroupApiTest, LocalContextsAreNotShown) {
    YString const first = made("api");
    vec_PushContext();
    YString const second = made("api");
    YList<YString> names;
    vec_GetGroups(&names);
    EXPECT_EQ(texts(names), (Texts{text(second), text(first), "global"}));
}

TEST_F(GroupApiTest, ScriptsAndTracesAreKeptInOrder) {
    YString const name = made("api");
    vec_AddPostProc(name, "one");
    vec_AddPostProc(name, "two");
    YArray<YString> scripts = {"old"};
    EXPECT_EQ(vec_GetPostProc(name, &scripts), VEC_OK);
    EXPECT_THAT(scripts, testing::ElementsAre(YString("one"), YString("two")));
    TraceDescription trace;
    trace.text1 = "v(out)";
    trace.flag = true;
    trace.properties.push_back({"colour", "red"});
    vec_AddTraceToGroup(name, trace);
    vec_AddTraceToGroup(name, TraceDescription());
    YArray<TraceDescription> traces;
    EXPECT_EQ(vec_GetTraces(name, &traces), VEC_OK);
    ASSERT_EQ(traces.size(), 2U);
    EXPECT_EQ(text(traces[0].text1), "v(out)");
    EXPECT_TRUE(traces[0].flag);
    EXPECT_EQ(text(traces[0].properties.at(0).value), "red");
    EXPECT_FALSE(traces[1].flag);
}

Texts notified;
void noteA(void * arg, void * name) {
    notified.push_back("A" + std::to_string(*static_cast<int *>(arg)) +
                       std::string(static_cast<YString const *>(name)->view()));
}
void noteB(void * arg, void *) {
    notified.push_back("B" + std::to_string(*static_cast<int *>(arg)));
}

TEST_F(GroupApiTest, NotificationsLatestFirstAndAListedProcGetsItsNewArgument) {
    notified.clear();
    int one = 1, two = 2, three = 3;
    YString const name = made("api", 0, true);
    EXPECT_EQ(vec_InstallDeleteNotifyProc(name, noteA, &one), VEC_OK);
    EXPECT_EQ(vec_InstallDeleteNotifyProc("", noteB, &two), VEC_OK);
    EXPECT_EQ(vec_InstallDeleteNotifyProc(name, noteA, &three), VEC_OK);
    vec_DestroyGroup(name, false);
    EXPECT_EQ(notified, (Texts{"B2", "A3" + text(name)}));
}

TEST_F(GroupApiTest, KeepingTwiceAndReleasingRestoresTheRunId) {
    YString const name = made("api", 42);
    Group const * group = findGroup(name);
    EXPECT_EQ(vec_KeepGroup(name, true), VEC_OK);
    EXPECT_EQ(group->runId, 0U);
    EXPECT_EQ(vec_KeepGroup(name, true), VEC_OK);
    EXPECT_EQ(group->savedRunId, 42U);
    EXPECT_EQ(vec_KeepGroup(name, false), VEC_OK);
    EXPECT_EQ(group->runId, 42U);
}

TEST_F(GroupApiTest, ReleasingAGroupThatWasNeverKeptExemptsIt) {
    YString const name = made("api", 42);
    vec_KeepGroup(name, false);
    EXPECT_EQ(findGroup(name)->runId, 0U);
}

TEST_F(GroupApiTest, KeptGroupSurvivesThePurge) {
    sp_SetOption("GroupPersistence", "1");
    YString const kept = made("api", 1);
    vec_KeepGroup(kept, true);
    YString const gone = made("api", 2);
    made("api", 3);
    made("api", 4);
    EXPECT_NE(findGroup(kept), nullptr);
    EXPECT_EQ(findGroup(gone), nullptr);
    vec_KeepGroup(kept, false);
    made("api", 5);
    EXPECT_EQ(findGroup(kept), nullptr);
}

TEST_F(GroupApiTest, ProtectedGroupIsNotDestroyed) {
    EXPECT_EQ(vec_DestroyGroup("global", false), VEC_OK);
    EXPECT_EQ(findGroup("global"), nameSpace().global);
}

TEST_F(GroupApiTest, DestroyingByNameAndAll) {
    YString const one = made("api"), two = made("api");
    EXPECT_EQ(vec_DestroyGroup(one, true), VEC_OK);
    EXPECT_EQ(findGroup(one), nullptr);
    EXPECT_EQ(vec_DestroyAllGroups(), VEC_OK);
    EXPECT_EQ(findGroup(two), nullptr);
}

TEST_F(GroupApiTest, FixingAGroupKeepsItsValues) {
    YString const name = made("api");
    auto * vector = member(findGroup(name), "v", 0);
    for (int i = 1; i < 1000; ++i) vector->addVal(i);
    stringMember(findGroup(name), "s", "text");
    EXPECT_EQ(vec_FixGroup(name), VEC_OK);
    ASSERT_EQ(vector->length(), 1000);
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(vector->getReal(i), i);
    vector->addVal(1000.0);
    EXPECT_EQ(vector->getReal(1000), 1000);
}

TEST_F(GroupApiTest, CollectionIsNewOnceAndOpensEachTime) {
    EXPECT_EQ(vec_OpenCollection("sweep", true), VEC_OK);
    YString const inside = made("tran");
    EXPECT_EQ(vec_CloseCollection(), VEC_OK);
    YString const outside = made("tran");
    EXPECT_EQ(vec_OpenCollection("SWEEP", false), VEC_EXISTS);
    YString const again = made("tran");
    YString collection;
    EXPECT_EQ(vec_GetCollectionName(inside, collection), VEC_OK);
    EXPECT_EQ(text(collection), "sweep");
    vec_GetCollectionName(outside, collection);
    EXPECT_EQ(text(collection), "");
    vec_GetCollectionName(again, collection);
    EXPECT_EQ(text(collection), "SWEEP");
    EXPECT_EQ(vec_OpenCollection("", true), VEC_OK);
}

TEST_F(GroupApiTest, GroupsOfTheCurrentGroupsCollectionOldestFirst) {
    vec_OpenCollection("coll", true);
    YString const first = made("api"), second = made("api");
    vec_OpenCollection("other", false);
    made("api");
    vec_CloseCollection();
    made("api");
    vec_SetCurrentGroup(second);
    YList<YString> names = {"before"};
    bool flag = false;
    EXPECT_EQ(vec_GetGroupsInCollection(&names, &flag), VEC_OK);
    EXPECT_EQ(texts(names), (Texts{text(first), text(second), "before"}));
    EXPECT_TRUE(flag);
    EXPECT_EQ(vec_GetGroupsInCollection(nullptr, nullptr), VEC_OK);
}

TEST_F(GroupApiTest, CurrentGroupOfNoCollectionGivesNoNames) {
    made("api");
    YList<YString> names;
    bool flag = true;
    EXPECT_EQ(vec_GetGroupsInCollection(&names, &flag), VEC_OK);
    EXPECT_TRUE(names.empty());
    EXPECT_FALSE(flag);
}

TEST_F(GroupApiTest, NothingNeedsTheSpecialGroups) {
    vec_PopContext();
    EXPECT_EQ(vec_PopContext(), VEC_OK);
    YString out;
    EXPECT_EQ(vec_GetCurrentGroupName(out), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetCurrentGroupTitle(out), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetLocalGroupName(&out), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetGroupTitle("", out), VEC_NO_GROUP);
    GroupInfo info;
    EXPECT_EQ(vec_GetGroupInfo("", &info), VEC_OK);
    int count = 0;
    EXPECT_EQ(vec_GetNumVectorsInGroup("", &count), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetVectorsInGroup("", nullptr, 0), 0);
    EXPECT_EQ(vec_GetGroupsInCollection(nullptr, nullptr), VEC_NO_GROUP);
    EXPECT_EQ(vec_KeepGroup("", true), VEC_NO_GROUP);
    EXPECT_EQ(vec_DestroyAllGroups(), VEC_OK);
    EXPECT_EQ(vec_PushContext(), VEC_OK);
    EXPECT_EQ(vec_PopContext(), VEC_OK);
    EXPECT_EQ(vec_MakeGroup("", "api", VecMakeGroupOptions()), VEC_OK);
}

TEST_F(GroupApiTest, PlacesForAnswersMayBeNull) {
    YString const group = made("api");
    EXPECT_EQ(vec_GetLocalGroupName(nullptr), VEC_OK);
    EXPECT_EQ(vec_GetGroupInfo(group, nullptr), VEC_OK);
    EXPECT_EQ(vec_GetGroupLabels(group, nullptr), VEC_OK);
    EXPECT_EQ(vec_GetNumVectorsInGroup(group, nullptr), VEC_OK);
    member(findGroup(group), "v");
    EXPECT_EQ(vec_GetVectorsInGroup(nullptr, group), VEC_OK);
    EXPECT_EQ(vec_GetVectorsInGroup(group, nullptr, 5), 0);
    EXPECT_EQ(vec_GetPostProc(group, nullptr), VEC_OK);
    EXPECT_EQ(vec_GetTraces(group, nullptr), VEC_OK);
    EXPECT_EQ(vec_GetAnalysisInfo(group, nullptr), VEC_OK);
    vec_GetGroups(nullptr);
    EXPECT_EQ(vec_InstallDeleteNotifyProc(group, nullptr, nullptr), VEC_OK);
    EXPECT_EQ(vec_DestroyGroup(group, false), VEC_OK);
}

TEST_F(GroupApiTest, NegativeCapacityHoldsNothing) {
    YString const group = made("api");
    member(findGroup(group), "v");
    VectorInfo record;
    EXPECT_EQ(vec_GetVectorsInGroup(group, &record, -1), 0);
    EXPECT_TRUE(record.name.empty());
}

} // namespace
