// Curves brought onto one reference.

#include "Evaluation/Interpolation.h"

#include "FrameTools.h"
#include "Groups/LoosePool.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

Values resampled(Values const & xNew, Values const & x, Values const & y, bool falling = false) {
    Values out(xNew.size(), 1e300);
    resampleOnto(xNew.data(), static_cast<std::int64_t>(xNew.size()), y.data(), x.data(),
                 static_cast<std::int64_t>(x.size()), falling, out.data());
    return out;
}

double at(double xNew, Values const & x, Values const & y, bool falling = false) {
    return resampled({xNew}, x, y, falling).at(0);
}

// Lagrange's formula through three points.
double throughThree(double at, Values const & x, Values const & y) {
    double sum = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        double term = y[i];
        for (std::size_t j = 0; j < 3; ++j)
            if (j != i) term *= (at - x[j]) / (x[i] - x[j]);
        sum += term;
    }
    return sum;
}

class Interpolation : public testing::Test {
protected:
    Curve curve(Values const & y, Values const & x) {
        dvec * vector = makeVector("c", {y}, {x});
        return {*vector, vector->ref, nullptr};
    }
    int direction(Values const & x) {
        int out = 77;
        return classifyDirection(curve(x, x), &out) ? out : -77;
    }

    EngineSession session;
    double const nan = std::numeric_limits<double>::quiet_NaN();
};

} // namespace

TEST_F(Interpolation, SteppedMeansThatAllChangesAreAtCoincidentX) {
    EXPECT_TRUE(isStepped(curve({0, 0, 5, 5}, {0, 1, 1, 2})));
    EXPECT_FALSE(isStepped(curve({0, 0, 5, 6}, {0, 1, 1, 2})));
    EXPECT_TRUE(isStepped(curve({3, 3, 3}, {0, 1, 2})));
    EXPECT_TRUE(isStepped(curve({3}, {0})));
    EXPECT_FALSE(isStepped(curve({}, {})));
}

TEST_F(Interpolation, AComplexVectorIsNotStepped) {
    dvec * vector = makeComplexVector("c", {{1, 0}, {1, 0}});
    appendTo(vector->ref, {{0, 1}});
    EXPECT_FALSE(isStepped({*vector, vector->ref, nullptr}));
}

TEST_F(Interpolation, DirectionOfTheReference) {
    EXPECT_EQ(direction({0, 0, 1, 1, 2}), 1);
    EXPECT_EQ(direction({2, 2, 1, 0, 0}), -1);
    EXPECT_EQ(direction({4, 4, 4}), 0);
    EXPECT_EQ(direction({4}), 0);
    EXPECT_EQ(direction({0, 1, 0}), -77);
    EXPECT_EQ(direction({1, 0, 0, 1}), -77);
    EXPECT_EQ(direction({0, nan, 1}), -77);
    EXPECT_EQ(direction({0, 1, nan}), -77);
}

TEST_F(Interpolation, OutsideTheOldPointsTheEndValuesHold) {
    EXPECT_EQ(resampled({-5, 0, 3, 9}, {0, 3}, {7, 8}), (Values{7, 7, 8, 8}));
    EXPECT_EQ(resampled({9, 3, 0, -5}, {3, 0}, {8, 7}, true), (Values{8, 8, 7, 7}));
}

TEST_F(Interpolation, AnExactHitTakesTheValueThere) {
    Values const x{0, 1, 3, 10}, y{2, -5, 1e9, 4};
    EXPECT_EQ(resampled(x, x, y), y);
}

TEST_F(Interpolation, OfRepeatedOldPointsTheFirstIsMet) {
    EXPECT_EQ(resampled({0, 1, 2}, {0, 1, 1, 2}, {0, 10, 20, 30}), (Values{0, 10, 30}));
}

TEST_F(Interpolation, AStepOnBothSidesKeepsBothItsEnds) {
    EXPECT_EQ(resampled({0, 1, 1, 2}, {0, 1, 1, 2}, {0, 0, 5, 5}), (Values{0, 0, 5, 5}));
    EXPECT_EQ(resampled({1, 1, 1}, {0, 1, 1, 2}, {0, 0, 5, 5}), (Values{0, 5, 5}));
    EXPECT_EQ(resampled({0, 0, 1}, {0, 0, 1}, {4, 6, 6}), (Values{4, 6, 6}));
}

TEST_F(Interpolation, AParabolaIsReproducedWhereItsSlopesAreAlike) {
    Values x, y;
    for (int i = 1; i <= 8; ++i) {
        x.push_back(i);
        y.push_back(i * i);
    }
    for (double place : {1.5, 2.25, 4.75, 7.5}) EXPECT_NEAR(at(place, x, y), place * place, 1e-12) << place;
}

TEST_F(Interpolation, ThreePointsAreCentredOnTheLeftOneAndShiftedAtTheStart) {
    Values const x{0, 1, 2, 3}, y{1, 2, 4, 9};
    EXPECT_NEAR(at(0.5, x, y), throughThree(0.5, {0, 1, 2}, {1, 2, 4}), 1e-12);
    EXPECT_NEAR(at(1.5, x, y), throughThree(1.5, {0, 1, 2}, {1, 2, 4}), 1e-12);
    EXPECT_NEAR(at(2.5, x, y), throughThree(2.5, {1, 2, 3}, {2, 4, 9}), 1e-12);
}

TEST_F(Interpolation, FallingGivesTheSameCurve) {
    Values const x{3, 2, 1, 0}, y{9, 4, 2, 1};
    EXPECT_NEAR(at(1.5, x, y, true), throughThree(1.5, {3, 2, 1}, {9, 4, 2}), 1e-12);
    EXPECT_NEAR(at(0.5, x, y, true), throughThree(0.5, {2, 1, 0}, {4, 2, 1}), 1e-12);
}

TEST_F(Interpolation, StraightWhereStepsOrSlopesAreUnlike) {
    EXPECT_DOUBLE_EQ(at(1.5, {0, 1, 12}, {0, 1, 23}), 1 + 22 * (0.5 / 11)) << "ratio of steps above 10";
    EXPECT_DOUBLE_EQ(at(11.5, {0, 11, 12}, {0, 11, 13}), 12) << "ratio of steps below a tenth";
    EXPECT_DOUBLE_EQ(at(1.5, {0, 1, 2}, {0, 1, 12}), 6.5) << "ratio of slopes above 10";
    EXPECT_DOUBLE_EQ(at(1.5, {0, 1, 2}, {0, 11, 12}), 11.5) << "ratio of slopes below a tenth";
    EXPECT_DOUBLE_EQ(at(1.5, {0, 1, 2}, {3, 3, 5}), 4) << "one slope is 0";
    EXPECT_DOUBLE_EQ(at(1.5, {1, 1, 2}, {0, 3, 5}), 4) << "a repeated x";
    EXPECT_DOUBLE_EQ(at(1.5, {0, 1, 2}, {3, 5, 3}), 4) << "a repeated y";
    EXPECT_DOUBLE_EQ(at(0.25, {0, 1}, {3, 5}), 3.5) << "two points";
}

TEST_F(Interpolation, RatiosOfTenAreStillAlike) {
    EXPECT_NEAR(at(1.5, {0, 1, 11}, {0, 1, 31}), throughThree(1.5, {0, 1, 11}, {0, 1, 31}), 1e-12);
    EXPECT_NEAR(at(1.5, {0, 1, 2}, {0, 1, 11}), throughThree(1.5, {0, 1, 2}, {0, 1, 11}), 1e-12);
    EXPECT_NEAR(at(1.5, {0, 1, 2}, {0, 1, -9}), throughThree(1.5, {0, 1, 2}, {0, 1, -9}), 1e-12);
}

TEST_F(Interpolation, NoOldPointLeavesTheNewOnesAlone) {
    EXPECT_EQ(resampled({1}, {}, {}), (Values{1e300}));
}

TEST_F(Interpolation, EveryValueLiesBetweenItsNeighboursOnARandomStraightCurve) {
    std::mt19937 random(12345);
    std::uniform_real_distribution<double> step(0.01, 5), value(-1, 1);
    Values x{0}, y{value(random)};
    for (int i = 0; i < 200; ++i) {
        x.push_back(x.back() + step(random));
        y.push_back(i % 2 == 0 ? y.back() : value(random)); // a slope of 0 in every triple
    }
    for (std::size_t i = 1; i < x.size(); ++i) {
        double const place = 0.3 * x[i - 1] + 0.7 * x[i];
        EXPECT_NEAR(at(place, x, y), 0.3 * y[i - 1] + 0.7 * y[i], 1e-9) << i;
    }
}

class CommonReference : public FrameTest {
protected:
    bool interpolate(dvec & a, dvec & b) {
        Curve const curveA{a, a.ref, a.owner()}, curveB{b, b.ref, b.owner()};
        return interpolateToCommonReference(curveA, curveB, &newA, &newB);
    }
    dvec * newA = nullptr;
    dvec * newB = nullptr;
};

TEST_F(CommonReference, TheLongerIsTheMaster) {
    dvec * a = makeVector("a", {{0, 10}}, {{0, 4}}, "s");
    dvec * b = makeVector("b", {{0, 1, 4, 9, 16}}, {{0, 1, 2, 3, 4}});
    a->setPhysType(PT_VOLTAGE);
    ASSERT_TRUE(interpolate(*a, *b));
    EXPECT_EQ(newB, nullptr);
    ASSERT_NE(newA, nullptr);
    EXPECT_EQ(divisionsOf(*newA), (Divisions{{0, 2.5, 5, 7.5, 10}}));
    EXPECT_TRUE(newA->ref.sharesRep(b->ref));
    EXPECT_EQ(newA->name(), "a");
    EXPECT_EQ(newA->physType(), PT_VOLTAGE);
    EXPECT_EQ(newA->owner(), a->owner());
    EXPECT_TRUE(newA->isTemporary());
}

TEST_F(CommonReference, OnEqualLengthTheFirstIsTheMaster) {
    ASSERT_TRUE(interpolate(*makeVector("a", {{1, 2, 4}}, {{0, 1, 2}}), *makeVector("b", {{5, 7, 8}}, {{0, 2, 3}})));
    EXPECT_EQ(newA, nullptr);
    ASSERT_NE(newB, nullptr);
    EXPECT_EQ(divisionsOf(newB->ref), (Divisions{{0, 1, 2}}));
    EXPECT_DOUBLE_EQ(newB->getReal(1), throughThree(1, {0, 2, 3}, {5, 7, 8}));
}

TEST_F(CommonReference, SteppedSignalsMeetOnTheUnionOfTheirX) {
    dvec * a = makeVector("a", {{0, 0, 1, 1}}, {{0, 1, 1, 3}});
    a->ref.setPhysType(PT_TIME);
    dvec * b = makeVector("b", {{5, 5, 7, 7}}, {{0, 2, 2, 4}});
    ASSERT_TRUE(interpolate(*a, *b));
    ASSERT_NE(newA, nullptr);
    ASSERT_NE(newB, nullptr);
    EXPECT_EQ(divisionsOf(newA->ref), (Divisions{{0, 1, 1, 2, 2, 3, 4}}));
    EXPECT_TRUE(newA->ref.sharesRep(newB->ref));
    EXPECT_EQ(divisionsOf(*newA), (Divisions{{0, 0, 1, 1, 1, 1, 1}}));
    EXPECT_EQ(divisionsOf(*newB), (Divisions{{5, 5, 5, 5, 7, 7, 7}}));
    EXPECT_EQ(newA->ref.physType(), PT_TIME);
    EXPECT_EQ(newA->ref.name(), "t");
}

TEST_F(CommonReference, TwoConstantsMeetOnTheUnionToo) {
    ASSERT_TRUE(interpolate(*makeVector("a", {{2, 2}}, {{0, 2}}), *makeVector("b", {{3, 3}}, {{1, 3}})));
    EXPECT_EQ(divisionsOf(newA->ref), (Divisions{{0, 1, 2, 3}}));
    EXPECT_EQ(divisionsOf(*newB), (Divisions{{3, 3, 3, 3}}));
}

TEST_F(CommonReference, SteppedSignalsMustRise) {
    std::size_t const before = LoosePool::count();
    EXPECT_FALSE(interpolate(*makeVector("a", {{2, 2}}, {{2, 0}}), *makeVector("b", {{3, 3}}, {{3, 1}})));
    EXPECT_FALSE(interpolate(*makeVector("a", {{2, 2}}, {{0, 1}}), *makeVector("b", {{3, 3}}, {{1, 1}})));
    EXPECT_EQ(LoosePool::count(), before + 4) << "nothing but the four operands";
}

TEST_F(CommonReference, RefusesWhatCannotBeInterpolated) {
    dvec * good = makeVector("a", {{1, 2, 3}}, {{0, 1, 2}});
    EXPECT_FALSE(interpolate(*good, *makeVector("b", {{1, 2}})));
    EXPECT_FALSE(interpolate(*makeVector("b", {{1, 2}}), *good));
    EXPECT_FALSE(interpolate(*good, *makeVector("b", {{1, 2}}, {{1, 0}})));
    EXPECT_FALSE(interpolate(*good, *makeVector("b", {{1, 2, 4, 3}}, {{0, 1, 0, 1}})));
    EXPECT_FALSE(interpolate(*good, *makeVector("b", {{1, 2, 4}}, {{0, 1}}))) << "y without x";
    dvec * pairs = makeComplexVector("z", {{1, 0}, {2, 0}});
    appendTo(pairs->ref, {{0, 1}});
    EXPECT_FALSE(interpolate(*good, *pairs));
    EXPECT_EQ(newA, nullptr);
    EXPECT_EQ(newB, nullptr);
}

TEST_F(CommonReference, AReferenceThatIsAheadCountsAsFarAsY) {
    dvec * a = makeVector("a", {{0, 10, 30}}, {{0, 1, 2, 3, 4}});
    dvec * b = makeVector("b", {{5, 6}}, {{0, 4}}, "s");
    ASSERT_TRUE(interpolate(*a, *b));
    ASSERT_NE(newB, nullptr);
    EXPECT_EQ(divisionsOf(*newB), (Divisions{{5, 5.25, 5.5}}));
}
