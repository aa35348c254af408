#include "Source/Groups/StoreFixture.h"

namespace {

class GroupNamesTest : public StoreFixture {
protected:
    static std::string made(char const * base) { return text(makeGroup("", base, 0)->name); }
    std::string restored(char const * stored, bool quiet = false) {
        Group * group = makeUnlistedGroup("");
        listRestoredGroup(group, stored, quiet, messages);
        return text(group->name);
    }
};

TEST_F(GroupNamesTest, NameIsTheBaseAndARisingNumber) {
    EXPECT_EQ(made("fresh"), "fresh1");
    EXPECT_EQ(made("fresh"), "fresh2");
    EXPECT_EQ(made("FRESH"), "FRESH3");
}

TEST_F(GroupNamesTest, NumberOfADeadGroupIsNotUsedAgain) {
    made("dead");
    made("dead");
    destroyGroup(findGroup("dead2"));
    EXPECT_EQ(made("dead"), "dead3");
}

TEST_F(GroupNamesTest, EmptyNameBecomesUnnamed) {
    std::string const name = made("");
    EXPECT_EQ(name.substr(0, 7), "unnamed");
    EXPECT_EQ(name.find_first_not_of("0123456789", 7), std::string::npos);
    EXPECT_GT(name.size(), 7U);
}

TEST_F(GroupNamesTest, NamesThatStandAreSkippedAndTheirNumbersUsedUp) {
    restored("skip2");
    restored("Skip3");
    EXPECT_EQ(made("skip"), "skip1");
    EXPECT_EQ(made("skip"), "skip4");
    destroyGroup(findGroup("skip2"));
    EXPECT_EQ(made("skip"), "skip5");
}

TEST_F(GroupNamesTest, RestoredGroupKeepsAFreeNameAndBecomesCurrent) {
    EXPECT_EQ(restored("kept12"), "kept12");
    EXPECT_EQ(text(nameSpace().current->name), "kept12");
    EXPECT_EQ(groupListHead(), nameSpace().current);
    EXPECT_TRUE(messages.texts.empty());
}

TEST_F(GroupNamesTest, RestoredGroupThatCollidesIsNumberedFromOne) {
    restored("again12");
    EXPECT_EQ(restored("again12"), "again1");
    EXPECT_EQ(messages.texts, Texts{"Note: group name again12 already exists.\nChanging name to again1 \n"});
    EXPECT_EQ(messages.levels, std::vector{MessageLevel::info});
    EXPECT_EQ(restored("AGAIN12"), "AGAIN2");
    EXPECT_EQ(restored("again"), "again");
    EXPECT_EQ(restored("again"), "again3");
}

TEST_F(GroupNamesTest, QuietRenamingSaysNothing) {
    restored("quiet");
    EXPECT_EQ(restored("quiet", true), "quiet1");
    EXPECT_TRUE(messages.texts.empty());
}

TEST_F(GroupNamesTest, NumbersOfRestoredNamesAreUsedAgain) {
    for (int i = 0; i < 4; ++i) restored("hole");
    ASSERT_NE(findGroup("hole3"), nullptr);
    destroyGroup(findGroup("hole2"));
    EXPECT_EQ(restored("hole"), "hole2");
    EXPECT_EQ(restored("hole"), "hole4");
    destroyGroup(findGroup("hole1"));
    EXPECT_EQ(restored("hole3"), "hole1");
}

TEST_F(GroupNamesTest, NamesOfDigitsOnlyHaveAnEmptyBase) {
    EXPECT_EQ(restored("77"), "77");
    EXPECT_EQ(restored("77"), "1");
    EXPECT_EQ(restored(""), "");
    EXPECT_EQ(restored(""), "2");
}

TEST_F(GroupNamesTest, RestoredGroupTakesNoCollectionPrefix) {
    openCollection("coll", false);
    EXPECT_EQ(restored("plain"), "plain");
}

TEST_F(GroupNamesTest, ManyGroupsOfOneStoredName) {
    for (int i = 0; i < 5000; ++i) restored("multi", true);
    EXPECT_EQ(text(groupListHead()->name), "multi4999");
}

} // namespace
