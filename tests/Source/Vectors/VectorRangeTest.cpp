#include "torvelan/Vectors.h"

#include "VectorTestSupport.h"

#include <cfloat>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

// The rule in its simplest form: while there is no range the value sets it, then it widens it.
BaseVector::Range naiveRange(std::vector<double> const & values) {
    BaseVector::Range r{DBL_MAX, -DBL_MAX};
    for (double v : values) {
        if (!(r.max >= r.min)) r = {v, v};
        if (v > r.max) r.max = v;
        if (v < r.min) r.min = v;
    }
    return r;
}

void expectRange(BaseVector const & v, double min, double max, bool useMagnitude = false) {
    BaseVector::Range r = v.getRange(useMagnitude);
    EXPECT_EQ(r.min, min);
    EXPECT_EQ(r.max, max);
}

BaseVector written(std::vector<double> const & values) {
    BaseVector v;
    v.setSize(static_cast<std::int64_t>(values.size()), VD_REAL);
    std::copy(values.begin(), values.end(), v.writableRealData());
    return v;
}

} // namespace

TEST(VectorRange, WithoutDataThereIsNone) {
    expectRange(BaseVector(), DBL_MAX, -DBL_MAX);
    expectRange(stringVector({"a"}), DBL_MAX, -DBL_MAX);
}

TEST(VectorRange, FollowsAppendedValues) {
    BaseVector v;
    v.addVal(5.0);
    expectRange(v, 5, 5);
    v.addVal(-1.0);
    v.addVal(2.0);
    expectRange(v, -1, 5);
}

TEST(VectorRange, EqualsTheSimpleRuleForAnyValues) {
    unsigned const seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (std::size_t n = 1; n < 70; ++n) {
        std::vector<double> values(n);
        for (double & v : values)
            v = random() % 5 == 0 ? notANumber : random() % 11 == 0 ? -infinite : double(random() % 1000);
        BaseVector::Range expected = naiveRange(values);
        if (std::isnan(expected.max)) continue;
        expectRange(written(values), expected.min, expected.max);
    }
}

TEST(VectorRange, NoNumbersAreNoRange) {
    EXPECT_TRUE(std::isnan(written({notANumber, notANumber}).getRange(false).max));
    expectRange(written({notANumber, 3, notANumber, 4}), 3, 4);
    expectRange(realVector({3, notANumber, 4}), 3, 4);
}

TEST(VectorRange, ComplexByMagnitudeOrRealPart) {
    BaseVector v;
    v.setSize(3, VD_COMPLEX);
    complex * z = v.writableComplexData();
    z[0] = {3, 4};
    z[1] = {-6, 8};
    z[2] = {0, 1};
    expectRange(v, 1, 10, true);
    v.writableComplexData();
    expectRange(v, -6, 3, false);
}

TEST(VectorRange, AValidCacheStandsWhateverModeFilledIt) {
    BaseVector v = complexVector({{3, 4}, {-6, 8}});
    expectRange(v, 5, 10, true);
    expectRange(v, 5, 10, false);
}

TEST(VectorRange, ARealValueEntersAComplexVectorAsItIs) {
    BaseVector v = complexVector({{3, 4}});
    v.addVal(-2.0);
    expectRange(v, -2, 5, true);
}

TEST(VectorRange, WritingInvalidates) {
    BaseVector v = realVector({1, 2, 3});
    expectRange(v, 1, 3);
    v.writableRealData()[0] = 100;
    expectRange(v, 2, 100);
    v.setLength(2);
    expectRange(v, 2, 100);
    v.setLength(1);
    expectRange(v, 100, 100);
}

TEST(VectorRange, AWholeViewCountsAllDivisionsAndAPartItsOwn) {
    BaseVector v = steppedVector({{1, 2}, {10, 20}, {-5}});
    expectRange(v, -5, 20);
    BaseVector part = v;
    part.selectDivision(1);
    expectRange(part, 10, 20);
    part = v;
    part.openDivisionAt(1);
    part.setDivision(1);
    expectRange(part, -5, -5);
    expectRange(v, -5, 20);
}

TEST(VectorRange, RangesOfDivisionsFollowAppendedValues) {
    BaseVector v = steppedVector({{1, 2}, {10}});
    BaseVector last = v;
    last.selectDivision(1);
    expectRange(last, 10, 10); // now cached
    v.addVal(30.0);
    expectRange(last, 10, 30);
    v.addDivision("");
    v.addVal(-7.0);
    v.addVal(-8.0);
    expectRange(last, 10, 30);
    BaseVector newest = v;
    newest.selectDivision(2);
    expectRange(newest, -8, -7);
    expectRange(v, -8, 30);
}

TEST(VectorRange, ADivisionWhoseRangeIsNotKnownStaysUnknownUntilAsked) {
    BaseVector v = steppedVector({{1, 2}, {10, 40}});
    BaseVector first = v;
    first.selectDivision(0);
    expectRange(first, 1, 2); // makes the cache for division 0 only
    v.addVal(20.0);
    BaseVector last = v;
    last.selectDivision(1);
    expectRange(last, 10, 40);
}

TEST(VectorRange, WritingADivisionLeavesTheRangesOfOthers) {
    BaseVector v = steppedVector({{1, 2}, {10, 40}});
    v.writableRealData()[0] = 50;
    BaseVector part = v;
    part.selectDivision(0);
    expectRange(part, 2, 50);
    part = v;
    part.selectDivision(1);
    expectRange(part, 10, 40);
}

TEST(VectorRange, CopiesOfTheRecordKeepTheirOwn) {
    BaseVector a = realVector({1, 2});
    BaseVector b = a;
    b.setPhysType(PT_TIME);
    a.addVal(9.0);
    expectRange(a, 1, 9);
    expectRange(b, 1, 2);
}

TEST(VectorRange, LimitDivisionsInvalidatesAllRanges) {
    BaseVector v = steppedVector({{1}, {2}, {3}});
    BaseVector limited = v;
    expectRange(v, 1, 3);
    ASSERT_TRUE(limited.limitDivisions(2));
    expectRange(limited, 1, 1);
    expectRange(v, 1, 3);
}

TEST(VectorRange, ALimitedLengthCountsWhatItShows) {
    BaseVector v = realVector({1, 2, 30});
    BaseVector limited = v;
    ASSERT_TRUE(limited.limitLength(2));
    expectRange(limited, 1, 2);
    expectRange(v, 1, 30);
}
