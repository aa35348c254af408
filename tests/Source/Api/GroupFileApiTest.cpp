#include "Source/Groups/DataFileFixture.h"

namespace {

class GroupFileApiTest : public DataFileFixture {
protected:
    static std::int64_t lengthOf(Group const * group) { return group->find("v")->totalLength(); }
};

TEST_F(GroupFileApiTest, DataSentUpdatesTheFile) {
    Group * group = groupWithFile("gfa", "f");
    EXPECT_EQ(vec_DataSent(group->name, true), VEC_OK);
    EXPECT_EQ(vec_DataSent(group->name, false), VEC_OK);
    EXPECT_EQ(events, (Texts{"f updated", "f updated"}));
    EXPECT_EQ(vec_DataSent(makeGroup("", "gfa", 0)->name, true), VEC_OK);
    EXPECT_EQ(vec_DataSent("nowhere", true), VEC_NO_GROUP);
    EXPECT_EQ(events.size(), 2U);
}

TEST_F(GroupFileApiTest, AppendingNeedsBothGroups) {
    Group * target = groupWithFile("gfa", "t");
    Group * source = groupWithFile("gfa", "s");
    dvec const * v = member(target, "v", 1);
    member(source, "v", 2);
    EXPECT_EQ(vec_AppendGroup("nowhere", source->name, nullptr), VEC_NO_GROUP);
    EXPECT_EQ(vec_AppendGroup(target->name, "nowhere", nullptr), VEC_NO_GROUP);
    EXPECT_EQ(v->totalLength(), 1);
    EXPECT_EQ(vec_AppendGroup(target->name, source->name, nullptr), VEC_OK);
    EXPECT_EQ(v->totalLength(), 2);
    EXPECT_NE(findGroup(source->name), nullptr);
    EXPECT_EQ(vec_AppendGroup(target->name, makeGroup("", "gfa", 0)->name, nullptr), VEC_OK);
    EXPECT_EQ(v->totalLength(), 2);
}

TEST_F(GroupFileApiTest, LinkingOnlyQueues) {
    Group * group = groupWithFile("gfa", "t");
    EXPECT_EQ(vec_LinkDatafile(group->name, "one"), VEC_OK);
    EXPECT_EQ(vec_LinkDatafile(group->name, "two"), VEC_OK);
    EXPECT_EQ(vec_LinkDatafile("nowhere", "one"), VEC_NO_GROUP);
    EXPECT_THAT(group->linkedFiles, testing::ElementsAre(YString("one"), YString("two")));
    EXPECT_TRUE(fileOf(group).links.empty());
}

TEST_F(GroupFileApiTest, QueuedFilesAreOpenedAppendedAndClosedAgain) {
    Group * group = groupWithFile("gfa", "t");
    member(group, "v", 1);
    storedName = {{"one", "stored"}, {"two", "stored"}};
    for (char const * file : {"one", "missing", "two"}) vec_LinkDatafile(group->name, file);
    Texts const before = listedNames();
    EXPECT_EQ(vec_AppendLinkedDatafiles(group->name), VEC_OK);
    EXPECT_EQ(fileOf(group).links, (Texts{"one", "two"}));
    EXPECT_EQ(lengthOf(group), 3);
    EXPECT_THAT(*group->labels, testing::ElementsAre(YString("of one"), YString("of two")));
    EXPECT_EQ(listedNames(), before);
    EXPECT_EQ(events, (Texts{"t links written", "one closed", "t links written", "two closed"}));
    EXPECT_TRUE(group->linkedFiles.empty());
    EXPECT_TRUE(reports->texts.empty());
    EXPECT_EQ(vec_AppendLinkedDatafiles(group->name), VEC_OK);
    EXPECT_EQ(lengthOf(group), 3);
    EXPECT_EQ(vec_AppendLinkedDatafiles("nowhere"), VEC_NO_GROUP);
}

TEST_F(GroupFileApiTest, GroupMayBePurgedByTheOpeningOfItsOwnFiles) {
    sp_SetOption("GroupPersistence", "1");
    Group * group = makeGroup("", "gfa", 1);
    YString const name = group->name;
    giveFile(group, "t");
    storedName = {{"one", "stored"}, {"two", text(name)}};
    for (char const * file : {"one", "two"}) vec_LinkDatafile(name, file);
    setRunId(makeGroup("", "gfa", 0), 2);
    EXPECT_EQ(vec_AppendLinkedDatafiles(name), VEC_OK);
    EXPECT_EQ(findGroup(name), nullptr);
    EXPECT_EQ(listedNames().size(), 1U);
}

TEST_F(GroupFileApiTest, WithoutALayerOfDataFilesQueuedFilesArePassedOver) {
    dataFileMakers() = {};
    Group * group = groupWithFile("gfa", "t");
    vec_LinkDatafile(group->name, "one");
    EXPECT_EQ(vec_AppendLinkedDatafiles(group->name), VEC_OK);
    EXPECT_TRUE(group->linkedFiles.empty());
    EXPECT_TRUE(fileOf(group).links.empty());
}

TEST_F(GroupFileApiTest, RealDataAreToldOfInTheList) {
    EXPECT_FALSE(anyGroupHasRealData());
    makeGroup("", "gfa", 0);
    EXPECT_FALSE(anyGroupHasRealData());
    Group * run = makeGroup("", "gfa", 3);
    makeGroup("", "gfa", 0);
    EXPECT_TRUE(anyGroupHasRealData());
    destroyGroup(run);
    EXPECT_FALSE(anyGroupHasRealData());
}

} // namespace
