#include "Source/Groups/StoreFixture.h"

#include "torvelan/VectorStore.h"

namespace {

class MakeVectorTest : public StoreFixture {
protected:
    static VectorParam param(std::string const & name, PhysType physType = PT_UNKNOWN, VD_type type = VD_REAL) {
        VectorParam result;
        result.name = YString(name);
        result.type = type;
        result.physType = physType;
        return result;
    }
    VEC_ERROR make(VectorParam const & y, VectorParam const & x, MakeVectorOptions const & options = {}) {
        return vec_MakeVector(group->name, &y, &x, &yOut, &xOut, options);
    }
    dvec * found(char const * name) { return group->find(name); }

    Group * group = makeGroup("", "mv", 0);
    IfVector yOut, xOut;
};

TEST_F(MakeVectorTest, NewVectorIsAnEmptyMemberThatTheCallerFills) {
    EXPECT_EQ(make(param("y", PT_VOLTAGE), param("")), VEC_OK);
    dvec * y = found("Y");
    ASSERT_NE(y, nullptr);
    EXPECT_EQ(text(y->name()), "y");
    EXPECT_FALSE(y->isTemporary());
    EXPECT_EQ(y->type(), VD_REAL);
    EXPECT_EQ(y->physType(), PT_VOLTAGE);
    EXPECT_EQ(y->totalLength(), 0);
    EXPECT_FALSE(y->isMultiple());
    EXPECT_TRUE(y->ref.name().empty());
    EXPECT_EQ(group->vectors.size(), 1U);
    EXPECT_EQ(yOut.addVal(5.0), VEC_OK);
    EXPECT_EQ(y->getReal(0), 5);
    EXPECT_EQ(xOut.addVal(5.0), VEC_NO_DATA_RECORD); // there is no reference to fill
}

TEST_F(MakeVectorTest, UnknownGroup) {
    VectorParam const y = param("y");
    EXPECT_EQ(vec_MakeVector("nowhere", &y, nullptr, &yOut, &xOut, {}), VEC_NO_GROUP);
    EXPECT_EQ(yOut.addVal(1.0), VEC_NO_DATA_RECORD);
}

TEST_F(MakeVectorTest, EmptyGroupIsTheCurrentOne) {
    nameSpace().current = group;
    VectorParam const y = param("y");
    EXPECT_EQ(vec_MakeVector("", &y, nullptr, &yOut, &xOut, {}), VEC_OK);
    EXPECT_NE(found("y"), nullptr);
}

TEST_F(MakeVectorTest, ReferenceIsAVectorOfTheGroupThatAllShare) {
    EXPECT_EQ(make(param("y1"), param("time", PT_TIME)), VEC_OK);
    IfVector secondY, secondX;
    VectorParam const y2 = param("y2"), x = param("TIME", PT_FREQUENCY);
    EXPECT_EQ(vec_MakeVector(group->name, &y2, &x, &secondY, &secondX, {}), VEC_OK);
    EXPECT_EQ(group->vectors.size(), 3U);
    xOut.addVal(0.5);
    secondX.addVal(1.5);
    for (BaseVector const * time :
         {static_cast<BaseVector const *>(found("time")), static_cast<BaseVector const *>(&found("y1")->ref),
          static_cast<BaseVector const *>(&found("y2")->ref)}) {
        EXPECT_EQ(time->totalLength(), 2);
        EXPECT_EQ(time->getReal(1), 1.5);
        EXPECT_EQ(time->physType(), PT_TIME);
    }
    EXPECT_EQ(text(found("y1")->ref.name()), "time");
    EXPECT_TRUE(vec_TestVectorUsesReference(found("y1"), group->name, "time"));
    EXPECT_TRUE(vec_TestVectorUsesReference(found("y2"), group->name, "time"));
}

TEST_F(MakeVectorTest, SeparateReferenceBelongsToTheVectorAlone) {
    EXPECT_EQ(make(param("y"), param("x", PT_TIME), {.separateReference = true}), VEC_OK);
    EXPECT_EQ(group->vectors.size(), 1U);
    EXPECT_EQ(text(found("y")->ref.name()), "x");
    EXPECT_EQ(found("y")->ref.physType(), PT_TIME);
    xOut.addVal(0.25);
    EXPECT_EQ(found("y")->ref.getReal(0), 0.25);
    EXPECT_EQ(make(param("z"), param("x"), {.separateReference = true}), VEC_OK);
    EXPECT_EQ(found("z")->ref.totalLength(), 0);
}

TEST_F(MakeVectorTest, MultipleMarksVectorAndReference) {
    EXPECT_EQ(make(param("y"), param("x"), {.multiple = true}), VEC_OK);
    EXPECT_TRUE(found("y")->isMultiple());
    EXPECT_TRUE(found("y")->ref.isMultiple());
    EXPECT_TRUE(found("x")->isMultiple());
    EXPECT_EQ(make(param("z"), param("w"), {.separateReference = true, .multiple = true}), VEC_OK);
    EXPECT_TRUE(found("z")->ref.isMultiple());
    EXPECT_EQ(found("z")->totalLength(), 0);
}

TEST_F(MakeVectorTest, SharedReferenceThatExistsIsTakenAsItIs) {
    member(group, "x", 3);
    EXPECT_EQ(make(param("y"), param("x", PT_TIME), {.multiple = true}), VEC_OK);
    EXPECT_FALSE(found("x")->isMultiple());
    EXPECT_EQ(found("x")->physType(), PT_NONE);
    EXPECT_EQ(found("y")->ref.getReal(0), 3);
    stringMember(group, "words", "a");
    EXPECT_EQ(make(param("z"), param("words")), VEC_OK);
    EXPECT_TRUE(found("z")->ref.isString());
}

TEST_F(MakeVectorTest, ComplexVectorTakesComplexValues) {
    EXPECT_EQ(make(param("y", PT_VOLTAGE, VD_COMPLEX), param("f", PT_FREQUENCY)), VEC_OK);
    EXPECT_TRUE(found("y")->isComplex());
    EXPECT_TRUE(found("f")->isReal());
    yOut.addVal(complex{1, 2});
    yOut.addVal(3.0);
    EXPECT_EQ(found("y")->getImag(0), 2);
    EXPECT_EQ(found("y")->getReal(1), 3);
    EXPECT_EQ(found("y")->physType(), PT_VOLTAGE);
}

TEST_F(MakeVectorTest, ExistingVectorIsHandedOut) {
    make(param("y"), param("x"));
    yOut.addVal(1.0);
    xOut.addVal(2.0);
    yOut = xOut = IfVector();
    EXPECT_EQ(make(param("Y"), param("other")), VEC_EXISTS);
    yOut.addVal(3.0);
    xOut.addVal(4.0);
    EXPECT_EQ(found("y")->totalLength(), 2);
    EXPECT_EQ(found("x")->getReal(1), 4);
    EXPECT_EQ(found("other"), nullptr);
    EXPECT_EQ(group->vectors.size(), 2U);
    EXPECT_EQ(make(param("y"), param("x"), {.noCreate = true}), VEC_EXISTS);
}

TEST_F(MakeVectorTest, ExistingVectorOfAnotherKindIsRefused) {
    member(group, "real", 1);
    stringMember(group, "text", "a");
    stringMember(group, "alias", "1+1")->flags |= VF_ALIAS;
    make(param("complex", PT_NONE, VD_COMPLEX), param(""));
    yOut = IfVector();
    EXPECT_EQ(make(param("real", PT_NONE, VD_COMPLEX), param("")), VEC_OTHER_KIND);
    EXPECT_EQ(make(param("complex"), param("")), VEC_OTHER_KIND);
    EXPECT_EQ(make(param("text"), param("")), VEC_OTHER_KIND);
    EXPECT_EQ(make(param("alias"), param("")), VEC_ALIAS_OF_OTHER_KIND);
    EXPECT_EQ(make(param("alias", PT_NONE, VD_COMPLEX), param("")), VEC_ALIAS_OF_OTHER_KIND);
    EXPECT_EQ(make(param("text"), param(""), {.noCreate = true}), VEC_OTHER_KIND);
    EXPECT_EQ(yOut.addVal(1.0), VEC_NO_DATA_RECORD);
    EXPECT_EQ(make(param("text", PT_NONE, VD_STRING), param("")), VEC_EXISTS);
    EXPECT_EQ(group->vectors.size(), 4U);
}

TEST_F(MakeVectorTest, VectorOfTheGroupThatGaveUpItsRealKindButIsAnAliasOfNumbers) {
    member(group, "number", 1)->flags |= VF_ALIAS;
    EXPECT_EQ(make(param("number"), param("")), VEC_EXISTS);
}

TEST_F(MakeVectorTest, NoneIsMadeWhenNoneIsWanted) {
    EXPECT_EQ(make(param("y"), param("x"), {.noCreate = true}), VEC_NO_VECTOR);
    EXPECT_TRUE(group->vectors.empty());
    EXPECT_EQ(yOut.addVal(1.0), VEC_NO_DATA_RECORD);
}

TEST_F(MakeVectorTest, BufferSizeHasNoVisibleEffect) {
    for (int size : {0, 1024, -1, INT32_MAX}) {
        std::string const name = "y" + std::to_string(size);
        EXPECT_EQ(make(param(name), param("x"), {.bufferSize = size}), VEC_OK);
        yOut.addVal(1.0);
        EXPECT_EQ(found(name.c_str())->getReal(0), 1);
    }
}

TEST_F(MakeVectorTest, PlacesAndParametersMayBeNull) {
    VectorParam const y = param("y"), x = param("x");
    EXPECT_EQ(vec_MakeVector(group->name, &y, &x, nullptr, nullptr, {}), VEC_OK);
    EXPECT_EQ(vec_MakeVector(group->name, &y, nullptr, nullptr, nullptr, {}), VEC_EXISTS);
    EXPECT_EQ(vec_MakeVector(group->name, nullptr, &x, &yOut, &xOut, {}), VEC_NO_VECTOR);
    EXPECT_EQ(group->vectors.size(), 2U);
}

TEST_F(MakeVectorTest, VectorMayBeItsOwnReference) {
    EXPECT_EQ(make(param("self"), param("SELF")), VEC_OK);
    EXPECT_EQ(group->vectors.size(), 1U);
    yOut.addVal(7.0);
    EXPECT_EQ(found("self")->ref.getReal(0), 7);
    EXPECT_EQ(make(param("complexSelf", PT_NONE, VD_COMPLEX), param("complexSelf")), VEC_OK);
    yOut.addVal(complex{1, 2});
    EXPECT_EQ(found("complexSelf")->getImag(0), 2);
    EXPECT_EQ(found("complexSelf")->ref.totalLength(), 0);
}

TEST_F(MakeVectorTest, VectorsMayReferToEachOther) {
    make(param("a"), param("b"));
    yOut.addVal(1.0);
    xOut.addVal(2.0);
    found("b")->ref = *found("a");
    EXPECT_EQ(make(param("b"), param("")), VEC_EXISTS);
    xOut.addVal(3.0);
    EXPECT_EQ(found("a")->getReal(1), 3);
    EXPECT_EQ(found("b")->ref.getReal(1), 3);
    found("a")->release();
    EXPECT_EQ(found("b")->ref.getReal(0), 1);
}

TEST_F(MakeVectorTest, DataOutliveTheGroup) {
    make(param("y"), param("x"));
    yOut.addVal(1.0);
    destroyGroup(group);
    EXPECT_EQ(yOut.addVal(2.0), VEC_OK);
    EXPECT_EQ(yOut.getObjectSize(), 2 * sizeof(double));
}

TEST_F(MakeVectorTest, TensOfThousandsShareOneReference) {
    constexpr int count = 50000;
    for (int i = 0; i < count; ++i) ASSERT_EQ(make(param("v" + std::to_string(i)), param("time", PT_TIME)), VEC_OK);
    xOut.addVal(0.125);
    int vectors = 0;
    EXPECT_EQ(vec_GetNumVectorsInGroup(group->name, &vectors), VEC_OK);
    EXPECT_EQ(vectors, count + 1);
    for (int i = 0; i < count; ++i) {
        dvec const * y = group->find("V" + std::to_string(i));
        ASSERT_NE(y, nullptr);
        ASSERT_EQ(y->ref.getReal(0), 0.125);
    }
    EXPECT_EQ(found("v50000"), nullptr);
    std::vector<VectorInfo> records(count + 2);
    EXPECT_EQ(vec_GetVectorsInGroup(group->name, records.data(), count + 2), count + 1);
    EXPECT_TRUE(std::is_sorted(records.begin(), records.begin() + count + 1,
                               [](auto const & a, auto const & b) { return compareNoCase(a.name, b.name) < 0; }));
}

TEST_F(MakeVectorTest, NamesMayHoldAnyByte) {
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte) {
        std::string const name = "b" + std::string(1, static_cast<char>(byte));
        if (byte != ':') everyByte += static_cast<char>(byte);
        bool const exists = byte >= 'a' && byte <= 'z'; // under its capital
        EXPECT_EQ(make(param(name), param("")), exists ? VEC_EXISTS : VEC_OK) << byte;
    }
    for (int byte = 1; byte < 256; ++byte) {
        std::string const name = "b" + std::string(1, static_cast<char>(byte));
        XYVector * vector = nullptr;
        EXPECT_EQ(vec_GetVector(group->name, YString(name), &vector), VEC_OK) << byte;
        EXPECT_TRUE(equalNoCase(vector->name(), name)) << byte;
    }
    EXPECT_EQ(make(param(everyByte), param("")), VEC_OK);
    bool isThere = false;
    EXPECT_EQ(vec_ExistVec(YString(text(group->name) + ":" + everyByte), &isThere, nullptr), VEC_OK);
    EXPECT_TRUE(isThere);
    EXPECT_EQ(group->vectors.size(), 255U - 26U + 1U);
}

TEST_F(MakeVectorTest, EmptyAndHugeNames) {
    EXPECT_EQ(make(param(""), param("")), VEC_OK);
    EXPECT_NE(found(""), nullptr);
    std::string const huge(1 << 20, 'n');
    EXPECT_EQ(make(param(huge), param(huge + "x")), VEC_OK);
    EXPECT_EQ(make(param(huge), param("")), VEC_EXISTS);
    EXPECT_EQ(found("")->totalLength(), 0);
}

TEST_F(MakeVectorTest, StringVector) {
    EXPECT_EQ(vec_MakeString("s", "some text", group->name), VEC_OK);
    EXPECT_STREQ(found("s")->getString(0), "some text");
    EXPECT_EQ(found("s")->totalLength(), 1);
    EXPECT_EQ(found("s")->flags, VF_INGROUP);
    EXPECT_EQ(vec_MakeString("S", "other", group->name), VEC_EXISTS);
    EXPECT_STREQ(found("s")->getString(0), "some text");
    EXPECT_EQ(vec_MakeString("s", "x", "nowhere"), VEC_NO_GROUP);
    nameSpace().current = group;
    EXPECT_EQ(vec_MakeString("empty", "", ""), VEC_OK);
    EXPECT_STREQ(found("empty")->getString(0), "");
    EXPECT_TRUE(reports->texts.empty());
}

TEST_F(MakeVectorTest, AliasVector) {
    EXPECT_EQ(vec_MakeAliasVector("a", "1+1", group->name, PT_CURRENT), VEC_OK);
    EXPECT_STREQ(found("a")->getString(0), "1+1");
    EXPECT_EQ(found("a")->physType(), PT_CURRENT);
    EXPECT_EQ(found("a")->flags, VF_INGROUP | VF_ALIAS);
    EXPECT_EQ(vec_MakeAliasVector("a", "1", "nowhere", PT_NONE), VEC_NO_GROUP);
    nameSpace().current = group;
    EXPECT_EQ(vec_MakeAliasVector("b", "2", "", PT_NONE), VEC_OK);
    EXPECT_TRUE(found("b")->isAlias());
}

TEST_F(MakeVectorTest, AliasUnderATakenNameIsAnInternalError) {
    dvec * old = member(group, "a", 1);
    EXPECT_EQ(vec_MakeAliasVector("a", "2", group->name, PT_NONE), VEC_OK);
    expectInternalError("Source\\plots");
    EXPECT_EQ(found("a"), old);
    EXPECT_FALSE(old->isAlias());
}

TEST_F(MakeVectorTest, ReferenceAliasNamesItsTarget) {
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

TEST_F(MakeVectorTest, ReferenceAliasStandsInTheLocalGroup) {
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

TEST_F(MakeVectorTest, ReferenceAliasOfAnAliasNamesTheFinalTarget) {
    member(group, "x", 1);
    vec_MakeReferenceAlias("one", YString::joined(group->name, {":x"}), messages);
    vec_MakeReferenceAlias("two", "one", messages);
    EXPECT_EQ(text(group->name) + ":x", nameSpace().global->find("two")->getString(0));
}

TEST_F(MakeVectorTest, ReferenceAliasOfNothing) {
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "nothing", messages), VEC_NOT_DONE);
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "nowhere:x", messages), VEC_NOT_DONE);
    member(nameSpace().global, "x", 1);
    vec_MakeReferenceAlias("broken", "x", messages);
    nameSpace().global->find("x")->release();
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "broken", messages), VEC_NOT_DONE);
    EXPECT_TRUE(messages.texts.empty());
    EXPECT_EQ(nameSpace().global->find("alias"), nullptr);
}

TEST_F(MakeVectorTest, ReferenceAliasOfItselfIsRecursive) {
    auto * circle = stringMember(nameSpace().global, "circle", "circle");
    circle->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "circle", messages), VEC_NOT_DONE);
    EXPECT_EQ(messages.texts, Texts{"Reference alias 'circle' is recursive"});
    EXPECT_EQ(nameSpace().global->find("alias"), nullptr);
}

TEST_F(MakeVectorTest, CircleOfReferenceAliasesIsRecursive) {
    for (auto const & [name, target] : {std::pair("a", "b"), std::pair("b", "c"), std::pair("c", "a")})
        stringMember(nameSpace().global, name, target)->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(vec_MakeReferenceAlias("alias", "b", messages), VEC_NOT_DONE);
    EXPECT_EQ(messages.texts, Texts{"Reference alias 'b' is recursive"});
}

TEST_F(MakeVectorTest, ChainOfAHundredStepsIsFollowedAndNoLongerOne) {
    member(nameSpace().global, "link0", 1);
    for (int i = 1; i <= 101; ++i)
        stringMember(nameSpace().global, ("link" + std::to_string(i)).c_str(), ("link" + std::to_string(i - 1)).c_str())
            ->flags |= VF_ALIAS | VF_REFALIAS;
    EXPECT_EQ(vec_MakeReferenceAlias("fits", "link100", messages), VEC_OK);
    EXPECT_STREQ(nameSpace().global->find("fits")->getString(0), "global:link0");
    EXPECT_EQ(vec_MakeReferenceAlias("long", "link101", messages), VEC_NOT_DONE);
    EXPECT_EQ(messages.texts, Texts{"Reference alias 'link101' is recursive"});
}

TEST_F(MakeVectorTest, ReferenceAliasUnderATakenNameIsNotMade) {
    auto * old = member(nameSpace().global, "taken", 1);
    member(nameSpace().global, "x", 2);
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(vec_MakeReferenceAlias("taken", "x", messages), VEC_NOT_DONE);
    expectInternalError("Source\\plots");
    EXPECT_EQ(nameSpace().global->find("taken"), old);
    EXPECT_EQ(LoosePool::count(), before);
}

} // namespace
