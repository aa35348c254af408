#include "Source/Groups/StoreFixture.h"

namespace {

using GroupTest = StoreFixture;

TEST_F(GroupTest, NamesAreFoundInAnyCase) {
    Group * group = makeGroup("", "grp", 0);
    auto * vector = member(group, "Vout");
    EXPECT_EQ(group->find("vOUT"), vector);
    EXPECT_EQ(group->find("vou"), nullptr);
    EXPECT_EQ(group->find(""), nullptr);
}

TEST_F(GroupTest, NameOrderIsThatOfLowerCaseBytes) {
    Group * group = makeGroup("", "grp", 0);
    for (char const * name : {"b", "A", "_x", "#7", "a2", "\xe9", "Z", "a10"}) member(group, name);
    EXPECT_THAT(group->namesInOrder(),
                testing::ElementsAre(YString("#7"), YString("_x"), YString("A"), YString("a10"), YString("a2"),
                                     YString("b"), YString("Z"), YString("\xe9")));
}

TEST_F(GroupTest, LongNamesAreInOrderToTheirEnds) {
    Group * group = makeGroup("", "grp", 0);
    std::vector<std::string> names = {"Resistance10", "resistance1",  "RESISTANCE",
                                      "resistan",     "resistance1_", "resistancE2"};
    for (std::string const & name : names) member(group, name.c_str());
    EXPECT_THAT(group->namesInOrder(),
                testing::ElementsAre(YString("resistan"), YString("RESISTANCE"), YString("resistance1"),
                                     YString("Resistance10"), YString("resistance1_"), YString("resistancE2")));
}

TEST_F(GroupTest, WalkGoesInNameOrderAndSurvivesDeletions) {
    Group * group = makeGroup("", "grp", 0);
    for (char const * name : {"c", "b", "a", "d"}) member(group, name);
    Texts visited;
    group->forEachVector([&](dvec & vector) {
        visited.push_back(text(vector.name()));
        if (visited.back() == "a") group->find("b")->release(); // still to come
        if (visited.back() == "c") vector.release();            // the one visited
    });
    EXPECT_EQ(visited, (Texts{"a", "c", "d"}));
    EXPECT_EQ(group->vectors.size(), 2U);
}

TEST_F(GroupTest, PseudonymsCountUpFromZeroAndStay) {
    Group * group = makeGroup("", "grp", 0);
    auto * first = member(group, "first");
    auto * second = member(group, "second");
    EXPECT_EQ(text(group->pseudonymOf("First")), "$0");
    EXPECT_EQ(text(group->pseudonymOf("second")), "$1");
    EXPECT_EQ(text(group->pseudonymOf("first")), "$0");
    EXPECT_EQ(group->find("$0"), first);
    EXPECT_EQ(group->find("$1"), second);
    EXPECT_EQ(text(group->resolvePseudonym("$1")), "second");
}

TEST_F(GroupTest, UnknownNameIsItsOwnPseudonym) {
    Group * group = makeGroup("", "grp", 0);
    EXPECT_EQ(text(group->pseudonymOf("nothing")), "nothing");
    EXPECT_EQ(text(group->pseudonymOf("$5")), "$5");
    EXPECT_EQ(text(group->resolvePseudonym("$5")), "$5");
    EXPECT_EQ(text(group->resolvePseudonym("plain")), "plain");
    EXPECT_TRUE(group->pseudonyms.empty());
}

TEST_F(GroupTest, PseudonymOfAPseudonymIsItself) {
    Group * group = makeGroup("", "grp", 0);
    member(group, "v");
    YString const pseudonym = group->pseudonymOf("v");
    EXPECT_EQ(text(group->pseudonymOf(pseudonym)), text(pseudonym));
}

TEST_F(GroupTest, PseudonymsPassOverNamesThatExist) {
    Group * group = makeGroup("", "grp", 0);
    auto * dollar = member(group, "$0");
    auto * plain = member(group, "plain");
    EXPECT_EQ(text(group->pseudonymOf("plain")), "$1");
    EXPECT_EQ(group->find("$0"), dollar);
    EXPECT_EQ(group->find("$1"), plain);
    EXPECT_EQ(text(group->resolvePseudonym("$0")), "$0");
}

TEST_F(GroupTest, VectorOfTheNameComesBeforeThePseudonym) {
    Group * group = makeGroup("", "grp", 0);
    member(group, "v");
    ASSERT_EQ(text(group->pseudonymOf("v")), "$0");
    auto * late = member(group, "$0");
    EXPECT_EQ(group->find("$0"), late);
    EXPECT_EQ(text(group->resolvePseudonym("$0")), "$0");
}

TEST_F(GroupTest, PseudonymsOfDollarNamesDoNotGoInCircles) {
    Group * group = makeGroup("", "grp", 0);
    member(group, "$1");
    ASSERT_EQ(text(group->pseudonymOf("$1")), "$0");
    group->find("$1")->release();
    member(group, "$0");
    ASSERT_EQ(text(group->pseudonymOf("$0")), "$1");
    group->find("$0")->release();
    EXPECT_EQ(group->find("$0"), nullptr);
    EXPECT_EQ(group->find("$1"), nullptr);
}

TEST_F(GroupTest, LabelsHandedOutDoNotChange) {
    Group * group = makeGroup("", "grp", 0);
    Group * other = makeGroup("", "grp", 0);
    group->addLabel("one");
    auto const shared = group->labels;
    group->addLabel("two");
    EXPECT_THAT(*shared, testing::ElementsAre(YString("one")));
    EXPECT_THAT(*group->labels, testing::ElementsAre(YString("one"), YString("two")));
    EXPECT_TRUE(other->labels->empty());
}

struct DeathWitness {
    Texts log;
    static void first(void * arg, void * groupName) { note(arg, groupName, "first "); }
    static void second(void * arg, void * groupName) { note(arg, groupName, "second "); }
    static void note(void * arg, void * groupName, char const * who) {
        YString const & name = *static_cast<YString const *>(groupName);
        auto * witness = static_cast<DeathWitness *>(arg);
        Group const * group = findGroup(name);
        witness->log.push_back(who + std::to_string(group != nullptr ? group->vectors.size() : 0));
    }
};

TEST_F(GroupTest, NotificationsRunInListOrderWhileTheVectorsStillStand) {
    Group * group = makeGroup("", "grp", 0);
    member(group, "a");
    member(group, "b");
    DeathWitness witness;
    group->deleteNotify = {{DeathWitness::first, &witness}, {DeathWitness::second, &witness}};
    destroyGroup(group);
    EXPECT_EQ(witness.log, (Texts{"first 2", "second 2"}));
}

TEST_F(GroupTest, NotificationMayAskForTheSameDestructionAgain) {
    Group * group = makeGroup("", "grp", 0);
    YString const name = group->name;
    static int calls;
    calls = 0;
    group->deleteNotify.push_front({[](void * arg, void *) {
                                        ++calls;
                                        destroyGroup(static_cast<Group *>(arg));
                                        destroyAllGroups();
                                    },
                                    group});
    destroyGroup(group);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(findGroup(name), nullptr);
}

TEST_F(GroupTest, NotificationMayDeleteVectorsOfTheDyingGroup) {
    Group * group = makeGroup("", "grp", 0);
    for (char const * name : {"deleted", "left", "stays"}) (new WatchedVector(name, group, &deaths))->enterGroup();
    group->deleteNotify.push_front({[](void * arg, void *) {
                                        auto * dying = static_cast<Group *>(arg);
                                        dying->find("deleted")->release();
                                        dying->find("left")->leaveGroup();
                                    },
                                    group});
    destroyGroup(group);
    EXPECT_EQ(deaths, 2);
    LoosePool::sweep();
    EXPECT_EQ(deaths, 3);
}

TEST_F(GroupTest, DyingGroupDeletesItsVectorsReadOnlyOrNot) {
    Group * group = makeGroup("", "grp", 0);
    for (char const * name : {"a", "b", "c"}) {
        auto * vector = new WatchedVector(name, group, &deaths);
        vector->enterGroup();
        if (*name == 'b') vector->flags |= VF_READONLY;
    }
    destroyGroup(group);
    EXPECT_EQ(deaths, 3);
}

TEST_F(GroupTest, HoldsTensOfThousandsOfVectors) {
    constexpr int count = 50000;
    Group * group = makeGroup("", "grp", 0);
    for (int i = 0; i < count; ++i) member(group, ("node" + std::to_string(i)).c_str(), i);
    for (int i = 0; i < count; i += 7) {
        dvec const * vector = group->find("NODE" + std::to_string(i));
        ASSERT_NE(vector, nullptr);
        EXPECT_EQ(vector->getReal(0), i);
    }
    int visited = 0;
    group->forEachVector([&visited](dvec &) { ++visited; });
    EXPECT_EQ(visited, count);
    for (int i = 0; i < count; ++i) group->pseudonymOf(YString("node" + std::to_string(i)));
    EXPECT_EQ(group->find("$49999")->getReal(0), 49999);
    destroyGroup(group);
}

} // namespace
