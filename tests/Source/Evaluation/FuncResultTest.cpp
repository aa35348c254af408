// Results as handlers write them.

#include "FrameTools.h"
#include "Vectors/BlockMemory.h"

#include <cstring>
#include <limits>

namespace {

class Result : public FrameTest {
protected:
    Result() {
        out = new dvec(YString("out"), nullptr, PT_UNKNOWN);
        result.add(out);
        args.setNumArgs(2);
    }

    // One handler call that writes the values behind what is there.
    void write(Values const & values) {
        result.beginCall();
        double * data = result.makeReal(static_cast<std::int64_t>(values.size()), ALLOC_HINT, 0);
        std::copy(values.begin(), values.end(), data);
        next();
    }
    void next() { result.setDivision(++division); }
    dvec * argument(dvec * vector) { return args.add(vector, ARG_ANY, messages, context); }

    dvec * out;
    FuncResult result;
    FuncArgs args{"f"};
    std::int64_t division = 0;
};

} // namespace

TEST_F(Result, ElementsOfACallAreClearedAndWritable) {
    double * data = result.makeReal(3, ALLOC_HINT, 10);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(Values(data, data + 3), (Values{0, 0, 0}));
    EXPECT_EQ(data, result.data());
    EXPECT_EQ(result.length(), 3);
    EXPECT_EQ(out->type(), VD_REAL);
    EXPECT_EQ(result.complexData(), nullptr);
}

TEST_F(Result, MemoryUsedBeforeIsClearedToo) {
    constexpr std::int64_t n = 1 << 16;
    dvec * dirty = new dvec(YString("dirty"), nullptr, PT_UNKNOWN);
    dirty->setSize(n, VD_REAL);
    std::fill_n(dirty->writableRealData(), n, 3.5);
    dirty->release();
    double const * data = result.makeReal(n, ALLOC_HINT, 0);
    EXPECT_EQ(std::count(data, data + n, 0.0), n);
}

TEST_F(Result, ComplexAndReferenceElements) {
    complex * data = result.makeComplex(2, ALLOC_HINT, 0);
    data[1] = {1, 2};
    result.makeRealRef(2, ALLOC_HINT, 0)[1] = 7;
    EXPECT_EQ(out->complexData()[1], (complex{1, 2}));
    EXPECT_EQ(result.refData()[1], 7);
    result.beginCall();
    result.setDivision(1);
    ASSERT_NE(result.makeComplexRef(1, ALLOC_HINT, 0), nullptr);
    EXPECT_EQ(out->ref.type(), VD_COMPLEX);
    EXPECT_EQ(result.complexRefData()[0], complex());
}

TEST_F(Result, NoElementsGiveNoPointer) {
    EXPECT_EQ(result.makeReal(0, ALLOC_HINT, 5), nullptr);
    EXPECT_EQ(result.makeComplex(0, ALLOC_HINT, 5), nullptr);
    EXPECT_EQ(result.makeReal(-4, ALLOC_HINT, 5), nullptr);
    EXPECT_EQ(result.makeString(0), nullptr);
    EXPECT_EQ(out->totalLength(), 0);
}

TEST_F(Result, EachCallAddsADivision) {
    result.setNumDivisions(3);
    write({1, 2});
    write({3});
    write({4, 5, 6});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{1, 2}, {3}, {4, 5, 6}}));
    EXPECT_EQ(result.getNumYVecDivisions(), 3);
    EXPECT_EQ(result.length(1), 1);
}

TEST_F(Result, AnEmptyCallAddsNoDivision) {
    result.setNumDivisions(3);
    write({1, 2});
    write({});
    EXPECT_FALSE(result.hasNewDivision());
    result.setDivision(1);
    write({3});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{1, 2}, {3}}));
}

TEST_F(Result, ANewDivisionIsSeenOnlyWhenItHasData) {
    result.beginCall();
    EXPECT_FALSE(result.hasNewDivision());
    result.makeReal(0, ALLOC_HINT, 0);
    EXPECT_FALSE(result.hasNewDivision());
    result.makeReal(1, ALLOC_HINT, 0);
    EXPECT_TRUE(result.hasNewDivision());
    result.beginCall();
    EXPECT_FALSE(result.hasNewDivision());
}

TEST_F(Result, RoomReservedByTheFirstAllocation) {
    struct Case {
        ResultAllocType how;
        std::int64_t hint, divisions, least;
    };
    for (Case const & c :
         {Case{ALLOC_HINT, 1000, 4, 1000}, Case{ALLOC_HINT, 2, 4, 10}, Case{ALLOC_DIVISIONS, 0, 50, 500},
          Case{ALLOC_DIVISIONS_X15, 0, 50, 750}, Case{ALLOC_DIVISIONS_X15, 0, 1, 10}}) {
        dvec * vector = new dvec(YString("v"), nullptr, PT_UNKNOWN);
        FuncResult one;
        one.add(vector);
        one.setNumDivisions(c.divisions);
        one.makeReal(10, c.how, c.hint);
        double const * before = vector->allRealData();
        vector->setLength(c.least);
        EXPECT_EQ(vector->allRealData(), before) << c.how << ' ' << c.hint << ' ' << c.divisions;
    }
}

TEST_F(Result, OneDivisionReservesNoMoreThanItNeeds) {
    std::uint64_t const before = BlockMemory::bytesInUse();
    result.makeReal(2, ALLOC_HINT, std::int64_t{1} << 28);
    EXPECT_LT(BlockMemory::bytesInUse() - before, 1u << 20);
}

TEST_F(Result, ACapacityThatCannotBeCountedIsNotReserved) {
    result.setNumDivisions(std::numeric_limits<std::int64_t>::max() / 2);
    ASSERT_NE(result.makeReal(10, ALLOC_DIVISIONS, 0), nullptr);
    EXPECT_EQ(result.length(), 10);
    dvec * other = new dvec(YString("v"), nullptr, PT_UNKNOWN);
    result.add(other);
    ASSERT_NE(result.makeReal(10, ALLOC_DIVISIONS_X15, 0), nullptr);
    EXPECT_EQ(other->length(), 10);
}

TEST_F(Result, TooLongALengthIsExhaustedMemory) {
    EXPECT_THROW(result.makeReal(std::numeric_limits<std::int64_t>::max(), ALLOC_HINT, 0), MemoryException);
}

TEST_F(Result, AnExactSizeOverwrites) {
    result.setNumDivisions(2);
    write({1, 2});
    result.makeReal(1, ALLOC_HINT, -1)[0] = 9;
    EXPECT_EQ(divisionsOf(*out), (Divisions{{9}}));
}

TEST_F(Result, AnIncrementalOffsetLeavesRoomBeforeTheNewElements) {
    result.setIncrementalOffset(2);
    double * data = result.makeReal(3, ALLOC_HINT, 0);
    data[0] = 7;
    EXPECT_EQ(out->length(), 5);
    EXPECT_EQ(out->getReal(2), 7);
    EXPECT_EQ(result.length(), 3);
    EXPECT_EQ(result.length(0), 3);
    result.setIncrementalOffset(9);
    EXPECT_EQ(result.length(), 5);
    EXPECT_EQ(result.data(), nullptr);
}

TEST_F(Result, StringsAreExactlyTheSlotsAskedFor) {
    result.setNumDivisions(2);
    char ** slots = result.makeString(2);
    ASSERT_NE(slots, nullptr);
    EXPECT_EQ(slots[0], nullptr);
    slots[1] = strdup("one");
    result.beginCall();
    next();
    slots = result.makeString(1);
    EXPECT_EQ(slots, result.stringData());
    EXPECT_EQ(slots[0], nullptr);
    slots[0] = strdup("two");
    ASSERT_EQ(out->numDivisions(), 2);
    EXPECT_STREQ(out->getString(1, 0), "one");
    EXPECT_STREQ(out->getString(0, 1), "two");
}

TEST_F(Result, EmptyVectorsGoesBackToWhatWasBeforeTheCall) {
    result.setNumDivisions(3);
    write({1, 2});
    result.beginCall();
    result.makeReal(4, ALLOC_HINT, 0);
    result.makeRealRef(4, ALLOC_HINT, 0);
    result.emptyVectors();
    EXPECT_EQ(divisionsOf(*out), (Divisions{{1, 2}}));
    EXPECT_TRUE(out->ref.noData());
    result.setDivision(1);
    write({3});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{1, 2}, {3}}));
}

TEST_F(Result, EmptyVectorsResetsWhenNothingEarlierWasWritten) {
    result.beginCall();
    result.setPhysType(PT_VOLTAGE, PT_TIME);
    result.makeReal(4, ALLOC_HINT, 0);
    result.emptyVectors();
    EXPECT_EQ(out->totalLength(), 0);
    EXPECT_EQ(out->physType(), PT_UNKNOWN);
}

TEST_F(Result, EmptyVectorsLeavesASharedReferenceShared) {
    dvec * v = argument(makeMember("v", {{1}, {2}}, {{0}, {1}}));
    result.setNumDivisions(2);
    result.setType(VD_REAL, VD_REAL);
    write({1});
    result.copyRefFromArgs(args, ALLOC_HINT, 2, 0);
    result.beginCall();
    result.makeReal(1, ALLOC_HINT, 2);
    result.copyRefFromArgs(args, ALLOC_HINT, 2, 0);
    result.emptyVectors();
    EXPECT_EQ(divisionsOf(*out), (Divisions{{1}}));
    EXPECT_TRUE(out->ref.sharesRep(v->ref));
}

TEST_F(Result, EmptyVectorsLeavesAReferenceThatIsAView) {
    dvec * v = makeVector("v", {{1}, {2}, {3}}, {{0}, {1}, {2}});
    v->ref.openDivisionAt(1);
    argument(v);
    result.setNumDivisions(2);
    result.setType(VD_REAL, VD_REAL);
    result.copyRefFromArgs(args, ALLOC_HINT, 2, 0);
    result.beginCall();
    result.emptyVectors();
    EXPECT_TRUE(out->ref.sharesRep(v->ref));
    EXPECT_EQ(divisionsOf(out->ref), (Divisions{{1}, {2}}));
}

TEST_F(Result, UnitsAndNames) {
    result.setPhysType(PT_VOLTAGE, PT_TIME);
    result.setPhysType(PT_UNCHANGED, PT_FREQUENCY);
    EXPECT_EQ(out->physType(), PT_VOLTAGE);
    EXPECT_EQ(out->ref.physType(), PT_FREQUENCY);
    result.setPhysType(PT_POWER, PT_UNCHANGED);
    EXPECT_EQ(out->physType(), PT_POWER);
    EXPECT_EQ(out->ref.physType(), PT_FREQUENCY);
    result.setName("n");
    result.setRefName("r");
    EXPECT_EQ(out->name(), "n");
    EXPECT_EQ(out->ref.name(), "r");
}

TEST_F(Result, AResultWithoutVectorsTakesEverythingQuietly) {
    FuncResult none;
    none.setType(VD_REAL, VD_REAL);
    none.setPhysType(PT_VOLTAGE, PT_TIME);
    none.setName("n");
    none.setRefName("n");
    none.setMultiple();
    none.setDivisionLabelArray(namesOf({"a"}));
    none.emptyVectors();
    none.copy(none);
    none.importNames(none);
    EXPECT_EQ(none.makeReal(3, ALLOC_HINT, 0), nullptr);
    EXPECT_EQ(none.makeString(3), nullptr);
    EXPECT_EQ(none.refData(), nullptr);
    EXPECT_EQ(none.length() + none.length(0) + none.getNumYVecDivisions(), 0);
    EXPECT_FALSE(none.hasNewDivision());
    EXPECT_FALSE(none.getPreferComplexResult());
}

TEST_F(Result, LabelsOnBothSides) {
    result.setNumDivisions(2);
    write({1});
    write({2});
    appendTo(out->ref, {{1}, {2}});
    result.setDivisionLabelArray(namesOf({"a", "b"}));
    result.setMultiple();
    EXPECT_EQ(labelsOf(*out), (Texts{"a", "b"}));
    EXPECT_EQ(labelsOf(out->ref), (Texts{"a", "b"}));
    EXPECT_TRUE(out->isMultiple());
    EXPECT_FALSE(out->ref.isMultiple());
}

TEST_F(Result, LabelsAreNotWrittenOnASharedReference) {
    result.setNumDivisions(2);
    write({1});
    write({2});
    NamedVector x(YString("x"));
    appendTo(x, {{1}, {2}});
    out->ref = x;
    result.setDivisionLabelArray(namesOf({"a", "b"}));
    EXPECT_EQ(labelsOf(x), (Texts{"?", "?"}));
    EXPECT_TRUE(out->ref.sharesRep(x));
}

TEST_F(Result, AReferenceOfTheSameKindIsShared) {
    dvec * v = argument(makeMember("v", {{1, 2}, {3}}, {{0, 1}, {0}}));
    result.setType(VD_REAL, VD_REAL);
    EXPECT_TRUE(result.copyRefFromArgs(args, ALLOC_HINT, 3, 0));
    EXPECT_TRUE(out->ref.sharesRep(v->ref));
    EXPECT_EQ(out->ref.name(), "t");
    EXPECT_EQ(out->ref.numDivisions(), 2);
}

TEST_F(Result, AReferenceIsRealWhereTheHandlerDidNotSay) {
    dvec * v = argument(makeMember("v", {{1, 2}}, {{0, 1}}));
    EXPECT_TRUE(result.copyRefFromArgs(args, ALLOC_HINT, 2, 0));
    EXPECT_TRUE(out->ref.sharesRep(v->ref));
}

TEST_F(Result, AReferenceChangesKindFromComplexToReal) {
    dvec * v = makeVector("v", {{1, 2}});
    v->ref.setComplexFlag();
    v->ref.addVal(complex{3, 4});
    v->ref.addVal(complex{5, 6});
    v->ref.setPhysType(PT_FREQUENCY);
    v->ref.setName("f");
    argument(v);
    result.setType(VD_REAL, VD_REAL);
    EXPECT_TRUE(result.copyRefFromArgs(args, ALLOC_HINT, 2, 0));
    EXPECT_EQ(divisionsOf(out->ref), (Divisions{{3, 5}}));
    EXPECT_EQ(out->ref.physType(), PT_FREQUENCY);
    EXPECT_EQ(out->ref.name(), "f");
}

TEST_F(Result, AReferenceChangesKindFromRealToComplexDivisionByDivision) {
    argument(makeMember("v", {{1, 2}, {3}}, {{0, 1}, {7}}));
    result.setType(VD_COMPLEX, VD_COMPLEX);
    result.setNumDivisions(2);
    for (std::int64_t d : {0, 1}) {
        args.setDivision(d);
        result.setDivision(d);
        EXPECT_TRUE(result.copyRefFromArgs(args, ALLOC_HINT, 3, 0));
    }
    ASSERT_EQ(out->ref.numDivisions(), 2);
    EXPECT_EQ(out->ref.complexData(0)[1], (complex{1, 0}));
    EXPECT_EQ(out->ref.complexData(1)[0], (complex{7, 0}));
}

TEST_F(Result, TheDivisionIsThatOfTheFrameThoughTheVectorWasMovedMeanwhile) {
    dvec * v = argument(makeMember("v", {{1, 2}, {3}}, {{0, 1}, {7}}));
    args.setDivision(1);
    v->ref.setDivision(0);
    result.setType(VD_COMPLEX, VD_COMPLEX);
    EXPECT_TRUE(result.copyRefFromArgs(args, ALLOC_HINT, 3, 0));
    EXPECT_EQ(divisionsOf(out->ref), (Divisions{{7}}));
}

TEST_F(Result, AReferenceBehindAnOffsetIsConvertedFromThere) {
    dvec * v = argument(makeMember("v", {{1, 2, 3}}, {{5, 6, 7}}));
    args.setIncrementalOffset(2, &v->ref);
    result.setIncrementalOffset(2);
    result.setType(VD_COMPLEX, VD_COMPLEX);
    EXPECT_TRUE(result.copyRefFromArgs(args, ALLOC_HINT, 3, 0));
    ASSERT_EQ(out->ref.length(), 3);
    EXPECT_EQ(out->ref.complexData()[2], (complex{7, 0}));
}

TEST_F(Result, NothingNewInAReferenceIsNotCopied) {
    dvec * v = argument(makeMember("v", {{1, 2}}, {{0, 1}}));
    args.setIncrementalOffset(2, &v->ref);
    result.setType(VD_REAL, VD_REAL);
    EXPECT_TRUE(result.copyRefFromArgs(args, ALLOC_HINT, 2, 0));
    EXPECT_TRUE(out->ref.noData());
}

TEST_F(Result, WithoutArgumentOrReferenceThereIsNoCopy) {
    EXPECT_FALSE(result.copyRefFromArgs(args, ALLOC_HINT, 0, 0));
    NamedVector y;
    args.add(&y, nullptr);
    EXPECT_TRUE(result.copyRefFromArgs(args, ALLOC_HINT, 0, 0));
    EXPECT_TRUE(out->ref.noData());
}

TEST_F(Result, ACopiedVectorSharesItsDataAndKeepsTheNameOfTheResult) {
    dvec * v = makeMember("v", {{1, 2}, {3}}, {{0, 1}, {0}});
    result.copyVector(*v, v->ref);
    EXPECT_TRUE(out->sharesRep(*v));
    EXPECT_TRUE(out->ref.sharesRep(v->ref));
    EXPECT_EQ(out->name(), "out");
    EXPECT_EQ(out->ref.name(), "t");
    FuncResult other;
    dvec * second = new dvec(YString("second"), nullptr, PT_UNKNOWN);
    other.add(second);
    other.copy(result);
    other.importNames(result);
    EXPECT_TRUE(second->sharesRep(*v));
    EXPECT_EQ(second->name(), "out");
    EXPECT_EQ(second->ref.name(), "t");
}

TEST_F(Result, CopiedVectorsJoinEarlierDivisions) {
    result.setNumDivisions(3);
    dvec * v = makeMember("v", {{1, 2}});
    dvec * z = makeComplexVector("z", {{3, 4}});
    result.copyVector(*v);
    next();
    result.copyVector(*v);
    EXPECT_EQ(divisionsOf(*out), (Divisions{{1, 2}, {1, 2}}));
    v->addVal(9);
    EXPECT_EQ(divisionsOf(*v), (Divisions{{1, 2, 9}})) << "the vector copied goes on by itself";
    next();
    result.copyVector(*z);
    ASSERT_TRUE(out->isComplex());
    ASSERT_EQ(out->numDivisions(), 3);
    EXPECT_EQ(out->complexData(1)[1], (complex{2, 0}));
    EXPECT_EQ(out->complexData(2)[0], (complex{3, 4}));
    next();
    result.copyVector(*v);
    EXPECT_EQ(out->complexData(3)[2], (complex{9, 0}));
}

TEST_F(Result, DivisionsOfAKindThatCannotJoinGiveWay) {
    result.setNumDivisions(2);
    write({1, 2});
    ASSERT_NE(result.makeString(1), nullptr);
    EXPECT_TRUE(out->isString());
    EXPECT_EQ(out->numDivisions(), 1);
}

TEST_F(Result, ComplexElementsBehindRealOnesMakeAllComplex) {
    result.setNumDivisions(2);
    write({1, 2});
    out->setPhysType(PT_VOLTAGE);
    result.makeComplex(1, ALLOC_HINT, 0)[0] = {3, 4};
    ASSERT_EQ(out->numDivisions(), 2);
    EXPECT_EQ(out->complexData(0)[1], (complex{2, 0}));
    EXPECT_EQ(out->complexData(1)[0], (complex{3, 4}));
    EXPECT_EQ(out->physType(), PT_VOLTAGE);
}

// --- the memory of an operand

TEST_F(Result, TheMemoryOfATemporaryBecomesTheResult) {
    argument(makeVector("v", {{1, 2, 3}}));
    double const * data = args.data(0);
    result.setType(VD_REAL, VD_REAL);
    ASSERT_TRUE(result.takeStorage(args, 0, 3));
    EXPECT_EQ(result.data(), data);
    EXPECT_EQ(result.length(), 3);
}

TEST_F(Result, ComplexMemoryServesForRealElements) {
    argument(makeComplexVector("z", {{1, 2}, {3, 4}}));
    void const * data = args.complexData(0);
    result.setType(VD_REAL, VD_REAL);
    ASSERT_TRUE(result.takeStorage(args, 0, 2));
    EXPECT_EQ(result.data(), data);
    EXPECT_EQ(result.length(), 2);
}

class RefusedStorage : public Result {
protected:
    // The argument is still as it was after the refusal.
    void expectRefused(int i = 0, std::int64_t n = 2, VD_type type = VD_REAL) {
        Divisions const before = divisionsOf(*args.getYVec(i));
        result.setType(type, VD_REAL);
        EXPECT_FALSE(result.takeStorage(args, i, n));
        EXPECT_EQ(divisionsOf(*args.getYVec(i)), before);
    }
};

TEST_F(RefusedStorage, OfAMember) {
    argument(makeMember("v", {{1, 2}}));
    expectRefused();
}
TEST_F(RefusedStorage, OfAReadOnlyTemporary) {
    argument(makeVector("v", {{1, 2}}))->flags |= VF_READONLY;
    expectRefused();
    static_cast<dvec *>(args.getYVec(0))->flags = 0;
}
TEST_F(RefusedStorage, OfAVectorThatIsAnotherArgumentToo) {
    dvec * v = makeVector("v", {{1, 2}});
    argument(v);
    argument(v);
    expectRefused();
}
TEST_F(RefusedStorage, OfSharedData) {
    dvec * v = makeVector("v", {{1, 2}});
    dvec const * sharing = new dvec(*v);
    argument(v);
    expectRefused();
    EXPECT_EQ(divisionsOf(*sharing), (Divisions{{1, 2}}));
}
TEST_F(RefusedStorage, OfSeveralDivisions) {
    argument(makeVector("v", {{1, 2}, {3, 4}}));
    expectRefused();
}
TEST_F(RefusedStorage, InACallOfSeveralDivisions) {
    argument(makeVector("v", {{1, 2}}));
    result.setNumDivisions(2);
    expectRefused();
}
TEST_F(RefusedStorage, InAFlatCall) {
    argument(makeVector("v", {{1, 2}}));
    args.setFlat(true);
    expectRefused();
}
TEST_F(RefusedStorage, BehindAnOffset) {
    argument(makeVector("v", {{1, 2}}));
    result.setIncrementalOffset(1);
    expectRefused();
}
TEST_F(RefusedStorage, WhenSomethingIsWrittenAlready) {
    argument(makeVector("v", {{1, 2}}));
    write({5});
    expectRefused();
}
TEST_F(RefusedStorage, ForMoreOrWiderElements) {
    argument(makeVector("v", {{1, 2}}));
    expectRefused(0, 3);
    expectRefused(0, 1, VD_COMPLEX);
    expectRefused(0, 2, VD_STRING);
    expectRefused(0, 0);
}
TEST_F(RefusedStorage, OfAPairThatIsNotOwned) {
    dvec * v = makeVector("v", {{1, 2}});
    args.add(v, &v->ref);
    expectRefused();
}
TEST_F(RefusedStorage, ThroughACopyOfTheFrame) {
    argument(makeVector("v", {{1, 2}}));
    FuncArgs const copy(args);
    result.setType(VD_REAL, VD_REAL);
    EXPECT_FALSE(result.takeStorage(copy, 0, 2));
    EXPECT_FALSE(result.takeStorage(args, 1, 2));
}
