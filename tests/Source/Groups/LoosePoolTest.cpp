#include "Source/Groups/StoreFixture.h"

namespace {

using LoosePoolTest = StoreFixture;

TEST_F(LoosePoolTest, SweepEndsEveryTemporaryAndNoMember) {
    for (int i = 0; i < 10; ++i) new WatchedVector("loose", nullptr, &deaths);
    auto * kept = new WatchedVector("kept", nullptr, &deaths);
    kept->enterGroup();
    LoosePool::sweep();
    EXPECT_EQ(deaths, 10);
    EXPECT_EQ(LoosePool::count(), 0U);
    EXPECT_EQ(nameSpace().local->find("kept"), kept);
    LoosePool::sweep();
    EXPECT_EQ(deaths, 10);
}

TEST_F(LoosePoolTest, ReadOnlyTemporaryIsForgottenNotDeleted) {
    Group * group = makeGroup("", "pool", 0);
    auto * vector = new WatchedVector("constant", group, &deaths);
    vector->flags |= VF_READONLY;
    LoosePool::sweep();
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(LoosePool::count(), 0U);
    destroyGroup(group);
    EXPECT_EQ(text(vector->fullName()), "global:constant"); // does not look at the dead group
    delete vector;
    EXPECT_EQ(deaths, 1);
}

TEST_F(LoosePoolTest, VectorsLeaveInAnyOrder) {
    LoosePool::sweep();
    dvec * vectors[5];
    for (dvec *& vector : vectors) vector = new WatchedVector("v", nullptr, &deaths);
    for (int const i : {2, 0, 4, 3, 1}) {
        vectors[i]->release();
        LoosePool::remove(nameSpace().global->find("pi")); // not in the pool: nothing happens
    }
    EXPECT_EQ(deaths, 5);
    EXPECT_EQ(LoosePool::count(), 0U);
}

TEST_F(LoosePoolTest, VectorsMadeForADyingGroupForgetIt) {
    auto * before = new dvec("before", nullptr, PT_NONE);
    Group * group = makeGroup("", "pool", 0);
    auto * made = new dvec("made", group, PT_NONE);
    auto * left = member(group, "left");
    auto * copied = new dvec(*left);
    auto * after = new dvec("after", nullptr, PT_NONE);
    left->leaveGroup();
    destroyGroup(group);
    EXPECT_EQ(made->owner(), nullptr);
    EXPECT_EQ(left->owner(), nullptr);
    EXPECT_EQ(copied->owner(), nullptr);
    EXPECT_EQ(before->owner(), nameSpace().global);
    EXPECT_EQ(after->owner(), nameSpace().global);
}

TEST_F(LoosePoolTest, GroupCountsWhatWaitsInThePoolForIt) {
    Group * group = makeGroup("", "pool", 0);
    auto * first = new dvec("first", group, PT_NONE);
    auto * second = new dvec(*first);
    EXPECT_EQ(group->looseVectors, 2U);
    first->enterGroup();
    EXPECT_EQ(group->looseVectors, 1U);
    first->leaveGroup();
    EXPECT_EQ(group->looseVectors, 2U);
    second->release();
    EXPECT_EQ(group->looseVectors, 1U);
    first->flags |= VF_READONLY;
    LoosePool::sweep();
    EXPECT_EQ(group->looseVectors, 0U);
    delete first;
}

TEST_F(LoosePoolTest, OrphanThatEntersAGroupWasNoneOfIts) {
    pushContext();
    auto * orphan = new dvec("orphan", 5.0);
    popContext();
    orphan->enterGroup();
    EXPECT_EQ(nameSpace().global->looseVectors, 0U);
    orphan->leaveGroup();
    EXPECT_EQ(nameSpace().global->looseVectors, 1U);
}

TEST_F(LoosePoolTest, ManyGroupsEndInLinearTimeBesideManyTemporaries) {
    for (int i = 0; i < 10000; ++i) makeGroup("", "pool", 0);
    for (int i = 0; i < 50000; ++i) new dvec("t", 1.0);
    destroyAllGroups();
    EXPECT_TRUE(listedNames().empty());
    EXPECT_EQ(nameSpace().global->looseVectors, LoosePool::count());
}

} // namespace
