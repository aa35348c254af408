#include "Source/Groups/StoreFixture.h"

#include <random>

namespace {

using GroupStoreTest = StoreFixture;

TEST_F(GroupStoreTest, NewGroupIsTheHeadOfTheListAndTheGlobalGroupItsEnd) {
    Group * first = makeGroup("", "st", 0);
    Group * second = makeGroup("", "st", 0);
    EXPECT_EQ(groupListHead(), second);
    EXPECT_EQ(second->next, first);
    EXPECT_EQ(first->next, nameSpace().global);
    EXPECT_EQ(nameSpace().global->next, nullptr);
    EXPECT_EQ(nameSpace().current, nameSpace().global);
}

TEST_F(GroupStoreTest, GroupsAreFoundInAnyCase) {
    Group * group = makeGroup("", "Mixed", 0);
    EXPECT_EQ(findGroup("mIXED" + text(group->name).substr(5)), group);
    EXPECT_EQ(findGroup("GLOBAL"), nameSpace().global);
    EXPECT_EQ(findGroup("mixed"), nullptr);
    EXPECT_EQ(findGroup(""), nullptr);
    EXPECT_EQ(findGroupOrCurrent(""), nameSpace().current);
    EXPECT_EQ(findGroupOrCurrent(group->name), group);
}

TEST_F(GroupStoreTest, TitleDefaultsToUntitled) {
    EXPECT_EQ(text(makeGroup("", "st", 0)->title), "Untitled");
    EXPECT_EQ(text(makeGroup("A title", "st", 0)->title), "A title");
}

TEST_F(GroupStoreTest, RunIdGivesAVectorAndRealData) {
    EXPECT_FALSE(anyGroupHasRealData());
    Group * group = makeGroup("", "st", 4000000000U);
    dvec const * id = group->find("$$runid");
    ASSERT_NE(id, nullptr);
    EXPECT_EQ(id->type(), VD_REAL);
    EXPECT_EQ(id->length(), 1);
    EXPECT_EQ(id->getReal(0), 4000000000.0);
    EXPECT_TRUE(group->hasRealData);
    EXPECT_TRUE(anyGroupHasRealData());
    Group * none = makeGroup("", "st", 0);
    EXPECT_EQ(none->find("$$RunId"), nullptr);
    EXPECT_FALSE(none->hasRealData);
}

TEST_F(GroupStoreTest, UnlistedGroupIsSeenByNobody) {
    Group * group = makeUnlistedGroup("t");
    EXPECT_EQ(text(group->title), "t");
    EXPECT_TRUE(listedNames().empty());
    auto * vector = member(group, "v");
    EXPECT_EQ(group->find("v"), vector);
    listGroup(group, "st");
    EXPECT_EQ(listedNames(), Texts{text(group->name)});
    discardGroup(makeUnlistedGroup("t"));
}

TEST_F(GroupStoreTest, DestructionOfTheCurrentHeadMakesTheNextOneCurrent) {
    Group * older = makeGroup("", "st", 0);
    Group * newer = makeGroup("", "st", 0);
    nameSpace().current = newer;
    destroyGroup(newer);
    EXPECT_EQ(nameSpace().current, older);
    destroyGroup(older);
    EXPECT_EQ(nameSpace().current, nameSpace().global);
}

TEST_F(GroupStoreTest, DestructionOfTheCurrentGroupMakesItsNewerNeighbourCurrent) {
    Group * older = makeGroup("", "st", 0);
    Group * middle = makeGroup("", "st", 0);
    Group * newer = makeGroup("", "st", 0);
    nameSpace().current = middle;
    destroyGroup(middle);
    EXPECT_EQ(nameSpace().current, newer);
    EXPECT_EQ(newer->next, older);
    EXPECT_EQ(older->previous, newer);
}

TEST_F(GroupStoreTest, CurrentPassesOverLocalContexts) {
    Group * oldest = makeGroup("", "st", 0);
    Group * dying = makeGroup("", "st", 0);
    pushContext();
    nameSpace().current = dying;
    destroyGroup(dying);
    EXPECT_EQ(nameSpace().current, oldest);
}

TEST_F(GroupStoreTest, CurrentStopsAtTheLastGroupEvenALocalOne) {
    popContext(); // an unbalanced one, which takes the global group
    ASSERT_EQ(nameSpace().global, nullptr);
    Group * oldestContext = pushContext();
    pushContext();
    Group * last = makeGroup("", "st", 0);
    nameSpace().current = last;
    destroyGroup(last);
    EXPECT_EQ(nameSpace().current, oldestContext);
}

TEST_F(GroupStoreTest, DestructionOfAnotherGroupLeavesTheCurrentOne) {
    Group * group = makeGroup("", "st", 0);
    Group * other = makeGroup("", "st", 0);
    nameSpace().current = group;
    destroyGroup(other);
    EXPECT_EQ(nameSpace().current, group);
}

TEST_F(GroupStoreTest, AllOrdinaryGroupsGoNewestFirst) {
    static Texts order;
    order.clear();
    Group * context = pushContext();
    Texts expected;
    for (int i = 0; i < 4; ++i) {
        Group * group = makeGroup("", "st", 0);
        expected.insert(expected.begin(), text(group->name));
        group->deleteNotify.push_front(
            {[](void *, void * name) { order.push_back(text(*static_cast<YString const *>(name))); }, nullptr});
    }
    pushContext();
    destroyAllGroups();
    EXPECT_EQ(order, expected);
    EXPECT_EQ(findGroup(context->name), context);
    EXPECT_EQ(findGroup("global"), nameSpace().global);
    EXPECT_EQ(listedNames().size(), 2U);
}

TEST_F(GroupStoreTest, WalkMayDestroyTheGroupThatItIsGiven) {
    for (int i = 0; i < 5; ++i) makeGroup("", "st", 0);
    int visited = 0;
    forEachGroup([&visited](Group & group) {
        ++visited;
        if (!group.isProtected()) destroyGroup(&group);
    });
    EXPECT_EQ(visited, 6);
    EXPECT_TRUE(listedNames().empty());
}

TEST_F(GroupStoreTest, NotificationMayDestroyTheNeighbours) {
    Group * older = makeGroup("", "st", 0);
    Group * dying = makeGroup("", "st", 0);
    Group * newer = makeGroup("", "st", 0);
    static Group * neighbours[2];
    neighbours[0] = older;
    neighbours[1] = newer;
    dying->deleteNotify.push_front({[](void *, void *) {
                                        for (Group * group : neighbours) destroyGroup(group);
                                    },
                                    nullptr});
    nameSpace().current = dying;
    destroyGroup(dying);
    EXPECT_TRUE(listedNames().empty());
    EXPECT_EQ(nameSpace().current, nameSpace().global);
}

// The list and the current group against a plain array, newest first, through random makings and destructions.
TEST_F(GroupStoreTest, CurrentGroupFollowsThePlainRuleWhateverHappens) {
    std::mt19937 random(20240607);
    std::vector<Group *> model = {nameSpace().global};
    for (int step = 0; step < 2000; ++step) {
        std::size_t const i = random() % model.size();
        switch (random() % 4) {
        case 0: model.insert(model.begin(), makeGroup("", "rnd", 0)); break;
        case 1: model.insert(model.begin(), pushContext()); break;
        case 2: nameSpace().current = model[i]; break;
        default: {
            if (model[i] == nameSpace().global) break;
            Group * expected = nameSpace().current;
            bool const wasCurrent = expected == model[i];
            destroyGroup(model[i]);
            model.erase(model.begin() + static_cast<std::ptrdiff_t>(i));
            std::size_t candidate = i == 0 ? 0 : i - 1;
            while (model[candidate]->isLocal() && candidate + 1 < model.size()) ++candidate;
            EXPECT_EQ(nameSpace().current, wasCurrent ? model[candidate] : expected) << "step " << step;
        }
        }
        std::vector<Group *> listed;
        forEachGroup([&listed](Group & group) { listed.push_back(&group); });
        ASSERT_EQ(listed, model) << "step " << step;
    }
}

TEST_F(GroupStoreTest, ManyGroupsAreMadeFoundAndDestroyedInLinearTime) {
    constexpr int count = 10000;
    std::vector<YString> names;
    for (int i = 0; i < count; ++i) names.push_back(makeGroup("", "many", 0)->name);
    for (YString const & name : names) ASSERT_NE(findGroup(name), nullptr);
    for (YString const & name : names) destroyGroup(findGroup(name)); // oldest first
    EXPECT_TRUE(listedNames().empty());
}

} // namespace
