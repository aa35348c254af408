#include "torvelan/Vectors.h"

#include "VectorTestSupport.h"

#include <gtest/gtest.h>

namespace {

using Values = std::vector<double>;
using Divisions = std::vector<Values>;
using Texts = std::vector<std::string>;

} // namespace

TEST(VectorWriting, SetSizeSetsKindAndLength) {
    BaseVector v;
    v.setSize(3, VD_COMPLEX);
    EXPECT_TRUE(v.isComplex());
    EXPECT_EQ(v.length(), 3);
    EXPECT_EQ(v.getObjectSize(), 48u);
    v.setSize(0, VD_REAL);
    EXPECT_TRUE(v.noData());
    EXPECT_TRUE(v.isReal());
}

TEST(VectorWriting, SizesThatCannotBeFailAndChangeNothing) {
    BaseVector v = realVector({1, 2, 3});
    for (std::int64_t n : {INT64_MAX, INT64_MAX / 8, INT64_MAX / 16, std::int64_t{-1}, INT64_MIN}) {
        EXPECT_THROW(v.setSize(n, VD_COMPLEX), MemoryException) << n;
        EXPECT_THROW(v.allocate(n, VD_COMPLEX), MemoryException) << n;
        EXPECT_THROW(v.setLength(n), MemoryException) << n;
        EXPECT_THROW(v.setSize(n, VD_STRING), MemoryException) << n;
    }
    EXPECT_TRUE(v.isReal());
    EXPECT_EQ(valuesOf(v), Values({1, 2, 3}));
}

TEST(VectorWriting, AFailedAllocationLeavesTheVectorAsItWas) {
    BaseVector v = steppedVector({{1, 2, 3}, {4}});
    BaseVector shared = v;
    shared.setPhysType(PT_TIME);
    BaseVector text = stringVector({"a", "b", "c"});
    BaseVector sharedText = text;
    FailingAllocations all;
    EXPECT_THROW(v.setSize(1000, VD_COMPLEX), MemoryException);
    EXPECT_THROW(v.setLength(1000), MemoryException);
    EXPECT_THROW(v.allocate(1000, VD_STRING), MemoryException);
    EXPECT_THROW(shared.writableRealData(), MemoryException);
    EXPECT_THROW(sharedText.setString("x", 0), MemoryException);
    EXPECT_THROW(sharedText.setSize(1000, VD_REAL), MemoryException);
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2, 3}, {4}}));
    EXPECT_EQ(divisionsOf(shared), Divisions({{1, 2, 3}, {4}}));
    EXPECT_EQ(textsOf(text), Texts({"a", "b", "c"}));
    EXPECT_EQ(textsOf(sharedText), Texts({"a", "b", "c"}));
}

TEST(VectorWriting, EveryAllocationOfAScenarioMayFail) {
    bool passed = false;
    for (std::uint64_t n = 1; !passed && n < 100; ++n) {
        BaseVector v = steppedVector({{1, 2, 3}, {4, 5, 6}});
        BaseVector before = v;
        {
            FailingAllocations from(n);
            try {
                v.setString("x", 0);
                v.setLength(200);
                v.expandTo({400, 300});
                v.setSize(5000, VD_COMPLEX);
                passed = true;
            } catch (MemoryException const &) {
            }
        }
        ASSERT_EQ(divisionsOf(before), Divisions({{1, 2, 3}, {4, 5, 6}})) << n;
        ASSERT_EQ(v.totalLength() * (v.isComplex() ? 16 : 8), static_cast<std::int64_t>(v.getObjectSize()));
    }
    EXPECT_TRUE(passed);
}

TEST(VectorWriting, AllocateReservesWithoutLength) {
    BaseVector v;
    v.allocate(1000, VD_REAL);
    EXPECT_TRUE(v.noData());
    v.addVal(0.0);
    double const * first = v.realData();
    for (int i = 1; i < 1000; ++i) v.addVal(double(i));
    EXPECT_EQ(v.realData(), first);
    EXPECT_EQ(v.length(), 1000);
}

TEST(VectorWriting, AllocateKeepsWhatIsThere) {
    BaseVector v = steppedVector({{1, 2}, {3}});
    v.allocate(1000, VD_REAL);
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2}, {3}}));
    EXPECT_EQ(v.getRange(false).max, 3.0);
}

TEST(VectorWriting, SetLengthGrowsGeometrically) {
    BaseVector v = realVector({1});
    int moves = 0;
    double const * last = nullptr;
    for (std::int64_t n = 2; n <= 100000; ++n) {
        v.setLength(n);
        moves += v.realData() != last;
        last = v.realData();
    }
    EXPECT_LT(moves, 25);
    EXPECT_EQ(v.getReal(0), 1.0);
}

TEST(VectorWriting, SetSizeTakesNoMoreThanNeeded) {
    BlockMemory::dropKept();
    BlockMemory::resetPeak();
    std::size_t const before = BlockMemory::bytesInUse();
    BaseVector v;
    v.setSize(1000000, VD_REAL);
    EXPECT_LE(BlockMemory::peakBytes() - before, 8000000u + 4096u);
}

TEST(VectorWriting, DivisionsBehindACutAreGone) {
    BaseVector v = steppedVector({{1, 2}, {3, 4}, {5, 6}});
    v.setLength(3);
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2}, {3}}));
    v.setLength(6);
    EXPECT_EQ(v.numDivisions(), 2); // the third does not come back
    v.setLength(2);
    v.addDivision("");
    v.addVal(9.0);
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2}, {9}}));
}

TEST(VectorWriting, NewStringSlotsAreNull) {
    BaseVector v;
    v.setSize(2, VD_STRING);
    EXPECT_EQ(textsOf(v), Texts({"(null)", "(null)"}));
    v.setString("a", 0);
    v.setLength(4);
    EXPECT_EQ(textsOf(v), Texts({"a", "(null)", "(null)", "(null)"}));
}

TEST(VectorWriting, SetSizeEmptiesTheStringsOfTheView) {
    BaseVector v = stringVector({"a", "b"});
    v.addDivision("");
    v.setLength(4);
    v.openDivisionAt(1);
    v.setString("c", 0);
    v.setSize(4, VD_STRING);
    EXPECT_EQ(textsOf(v), Texts({"(null)", "(null)"}));
    v.setString("d", 1);
    BaseVector one = stringVector({"a", "b"});
    one.setSize(2, VD_STRING);
    EXPECT_EQ(textsOf(one), Texts({"(null)", "(null)"}));
}

TEST(VectorWriting, NumbersNeverBecomeStrings) {
    BaseVector v = realVector({1, 2, 3});
    v.setSize(3, VD_STRING);
    EXPECT_EQ(textsOf(v), Texts({"(null)", "(null)", "(null)"}));
    v.setString("a", 1);
    v.setSize(3, VD_REAL);
    EXPECT_EQ(v.length(), 3);
    v = stringVector({"a", "b"});
    v.allocate(10, VD_REAL);
    EXPECT_TRUE(v.noData());
    v = stringVector({"a", "b"});
    v.setComplexFlag();
    EXPECT_TRUE(v.noData());
    EXPECT_TRUE(v.isComplex());
}

TEST(VectorWriting, SetStringReplacesAndToleratesItself) {
    BaseVector v = stringVector({"abc", "d"});
    v.setString(v.getString(0), 0);
    EXPECT_STREQ(v.getString(0), "abc");
    v.setString(v.getString(0) + 1, 0);
    EXPECT_STREQ(v.getString(0), "bc");
    v.setString(nullptr, 1);
    EXPECT_EQ(v.getString(1), nullptr);
    v.setString("x", 2);
    v.setString("x", -1);
    EXPECT_EQ(textsOf(v), Texts({"bc", "(null)"}));
    BaseVector real = realVector({1});
    real.setString("x", 0);
    EXPECT_EQ(valuesOf(real), Values({1}));
}

TEST(VectorWriting, SharedStringsAreDuplicatedOnWrite) {
    BaseVector a = stringVector({"a", "b"});
    BaseVector b = a;
    char const * const before = a.getString(1);
    b.setString("x", 0);
    EXPECT_EQ(textsOf(a), Texts({"a", "b"}));
    EXPECT_EQ(textsOf(b), Texts({"x", "b"}));
    EXPECT_EQ(a.getString(1), before);
    EXPECT_NE(b.getString(1), before);
}

TEST(VectorWriting, StringsSharedByTwoRecordsAreFreedOnce) {
    BaseVector a = stringVector({"a", "b"});
    {
        BaseVector b = a;
        b.setPhysType(PT_VOLTAGE);
        b.setMultiple();
        EXPECT_EQ(a.getString(0), b.getString(0));
    }
    EXPECT_EQ(textsOf(a), Texts({"a", "b"}));
    BaseVector c = a;
    c.setPhysType(PT_TIME);
    a.setSize(1, VD_REAL);
    EXPECT_EQ(textsOf(c), Texts({"a", "b"}));
}

TEST(VectorWriting, CopyElementByKind) {
    BaseVector real = realVector({1, 2});
    real.copyElement(realVector({7, 8}), 0, 1);
    EXPECT_EQ(valuesOf(real), Values({8, 2}));
    BaseVector z = complexVector({{1, 2}});
    z.copyElement(complexVector({{5, 6}}), 0, 0);
    EXPECT_EQ(z.complexData()[0], (complex{5, 6}));
    BaseVector text = stringVector({"a", "b"});
    text.copyElement(stringVector({"c"}), 1, 0);
    EXPECT_EQ(textsOf(text), Texts({"a", "c"}));
    text.copyElement(text, 0, 1);
    text.copyElement(text, 1, 1);
    EXPECT_EQ(textsOf(text), Texts({"c", "c"}));
}

TEST(VectorWriting, CopyElementWithinSharedDataReadsTheOldValue) {
    BaseVector a = realVector({1, 2});
    BaseVector b = a;
    b.copyElement(a, 0, 1);
    EXPECT_EQ(valuesOf(a), Values({1, 2}));
    EXPECT_EQ(valuesOf(b), Values({2, 2}));
}

TEST(VectorWriting, CopyElementOutOfRangeOrOfAnotherKindDoesNothing) {
    BaseVector v = realVector({1});
    BaseVector other = realVector({5});
    v.copyElement(other, 1, 0);
    v.copyElement(other, -1, 0);
    v.copyElement(other, 0, 1);
    v.copyElement(other, 0, -1);
    v.copyElement(complexVector({{5, 5}}), 0, 0);
    v.copyElement(stringVector({"a"}), 0, 0);
    EXPECT_EQ(valuesOf(v), Values({1}));
}

TEST(VectorWriting, CopyElementActsOnTheCurrentDivisions) {
    BaseVector v = steppedVector({{1}, {2, 3}});
    v.setDivision(1);
    BaseVector from = steppedVector({{10}, {20, 30}});
    from.setDivision(1);
    v.copyElement(from, 0, 1);
    EXPECT_EQ(divisionsOf(v), Divisions({{1}, {30, 3}}));
}

TEST(VectorWriting, WritableAddressesOfTheWrongKindAreNullAndCopyNothing) {
    BaseVector a = realVector({1});
    BaseVector b = a;
    EXPECT_EQ(b.writableComplexData(), nullptr);
    EXPECT_EQ(b.writableStringData(), nullptr);
    EXPECT_TRUE(a.sharesRep(b));
    EXPECT_EQ(BaseVector().writableRealData(), nullptr);
}

TEST(VectorWriting, WritableDataAreThoseOfTheCurrentDivision) {
    BaseVector v = steppedVector({{1}, {2, 3}});
    v.setDivision(1);
    v.writableRealData()[0] = 20;
    EXPECT_EQ(divisionsOf(v), Divisions({{1}, {20, 3}}));
}

TEST(VectorWriting, SetPhysTypeChangesOnlyThisVectorAndCopiesNoElement) {
    BaseVector a = realVector({1, 2, 3});
    BaseVector b = a;
    std::size_t const before = BlockMemory::bytesInUse();
    b.setPhysType(PT_VOLTAGE);
    EXPECT_EQ(a.physType(), PT_UNKNOWN);
    EXPECT_EQ(b.physType(), PT_VOLTAGE);
    EXPECT_EQ(BlockMemory::bytesInUse(), before);
    EXPECT_EQ(a.realData(), b.realData());
}

TEST(VectorWriting, AWriteOfWhatIsThereKeepsTheSharing) {
    BaseVector a = realVector({1});
    a.setPhysType(PT_TIME);
    a.setMultiple();
    BaseVector b = a;
    b.setPhysType(PT_TIME);
    b.setMultiple();
    EXPECT_TRUE(a.sharesRep(b));
    BaseVector z = complexVector({{1, 0}});
    BaseVector w = z;
    w.setComplexFlag();
    EXPECT_TRUE(z.sharesRep(w));
    BaseVector one = a;
    static_cast<void>(one);
}

TEST(VectorWriting, AMarkOfMultipleSurvivesTheFirstData) {
    BaseVector v;
    v.setMultiple();
    EXPECT_TRUE(v.isMultiple());
    EXPECT_FALSE(BaseVector().isMultiple());
    BaseVector copy = v;
    EXPECT_TRUE(copy.isMultiple());
    v.setSize(2, VD_STRING);
    EXPECT_TRUE(v.isMultiple());
    v.setSize(2, VD_REAL);
    EXPECT_TRUE(v.isMultiple());
    copy.addVal(1.0);
    EXPECT_TRUE(copy.isMultiple());
}

TEST(VectorWriting, SetComplexFlagLeavesTheBytes) {
    BaseVector v = realVector({1, 2});
    BaseVector other = v;
    v.setComplexFlag();
    EXPECT_EQ(v.length(), 1);
    EXPECT_EQ(v.complexData()[0], (complex{1, 2}));
    EXPECT_EQ(valuesOf(other), Values({1, 2}));
}

TEST(VectorWriting, CollapseMakesOneDivisionOfAll) {
    BaseVector v = steppedVector({{1, 2}, {3}});
    v.setMultiple();
    BaseVector other = v;
    v.setDivision(1);
    v.collapseDivisions();
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2, 3}}));
    EXPECT_FALSE(v.isMultiple());
    EXPECT_TRUE(v.isWhole());
    EXPECT_EQ(v.currentDivisionIndex(), 0);
    EXPECT_EQ(divisionsOf(other), Divisions({{1, 2}, {3}}));
    EXPECT_TRUE(other.isMultiple());
}

TEST(VectorWriting, CollapseForgetsTheRanges) {
    BaseVector v = steppedVector({{1, 2}, {3}});
    BaseVector part = v;
    part.selectDivision(0);
    part.getRange(false);
    part.collapseDivisions();
    EXPECT_EQ(part.getRange(false).max, 3.0);
}
