// Saving a group and opening it again.
#include "Source/DataFiles/DataFilesFixture.h"

namespace {

using OpenSave = DataFilesFixture;

TEST_F(OpenSave, AGroupComesBackAsItWas) {
    Group * group = newRun({"b", "a"});
    group->date = "today";
    for (int i = 0; i < 3; ++i) addPoint(group, {"b", "a"}, i);
    stringMember(group, "note", "hello, world");
    group->traces.push_back({"one", "two", true, {{"colour", "red"}}});
    group->analysis = {1, 2, true, false, true, "tran", "more"};
    group->addPostProcess("Let x = 1");
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    std::string const name = text(group->name);
    destroyGroup(group);

    Group * back = open(path);
    ASSERT_NE(back, nullptr) << words->last();
    EXPECT_EQ(text(back->name), name);
    EXPECT_EQ(text(back->title), "A run");
    EXPECT_EQ(text(back->date), "today");
    EXPECT_EQ(values(*back->find("a")), (std::vector<double>{0, 2, 4}));
    EXPECT_EQ(values(back->find("a")->ref), (std::vector<double>{0, 1, 2}));
    EXPECT_EQ(text(back->find("a")->ref.name()), "time");
    EXPECT_EQ(back->find("a")->physType(), PT_VOLTAGE);
    EXPECT_TRUE(back->find("a")->ref.sharesRep(back->find("b")->ref));
    EXPECT_STREQ(back->find("note")->getString(0), "hello, world");
    ASSERT_EQ(back->traces.size(), 1U);
    EXPECT_EQ(text(back->traces[0].properties[0].value), "red");
    EXPECT_EQ(text(back->analysis.text2), "more");
    EXPECT_TRUE(back->analysis.flag3);
    ASSERT_EQ(back->postProcessScripts().size(), 1U);
    EXPECT_EQ(text(back->postProcessScripts()[0]), "Let x = 1");
}

TEST_F(OpenSave, ASecondOpeningGetsANewNameWithANote) {
    Group * group = newRun({});
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    std::string const name = text(group->name);
    Group * second = open(path);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(text(second->name), name);
    EXPECT_EQ(words->last(),
              "Note: group name " + name + " already exists.\nChanging name to " + text(second->name) + " \n");
}

} // namespace
