#include "torvelan/Vectors.h"

#include "VectorTestSupport.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(VectorReading, LengthsOfTwoDivisions) {
    BaseVector v = steppedVector({{1, 2, 3}, {4, 5, 6, 7, 8}});
    EXPECT_EQ(v.totalLength(), 8);
    EXPECT_EQ(v.numDivisions(), 2);
    EXPECT_EQ(v.length(), 3);
    EXPECT_EQ(v.length(0), 3);
    EXPECT_EQ(v.length(1), 5);
}

TEST(VectorReading, LengthsOfComplexDivisionsAreInElements) {
    BaseVector v = complexVector({{1, 0}, {2, 0}});
    v.addDivision("");
    v.addVal(complex{3, 0});
    EXPECT_EQ(v.length(0), 2);
    EXPECT_EQ(v.length(1), 1);
    EXPECT_EQ(v.totalLength(), 3);
    EXPECT_EQ(v.complexData(1)->re, 3.0);
}

TEST(VectorReading, IndicesOutOfRangeReadAsNothing) {
    BaseVector v = steppedVector({{1, 2}, {3}});
    for (std::int64_t i : {std::int64_t{-1}, std::int64_t{2}, INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(v.getReal(i), 0.0);
        EXPECT_EQ(v.getMag(i), 0.0);
        EXPECT_EQ(v.length(i), 0);
        EXPECT_EQ(v.realData(i), nullptr);
        EXPECT_EQ(v.getReal(0, i), 0.0);
    }
    v.openDivisionAt(1);
    EXPECT_EQ(v.length(-1), 0);
    EXPECT_EQ(v.length(INT64_MAX), 0);
    BaseVector one = realVector({1, 2});
    EXPECT_EQ(one.length(1), 0);
}

TEST(VectorReading, OtherKindsReadAsZeroOrNull) {
    BaseVector real = realVector({-3});
    BaseVector z = complexVector({{3, -4}});
    BaseVector text = stringVector({"abc"});
    EXPECT_EQ(real.getImag(0), 0.0);
    EXPECT_EQ(real.getMag(0), 3.0);
    EXPECT_EQ(real.getString(0), nullptr);
    EXPECT_EQ(z.getReal(0), 3.0);
    EXPECT_EQ(z.getImag(0), -4.0);
    EXPECT_EQ(z.getMag(0), 5.0);
    EXPECT_EQ(z.getString(0), nullptr);
    EXPECT_EQ(text.getReal(0), 0.0);
    EXPECT_EQ(text.getImag(0), 0.0);
    EXPECT_EQ(text.getMag(0), 0.0);
    EXPECT_STREQ(text.getString(0), "abc");
}

TEST(VectorReading, ElementsOfAGivenDivision) {
    BaseVector v = steppedVector({{1, 2}, {-3}});
    EXPECT_EQ(v.getReal(0, 1), -3.0);
    EXPECT_EQ(v.getMag(0, 1), 3.0);
    EXPECT_EQ(v.getImag(0, 1), 0.0);
    EXPECT_EQ(v.getString(0, 1), nullptr);
    v.selectDivision(1);
    EXPECT_EQ(v.getReal(0, 0), -3.0);
}

TEST(VectorReading, AddressesOfTheWrongKindAreNull) {
    BaseVector real = realVector({1});
    BaseVector z = complexVector({{1, 2}});
    BaseVector text = stringVector({"a"});
    EXPECT_NE(real.realData(), nullptr);
    EXPECT_EQ(real.complexData(), nullptr);
    EXPECT_EQ(real.stringData(), nullptr);
    EXPECT_EQ(real.allComplexData(), nullptr);
    EXPECT_EQ(z.realData(), nullptr);
    EXPECT_NE(z.allComplexData(), nullptr);
    EXPECT_EQ(z.allRealData(), nullptr);
    EXPECT_EQ(text.realData(), nullptr);
    EXPECT_NE(text.stringData(), nullptr);
    EXPECT_EQ(BaseVector().realData(), nullptr);
    EXPECT_EQ(BaseVector().allRealData(), nullptr);
}

TEST(VectorReading, AllDataOfAWholeViewOnly) {
    BaseVector v = steppedVector({{1, 2}, {3}});
    ASSERT_NE(v.allRealData(), nullptr);
    EXPECT_EQ(v.allRealData()[2], 3.0);
    v.setDivision(1);
    EXPECT_EQ(v.allRealData()[2], 3.0);
    v.selectDivision(1);
    EXPECT_EQ(v.allRealData(), nullptr);
}

TEST(VectorReading, NothingReadsCopies) {
    BaseVector a = realVector({1, 2, 3, 4});
    BaseVector b = a;
    EXPECT_EQ(a.realData(), b.realData());
    b.selectDivision(0);
    b.getRange(true);
    b.divisionLabel(0);
    EXPECT_EQ(a.realData(), b.realData());
    EXPECT_TRUE(a.sharesRep(b));
}

TEST(VectorReading, ReadBlocksAreCheckedAgainstTheDivision) {
    BaseVector v = steppedVector({{1, 2}, {3, 4, 5}});
    double out[4] = {};
    EXPECT_TRUE(v.readRealBlock(out, 2, 1));
    EXPECT_EQ(out[1], 4.0);
    EXPECT_TRUE(v.readRealBlock(out, 2, ~std::uint64_t{0}));
    EXPECT_EQ(out[1], 2.0);
    EXPECT_FALSE(v.readRealBlock(out, 3, 0)); // would run into the next division
    EXPECT_FALSE(v.readRealBlock(out, -1, 0));
    EXPECT_FALSE(v.readRealBlock(out, INT64_MAX, 0));
    EXPECT_FALSE(v.readRealBlock(out, 1, 2));
    EXPECT_FALSE(v.readRealBlock(out, 1, ~std::uint64_t{1}));
    EXPECT_FALSE(BaseVector().readRealBlock(out, 0, 0));
    complex z[2];
    EXPECT_FALSE(v.readComplexBlock(z, 1, 0));
    BaseVector w = complexVector({{1, 2}, {3, 4}});
    EXPECT_TRUE(w.readComplexBlock(z, 2, 0));
    EXPECT_EQ(z[1], (complex{3, 4}));
}

TEST(VectorReading, SameDataOfOneRecordAndView) {
    BaseVector a = realVector({notANumber, 1});
    BaseVector b = a;
    EXPECT_TRUE(a.sameData(b)); // although the elements do not equal themselves
    BaseVector c = realVector({notANumber, 1});
    EXPECT_FALSE(a.sameData(c));
}

TEST(VectorReading, SameDataOfEqualElements) {
    EXPECT_TRUE(realVector({1, 2}).sameData(realVector({1, 2})));
    EXPECT_FALSE(realVector({1, 2}).sameData(realVector({1, 3})));
    EXPECT_FALSE(realVector({1, 2}).sameData(realVector({1})));
    EXPECT_FALSE(realVector({1}).sameData(complexVector({{1, 0}})));
    EXPECT_TRUE(complexVector({{1, 2}}).sameData(complexVector({{1, 2}})));
    EXPECT_FALSE(complexVector({{1, 2}}).sameData(complexVector({{1, 3}})));
    EXPECT_TRUE(stringVector({"a", "b"}).sameData(stringVector({"a", "b"})));
    EXPECT_FALSE(stringVector({"a"}).sameData(stringVector({"A"})));
    EXPECT_TRUE(BaseVector().sameData(BaseVector()));
    EXPECT_TRUE(BaseVector().sameData(complexVector({})));
}

TEST(VectorReading, SameDataComparesTheCurrentDivisions) {
    BaseVector a = steppedVector({{1, 2}, {3}});
    BaseVector b = steppedVector({{3}, {1, 2}});
    EXPECT_FALSE(a.sameData(b));
    b.setDivision(1);
    EXPECT_TRUE(a.sameData(b));
    BaseVector c = a;
    c.setDivision(1);
    EXPECT_FALSE(a.sameData(c));
    BaseVector empty = stringVector({"x"});
    empty.setString(nullptr, 0);
    EXPECT_FALSE(empty.sameData(stringVector({""})));
}

TEST(VectorReading, SameDivisionsByElementNumbers) {
    BaseVector real = steppedVector({{1, 2}, {3}});
    BaseVector z = complexVector({{1, 0}, {2, 0}});
    z.addDivision("");
    z.addVal(complex{3, 0});
    EXPECT_TRUE(real.sameDivisions(z));
    EXPECT_TRUE(real.sameDivisions(real));
    EXPECT_FALSE(real.sameDivisions(steppedVector({{1}, {2, 3}})));
    EXPECT_FALSE(real.sameDivisions(realVector({1, 2, 3})));
    EXPECT_TRUE(realVector({1}).sameDivisions(realVector({1, 2})));
    z.selectDivision(0);
    EXPECT_FALSE(real.sameDivisions(z));
}

TEST(VectorReading, EveryDivisionHasDataUnlessOneIsEmpty) {
    EXPECT_FALSE(BaseVector().everyDivisionHasData());
    EXPECT_TRUE(realVector({1}).everyDivisionHasData());
    EXPECT_TRUE(steppedVector({{1}, {2}}).everyDivisionHasData());
    BaseVector gap = steppedVector({{1}, {}, {2}});
    EXPECT_EQ(gap.numDivisions(), 3);
    EXPECT_FALSE(gap.everyDivisionHasData());
    gap.openDivisionAt(2);
    EXPECT_TRUE(gap.everyDivisionHasData());
    BaseVector announced = steppedVector({{1}, {2}});
    announced.addDivision("");
    EXPECT_TRUE(announced.everyDivisionHasData());
}

TEST(VectorReading, ADivisionTooShortForAnElementHasNoData) {
    BaseVector between = realVector({1, 2});
    between.addDivision("");
    between.addDivision("", sizeof(double) / 2); // starts in the middle of an element
    between.addVal(3.0);
    ASSERT_EQ(between.length(1), 0);
    EXPECT_FALSE(between.everyDivisionHasData());
    BaseVector last = steppedVector({{1, 2}, {3}});
    last.setComplexFlag();
    ASSERT_EQ(last.length(0), 1);
    ASSERT_EQ(last.length(1), 0);
    EXPECT_FALSE(last.everyDivisionHasData());
}

TEST(VectorReading, AKindWithoutElementsHasLengthZero) {
    BaseVector v = realVector({1, 2});
    v.setSize(5, VD_NONE);
    EXPECT_EQ(v.length(), 0);
    EXPECT_EQ(v.totalLength(), 0);
    EXPECT_EQ(v.type(), VD_NONE);
    EXPECT_EQ(v.addVal(1.0), VEC_OK);
    EXPECT_EQ(v.length(), 0);
    EXPECT_EQ(v.getReal(0), 0.0);
}
