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

} // namespace
