#include "Source/Groups/StoreFixture.h"

namespace {

using DvecTest = StoreFixture;

TEST_F(DvecTest, NewVectorIsAnEmptyRealTemporaryOfTheLocalGroup) {
    std::size_t const before = LoosePool::count();
    auto * vector = new dvec("v", nullptr, PT_VOLTAGE);
    EXPECT_EQ(vector->type(), VD_REAL);
    EXPECT_EQ(vector->length(), 0);
    EXPECT_EQ(vector->physType(), PT_VOLTAGE);
    EXPECT_TRUE(vector->isTemporary());
    EXPECT_EQ(vector->owner(), nameSpace().local);
    EXPECT_EQ(nameSpace().local->find("v"), nullptr);
    EXPECT_EQ(LoosePool::count(), before + 1);
}

TEST_F(DvecTest, RealLiteralHoldsItsValue) {
    auto * vector = new dvec("2.5", 2.5);
    EXPECT_EQ(vector->type(), VD_REAL);
    ASSERT_EQ(vector->length(), 1);
    EXPECT_EQ(vector->getReal(0), 2.5);
    EXPECT_EQ(vector->physType(), PT_LITERAL);
    EXPECT_EQ(vector->owner(), nameSpace().local);
    EXPECT_EQ(text(vector->name()), "2.5");
}

TEST_F(DvecTest, StringLiteralHoldsItsText) {
    std::string const words = "hello world";
    auto * vector = new dvec("s", std::string_view(words).substr(0, 5), nullptr, PT_CURRENT);
    EXPECT_EQ(vector->type(), VD_STRING);
    ASSERT_EQ(vector->length(), 1);
    EXPECT_STREQ(vector->getString(0), "hello");
    EXPECT_EQ(vector->physType(), PT_CURRENT);
    EXPECT_STREQ((new dvec("empty", std::string_view(), nullptr, PT_NONE))->getString(0), "");
}

TEST_F(DvecTest, NullGroupMeansThePresentLocalGroup) {
    Group * context = pushContext();
    EXPECT_EQ((new dvec("a", nullptr, PT_NONE))->owner(), context);
    EXPECT_EQ((new dvec("a", 1.0))->owner(), context);
    EXPECT_EQ((new dvec("a", "text", nullptr, PT_NONE))->owner(), context);
    EXPECT_EQ((new dvec("a", nameSpace().global, PT_NONE))->owner(), nameSpace().global);
    popContext();
}

TEST_F(DvecTest, QualifiedNameChoosesTheGroup) {
    Group * group = makeGroup("", "dv", 0);
    Group * context = pushContext();
    auto * vector = new dvec((text(group->name) + ":x").c_str(), &messages);
    EXPECT_EQ(vector->owner(), group);
    EXPECT_EQ(text(vector->name()), "x");
    EXPECT_TRUE(vector->isTemporary());
    EXPECT_EQ((new dvec("x", &messages))->owner(), context);
    EXPECT_TRUE(messages.texts.empty());
    popContext();
}

TEST_F(DvecTest, EmptyGroupPartOfAQualifiedNameIsTheLocalGroup) {
    nameSpace().current = makeGroup("", "dv", 0);
    auto * vector = new dvec(":x", &messages);
    EXPECT_EQ(vector->owner(), nameSpace().local);
    EXPECT_EQ(text(vector->name()), "x");
}

TEST_F(DvecTest, QualifiedNameIsSplitAtItsFirstColon) {
    Group * group = makeGroup("", "dv", 0);
    auto * vector = new dvec((text(group->name) + ":a:b").c_str(), &messages);
    EXPECT_EQ(vector->owner(), group);
    EXPECT_EQ(text(vector->name()), "a:b");
}

TEST_F(DvecTest, UnknownGroupIsReportedAndTheLocalOneTaken) {
    auto * vector = new dvec("nowhere:x", &messages);
    EXPECT_EQ(messages.texts, Texts{"There is no group of name nowhere. Assigning as local variable"});
    EXPECT_EQ(vector->owner(), nameSpace().local);
    EXPECT_EQ(text(vector->name()), "x");
    EXPECT_EQ((new dvec("nowhere:x", static_cast<MessageHandler *>(nullptr)))->owner(), nameSpace().local);
}

TEST_F(DvecTest, NullNameIsAnInternalErrorAndTheVectorUnnamed) {
    char const * none = nullptr;
    EXPECT_EQ(text((new dvec(none, nullptr, PT_NONE))->name()), "unnamed");
    expectInternalError("Source\\dvec");
    EXPECT_EQ(text((new dvec(none, 1.0))->name()), "unnamed");
    expectInternalError("Source\\dvec");
    EXPECT_EQ(text((new dvec(none, "text", nullptr, PT_NONE))->name()), "unnamed");
    expectInternalError("Source\\dvec");
    auto * qualified = new dvec(none, &messages);
    EXPECT_EQ(text(qualified->name()), "unnamed");
    EXPECT_EQ(qualified->owner(), nameSpace().local);
    expectInternalError("Source\\dvec");
}

TEST_F(DvecTest, CopyIsATemporaryThatSharesBothSides) {
    auto * original = member(nameSpace().global, "original", 7);
    original->ref.setName("time");
    original->ref.addVal(0.5);
    original->flags |= VF_READONLY | VF_ALIAS;
    original->converting = true;
    auto * copy = new dvec(*original);
    EXPECT_TRUE(copy->isTemporary());
    EXPECT_FALSE(copy->isReadOnly());
    EXPECT_TRUE(copy->isAlias());
    EXPECT_TRUE(copy->converting);
    EXPECT_EQ(copy->owner(), nameSpace().global);
    EXPECT_EQ(text(copy->name()), "original");
    EXPECT_TRUE(copy->sharesRep(*original));
    EXPECT_TRUE(copy->ref.sharesRep(original->ref));
    EXPECT_EQ(text(copy->ref.name()), "time");
    EXPECT_EQ(nameSpace().global->find("original"), original);
}

TEST_F(DvecTest, EnteringMovesAVectorFromThePoolToItsGroup) {
    std::size_t const before = LoosePool::count();
    auto * vector = new dvec("v", nullptr, PT_NONE);
    vector->enterGroup();
    EXPECT_FALSE(vector->isTemporary());
    EXPECT_EQ(nameSpace().local->find("V"), vector);
    EXPECT_EQ(LoosePool::count(), before);
    vector->enterGroup();
    EXPECT_EQ(LoosePool::count(), before);
    EXPECT_TRUE(reports->texts.empty());
    vector->leaveGroup();
    EXPECT_TRUE(vector->isTemporary());
    EXPECT_EQ(vector->owner(), nameSpace().local);
    EXPECT_EQ(nameSpace().local->find("v"), nullptr);
    EXPECT_EQ(LoosePool::count(), before + 1);
    vector->leaveGroup();
    EXPECT_EQ(LoosePool::count(), before + 1);
}

TEST_F(DvecTest, EnteringUnderATakenNameIsAnInternalErrorAndTheOldVectorStays) {
    auto * old = member(nameSpace().global, "taken", 1);
    auto * late = new dvec("TAKEN", nameSpace().global, PT_NONE);
    late->enterGroup();
    expectInternalError("Source\\plots");
    EXPECT_TRUE(late->isTemporary());
    EXPECT_EQ(nameSpace().global->find("taken"), old);
    late->release();
    EXPECT_EQ(nameSpace().global->find("taken"), old);
}

TEST_F(DvecTest, AssignTakesTheDataAndKeepsNameGroupAndFlags) {
    auto * target = member(nameSpace().global, "target", 1);
    target->flags |= VF_ALIAS;
    Group * group = makeGroup("", "dv", 0);
    auto * source = member(group, "source", 2);
    source->ref.setName("time");
    source->ref.addVal(0.25);
    target->assign(*source);
    EXPECT_TRUE(target->sharesRep(*source));
    EXPECT_TRUE(target->ref.sharesRep(source->ref));
    EXPECT_EQ(text(target->name()), "target");
    EXPECT_EQ(text(target->ref.name()), "time");
    EXPECT_EQ(target->owner(), nameSpace().global);
    EXPECT_EQ(target->flags, VF_ALIAS | VF_INGROUP);
    EXPECT_EQ(nameSpace().global->find("target"), target);
}

TEST_F(DvecTest, AssignEntersTheGroup) {
    auto * target = new dvec("target", nameSpace().global, PT_NONE);
    target->assign(*new dvec("source", 2.0));
    EXPECT_EQ(nameSpace().global->find("target"), target);
    EXPECT_FALSE(target->isTemporary());
    EXPECT_EQ(target->getReal(0), 2);
}

TEST_F(DvecTest, AssignToItselfChangesNothing) {
    auto * vector = member(nameSpace().global, "self", 3);
    vector->assign(*vector);
    EXPECT_EQ(vector->getReal(0), 3);
    EXPECT_EQ(nameSpace().global->find("self"), vector);
}

TEST_F(DvecTest, ReleaseEndsTemporariesAndMembersButNothingReadOnly) {
    std::size_t const before = LoosePool::count();
    (new WatchedVector("a", nullptr, &deaths))->release();
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(LoosePool::count(), before);
    auto * vector = new WatchedVector("a", nullptr, &deaths);
    vector->enterGroup();
    vector->flags |= VF_READONLY;
    vector->release();
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(nameSpace().local->find("a"), vector);
    vector->flags &= static_cast<std::uint16_t>(~VF_READONLY);
    vector->release();
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(nameSpace().local->find("a"), nullptr);
}

TEST_F(DvecTest, DestructionOfAMemberClearsItsEntry) {
    delete member(nameSpace().global, "short", 0);
    EXPECT_EQ(nameSpace().global->find("short"), nullptr);
}

TEST_F(DvecTest, RenamingAMemberReindexesTheTable) {
    auto * vector = member(nameSpace().global, "old", 4);
    vector->setName("new");
    EXPECT_EQ(nameSpace().global->find("old"), nullptr);
    EXPECT_EQ(nameSpace().global->find("new"), vector);
    vector->setName("NEW");
    EXPECT_EQ(nameSpace().global->find("new"), vector);
    EXPECT_EQ(text(vector->name()), "NEW");
    EXPECT_TRUE(reports->texts.empty());
}

TEST_F(DvecTest, RenamingAMemberOntoATakenNameKeepsTheOldName) {
    auto * vector = member(nameSpace().global, "mine", 1);
    auto * other = member(nameSpace().global, "theirs", 2);
    vector->setName("Theirs");
    expectInternalError("Source\\plots");
    EXPECT_EQ(text(vector->name()), "mine");
    EXPECT_EQ(nameSpace().global->find("mine"), vector);
    EXPECT_EQ(nameSpace().global->find("theirs"), other);
}

TEST_F(DvecTest, RenamingATemporaryAsksNobody) {
    member(nameSpace().global, "theirs", 2);
    auto * vector = new dvec("mine", nameSpace().global, PT_NONE);
    vector->setName("theirs");
    EXPECT_EQ(text(vector->name()), "theirs");
    EXPECT_TRUE(reports->texts.empty());
}

TEST_F(DvecTest, FullNameIsGroupAndName) {
    Group * group = makeGroup("", "dv", 0);
    EXPECT_EQ(text(member(group, "x")->fullName()), text(group->name) + ":x");
    EXPECT_EQ(text((new dvec("y", 1.0))->fullName()), "global:y");
}

TEST_F(DvecTest, TemporaryOfADeadGroupBelongsToThePresentLocalGroup) {
    pushContext();
    auto * vector = new dvec("orphan", 5.0);
    popContext();
    EXPECT_EQ(vector->owner(), nullptr);
    EXPECT_EQ(text(vector->fullName()), "global:orphan");
    vector->enterGroup();
    EXPECT_EQ(nameSpace().global->find("orphan"), vector);
    EXPECT_EQ(vector->owner(), nameSpace().global);
}

TEST_F(DvecTest, OrphanDoesNotBelongToAGroupThatRefusesIt) {
    pushContext();
    auto * vector = new dvec("orphan", 5.0);
    popContext();
    member(pushContext(), "orphan", 1);
    vector->enterGroup();
    expectInternalError("Source\\plots");
    popContext();
    EXPECT_EQ(text(vector->fullName()), "global:orphan"); // does not look at the dead context
}

TEST_F(DvecTest, WithoutAnyGroupAVectorStaysATemporary) {
    popContext();
    ASSERT_EQ(nameSpace().local, nullptr);
    auto * vector = new dvec("lost", 1.0);
    EXPECT_EQ(vector->owner(), nullptr);
    vector->enterGroup();
    EXPECT_TRUE(vector->isTemporary());
    EXPECT_EQ(text(vector->fullName()), "lost");
    EXPECT_EQ((new dvec("a:b", &messages))->owner(), nullptr);
}

TEST_F(DvecTest, ReferenceAliasWithoutGroupPartIsSoughtInTheLocalThenTheGlobalGroup) {
    auto * inGlobal = member(nameSpace().global, "t", 1);
    Group * current = makeGroup("", "dv", 0);
    member(current, "t", 3);
    member(current, "only", 3);
    nameSpace().current = current;
    Group * context = pushContext();
    auto * alias = stringMember(context, "alias", "t");
    alias->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(alias->resolveReferenceAlias(), inGlobal);
    auto * inLocal = member(context, "t", 2);
    EXPECT_EQ(alias->resolveReferenceAlias(), inLocal);
    alias->setString("only", 0);
    EXPECT_EQ(alias->resolveReferenceAlias(), nullptr);
    popContext();
}

TEST_F(DvecTest, ReferenceAliasWithGroupPartIsSoughtThereOnly) {
    Group * group = makeGroup("", "dv", 0);
    auto * target = member(group, "x", 1);
    member(nameSpace().global, "y", 1);
    auto * alias = stringMember(nameSpace().global, "alias", (text(group->name) + ":x").c_str());
    alias->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(alias->resolveReferenceAlias(), target);
    alias->setString((text(group->name) + ":y").c_str(), 0);
    EXPECT_EQ(alias->resolveReferenceAlias(), nullptr);
    alias->setString("nowhere:y", 0);
    EXPECT_EQ(alias->resolveReferenceAlias(), nullptr);
    nameSpace().current = group;
    alias->setString(":x", 0);
    EXPECT_EQ(alias->resolveReferenceAlias(), target);
}

TEST_F(DvecTest, OnlyAReferenceAliasResolves) {
    member(nameSpace().global, "x", 1);
    EXPECT_EQ(stringMember(nameSpace().global, "text", "x")->resolveReferenceAlias(), nullptr);
    auto * number = member(nameSpace().global, "number", 1);
    number->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(number->resolveReferenceAlias(), nullptr);
}

} // namespace
