#include "Source/Groups/StoreFixture.h"

#include <algorithm>
#include <random>

namespace {

class PersistenceTest : public StoreFixture {
protected:
    static void keepRuns(int count) { sp_SetOption("GroupPersistence", YString(count)); }
    // Run ids of the listed groups, newest group first.
    static std::vector<unsigned> runs() {
        std::vector<unsigned> ids;
        forEachGroup([&ids](Group const & group) {
            if (!group.isProtected()) ids.push_back(group.runId);
        });
        return ids;
    }
    static void make(std::initializer_list<unsigned> ids) {
        for (unsigned const id : ids) makeGroup("", "run", id);
    }
    using Ids = std::vector<unsigned>;
};

TEST_F(PersistenceTest, ThreeEarlierRunsStandBesideANewOne) {
    EXPECT_EQ(sp_GetIntOption("GroupPersistence"), 3);
    make({1, 2, 3, 4, 5, 6});
    EXPECT_EQ(runs(), (Ids{6, 5, 4, 3}));
}

TEST_F(PersistenceTest, BelowOneNothingIsEverPurged) {
    for (int const count : {0, -1}) {
        keepRuns(count);
        make({1, 2, 3, 4, 5, 6});
    }
    EXPECT_EQ(runs().size(), 12U);
}

TEST_F(PersistenceTest, WithOneAllGroupsOfTheNewestEarlierRunSurvive) {
    keepRuns(1);
    make({1, 1, 2, 2, 2});
    EXPECT_EQ(runs(), (Ids{2, 2, 2}));
    make({3});
    EXPECT_EQ(runs(), (Ids{3, 2, 2, 2}));
    make({0});
    EXPECT_EQ(runs(), (Ids{0, 3}));
}

TEST_F(PersistenceTest, GroupsWithoutRunAreNeverPurged) {
    keepRuns(1);
    make({0, 1, 0, 2, 3, 4});
    EXPECT_EQ(runs(), (Ids{4, 3, 0, 0}));
}

TEST_F(PersistenceTest, RunIdsAreComparedUnsigned) {
    keepRuns(1);
    make({0xFFFFFFF0U, 5, 6});
    EXPECT_EQ(runs(), (Ids{6, 0xFFFFFFF0U}));
}

TEST_F(PersistenceTest, RestoredGroupPurgesBeforeItIsNamed) {
    keepRuns(1);
    Group * old = makeGroup("", "restoredrun", 1);
    YString const name = old->name;
    make({2});
    ASSERT_NE(findGroup(name), nullptr);
    Group * group = makeUnlistedGroup("");
    listRestoredGroup(group, name, false, messages);
    EXPECT_EQ(text(group->name), text(name));
    EXPECT_TRUE(messages.texts.empty());
}

TEST_F(PersistenceTest, RunIdMayChangeWhileTheGroupIsListed) {
    keepRuns(1);
    Group * group = makeGroup("", "run", 0);
    setRunId(group, 9);
    make({10, 11});
    EXPECT_EQ(runs(), (Ids{11, 10}));
    setRunId(groupListHead(), 0);
    setRunId(groupListHead(), 0);
    make({12, 13});
    EXPECT_EQ(runs(), (Ids{13, 12, 0}));
}

TEST_F(PersistenceTest, RunIdOfAnUnlistedGroupCountsFromItsListing) {
    keepRuns(1);
    Group * group = makeUnlistedGroup("");
    setRunId(group, 50);
    make({60});
    listGroup(group, "run");
    EXPECT_EQ(runs(), (Ids{50, 60}));
    make({70});
    EXPECT_EQ(runs(), (Ids{70, 60}));
}

TEST_F(PersistenceTest, NewRunIdsRise) {
    unsigned last = 0;
    for (int i = 0; i < 5; ++i) {
        unsigned const id = newRunId();
        EXPECT_GT(id, last);
        last = id;
    }
}

TEST_F(PersistenceTest, LocalContextIsNoOccasionForAPurge) {
    keepRuns(1);
    make({1, 2});
    pushContext();
    popContext();
    EXPECT_EQ(runs(), (Ids{2, 1}));
}

// Against the rule written down plainly: sort the distinct ids, take the one at the limit, drop what is below it.
TEST_F(PersistenceTest, PurgeFollowsThePlainRule) {
    std::mt19937 random(4711);
    for (int round = 0; round < 200; ++round) {
        destroyAllGroups();
        keepRuns(0);
        int const groups = static_cast<int>(random() % 12);
        for (int i = 0; i < groups; ++i) makeGroup("", "run", static_cast<std::uint32_t>(random() % 6));
        Ids const before = runs();
        Ids distinct = before;
        std::sort(distinct.rbegin(), distinct.rend());
        distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
        std::size_t const limit = 1 + random() % 7;
        Ids expected = before;
        if (!distinct.empty()) {
            unsigned const oldest = distinct[std::min(limit, distinct.size()) - 1];
            std::erase_if(expected, [oldest](unsigned id) { return id != 0 && id < oldest; });
        }
        keepRuns(static_cast<int>(limit));
        purgeByPersistence();
        EXPECT_EQ(runs(), expected) << "round " << round;
    }
}

} // namespace
