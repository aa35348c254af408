#include "torvelan/Vectors.h"

#include "VectorTestSupport.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

using Values = std::vector<double>;
using Divisions = std::vector<Values>;
using Texts = std::vector<std::string>;

Values merged(Values const & a, Values const & b) {
    BaseVector v;
    std::int64_t n = -1;
    v.mergeAscending(a.data(), static_cast<std::int64_t>(a.size()), b.data(), static_cast<std::int64_t>(b.size()), &n);
    EXPECT_EQ(n, v.length());
    return valuesOf(v);
}

} // namespace

TEST(VectorShaping, AOneElementVectorFillsEverySlot) {
    BaseVector v = realVector({7});
    v.setPhysType(PT_VOLTAGE);
    v.expandTo({2, 3, 1});
    EXPECT_EQ(divisionsOf(v), Divisions({{7, 7}, {7, 7, 7}, {7}}));
    EXPECT_EQ(v.physType(), PT_VOLTAGE);
    EXPECT_TRUE(v.isWhole());
}

TEST(VectorShaping, EachDivisionFillsItsOwn) {
    BaseVector v = steppedVector({{1}, {2}, {3}});
    v.setDivision(2);
    v.expandTo({2, 1, 3});
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 1}, {2}, {3, 3, 3}}));
    EXPECT_EQ(v.currentDivisionIndex(), 2);
}

TEST(VectorShaping, LongerContentsAreRepeated) {
    BaseVector v = realVector({1, 2, 3});
    v.expandTo({7, 2});
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2, 3, 1, 2, 3, 1}, {1, 2}}));
}

TEST(VectorShaping, ExpandsComplexAndStrings) {
    BaseVector z = complexVector({{1, 2}});
    z.expandTo({3});
    EXPECT_EQ(z.length(), 3);
    EXPECT_EQ(z.complexData()[2], (complex{1, 2}));
    BaseVector text = stringVector({"a", "b"});
    BaseVector other = text;
    text.expandTo({3});
    EXPECT_EQ(textsOf(text), Texts({"a", "b", "a"}));
    EXPECT_NE(text.getString(0), text.getString(2));
    EXPECT_NE(text.getString(0), other.getString(0));
    EXPECT_EQ(textsOf(other), Texts({"a", "b"}));
}

TEST(VectorShaping, ExpandingASharedVectorLeavesTheOthers) {
    BaseVector a = realVector({1});
    BaseVector b = a;
    b.expandTo({3, 3});
    EXPECT_EQ(valuesOf(a), Values({1}));
    EXPECT_EQ(b.totalLength(), 6);
}

TEST(VectorShaping, ExpandsWhatTheViewShows) {
    BaseVector v = steppedVector({{1}, {2}, {3}});
    v.selectDivision(1);
    v.expandTo({2});
    EXPECT_EQ(divisionsOf(v), Divisions({{2, 2}}));
    BaseVector limited = realVector({1, 2, 3});
    ASSERT_TRUE(limited.limitLength(1));
    limited.expandTo({3});
    EXPECT_EQ(valuesOf(limited), Values({1, 1, 1}));
}

TEST(VectorShaping, ExpandingNothingGivesZerosAndNulls) {
    BaseVector v;
    v.expandTo({2, 1});
    EXPECT_EQ(divisionsOf(v), Divisions({{0, 0}, {0}}));
    BaseVector text = stringVector({});
    text.expandTo({2});
    EXPECT_EQ(textsOf(text), Texts({"(null)", "(null)"}));
}

TEST(VectorShaping, ExpandingByListsThatDoNotFit) {
    BaseVector v = steppedVector({{1}, {2}});
    v.expandTo({});
    v.expandTo({1, 2, 3});
    EXPECT_EQ(divisionsOf(v), Divisions({{1}, {2}}));
    EXPECT_THROW(v.expandTo({INT64_MAX, INT64_MAX}), MemoryException);
    EXPECT_THROW(v.expandTo({INT64_MAX / 8, 5}), MemoryException);
    EXPECT_EQ(divisionsOf(v), Divisions({{1}, {2}}));
    v.expandTo({-3, 2});
    EXPECT_EQ(divisionsOf(v), Divisions({{}, {2, 2}}));
}

TEST(VectorShaping, ExpandedVectorsKeepLabelsOfAsManyDivisions) {
    NameArray labels;
    labels.emplace_back("a");
    labels.emplace_back("b");
    BaseVector v = steppedVector({{1}, {2}});
    v.setLabels(labels, false);
    v.expandTo({2, 2});
    EXPECT_EQ(v.divisionLabel(1), "b");
    v.selectDivision(0);
    v.expandTo({1, 1, 1});
    EXPECT_EQ(v.divisionLabel(0), "?");
}

TEST(VectorShaping, MergeEntersEqualHeadsOnce) {
    EXPECT_EQ(merged({1, 3, 5}, {2, 3, 6}), Values({1, 2, 3, 5, 6}));
    EXPECT_EQ(merged({}, {1, 2}), Values({1, 2}));
    EXPECT_EQ(merged({1, 2}, {}), Values({1, 2}));
    EXPECT_EQ(merged({}, {}), Values({}));
    EXPECT_EQ(merged({1, 2, 3}, {1, 2, 3}), Values({1, 2, 3}));
}

TEST(VectorShaping, MergeKeepsRepeatsInsideOneArray) {
    EXPECT_EQ(merged({0, 1, 1, 2}, {0, 2}), Values({0, 1, 1, 2}));
    EXPECT_EQ(merged({0, 1, 1, 2}, {1}), Values({0, 1, 1, 2}));
    EXPECT_EQ(merged({1, 1}, {1, 1}), Values({1, 1}));
    EXPECT_EQ(merged({1, 1, 1}, {1, 1}), Values({1, 1, 1}));
}

// Of a value that stands p times in one array and q times in the other, the greater count survives.
TEST(VectorShaping, MergeIsTheUnionOfMultisets) {
    unsigned const seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 100; ++round) {
        Values a(random() % 20), b(random() % 20);
        for (Values * values : {&a, &b}) {
            for (double & x : *values) x = double(random() % 10);
            std::ranges::sort(*values);
        }
        Values expected;
        std::ranges::set_union(a, b, std::back_inserter(expected));
        ASSERT_EQ(merged(a, b), expected);
    }
}

TEST(VectorShaping, MergeEndsWhateverTheValues) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(merged({nan, 1}, {2, nan}).size(), 4u);
}

TEST(VectorShaping, MergeOfItsOwnDataAndExactMemory) {
    BaseVector v = steppedVector({{1, 2}, {1, 3}});
    std::int64_t n = 0;
    v.mergeAscending(v.realData(0), 2, v.realData(1), 2, &n);
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2, 3}}));
    Values same(100000, 0.0);
    for (std::size_t i = 0; i < same.size(); ++i) same[i] = static_cast<double>(i);
    BlockMemory::dropKept();
    BlockMemory::resetPeak();
    std::size_t const before = BlockMemory::bytesInUse();
    v.mergeAscending(same.data(), 100000, same.data(), 100000, &n);
    EXPECT_LT(BlockMemory::peakBytes() - before, 8 * 100000 + 4096);
}

TEST(VectorShaping, AdoptsDivisionsOfTheSameAndOfAnotherWidth) {
    BaseVector from = steppedVector({{1, 2}, {3}, {4, 5, 6}});
    BaseVector real;
    real.setSize(6, VD_REAL);
    real.adoptDivisions(from);
    EXPECT_TRUE(real.sameDivisions(from));
    EXPECT_EQ(real.length(2), 3);
    BaseVector z;
    z.setSize(6, VD_COMPLEX);
    z.adoptDivisions(from);
    EXPECT_TRUE(z.sameDivisions(from));
    EXPECT_EQ(z.numDivisions(), 3);
    EXPECT_EQ(z.length(1), 1);
}

TEST(VectorShaping, AdoptedTablesAreTheVectorsOwnToExtend) {
    BaseVector from = steppedVector({{1}, {2}});
    BaseVector v;
    v.setSize(2, VD_REAL);
    v.adoptDivisions(from);
    v.addDivision("");
    v.addVal(1.0);
    EXPECT_EQ(v.numDivisions(), 3);
    EXPECT_EQ(from.numDivisions(), 2);
}

TEST(VectorShaping, AdoptsTheDivisionsThatAViewShows) {
    BaseVector from = steppedVector({{1, 2}, {3}, {4, 5, 6}});
    from.openDivisionAt(1);
    BaseVector v;
    v.setSize(4, VD_REAL);
    v.adoptDivisions(from);
    EXPECT_EQ(v.numDivisions(), 2);
    EXPECT_EQ(v.length(0), 1);
    EXPECT_EQ(v.length(1), 3);
    from.selectDivision(1);
    v.setSize(3, VD_REAL);
    v.adoptDivisions(from);
    EXPECT_EQ(v.numDivisions(), 1);
}

TEST(VectorShaping, DivisionsOfAnotherTotalAreNotAdopted) {
    BaseVector v;
    v.setSize(5, VD_REAL);
    v.adoptDivisions(steppedVector({{1, 2}, {3}}));
    EXPECT_EQ(v.numDivisions(), 1);
}

TEST(VectorShaping, AnnouncedDivisionsAreNotAdopted) {
    BaseVector from = steppedVector({{1}, {2}});
    from.addDivision("");
    BaseVector v = realVector({5, 6});
    v.adoptDivisions(from);
    v.addVal(7.0);
    EXPECT_EQ(divisionsOf(v), Divisions({{5}, {6, 7}}));
}

TEST(VectorShaping, DividesEvenly) {
    BaseVector v = realVector({1, 2, 3, 4, 5});
    BaseVector const shared = v;
    v.divideEvenly(2);
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2}, {3, 4}, {5}}));
    EXPECT_EQ(shared.numDivisions(), 1);
    v.divideEvenly(1);
    EXPECT_EQ(v.numDivisions(), 5);
    v.divideEvenly(9);
    EXPECT_EQ(v.numDivisions(), 1);
    v.divideEvenly(0);
    EXPECT_EQ(v.numDivisions(), 1);
}

TEST(VectorShaping, TruncateGoesBackToAnEarlierState) {
    BaseVector v = steppedVector({{1, 2}, {3}, {4, 5}});
    v.setDivision(2);
    v.truncate(3, 2);
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2}, {3}}));
    EXPECT_LT(v.currentDivisionIndex(), 2);
    v.addDivision("");
    v.truncate(3, 2); // only the announced division goes
    v.addVal(9.0);
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2}, {3, 9}}));
    v.truncate(0, 0);
    EXPECT_TRUE(v.noData());
    EXPECT_EQ(v.numDivisions(), 1);
}

TEST(VectorShaping, TruncateFreesStringsAndTakesAnyNumber) {
    BaseVector v = stringVector({"a", "b", "c"});
    BaseVector other = v;
    v.truncate(1, 1);
    EXPECT_EQ(textsOf(v), Texts({"a"}));
    EXPECT_EQ(textsOf(other), Texts({"a", "b", "c"}));
    v.truncate(INT64_MAX, INT64_MAX);
    EXPECT_EQ(v.length(), 1);
    v.truncate(INT64_MIN, INT64_MIN);
    EXPECT_EQ(v.length(), 0);
}

TEST(VectorShaping, TakesTheMemoryOfADonor) {
    BaseVector donor = realVector(Values(1000, 1.5));
    donor.setPhysType(PT_TIME);
    double const * const memory = donor.realData();
    BaseVector v;
    v.setPhysType(PT_VOLTAGE);
    ASSERT_TRUE(donor.ownsStorageAlone());
    ASSERT_TRUE(v.takeStorage(donor, 1000, VD_REAL));
    EXPECT_EQ(v.realData(), memory);
    EXPECT_EQ(v.physType(), PT_VOLTAGE);
    EXPECT_TRUE(donor.noData());
    EXPECT_EQ(donor.physType(), PT_TIME);
    EXPECT_FALSE(donor.ownsStorageAlone());
    donor.addVal(3.0);
    EXPECT_EQ(v.getReal(0), 1.5);
}

TEST(VectorShaping, TakesFewerOrNarrowerElements) {
    BaseVector v;
    BaseVector donor = complexVector(std::vector<complex>(10));
    EXPECT_TRUE(v.takeStorage(donor, 20, VD_REAL));
    EXPECT_EQ(v.length(), 20);
    BaseVector scalar = realVector({1});
    EXPECT_TRUE(v.takeStorage(scalar, 1, VD_REAL));
    EXPECT_EQ(v.getReal(0), 1.0);
}

TEST(VectorShaping, TakesNothingThatOthersNeed) {
    BaseVector v = realVector({5});
    auto refuses = [&](BaseVector & donor, std::int64_t n, VD_type type) {
        std::int64_t const before = donor.totalLength();
        bool taken = v.takeStorage(donor, n, type);
        EXPECT_EQ(donor.totalLength(), before);
        EXPECT_EQ(valuesOf(v), Values({5}));
        return !taken;
    };
    BaseVector shared = realVector(Values(100, 1.0));
    BaseVector holder = shared;
    EXPECT_TRUE(refuses(shared, 100, VD_REAL));
    holder.setPhysType(PT_TIME); // records of their own, elements shared
    EXPECT_TRUE(refuses(shared, 100, VD_REAL));
    EXPECT_FALSE(shared.ownsStorageAlone());
    BaseVector part = steppedVector({{1}, {2}});
    part.selectDivision(0);
    EXPECT_TRUE(refuses(part, 1, VD_REAL));
    BaseVector text = stringVector({"a"});
    EXPECT_TRUE(refuses(text, 1, VD_REAL));
    BaseVector good = realVector(Values(100, 1.0));
    EXPECT_TRUE(refuses(good, 100000, VD_REAL));
    EXPECT_TRUE(refuses(good, INT64_MAX, VD_COMPLEX));
    EXPECT_TRUE(refuses(good, -1, VD_REAL));
    EXPECT_TRUE(refuses(good, 1, VD_STRING));
    EXPECT_TRUE(refuses(good, 1, VD_NONE));
    BaseVector empty;
    EXPECT_TRUE(refuses(empty, 0, VD_REAL));
    EXPECT_FALSE(v.takeStorage(v, 1, VD_REAL));
}

TEST(VectorShaping, AChainOfTemporariesNeedsOneArray) {
    constexpr std::int64_t n = 1000000;
    BlockMemory::dropKept();
    BlockMemory::resetPeak();
    std::size_t const before = BlockMemory::bytesInUse();
    BaseVector current;
    current.setSize(n, VD_REAL);
    for (int step = 0; step < 5; ++step) {
        BaseVector result;
        ASSERT_TRUE(result.takeStorage(current, n, VD_REAL));
        current = result;
    }
    EXPECT_LE(BlockMemory::peakBytes() - before, static_cast<std::size_t>(n) * 8 + 4096);
}
