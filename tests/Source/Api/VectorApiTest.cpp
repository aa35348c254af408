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

TEST_F(VectorApiTest, ReferenceAliasNamesItsTarget) {
    Group * group = makeGroup("", "va", 0);
    member(group, "x", 1)->setPhysType(PT_VOLTAGE);
    YString const target = YString::joined(group->name, {":X"});
    EXPECT_EQ(vec_MakeReferenceAlias("alias", target, messages), VEC_OK);
    dvec const * alias = nameSpace().global->find("alias");
    ASSERT_NE(alias, nullptr);
    EXPECT_EQ(alias->flags, VF_ALIAS | VF_REFALIAS | VF_INGROUP);
    EXPECT_EQ(text(group->name) + ":x", alias->getString(0));
    EXPECT_EQ(alias->physType(), PT_VOLTAGE);
    EXPECT_EQ(alias->resolveReferenceAlias(), group->find("x"));
}

TEST_F(VectorApiTest, ReferenceAliasStandsInTheLocalGroup) {
    member(nameSpace().global, "x", 1);
    Group * context = pushContext();
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "x", messages), VEC_OK);
    ASSERT_NE(context->find("alias"), nullptr);
    EXPECT_STREQ(context->find("alias")->getString(0), "global:x");
    nameSpace().local = nullptr;
    EXPECT_EQ(vec_MakeReferenceAlias("second", "x", messages), VEC_OK);
    EXPECT_NE(nameSpace().global->find("second"), nullptr);
    nameSpace().local = context;
    popContext();
}

TEST_F(VectorApiTest, ReferenceAliasOfAnAliasNamesTheFinalTarget) {
    Group * group = makeGroup("", "va", 0);
    member(group, "x", 1);
    vec_MakeReferenceAlias("one", YString::joined(group->name, {":x"}), messages);
    vec_MakeReferenceAlias("two", "one", messages);
    EXPECT_EQ(text(group->name) + ":x", nameSpace().global->find("two")->getString(0));
}

TEST_F(VectorApiTest, ReferenceAliasOfNothing) {
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "nothing", messages), VEC_NOT_DONE);
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "nowhere:x", messages), VEC_NOT_DONE);
    member(nameSpace().global, "x", 1);
    vec_MakeReferenceAlias("broken", "x", messages);
    nameSpace().global->find("x")->release();
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "broken", messages), VEC_NOT_DONE);
    EXPECT_TRUE(messages.texts.empty());
    EXPECT_EQ(nameSpace().global->find("alias"), nullptr);
}

TEST_F(VectorApiTest, ReferenceAliasOfItselfIsRecursive) {
    auto * circle = stringMember(nameSpace().global, "circle", "circle");
    circle->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "circle", messages), VEC_NOT_DONE);
    EXPECT_EQ(messages.texts, Texts{"Reference alias 'circle' is recursive"});
    EXPECT_EQ(nameSpace().global->find("alias"), nullptr);
}

TEST_F(VectorApiTest, CircleOfReferenceAliasesIsRecursive) {
    for (auto const & [name, target] : {std::pair("a", "b"), std::pair("b", "c"), std::pair("c", "a")})
        stringMember(nameSpace().global, name, target)->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "b", messages), VEC_NOT_DONE);
    EXPECT_EQ(messages.texts, Texts{"Reference alias 'b' is recursive"});
}

TEST_F(VectorApiTest, ChainOfAHundredStepsIsFollowedAndNoLongerOne) {
    member(nameSpace().global, "link0", 1);
    for (int i = 1; i <= 101; ++i)
        stringMember(nameSpace().global, ("link" + std::to_string(i)).c_str(), ("link" + std::to_string(i - 1)).c_str())
            ->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(vec_MakeReferenceAlias("fits", "link100", messages), VEC_OK);
    EXPECT_STREQ(nameSpace().global->find("fits")->getString(0), "global:link0");
    EXPECT_EQ(vec_MakeReferenceAlias("long", "link101", messages), VEC_NOT_DONE);
    EXPECT_EQ(messages.texts, Texts{"Reference alias 'link101' is recursive"});
}

TEST_F(VectorApiTest, ReferenceAliasUnderATakenNameIsNotMade) {
    auto * old = member(nameSpace().global, "taken", 1);
    member(nameSpace().global, "x", 2);
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(vec_MakeReferenceAlias("taken", "x", messages), VEC_NOT_DONE);
    expectInternalError("Source\\plots");
    EXPECT_EQ(nameSpace().global->find("taken"), old);
    EXPECT_EQ(LoosePool::count(), before);
}

} // namespace
