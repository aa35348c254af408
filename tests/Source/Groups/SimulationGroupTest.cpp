#include "Source/Groups/DataFileFixture.h"
#include "torvelan/TempData.h"

namespace {

class SimulationGroupTest : public DataFileFixture {
protected:
    VEC_ERROR initialise(Group * group, bool createFile = false, char const * file = "", bool temporary = false) {
        return vec_InitialiseSimulationGroup(createFile, file, group->name, temporary, false, sink, &path);
    }
    std::string valueOf(Group const * group, char const * name) { return group->find(name)->getString(0); }

    YRef<MessageHandler> sink = std::make_shared<NullMessageHandler>();
    YString path = "untouched";
};

TEST_F(SimulationGroupTest, GroupBecomesCurrent) {
    Group * first = makeGroup("", "sim", 0);
    makeGroup("", "sim", 0);
    EXPECT_EQ(initialise(first), VEC_OK);
    EXPECT_EQ(nameSpace().current, first);
    EXPECT_EQ(text(path), "untouched");
    EXPECT_EQ(first->dataFile, nullptr);
}

TEST_F(SimulationGroupTest, UnknownGroupIsRefused) {
    EXPECT_EQ(vec_InitialiseSimulationGroup(true, "f", "nowhere", false, false, sink, &path), VEC_NO_GROUP);
    EXPECT_EQ(nameSpace().current, nameSpace().global);
    EXPECT_EQ(text(path), "untouched");
    EXPECT_TRUE(events.empty());
}

TEST_F(SimulationGroupTest, FileIsMadeUnderTheNameGiven) {
    for (bool temporary : {false, true}) {
        Group * group = makeGroup("", "sim", 0);
        EXPECT_EQ(initialise(group, true, "run.file", temporary), VEC_OK);
        EXPECT_EQ(text(path), "run.file");
        EXPECT_EQ(text(group->dataFile->path()), "run.file");
        EXPECT_EQ(group->dataFileTemporary, temporary);
    }
}

TEST_F(SimulationGroupTest, FileWithoutNameIsATemporaryOneNamedAfterTheGroup) {
    Group * group = makeGroup("", "sim", 0);
    EXPECT_EQ(initialise(group, true), VEC_OK);
    EXPECT_EQ(text(path), text(vec_GetTempDataDir()) + "/" + text(group->name) + ".tvdat");
    EXPECT_EQ(group->dataFile->path(), path);
    EXPECT_FALSE(group->dataFileTemporary);
}

TEST_F(SimulationGroupTest, GroupHasOneFileOnly) {
    Group * group = groupWithFile("sim", "old");
    EXPECT_EQ(initialise(group, true, "new", true), VEC_HAS_DATA_FILE);
    EXPECT_EQ(text(path), "new");
    EXPECT_EQ(text(group->dataFile->path()), "old");
    EXPECT_FALSE(group->dataFileTemporary);
    EXPECT_TRUE(events.empty());
}

TEST_F(SimulationGroupTest, FailureOfTheFileIsTheAnswerAndTheRestIsDoneAllTheSame) {
    for (VEC_ERROR failure : {VEC_NO_DATA_FILE, VEC_BOOT_RECORD_FAILED}) {
        makeGroup("", "sim", 0);
        Group * group = makeGroup("", "sim", 0);
        stringMember(group, "DCopGroup", "$this");
        creation = failure;
        EXPECT_EQ(initialise(group, true, "f", true), failure);
        EXPECT_FALSE(group->dataFileTemporary);
        EXPECT_EQ(nameSpace().current, group);
        EXPECT_EQ(valueOf(group, "DCopGroup"), text(group->name));
    }
}

TEST_F(SimulationGroupTest, WithoutALayerOfDataFilesThereIsNoFile) {
    dataFileMakers() = {};
    Group * group = makeGroup("", "sim", 0);
    EXPECT_EQ(initialise(group, true, "f"), VEC_NO_DATA_FILE);
    EXPECT_EQ(text(path), "f");
    EXPECT_EQ(initialise(group, true), VEC_NO_DATA_FILE);
    EXPECT_EQ(text(path), "");
    EXPECT_EQ(initialise(group), VEC_OK);
}

TEST_F(SimulationGroupTest, WhatIsNotWantedMayBeNull) {
    Group * group = makeGroup("", "sim", 0);
    EXPECT_EQ(vec_InitialiseSimulationGroup(true, "f", group->name, false, false, nullptr, nullptr), VEC_OK);
    EXPECT_EQ(text(group->dataFile->path()), "f");
}

TEST_F(SimulationGroupTest, WordsForGroupsBecomeTheirNames) {
    Group * previous = makeGroup("", "sim", 0);
    Group * group = makeGroup("", "sim", 0);
    pushContext();
    stringMember(group, "DCopGroup", "$prev");
    stringMember(group, "popgroup", "$this");
    EXPECT_EQ(initialise(group), VEC_OK);
    EXPECT_EQ(valueOf(group, "DCopGroup"), text(previous->name));
    EXPECT_EQ(valueOf(group, "POPGroup"), text(group->name));
    popContext();
}

TEST_F(SimulationGroupTest, LocalContextsAndTheGlobalGroupAreNoPreviousRun) {
    Group * previous = makeGroup("", "sim", 0);
    pushContext();
    Group * group = makeGroup("", "sim", 0);
    stringMember(group, "DCopGroup", "$prev");
    initialise(group);
    EXPECT_EQ(valueOf(group, "DCopGroup"), text(previous->name));
    stringMember(previous, "DCopGroup", "$prev");
    stringMember(previous, "POPGroup", "$this");
    initialise(previous);
    EXPECT_EQ(valueOf(previous, "DCopGroup"), "$prev");
    EXPECT_EQ(valueOf(previous, "POPGroup"), "$this");
    popContext();
}

TEST_F(SimulationGroupTest, OtherValuesStay) {
    makeGroup("", "sim", 0);
    Group * group = makeGroup("", "sim", 0);
    stringMember(group, "DCopGroup", "$PREV");
    member(group, "POPGroup", 5);
    EXPECT_EQ(initialise(group), VEC_OK);
    EXPECT_EQ(valueOf(group, "DCopGroup"), "$PREV");
    EXPECT_EQ(group->find("POPGroup")->getReal(0), 5);
    Group * withEmpty = makeGroup("", "sim", 0);
    auto * empty = new dvec("DCopGroup", withEmpty, PT_NONE);
    empty->setSize(1, VD_STRING);
    empty->enterGroup();
    EXPECT_EQ(initialise(withEmpty), VEC_OK);
    EXPECT_EQ(empty->getString(0), nullptr);
}

} // namespace
