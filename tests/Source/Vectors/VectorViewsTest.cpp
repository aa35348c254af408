#include "torvelan/Vectors.h"

#include "VectorTestSupport.h"

#include <gtest/gtest.h>

namespace {

using Values = std::vector<double>;
using Divisions = std::vector<Values>;

Divisions const three{{1, 2}, {3}, {4, 5, 6}};

} // namespace

TEST(VectorViews, SetDivisionOutOfRangeChangesNothing) {
    BaseVector v = steppedVector({{1, 2}, {3}});
    v.setDivision(1);
    for (std::int64_t i : {std::int64_t{7}, std::int64_t{2}, std::int64_t{-1}, INT64_MAX, INT64_MIN}) {
        v.setDivision(i);
        EXPECT_EQ(v.currentDivisionIndex(), 1);
        EXPECT_EQ(v.length(), 1);
    }
}

TEST(VectorViews, SetDivisionReachesEveryDivisionOfTheData) {
    BaseVector v = steppedVector(three);
    v.selectDivision(1);
    v.setDivision(1); // beyond the view, within the data
    EXPECT_EQ(valuesOf(v), Values({4, 5, 6}));
}

TEST(VectorViews, SelectDivisionShowsOne) {
    BaseVector v = steppedVector(three);
    v.selectDivision(2);
    EXPECT_EQ(v.numDivisions(), 1);
    EXPECT_EQ(v.totalLength(), 3);
    EXPECT_EQ(v.currentDivisionIndex(), 0);
    EXPECT_EQ(valuesOf(v), Values({4, 5, 6}));
    v.selectDivision(1);
    EXPECT_EQ(valuesOf(v), Values({4, 5, 6}));
    v.selectDivision(-1);
    EXPECT_EQ(valuesOf(v), Values({4, 5, 6}));
}

TEST(VectorViews, OpenDivisionAtShowsThatAndTheFollowing) {
    BaseVector v = steppedVector(three);
    BaseVector whole = v;
    v.openDivisionAt(1);
    EXPECT_EQ(divisionsOf(v), Divisions({{3}, {4, 5, 6}}));
    EXPECT_EQ(v.totalLength(), 4);
    v.openDivisionAt(1);
    EXPECT_EQ(divisionsOf(v), Divisions({{4, 5, 6}}));
    v.openDivisionAt(1);
    EXPECT_EQ(divisionsOf(v), Divisions({{4, 5, 6}}));
    whole.addDivision("");
    whole.addVal(7.0);
    EXPECT_EQ(divisionsOf(v), Divisions({{4, 5, 6}, {7}}));
}

TEST(VectorViews, ViewsOfOneRecordAreIndependent) {
    BaseVector a = steppedVector(three);
    BaseVector b = a;
    b.selectDivision(1);
    EXPECT_TRUE(a.sharesRep(b));
    EXPECT_EQ(a.numDivisions(), 3);
    EXPECT_EQ(b.numDivisions(), 1);
}

TEST(VectorViews, LimitDivisionsOfAWholeView) {
    BaseVector v = steppedVector(three);
    v.setDivision(2);
    EXPECT_FALSE(v.limitDivisions(4));
    EXPECT_FALSE(v.limitDivisions(0));
    EXPECT_FALSE(v.limitDivisions(-1));
    EXPECT_TRUE(v.limitDivisions(3));
    EXPECT_TRUE(v.isWhole());
    EXPECT_EQ(v.currentDivisionIndex(), 2);
    EXPECT_TRUE(v.limitDivisions(2));
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2}, {3}}));
    EXPECT_EQ(v.currentDivisionIndex(), 0);
    EXPECT_EQ(v.totalLength(), 3);
    EXPECT_FALSE(v.limitDivisions(1)); // no longer whole
    BaseVector open = steppedVector(three);
    open.openDivisionAt(1);
    EXPECT_FALSE(open.limitDivisions(1));
}

TEST(VectorViews, LimitLengthOfOneDivision) {
    BaseVector v = realVector({1, 2, 3});
    EXPECT_FALSE(v.limitLength(4));
    EXPECT_FALSE(v.limitLength(-1));
    EXPECT_EQ(v.length(), 3);
    EXPECT_TRUE(v.limitLength(3));
    EXPECT_TRUE(v.isWhole());
    EXPECT_TRUE(v.limitLength(2));
    EXPECT_EQ(v.length(), 2);
    EXPECT_EQ(v.length(0), 2);
    EXPECT_EQ(v.totalLength(), 2);
    EXPECT_FALSE(v.isWhole());
    v.addVal(4.0);
    EXPECT_EQ(v.length(), 2);
    BaseVector many = steppedVector(three);
    EXPECT_FALSE(many.limitLength(1));
    many.selectDivision(2);
    EXPECT_TRUE(many.limitLength(2));
    EXPECT_EQ(valuesOf(many), Values({4, 5}));
}

TEST(VectorViews, ALimitedLengthIsNotBelievedBeyondTheData) {
    BaseVector v = realVector({1, 2, 3});
    ASSERT_TRUE(v.limitLength(2));
    v.setLength(1);
    EXPECT_EQ(v.length(), 1);
    EXPECT_EQ(v.totalLength(), 1);
    EXPECT_TRUE(v.limitLength(0));
    EXPECT_TRUE(v.noData());
}

TEST(VectorViews, AViewOfDivisionsThatAreGoneIsEmpty) {
    BaseVector v = steppedVector(three);
    v.selectDivision(2);
    v.setLength(2);
    EXPECT_EQ(v.length(), 0);
    EXPECT_EQ(v.realData(), nullptr);
    EXPECT_EQ(v.totalLength(), 0);
    EXPECT_EQ(v.numDivisions(), 1);
    EXPECT_FALSE(v.everyDivisionHasData());
    EXPECT_GT(v.getRange(false).min, v.getRange(false).max);
}

TEST(VectorViews, ResetGivesAnEmptyVectorAndAWholeView) {
    BaseVector v = steppedVector(three);
    BaseVector other = v;
    v.setPhysType(PT_VOLTAGE);
    v.setMultiple();
    v.selectDivision(1);
    v.reset();
    EXPECT_TRUE(v.isWhole());
    EXPECT_TRUE(v.isReal());
    EXPECT_EQ(v.physType(), PT_UNKNOWN);
    EXPECT_FALSE(v.isMultiple());
    EXPECT_TRUE(v.noData());
    EXPECT_EQ(v.numDivisions(), 1);
    EXPECT_EQ(divisionsOf(other), three);
}
