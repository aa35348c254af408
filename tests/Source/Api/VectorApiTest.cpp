#include "torvelan/VectorStore.h"

#include "Source/Groups/StoreFixture.h"

namespace {

class VectorApiTest : public StoreFixture {
protected:
    static constexpr char const * elsewhere =
        "You must specify the group name explicitly to delete\na vector not in the global group.";

    // The end of a deletion that is refused: the code and one message.
    void expectRefused(std::string const & name, std::string const & words) {
        EXPECT_EQ(vec_DestroyVector(YString(name), messages, true), VEC_NOT_DONE);
        EXPECT_EQ(messages.texts, Texts{words});
        messages.clear();
    }
};

TEST_F(VectorApiTest, VectorIsFoundInItsGroup) {
    Group * group = makeGroup("", "va", 0);
    auto * vector = member(group, "x");
    XYVector * found = nullptr;
    EXPECT_EQ(vec_GetVector(group->name, "X", &found), VEC_OK);
    EXPECT_EQ(found, vector);
    EXPECT_EQ(vec_GetVector(group->name, "y", &found), VEC_NO_VECTOR);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(vec_GetVector("nowhere", "x", &found), VEC_NO_GROUP);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(vec_GetVector(group->name, "x", nullptr), VEC_OK);
    EXPECT_EQ(vec_GetVector(group->name, "y", nullptr), VEC_NO_VECTOR);
}

TEST_F(VectorApiTest, EmptyGroupSearchesAsExpressionsDo) {
    Group * current = makeGroup("", "va", 0);
    nameSpace().current = current;
    auto * inCurrent = member(current, "only");
    member(nameSpace().global, "x", 1);
    auto * inLocal = member(pushContext(), "x", 2);
    XYVector * found = nullptr;
    EXPECT_EQ(vec_GetVector("", "x", &found), VEC_OK);
    EXPECT_EQ(found, inLocal);
    EXPECT_EQ(vec_GetVector("", "only", &found), VEC_OK);
    EXPECT_EQ(found, inCurrent);
    EXPECT_EQ(vec_GetVector("", "global:x", &found), VEC_OK);
    EXPECT_EQ(found->getReal(0), 1);
    EXPECT_EQ(vec_GetVector("", "nothing", &found), VEC_NO_VECTOR);
    EXPECT_EQ(found, nullptr);
    vec_PopContext();
}

TEST_F(VectorApiTest, PseudonymThroughTheGroup) {
    Group * group = makeGroup("", "va", 0);
    member(group, "x");
    YString pseudonym;
    EXPECT_EQ(vec_GetVectorPseudonym(group->name, "x", &pseudonym), VEC_OK);
    EXPECT_EQ(text(pseudonym), "$0");
    EXPECT_EQ(vec_GetVectorPseudonym(group->name, "y", &pseudonym), VEC_OK);
    EXPECT_EQ(text(pseudonym), "y");
    EXPECT_EQ(vec_GetVectorPseudonym("nowhere", "x", &pseudonym), VEC_NO_GROUP);
    EXPECT_EQ(vec_GetVectorPseudonym(group->name, "x", nullptr), VEC_OK);
    nameSpace().current = group;
    EXPECT_EQ(vec_GetVectorPseudonym("", "x", &pseudonym), VEC_OK);
    EXPECT_EQ(text(pseudonym), "$0");
}

TEST_F(VectorApiTest, DeletionLooksInTheGlobalGroupBeforeTheLocalOne) {
    member(nameSpace().global, "x");
    auto * inLocal = member(pushContext(), "x");
    EXPECT_EQ(vec_DestroyVector("x", messages, true), VEC_OK);
    EXPECT_EQ(nameSpace().global->find("x"), nullptr);
    EXPECT_EQ(nameSpace().local->find("x"), inLocal);
    EXPECT_EQ(vec_DestroyVector("x", messages, true), VEC_OK);
    EXPECT_EQ(nameSpace().local->find("x"), nullptr);
    EXPECT_TRUE(messages.texts.empty());
    vec_PopContext();
}

TEST_F(VectorApiTest, VectorOfTheCurrentGroupMustBeNamedWithItsGroup) {
    Group * current = makeGroup("", "va", 0);
    nameSpace().current = current;
    auto * vector = member(current, "x");
    expectRefused("x", elsewhere);
    EXPECT_EQ(current->find("x"), vector);
    EXPECT_EQ(vec_DestroyVector(":x", messages, true), VEC_OK);
    EXPECT_EQ(current->find("x"), nullptr);
    member(current, "y");
    EXPECT_EQ(vec_DestroyVector(YString(text(current->name) + ":y"), messages, true), VEC_OK);
    EXPECT_EQ(current->find("y"), nullptr);
}

TEST_F(VectorApiTest, DeletionOfWhatIsNotThere) {
    Group * group = makeGroup("", "va", 0);
    expectRefused("x", "Could not find vector of name x");
    expectRefused("nowhere:x", "There is no group of name 'nowhere'");
    expectRefused(text(group->name) + ":x", "Could not find vector of name " + text(group->name) + ":x");
    nameSpace().current = group;
    expectRefused(":x", "Could not find vector of name :x");
    expectRefused("", "Could not find vector of name ");
    expectRefused("%s%n", "Could not find vector of name %s%n");
}

TEST_F(VectorApiTest, ReadOnlyVectorIsNotDeleted) {
    expectRefused("pi", "Vector 'pi' is read-only and may not be deleted");
    EXPECT_NE(nameSpace().global->find("pi"), nullptr);
}

TEST_F(VectorApiTest, DirectDeletionIsAtOnceTheOtherLeavesATemporary) {
    Group * global = nameSpace().global;
    (new WatchedVector("a", global, &deaths))->enterGroup();
    (new WatchedVector("b", global, &deaths))->enterGroup();
    EXPECT_EQ(vec_DestroyVector("a", messages, true), VEC_OK);
    EXPECT_EQ(deaths, 1);
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(vec_DestroyVector("b", messages, false), VEC_OK);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(LoosePool::count(), before + 1);
    EXPECT_EQ(global->find("b"), nullptr);
    vec_CollectGarbage();
    EXPECT_EQ(deaths, 2);
}

TEST_F(VectorApiTest, DeletionWithoutSpecialGroups) {
    vec_PopContext();
    expectRefused("x", "Could not find vector of name x");
    expectRefused(":x", "There is no group of name ''");
    Group * current = makeGroup("", "va", 0);
    nameSpace().current = current;
    member(current, "x");
    expectRefused("x", "You must specify the group name explicitly to delete\na vector not in the  group.");
}

TEST_F(VectorApiTest, ExistenceIsThatOfTheSearchOfExpressions) {
    nameSpace().current = makeGroup("", "va", 0);
    member(nameSpace().current, "only");
    stringMember(nameSpace().global, "alias", "1+1")->flags |= VF_ALIAS;
    struct Case {
        char const * name;
        bool exists, isAlias;
    };
    for (Case const & c : {Case{"pi", true, false}, Case{"ONLY", true, false}, Case{":only", true, false},
                           Case{"global:only", false, false}, Case{"alias", true, true},
                           Case{"global:alias", true, true}, Case{"nothing", false, false}, Case{"", false, false}}) {
        bool exists = !c.exists;
        VectorExtInfo info{!c.isAlias};
        EXPECT_EQ(vec_ExistVec(c.name, &exists, &info), VEC_OK);
        EXPECT_EQ(exists, c.exists) << c.name;
        EXPECT_EQ(info.isAlias, c.isAlias) << c.name;
    }
    EXPECT_EQ(vec_ExistVec("pi", nullptr, nullptr), VEC_OK);
}

TEST_F(VectorApiTest, LengthIsThatOfTheCurrentDivision) {
    auto * vector = member(nameSpace().global, "v", 1);
    vector->addVal(2.0);
    vector->addDivision("");
    vector->addVal(3.0);
    long long length = 0;
    EXPECT_EQ(vec_GetVectorLength("v", &length), VEC_OK);
    EXPECT_EQ(length, 2);
    vector->setDivision(1);
    EXPECT_EQ(vec_GetVectorLength("global:v", &length), VEC_OK);
    EXPECT_EQ(length, 1);
    EXPECT_EQ(vec_GetVectorLength("missing", &length), VEC_OK);
    EXPECT_EQ(length, -1);
    EXPECT_EQ(vec_GetVectorLength("v", nullptr), VEC_OK);
}

TEST_F(VectorApiTest, StringsOfTheFirstDivision) {
    auto * vector = stringMember(nameSpace().global, "s", "one");
    vector->setSize(3, VD_STRING);
    vector->setString("one", 0);
    vector->setString("%s", 2);
    YArray<YString> texts = {"old"};
    EXPECT_EQ(vec_GetXYVectorAsString(vector, &texts), VEC_OK);
    EXPECT_THAT(texts, testing::ElementsAre(YString("one"), YString(""), YString("%s")));
    EXPECT_EQ(vec_GetXYVectorAsString(vector, nullptr), VEC_OK);
    EXPECT_EQ(vec_GetXYVectorAsString(member(nameSpace().global, "r"), &texts), VEC_OTHER_KIND);
    EXPECT_EQ(vec_GetXYVectorAsString(nullptr, &texts), VEC_OTHER_KIND);
    EXPECT_EQ(texts.size(), 3U);
}

TEST_F(VectorApiTest, StringsOfTheFirstDivisionWhicheverIsCurrent) {
    auto * vector = stringMember(nameSpace().global, "s", "one");
    vector->expandTo({1, 2});
    ASSERT_EQ(vector->numDivisions(), 2);
    vector->setDivision(1);
    YArray<YString> texts;
    EXPECT_EQ(vec_GetXYVectorAsString(vector, &texts), VEC_OK);
    EXPECT_EQ(texts.size(), 1U);
}

TEST_F(VectorApiTest, ReferenceIsTheSameDataNotEqualData) {
    Group * group = makeGroup("", "va", 0);
    auto * x = member(group, "x", 1);
    auto * y = member(group, "y", 2);
    member(group, "equal", 1);
    y->ref = *x;
    EXPECT_TRUE(vec_TestVectorUsesReference(y, group->name, "X"));
    EXPECT_FALSE(vec_TestVectorUsesReference(y, group->name, "equal"));
    EXPECT_FALSE(vec_TestVectorUsesReference(y, group->name, "y"));
    EXPECT_FALSE(vec_TestVectorUsesReference(y, group->name, "missing"));
    EXPECT_FALSE(vec_TestVectorUsesReference(y, "nowhere", "x"));
    EXPECT_FALSE(vec_TestVectorUsesReference(nullptr, group->name, "x"));
    EXPECT_FALSE(vec_TestVectorUsesReference(y, "", "x"));
    nameSpace().current = group;
    EXPECT_TRUE(vec_TestVectorUsesReference(y, "", "x"));
    // Vectors that have never held data share nothing.
    auto * empty = new dvec("empty", group, PT_UNKNOWN);
    empty->enterGroup();
    EXPECT_FALSE(vec_TestVectorUsesReference(new dvec("other", group, PT_UNKNOWN), group->name, "empty"));
}

} // namespace
