// Handles, appending, names and references.
#include "torvelan/Vectors.h"

#include "VectorTestSupport.h"

#include <bit>
#include <gtest/gtest.h>
#include <limits>

namespace {

using Divisions = std::vector<std::vector<double>>;
using Values = std::vector<double>;

NameArray names(std::initializer_list<char const *> texts) {
    NameArray array;
    for (char const * text : texts) array.emplace_back(text);
    return array;
}

// Values of all sizes and signs, some of them no numbers.
std::vector<double> manyValues(std::size_t n, bool firstIsNumber) {
    std::vector<double> values;
    unsigned state = 7;
    for (std::size_t i = 0; i < n; ++i) {
        state = state * 1664525u + 1013904223u;
        values.push_back((static_cast<double>(state) - 2e9) * (state % 3 == 0 ? 1e-9 : 1e3));
        if (i % 11 == 5) values.back() = std::numeric_limits<double>::quiet_NaN();
    }
    if (n != 0) values[0] = firstIsNumber ? 1 : std::numeric_limits<double>::quiet_NaN();
    return values;
}

void expectSame(BaseVector const & one, BaseVector const & other) {
    ASSERT_EQ(one.totalLength(), other.totalLength());
    ASSERT_EQ(one.numDivisions(), other.numDivisions());
    for (std::int64_t d = 0; d < one.numDivisions(); ++d) {
        ASSERT_EQ(one.length(d), other.length(d));
        for (std::int64_t i = 0; i < one.length(d); ++i) {
            ASSERT_EQ(std::bit_cast<std::uint64_t>(one.getReal(i, d)),
                      std::bit_cast<std::uint64_t>(other.getReal(i, d)));
            ASSERT_EQ(std::bit_cast<std::uint64_t>(one.getImag(i, d)),
                      std::bit_cast<std::uint64_t>(other.getImag(i, d)));
        }
    }
    for (bool const magnitude : {false, true}) { // as found while appending
        BaseVector::Range const a = one.getRange(magnitude), b = other.getRange(magnitude);
        EXPECT_TRUE(a.min == b.min || (a.min != a.min && b.min != b.min)) << a.min << ' ' << b.min;
        EXPECT_TRUE(a.max == b.max || (a.max != a.max && b.max != b.max)) << a.max << ' ' << b.max;
    }
}

} // namespace

TEST(IfVector, AHandleWithoutRecordToleratesEverything) {
    IfVector v;
    EXPECT_EQ(v.addVal(1.0), VEC_NO_DATA_RECORD);
    EXPECT_EQ(v.addVal(complex{1, 2}), VEC_NO_DATA_RECORD);
    v.addDivision("group");
    v.addDivision("group", 8);
    v.shrinkReal();
    v.setBufferSize(1000);
    BaseVector data = realVector({1});
    v.appendVector(&data, -1, NameArray());
    data.appendVector(&v, -1, NameArray());
    data.appendVector(nullptr, -1, NameArray());
    EXPECT_EQ(v.getObjectSize(), 0u);
    EXPECT_FALSE(v.isRealised());
    EXPECT_EQ(valuesOf(data), Values({1}));
}

TEST(IfVector, AVectorThatTookAnEmptyHandleReadsAsEmpty) {
    BaseVector v = realVector({1, 2});
    static_cast<IfVector &>(v) = IfVector();
    EXPECT_EQ(v.length(), 0);
    EXPECT_EQ(v.numDivisions(), 1);
    EXPECT_EQ(v.totalLength(), 0);
    EXPECT_EQ(v.realData(), nullptr);
    EXPECT_EQ(v.getReal(0), 0.0);
    EXPECT_EQ(v.divisionLabel(0), "");
    EXPECT_EQ(v.sharedLabels(), nullptr);
    EXPECT_FALSE(v.ownsStorageAlone());
    v.getRange(false);
    EXPECT_EQ(v.addVal(1.0), VEC_NO_DATA_RECORD);
    v.setSize(1, VD_REAL);
    EXPECT_EQ(v.length(), 1);
}

TEST(IfVector, SelfAssignmentIsSafe) {
    BaseVector v = realVector({1, 2});
    BaseVector & same = v;
    v = same;
    EXPECT_EQ(valuesOf(v), Values({1, 2}));
}

TEST(IfVector, AppendedValuesAreSeenByAllThatShare) {
    BaseVector x;
    BaseVector before = x; // shared while still empty
    x.addVal(1.0);
    BaseVector after = x;
    for (double value : {2.0, 3.0}) x.addVal(value);
    after.addVal(4.0);
    for (BaseVector const * v : {&x, &before, &after}) EXPECT_EQ(valuesOf(*v), Values({1, 2, 3, 4}));
}

TEST(IfVector, AssignedHandlesOfAnEmptyVectorSeeWhatIsAppended) {
    BaseVector x;
    BaseVector out;
    IfVector & handle = out;
    handle = x;
    handle.addDivision("");
    handle.addVal(5.0);
    EXPECT_TRUE(x.sharesRep(out));
    EXPECT_EQ(divisionsOf(x), Divisions({{}, {5}}));
}

TEST(IfVector, AppendedDivisionsAreSeenByAllThatShare) {
    BaseVector x = realVector({1});
    BaseVector y = x;
    x.addDivision("");
    y.addVal(2.0);
    EXPECT_EQ(divisionsOf(x), Divisions({{1}, {2}}));
}

TEST(IfVector, UntouchedVectorsHaveNothingInCommon) {
    BaseVector a, b;
    EXPECT_FALSE(a.sharesRep(b));
    EXPECT_TRUE(a.sharesRep(a));
    a.addVal(1.0);
    EXPECT_EQ(b.length(), 0);
}

TEST(IfVector, WritingCutsAVectorLooseFromTheOthers) {
    BaseVector a = realVector({1, 2});
    BaseVector b = a;
    b.writableRealData()[0] = 10;
    a.addVal(3.0);
    EXPECT_EQ(valuesOf(a), Values({1, 2, 3}));
    EXPECT_EQ(valuesOf(b), Values({10, 2}));
}

TEST(IfVector, AChangeOfTheRecordAloneIsNotFollowedByAppends) {
    BaseVector a = realVector({1, 2});
    BaseVector b = a;
    b.setPhysType(PT_VOLTAGE); // elements still shared
    a.addVal(3.0);
    b.addVal(4.0);
    EXPECT_EQ(valuesOf(a), Values({1, 2, 3}));
    EXPECT_EQ(valuesOf(b), Values({1, 2, 4}));
}

TEST(IfVector, KindsDecideWhatIsStored) {
    BaseVector real = realVector({1});
    EXPECT_EQ(real.addVal(complex{1, 2}), VEC_OK);
    EXPECT_EQ(real.length(), 1);
    BaseVector z = complexVector({{1, 2}});
    EXPECT_EQ(z.addVal(3.0), VEC_OK);
    EXPECT_EQ(z.complexData()[1], (complex{3, 0}));
    BaseVector text = stringVector({"a"});
    EXPECT_EQ(text.addVal(1.0), VEC_OK);
    EXPECT_EQ(text.addVal(complex{1, 0}), VEC_OK);
    EXPECT_EQ(text.length(), 1);
}

TEST(IfVector, ADivisionWithoutDataDoesNotExistYet) {
    BaseVector v = realVector({1, 2});
    v.addDivision("");
    EXPECT_EQ(v.numDivisions(), 1);
    EXPECT_EQ(v.length(0), 2);
    EXPECT_EQ(v.length(1), 0);
    v.addVal(3.0);
    EXPECT_EQ(v.numDivisions(), 2);
    EXPECT_EQ(v.length(0), 2);
    EXPECT_EQ(v.length(1), 1);
}

TEST(IfVector, ADivisionMayBeAnnouncedFurtherOn) {
    BaseVector v = realVector({1});
    v.addDivision("", 2 * sizeof(double));
    v.addVal(2.0);
    v.addVal(3.0);
    EXPECT_EQ(v.numDivisions(), 1);
    v.addVal(4.0);
    EXPECT_EQ(divisionsOf(v), Divisions({{1, 2, 3}, {4}}));
    EXPECT_THROW(v.addDivision("", UINT64_MAX), MemoryException);
    EXPECT_EQ(v.numDivisions(), 2);
}

TEST(IfVector, DivisionsOfEqualStartOrFallingStartAreHarmless) {
    BaseVector v = realVector({1, 2});
    v.addDivision("", 24);
    v.addDivision("", 8); // starts before the one announced earlier
    for (double x : {3.0, 4.0, 5.0}) v.addVal(x);
    EXPECT_EQ(v.numDivisions(), 3);
    EXPECT_EQ(v.length(0), 5);
    EXPECT_EQ(v.length(1), 0);
    EXPECT_EQ(v.length(2), 2);
    EXPECT_EQ(v.getReal(0, 2), 4.0);
    EXPECT_EQ(v.realData(1), nullptr);
}

TEST(IfVector, AddValAllocatesRarely) {
    BaseVector v;
    double const * last = nullptr;
    int moves = 0;
    for (int i = 0; i < 1000000; ++i) {
        v.addVal(double(i));
        moves += v.allRealData() != last;
        last = v.allRealData();
    }
    EXPECT_LT(moves, 30);
    EXPECT_EQ(v.getReal(999999), 999999.0);
}

TEST(IfVector, AFailedAppendLeavesTheVectorAsItWas) {
    BaseVector v = realVector({3, 4});
    v.addDivision("");
    FailingAllocations all;
    EXPECT_THROW(v.addVal(100.0), MemoryException);
    EXPECT_EQ(divisionsOf(v), Divisions({{3, 4}}));
    EXPECT_EQ(v.getRange(false).max, 4.0);
    BaseVector more = v;
    EXPECT_THROW(v.appendVector(&more, -1, names({"a", "b"})), MemoryException);
    EXPECT_EQ(valuesOf(v), Values({3, 4}));
    EXPECT_EQ(v.sharedLabels(), nullptr);
}

TEST(IfVector, AppendVectorJoinsDataDivisionsAndLabels) {
    BaseVector a = steppedVector({{1, 2}, {3}});
    BaseVector b = steppedVector({{4}, {5, 6}});
    a.appendVector(&b, -1, names({"p", "q", "r", "s"}));
    EXPECT_EQ(divisionsOf(a), Divisions({{1, 2}, {3}, {4}, {5, 6}}));
    EXPECT_EQ(a.divisionLabel(2), "r");
    EXPECT_EQ(divisionsOf(b), Divisions({{4}, {5, 6}}));
}

TEST(IfVector, AppendVectorMakesADivisionOfAVectorThatHasOne) {
    BaseVector a = realVector({1, 2});
    BaseVector b = realVector({3});
    a.getRange(false);
    a.appendVector(&b, -1, names({"p", "q"}));
    EXPECT_EQ(divisionsOf(a), Divisions({{1, 2}, {3}}));
    EXPECT_EQ(a.getRange(false).max, 3.0);
}

TEST(IfVector, AppendVectorBehindNothingAndOfNothing) {
    BaseVector b = steppedVector({{1}, {2}});
    BaseVector a;
    a.appendVector(&b, -1, names({"p", "q"}));
    EXPECT_EQ(divisionsOf(a), Divisions({{1}, {2}}));
    a.appendVector(std::make_unique<BaseVector>().get(), -1, names({"p", "q"}));
    EXPECT_EQ(divisionsOf(a), Divisions({{1}, {2}}));
    a.addVal(3.0);
    EXPECT_EQ(divisionsOf(a), Divisions({{1}, {2, 3}}));
}

TEST(IfVector, AppendVectorOfItself) {
    BaseVector a = steppedVector({{1, 2}, {3}});
    a.appendVector(&a, -1, names({"p", "q", "r", "s"}));
    EXPECT_EQ(divisionsOf(a), Divisions({{1, 2}, {3}, {1, 2}, {3}}));
}

TEST(IfVector, AppendVectorForgetsAnnouncedDivisions) {
    BaseVector a = realVector({1});
    a.addDivision("");
    BaseVector b = realVector({2});
    b.addDivision("");
    a.appendVector(&b, -1, names({"p", "q"}));
    EXPECT_EQ(divisionsOf(a), Divisions({{1}, {2}}));
    a.addVal(3.0);
    EXPECT_EQ(divisionsOf(a), Divisions({{1}, {2, 3}}));
}

TEST(IfVector, AppendVectorDuplicatesStringsAndRefusesOtherKinds) {
    BaseVector a = stringVector({"one"});
    BaseVector b = stringVector({"two", "three"});
    a.appendVector(&b, -1, names({"p", "q"}));
    b.reset();
    a.setDivision(1);
    EXPECT_EQ(textsOf(a), std::vector<std::string>({"two", "three"}));
    BaseVector numbers = realVector({1});
    a.appendVector(&numbers, -1, NameArray());
    EXPECT_EQ(a.totalLength(), 3);
    BaseVector z = complexVector({{1, 2}});
    numbers.appendVector(&z, -1, NameArray());
    EXPECT_EQ(valuesOf(numbers), Values({1}));
}

TEST(IfVector, AppendVectorIsSeenByAllThatShare) {
    BaseVector a = realVector({1});
    BaseVector other = a;
    BaseVector b = realVector({2});
    a.appendVector(&b, -1, names({"p", "q"}));
    EXPECT_EQ(divisionsOf(other), Divisions({{1}, {2}}));
}

TEST(IfVector, TellsItsSizeAndWhetherItHasABlock) {
    BaseVector v;
    EXPECT_FALSE(v.isRealised());
    v.addVal(1.0);
    EXPECT_TRUE(v.isRealised());
    EXPECT_EQ(v.getObjectSize(), 8u);
    EXPECT_EQ(complexVector({{1, 2}, {3, 4}}).getObjectSize(), 32u);
}

TEST(IfVector, ShrinkRealFitsTheMemoryOfNumbers) {
    std::size_t const before = BlockMemory::bytesInUse();
    BaseVector v;
    v.allocate(100000, VD_REAL);
    for (int i = 0; i < 100; ++i) v.addVal(double(i));
    v.shrinkReal();
    EXPECT_LT(BlockMemory::bytesInUse(), before + 1000);
    EXPECT_EQ(v.getReal(99), 99.0);
    v.addVal(100.0);
    EXPECT_EQ(v.length(), 101);
    BaseVector text = stringVector({"a", "b", "c"});
    text.shrinkReal();
    BaseVector().shrinkReal();
    EXPECT_EQ(text.length(), 3);
}

TEST(IfVector, AllMemoryIsGivenBack) {
    std::size_t const before = BlockMemory::bytesInUse();
    {
        BaseVector a = steppedVector(Divisions(100, Values(100, 1.0)));
        BaseVector b = a;
        BaseVector c = stringVector({"a", "b", "c", "d"});
        b.writableRealData();
        c.reset();
    }
    EXPECT_EQ(BlockMemory::bytesInUse(), before);
}

TEST(NamedVector, CopiesTakeTheName) {
    NamedVector a("alpha");
    a.addVal(1.0);
    NamedVector b = a;
    EXPECT_EQ(b.name(), "alpha");
    EXPECT_TRUE(b.sharesRep(a));
    b.setName("beta");
    EXPECT_EQ(a.name(), "alpha");
    a = b;
    EXPECT_EQ(a.name(), "beta");
}

TEST(XYVector, CopiesShareBothSides) {
    XYVector a("y");
    a.ref.setName("x");
    a.ref.addVal(1.0);
    a.addVal(2.0);
    XYVector b = a;
    EXPECT_TRUE(b.sharesRep(a));
    EXPECT_TRUE(b.ref.sharesRep(a.ref));
    EXPECT_EQ(b.ref.name(), "x");
    a.ref.addVal(3.0);
    EXPECT_EQ(b.ref.length(), 2);
    XYVector c;
    c = a;
    EXPECT_TRUE(c.ref.sharesRep(a.ref));
    EXPECT_EQ(c.name(), "y");
}

TEST(XYVector, ReferencesKeepTheirView) {
    XYVector a("y");
    a.ref = NamedVector("x");
    static_cast<BaseVector &>(a.ref) = steppedVector({{1}, {2, 3}});
    a.ref.selectDivision(1);
    XYVector b = a;
    EXPECT_EQ(valuesOf(b.ref), Values({2, 3}));
    EXPECT_EQ(b.ref.numDivisions(), 1);
}

TEST(XYVector, AVectorWithoutReferenceHasAnEmptyRealOne) {
    XYVector v;
    EXPECT_TRUE(v.ref.noData());
    EXPECT_TRUE(v.ref.isReal());
    XYVector copy = v;
    v.ref.addVal(1.0);
    EXPECT_TRUE(copy.ref.noData());
}

TEST(XYVector, ReferencesAssignedFromAnEmptyVectorSeeItsValues) {
    NamedVector time("time");
    XYVector v1("v1"), v2("v2");
    v1.ref = time;
    v2.ref = time;
    for (int i = 0; i < 3; ++i) time.addVal(double(i));
    EXPECT_EQ(v1.ref.length(), 3);
    EXPECT_TRUE(v1.ref.sharesRep(v2.ref));
}

TEST(VectorModel, ManyShortDivisionsAreLinearInWork) {
    constexpr std::int64_t divisions = 100000;
    constexpr std::int64_t points = 10;
    BlockMemory::dropKept();
    BlockMemory::resetPeak();
    std::size_t const before = BlockMemory::bytesInUse();
    BaseVector v;
    for (std::int64_t d = 0; d < divisions; ++d) {
        if (d > 0) v.addDivision("");
        v.setLength(v.totalLength() + points);
        v.setDivision(d);
        double * out = v.writableRealData();
        for (std::int64_t i = 0; i < points; ++i) out[i] = static_cast<double>(d * points + i);
        ASSERT_EQ(v.numDivisions(), d + 1);
    }
    ASSERT_EQ(v.totalLength(), divisions * points);
    for (std::int64_t d = 0; d < divisions; ++d) {
        ASSERT_EQ(v.length(d), points);
        ASSERT_EQ(v.realData(d)[3], static_cast<double>(d * points + 3));
    }
    std::size_t const bytes = divisions * points * 8 + divisions * 8;
    EXPECT_LT(BlockMemory::peakBytes() - before, 3 * bytes); // growth by half, old beside new
}

TEST(VectorModel, ManyValuesAreAppendedAsOneByOne) {
    for (bool const firstIsNumber : {true, false})
        for (std::size_t n : {0, 1, 2, 15, 16, 17, 33, 512, 513, 1000}) {
            std::vector<double> const values = manyValues(n, firstIsNumber);
            BaseVector one, many;
            for (double const value : values) one.addVal(value);
            EXPECT_EQ(many.addVals(values.data(), n), VEC_OK);
            expectSame(one, many);
            for (double const value : values) one.addVal(-value);
            for (double const value : values) many.addVals(std::vector<double>{-value}.data(), 1);
            expectSame(one, many);
        }
}

TEST(VectorModel, ManyComplexValuesAreAppendedAsOneByOne) {
    for (std::size_t n : {0, 1, 16, 17, 511, 512, 1500}) {
        std::vector<double> const parts = manyValues(2 * n, true);
        std::vector<complex> values;
        for (std::size_t i = 0; i < n; ++i) values.push_back({parts[2 * i], parts[2 * i + 1]});
        BaseVector one, many;
        for (BaseVector * v : {&one, &many}) v->becomeComplex();
        for (complex const & value : values) one.addVal(value);
        EXPECT_EQ(many.addVals(values.data(), n), VEC_OK);
        expectSame(one, many);
        for (double const part : parts) one.addVal(part);
        many.addVals(parts.data(), parts.size());
        expectSame(one, many);
    }
}

TEST(VectorModel, ManyValuesOfAnotherKindAreNotStored) {
    complex const pair{1, 2};
    double const number = 1;
    BaseVector real = realVector({5}), text;
    text.setSize(0, VD_STRING);
    EXPECT_EQ(real.addVals(&pair, 1), VEC_OK);
    EXPECT_EQ(text.addVals(&number, 1), VEC_OK);
    EXPECT_EQ(real.totalLength() + text.totalLength(), 1);
    EXPECT_EQ(IfVector().addVals(&number, 1), VEC_NO_DATA_RECORD);
}

TEST(VectorModel, ManyValuesGoToTheLastDivisionAndItsRange) {
    std::vector<double> const values = manyValues(100, true);
    BaseVector one = realVector({1, 2}), many = realVector({1, 2});
    auto lastRange = [](BaseVector const & v) {
        BaseVector view = v;
        view.selectDivision(1);
        return view.getRange(false);
    };
    for (BaseVector * v : {&one, &many}) {
        v->addDivision("");
        v->addVal(7.0);
        EXPECT_EQ(lastRange(*v).max, 7); // known from now on
    }
    for (double const value : values) one.addVal(value);
    many.addVals(values.data(), values.size());
    expectSame(one, many);
    EXPECT_EQ(lastRange(many).max, lastRange(one).max);
    EXPECT_EQ(lastRange(many).min, lastRange(one).min);
    EXPECT_GT(lastRange(many).max, 7);
}

TEST(VectorModel, ExpectedValuesNeedNoOtherMemory) {
    BaseVector v = realVector({1});
    v.expectVals(1000);
    v.addVal(2.0);
    double const * const place = v.allRealData();
    for (int i = 0; i < 999; ++i) v.addVal(3.0);
    EXPECT_EQ(v.allRealData(), place);
    EXPECT_EQ(v.totalLength(), 1001);
    v.expectVals(-5);
    EXPECT_EQ(v.totalLength(), 1001);
    EXPECT_THROW(v.expectVals(std::numeric_limits<std::int64_t>::max()), MemoryException);
    BaseVector const shared = v;
    v.expectVals(5000);
    EXPECT_TRUE(v.sharesRep(shared));
}

TEST(VectorModel, AnEmptyVectorBecomesComplexForAllWhoShareIt) {
    XYVector x, y;
    y.ref = x;
    EXPECT_TRUE(x.becomeComplex());
    EXPECT_TRUE(y.ref.isComplex());
    x.addVal(complex{1, 2});
    EXPECT_EQ(y.ref.getImag(0), 2);
    EXPECT_TRUE(x.becomeComplex());

    BaseVector real = realVector({1});
    EXPECT_FALSE(real.becomeComplex());
    EXPECT_TRUE(real.isReal());
    BaseVector text;
    text.setSize(0, VD_STRING);
    EXPECT_FALSE(text.becomeComplex());
    EXPECT_FALSE(IfVector().becomeComplex());
}

TEST(VectorModel, ManyDivisionsAreTakenBackOneByOneInLinearWork) {
    constexpr std::int64_t divisions = 100000;
    BaseVector v = realVector({0});
    for (std::int64_t d = 1; d < divisions; ++d) {
        v.addDivision("");
        v.addVal(static_cast<double>(d));
    }
    for (std::int64_t d = divisions - 1; d > 0; --d) {
        v.truncate(d, d);
        ASSERT_EQ(v.numDivisions(), d);
        ASSERT_EQ(v.getReal(0, d - 1), static_cast<double>(d - 1));
    }
}
