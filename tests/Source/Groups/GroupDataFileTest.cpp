#include "Source/Groups/DataFileFixture.h"

#include "torvelan/Groups.h"

namespace {

class GroupDataFileTest : public DataFileFixture {
protected:
    // Whether the data file of a group that is destroyed is marked for deletion first.
    bool fileGoes(bool temporary, bool keep) {
        Group * group = groupWithFile("gdf", "f");
        group->dataFileTemporary = temporary;
        group->keepDataFile = keep;
        events.clear();
        destroyGroup(group);
        EXPECT_EQ(events.back(), "f closed");
        return events.size() == 2 && events.front() == "f marked";
    }
};

TEST_F(GroupDataFileTest, OnlyATemporaryFileThatIsNotKeptGoesWithItsGroup) {
    EXPECT_TRUE(fileGoes(true, false));
    EXPECT_FALSE(fileGoes(true, true));
    EXPECT_FALSE(fileGoes(false, false));
    EXPECT_FALSE(fileGoes(false, true));
}

TEST_F(GroupDataFileTest, FileOfAGroupThatWasNeverListedGoesAsWell) {
    Group * group = makeUnlistedGroup("");
    giveFile(group, "f");
    group->dataFileTemporary = true;
    discardGroup(group);
    EXPECT_EQ(events, (Texts{"f marked", "f closed"}));
}

TEST_F(GroupDataFileTest, FileLivesAsLongAsItHasHolders) {
    Group * group = groupWithFile("gdf", "f");
    group->dataFileTemporary = true;
    auto held = group->dataFile;
    destroyGroup(group);
    EXPECT_EQ(events, Texts{"f marked"});
    held.reset();
    EXPECT_EQ(events.back(), "f closed");
}

// The end of a group, each step telling whether the group still stands in the list.
class Step {
public:
    Step(Texts & events_, Group const * group) : events(events_), name(group->name) {}
    void tell(std::string const & what) const {
        events.push_back(what + (findGroup(name) != nullptr ? ", listed" : ", not listed"));
    }

private:
    Texts & events;
    YString name;
};

class SteppingVector : public dvec {
public:
    SteppingVector(Group * home, Step const & step_) : dvec("v", home, PT_NONE), step(step_) {}
    ~SteppingVector() override { step.tell("vector"); }

private:
    Step const & step;
};

class SteppingOlderFile : public OlderDataFile {
public:
    explicit SteppingOlderFile(Step const & step_) : step(step_) {}
    ~SteppingOlderFile() override { step.tell("older file"); }
    YString path() const override { return "older"; }
    void deleteWhenClosed() override { step.tell("older file marked"); }

private:
    Step const & step;
};

class SteppingFile : public RecordedDataFile {
public:
    SteppingFile(Texts & told, Step const & step_) : RecordedDataFile("f", told), step(step_) {}
    void deleteWhenClosed() override { step.tell("marked"); }

private:
    Step const & step;
};

TEST_F(GroupDataFileTest, StepsOfTheEndOfAGroup) {
    Group * group = makeGroup("", "gdf", 0);
    Step const step(events, group);
    (new SteppingVector(group, step))->enterGroup();
    group->oldStream = std::make_unique<SteppingOlderFile>(step);
    group->dataFile = std::make_shared<SteppingFile>(events, step);
    group->dataFileTemporary = true;
    vec_InstallDeleteNotifyProc(
        group->name, [](void * arg, void *) { static_cast<Step *>(arg)->tell("notified"); }, const_cast<Step *>(&step));
    EXPECT_EQ(vec_DestroyGroup(group->name, false), VEC_OK);
    EXPECT_EQ(events, (Texts{"notified, listed", "vector, listed", "older file marked, listed", "older file, listed",
                             "marked, not listed", "f closed"}));
}

TEST_F(GroupDataFileTest, DestroyingByNameMayKeepTheFile) {
    for (bool keep : {false, true}) {
        Group * group = groupWithFile("gdf", "f");
        group->dataFileTemporary = true;
        vec_DestroyGroup(group->name, keep);
        EXPECT_EQ(std::count(events.begin(), events.end(), "f marked"), 1) << keep;
    }
}

TEST_F(GroupDataFileTest, KeepingAGroupFromPersistenceDoesNotKeepItsFile) {
    Group * group = groupWithFile("gdf", "f");
    group->dataFileTemporary = true;
    vec_KeepGroup(group->name, true);
    destroyGroup(group);
    EXPECT_EQ(events.front(), "f marked");
}

TEST_F(GroupDataFileTest, LabelsAreWrittenAtOnce) {
    Group * group = groupWithFile("gdf", "f");
    EXPECT_EQ(vec_AddGroupDivision(group->name, "first"), VEC_OK);
    EXPECT_EQ(vec_AddGroupDivision(group->name, "second"), VEC_OK);
    EXPECT_THAT(fileOf(group).streams[labelStream], testing::ElementsAre(YString("first"), YString("second")));
    EXPECT_EQ(group->labels->size(), 2U);
    group->labelStream = 0;
    vec_AddGroupDivision(group->name, "third");
    EXPECT_EQ(fileOf(group).streams[labelStream].size(), 2U);
    EXPECT_EQ(group->labels->size(), 3U);
}

TEST_F(GroupDataFileTest, ScriptsThatTheFileDoesNotTakeWait) {
    Group * group = makeGroup("", "gdf", 0);
    vec_AddPostProc(group->name, "early");
    giveFile(group, "f");
    vec_AddPostProc(group->name, "written");
    fileOf(group).readOnly = true;
    vec_AddPostProc(group->name, "refused");
    EXPECT_THAT(fileOf(group).streams[postProcStream], testing::ElementsAre(YString("written")));
    EXPECT_THAT(group->postProcPending, testing::ElementsAre(YString("early"), YString("refused")));
    YArray<YString> scripts;
    EXPECT_EQ(vec_GetPostProc(group->name, &scripts), VEC_OK);
    EXPECT_THAT(scripts, testing::ElementsAre(YString("written"), YString("early"), YString("refused")));
}

TEST_F(GroupDataFileTest, InfoNamesTheFile) {
    Group * group = makeGroup("", "gdf", 0);
    GroupInfo info;
    vec_GetGroupInfo(group->name, &info);
    EXPECT_EQ(text(info.dataFile), "");
    Step const step(events, group);
    group->oldStream = std::make_unique<SteppingOlderFile>(step);
    vec_GetGroupInfo(group->name, &info);
    EXPECT_EQ(text(info.dataFile), "older");
    giveFile(group, "native");
    vec_GetGroupInfo(group->name, &info);
    EXPECT_EQ(text(info.dataFile), "native");
    destroyGroup(group);
}

} // namespace
