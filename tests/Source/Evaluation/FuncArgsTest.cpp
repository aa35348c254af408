// Arguments as handlers see them.

#include "FrameTools.h"
#include "Groups/GroupStore.h"
#include "Groups/LoosePool.h"

#include <limits>

namespace {

class Arguments : public FrameTest {
protected:
    Arguments() { args.setNumArgs(4); }

    dvec * add(dvec * vector, argType type = ARG_ANY) { return args.add(vector, type, messages, context); }
    Values elements(int i) const {
        double const * data = args.data(i);
        return data != nullptr ? Values(data, data + args.length(i)) : Values();
    }

    FuncArgs args{"f"};
};

dvec * makeAlias(char const * name, char const * expression) {
    dvec * alias = new dvec(YString(name), expression, nullptr, PT_VOLTAGE);
    alias->enterGroup();
    alias->flags |= VF_ALIAS;
    return alias;
}

dvec * makeText(char const * text) {
    return new dvec(YString(text), text, nullptr, PT_UNKNOWN);
}

} // namespace

TEST_F(Arguments, AnIndexBeyondThemIsNoErrorForAnyAccessor) {
    add(makeVector("a", {{1}}));
    for (int i : {-1, 1, 4, 99, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(args.type(i), VD_ABSENT);
        EXPECT_EQ(args.refType(i), VD_ABSENT);
        EXPECT_EQ(args.physType(i), PT_UNKNOWN);
        EXPECT_EQ(args.refPhysType(i), PT_UNKNOWN);
        EXPECT_EQ(args.length(i) + args.length32(i) + args.totalLength(i) + args.refLength(i), 0);
        EXPECT_EQ(args.numYDivisions(i), 0);
        EXPECT_EQ(args.data(i), nullptr);
        EXPECT_EQ(args.complexData(i), nullptr);
        EXPECT_EQ(args.stringData(i), nullptr);
        EXPECT_EQ(args.data(i, 0), nullptr);
        EXPECT_EQ(args.complexData(i, 0), nullptr);
        EXPECT_EQ(args.stringData(i, 0), nullptr);
        EXPECT_EQ(args.refData(i), nullptr);
        EXPECT_EQ(args.complexRefData(i), nullptr);
        EXPECT_TRUE(args.refName(i).empty());
        EXPECT_EQ(args.getXVec(i), nullptr);
        EXPECT_EQ(args.getYVec(i), nullptr);
        EXPECT_FALSE(args.isRepeatedScalar(i));
        XYVector out;
        EXPECT_FALSE(args.assignXYVec(&out, i, *messages, context));
        NameArray labels;
        args.getYDivisionLabelArray(i, &labels);
        EXPECT_TRUE(labels.empty());
    }
}

TEST_F(Arguments, WhatOneTells) {
    dvec * v = makeMember("v", {{1, 2}, {3, 4, 5}}, {{0, 1}, {0, 1, 2}});
    v->setPhysType(PT_VOLTAGE);
    v->ref.setPhysType(PT_TIME);
    EXPECT_EQ(add(v), v);
    args.setDivision(1);
    EXPECT_EQ(args.getNumArgs(), 1);
    EXPECT_EQ(args.getFuncName(), "f");
    EXPECT_EQ(args.type(0), VD_REAL);
    EXPECT_EQ(args.refType(0), VD_REAL);
    EXPECT_EQ(args.physType(0), PT_VOLTAGE);
    EXPECT_EQ(args.refPhysType(0), PT_TIME);
    EXPECT_EQ(args.length(0), 3);
    EXPECT_EQ(args.length32(0), 3);
    EXPECT_EQ(args.totalLength(0), 5);
    EXPECT_EQ(args.refLength(0), 3);
    EXPECT_EQ(args.numYDivisions(0), 2);
    EXPECT_EQ(elements(0), (Values{3, 4, 5}));
    EXPECT_EQ(args.data(0, 0)[1], 2);
    EXPECT_EQ(args.data(0, 2), nullptr);
    EXPECT_EQ(args.complexData(0), nullptr);
    EXPECT_EQ(args.refData(0)[2], 2);
    EXPECT_EQ(args.refName(0), "t");
    EXPECT_EQ(args.getYVec(0), v);
    EXPECT_EQ(args.getXVec(0), &v->ref);
}

TEST_F(Arguments, ComplexAndTextElements) {
    add(makeComplexVector("z", {{1, 2}, {3, 4}}));
    add(makeText("hello"));
    EXPECT_EQ(args.complexData(0)[1], (complex{3, 4}));
    EXPECT_EQ(args.complexData(0, 0)[0], (complex{1, 2}));
    EXPECT_EQ(args.data(0), nullptr);
    EXPECT_STREQ(args.stringData(1)[0], "hello");
    EXPECT_STREQ(args.stringData(1, 0)[0], "hello");
}

TEST_F(Arguments, LabelsAreAppended) {
    dvec * v = makeVector("v", {{1}, {2}});
    v->setLabels(namesOf({"a", "b"}), false);
    add(v);
    NameArray labels = namesOf({"before"});
    args.getYDivisionLabelArray(0, &labels);
    EXPECT_TRUE(labels.compare(namesOf({"before", "a", "b"})));
}

TEST_F(Arguments, AssignedVectorsAreViewsOfTheCurrentDivision) {
    dvec * v = makeMember("v", {{1, 2}, {3, 4, 5}}, {{0, 1}, {0, 1, 2}});
    add(v);
    args.setDivision(1);
    XYVector out;
    ASSERT_TRUE(args.assignXYVec(&out, 0, *messages, context));
    EXPECT_EQ(out.name(), "v");
    EXPECT_EQ(divisionsOf(out), (Divisions{{3, 4, 5}}));
    EXPECT_EQ(divisionsOf(out.ref), (Divisions{{0, 1, 2}}));
    EXPECT_TRUE(out.sharesRep(*v));
    EXPECT_EQ(out.ref.name(), "t");
}

TEST_F(Arguments, AssigningWithoutReferenceLeavesNone) {
    NamedVector y(YString("y"));
    appendTo(y, {{7}});
    ASSERT_TRUE(args.add(&y, nullptr));
    XYVector out;
    appendTo(out.ref, {{1}});
    ASSERT_TRUE(args.assignXYVec(&out, 0, *messages, context));
    EXPECT_TRUE(out.ref.noData());
}

TEST_F(Arguments, AFullFrameRefusesMore) {
    args.setNumArgs(1);
    NamedVector y, x;
    EXPECT_TRUE(args.add(&y, &x));
    EXPECT_FALSE(args.add(&y, &x));
    EXPECT_EQ(add(makeVector("a", {{1}})), nullptr);
    EXPECT_EQ(args.getNumArgs(), 1);
}

TEST_F(Arguments, RoomForManyArguments) {
    constexpr int many = 32;
    args.setNumArgs(many);
    for (int i = 0; i < many; ++i) ASSERT_NE(add(makeVector("a", {{double(i)}})), nullptr);
    for (int i = 0; i < many; ++i) EXPECT_EQ(elements(i), Values{double(i)});
}

TEST_F(Arguments, TemporariesAreReleasedWithTheFrame) {
    dvec * member = makeMember("m", {{1}});
    std::size_t const before = LoosePool::count();
    {
        FuncArgs frame(YString("g"));
        frame.setNumArgs(3);
        dvec * twice = makeVector("twice", {{2}});
        for (dvec * vector : {member, twice, twice}) frame.add(vector, ARG_ANY, messages, context);
        EXPECT_EQ(LoosePool::count(), before + 1);
    }
    EXPECT_EQ(LoosePool::count(), before);
    EXPECT_EQ(member->getReal(0), 1);
}

TEST_F(Arguments, ACopyDoesNotOwn) {
    dvec * temporary = makeVector("a", {{4}});
    add(temporary);
    {
        FuncArgs const copy(args);
        EXPECT_EQ(copy.getNumArgs(), 1);
        EXPECT_EQ(copy.getYVec(0), temporary);
        EXPECT_EQ(copy.data(0)[0], 4);
    }
    EXPECT_EQ(elements(0), Values{4});
}

TEST_F(Arguments, VectorsGivenAsPairsAreNotOwned) {
    dvec * temporary = makeVector("a", {{4}});
    std::size_t const before = LoosePool::count();
    {
        FuncArgs frame(YString("g"));
        frame.setNumArgs(1);
        ASSERT_TRUE(frame.add(temporary, &temporary->ref));
    }
    EXPECT_EQ(LoosePool::count(), before);
}

TEST_F(Arguments, TextIsEvaluatedForANumber) {
    dvec * text = makeText("2+3");
    dvec * stored = add(text, ARG_NUMERIC);
    ASSERT_NE(stored, nullptr);
    EXPECT_NE(stored, text);
    EXPECT_EQ(elements(0), Values{5});
    EXPECT_EQ(add(makeText("2+"), ARG_REAL), nullptr);
    EXPECT_EQ(args.getNumArgs(), 1);
}

TEST_F(Arguments, NumbersBecomeText) {
    ASSERT_NE(add(makeVector("a", {{1500}}), ARG_STRING), nullptr);
    EXPECT_STREQ(args.stringData(0)[0], "1.5k");
}

TEST_F(Arguments, OtherKindsPassAsTheyAre) {
    for (argType type : {ARG_AS_IS, ARG_ANY}) {
        dvec * text = makeText("2+3");
        EXPECT_EQ(add(text, type), text);
    }
}

TEST_F(Arguments, AnAliasIsResolvedForEveryKind) {
    dvec * alias = makeAlias("al", "2*21");
    dvec * stored = add(alias, ARG_ANY);
    ASSERT_NE(stored, nullptr);
    EXPECT_NE(stored, alias);
    EXPECT_EQ(elements(0), Values{42});
    EXPECT_EQ(args.physType(0), PT_VOLTAGE);
    EXPECT_EQ(add(makeAlias("bad", "nothing_of_the_kind"), ARG_ANY), nullptr);
}

TEST_F(Arguments, TheStepBetweenAliasAndTextIsReleased) {
    dvec * alias = makeAlias("al", "2*21");
    std::size_t const before = LoosePool::count();
    {
        FuncArgs frame(YString("g"));
        frame.setNumArgs(1);
        ASSERT_NE(frame.add(alias, ARG_STRING, messages, context), nullptr);
        EXPECT_STREQ(frame.stringData(0)[0], "42");
    }
    EXPECT_EQ(LoosePool::count(), before);
}

TEST_F(Arguments, TheDivisionIsSetOnAllThatHaveIt) {
    dvec * v = makeMember("v", {{1}, {2}, {3}});
    dvec * single = makeMember("s", {{9, 8}});
    add(v);
    add(single);
    args.setDivision(2);
    EXPECT_EQ(elements(0), Values{3});
    EXPECT_EQ(elements(1), (Values{9, 8}));
    args.setDivision(77);
    EXPECT_EQ(elements(0), Values{3});
}

TEST_F(Arguments, AnOffsetShiftsWhatFollowsTheReference) {
    dvec * v = makeMember("v", {{1, 2, 3, 4}}, {{0, 1, 2, 3}});
    dvec * w = makeMember("w", {{5, 6, 7, 8}});
    w->ref = v->ref;
    dvec * scalar = makeMember("s", {{9}});
    for (dvec * vector : {v, w, scalar}) add(vector);
    ASSERT_TRUE(args.setIncrementalOffset(3, &v->ref));
    EXPECT_TRUE(args.hasIncrementalOffset());
    EXPECT_EQ(elements(0), Values{4});
    EXPECT_EQ(elements(1), Values{8});
    EXPECT_EQ(elements(2), Values{9});
    EXPECT_EQ(args.refLength(0), 1);
    EXPECT_EQ(args.refData(0)[0], 3);
    EXPECT_EQ(args.totalLength(0), 4);
    EXPECT_EQ(args.data(0, 0)[0], 4);
}

TEST_F(Arguments, AnOffsetAtTheEndLeavesNothingAndOneBeyondItIsIgnored) {
    dvec * v = makeMember("v", {{1, 2}}, {{0, 1}});
    add(v);
    ASSERT_TRUE(args.setIncrementalOffset(2, &v->ref));
    EXPECT_EQ(args.length(0), 0);
    ASSERT_TRUE(args.setIncrementalOffset(3, &v->ref));
    EXPECT_EQ(elements(0), (Values{1, 2}));
}

TEST_F(Arguments, TextIsNotAdvanced) {
    dvec * text = makeText("a");
    dvec * v = makeMember("v", {{1, 2}}, {{0, 1}});
    text->ref = v->ref;
    add(text);
    ASSERT_TRUE(args.setIncrementalOffset(1, &v->ref));
    EXPECT_STREQ(args.stringData(0)[0], "a");
}

TEST_F(Arguments, AnotherReferenceSetsAllOffsetsBack) {
    dvec * v = makeMember("v", {{1, 2}}, {{0, 1}});
    dvec * stranger = makeMember("w", {{1, 2}}, {{0, 1}});
    add(v);
    add(stranger);
    EXPECT_FALSE(args.setIncrementalOffset(1, &v->ref));
    EXPECT_FALSE(args.hasIncrementalOffset());
    EXPECT_EQ(elements(0), (Values{1, 2}));
}

TEST_F(Arguments, WithoutReferenceOrArgumentsThereIsNothingToShift) {
    NamedVector x;
    appendTo(x, {{1}});
    EXPECT_TRUE(args.setIncrementalOffset(5, &x));
    add(makeMember("v", {{1, 2}}, {{0, 1}}));
    EXPECT_TRUE(args.setIncrementalOffset(1, nullptr));
    EXPECT_EQ(elements(0), (Values{1, 2}));
}

TEST_F(Arguments, AFlatFrameShowsAllDivisionsAsOne) {
    dvec * v = makeMember("v", {{1, 2}, {3}}, {{0, 1}, {0}});
    add(v);
    add(makeVector("s", {{7}}));
    args.setFlat(true);
    EXPECT_EQ(elements(0), (Values{1, 2, 3}));
    EXPECT_EQ(args.refLength(0), 3);
    EXPECT_EQ(args.refData(0)[2], 0);
    EXPECT_EQ(elements(1), Values{7});
    args.setFlat(false);
    EXPECT_EQ(elements(0), (Values{1, 2}));
}
