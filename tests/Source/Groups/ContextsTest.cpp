#include "Source/Groups/StoreFixture.h"

namespace {

using ContextsTest = StoreFixture;

TEST_F(ContextsTest, ContextIsALocalGroupAtTheHeadOfTheList) {
    Group * context = pushContext();
    EXPECT_EQ(nameSpace().local, context);
    EXPECT_EQ(groupListHead(), context);
    EXPECT_TRUE(context->isLocal());
    EXPECT_EQ(text(context->title), "Local");
    EXPECT_EQ(text(context->name).substr(0, 5), "local");
    EXPECT_EQ(context->runId, 0U);
    EXPECT_EQ(nameSpace().current, nameSpace().global);
    popContext();
    EXPECT_EQ(nameSpace().local, nameSpace().global);
}

TEST_F(ContextsTest, ContextsNestAndTheirNumbersRise) {
    Group * outer = pushContext();
    int const number = std::stoi(text(outer->name).substr(5));
    Group * inner = pushContext();
    EXPECT_EQ(text(inner->name), "local" + std::to_string(number + 1));
    YString const innerName = inner->name;
    popContext();
    EXPECT_EQ(nameSpace().local, outer);
    EXPECT_EQ(findGroup(innerName), nullptr);
    EXPECT_EQ(text(pushContext()->name), "local" + std::to_string(number + 2));
    popContext();
    popContext();
    EXPECT_EQ(nameSpace().local, nameSpace().global);
}

TEST_F(ContextsTest, PopEndsTheVectorsOfTheContext) {
    Group * context = pushContext();
    (new WatchedVector("v", context, &deaths))->enterGroup();
    popContext();
    EXPECT_EQ(deaths, 1);
}

TEST_F(ContextsTest, UnbalancedPopTakesTheGlobalGroupAndClearsEveryPointerToIt) {
    popContext();
    EXPECT_EQ(nameSpace().local, nullptr);
    EXPECT_EQ(nameSpace().global, nullptr);
    EXPECT_EQ(nameSpace().current, nullptr);
    EXPECT_EQ(localOrGlobal(), nullptr);
    EXPECT_EQ(findGroup("global"), nullptr);
    EXPECT_EQ(findVector("pi", nullptr, false), nullptr);
    popContext();
    EXPECT_EQ(nameSpace().local, nullptr);
}

TEST_F(ContextsTest, UnbalancedPopLeavesAnotherGroupCurrent) {
    Group * group = makeGroup("", "ctx", 0);
    popContext();
    EXPECT_EQ(nameSpace().current, group);
    EXPECT_EQ(nameSpace().global, nullptr);
}

TEST_F(ContextsTest, SavedContextThatDiesLeavesAnEmptyPlaceOnTheStack) {
    Group * outer = pushContext();
    pushContext();
    destroyGroup(outer);
    popContext();
    EXPECT_EQ(nameSpace().local, nullptr);
    EXPECT_EQ(localOrGlobal(), nameSpace().global);
    popContext();
    EXPECT_EQ(nameSpace().local, nameSpace().global);
}

TEST_F(ContextsTest, PresentContextThatDiesKeepsTheStackBalanced) {
    Group * outer = pushContext();
    destroyGroup(pushContext());
    EXPECT_EQ(nameSpace().local, nullptr);
    popContext();
    EXPECT_EQ(nameSpace().local, outer);
    popContext();
}

TEST_F(ContextsTest, ContextJoinsNoCollection) {
    openCollection("coll", false);
    Group * context = pushContext();
    EXPECT_TRUE(context->collection.empty());
    EXPECT_EQ(text(context->name).substr(0, 5), "local");
    popContext();
}

TEST_F(ContextsTest, GroupThatIsSavedSeveralTimesLeavesEveryPlaceEmpty) {
    Group * group = makeGroup("", "ctx", 0);
    for (int i = 0; i < 3; ++i) {
        nameSpace().local = group;
        pushContext();
    }
    EXPECT_EQ(group->timesSaved, 3U);
    destroyGroup(group);
    for (int i = 0; i < 3; ++i) {
        popContext();
        EXPECT_EQ(nameSpace().local, nullptr);
    }
    nameSpace().local = nameSpace().global;
}

TEST_F(ContextsTest, ManyNestedContextsKeepTheirVariablesApart) {
    constexpr int depth = 100;
    for (int i = 0; i < depth; ++i) member(pushContext(), "x", i);
    for (int i = depth - 1; i >= 0; --i) {
        EXPECT_EQ(findVector("x", nullptr, false)->getReal(0), i);
        popContext();
    }
    EXPECT_EQ(findVector("x", nullptr, false), nullptr);
    EXPECT_EQ(nameSpace().local, nameSpace().global);
    EXPECT_TRUE(listedNames().empty());
}

} // namespace
