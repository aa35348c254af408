#include "support/Interpolate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using Reals = std::vector<double>;

struct Found {
    Reals ys;
    std::vector<std::int64_t> indices;
};

// Oldest first.
Found places(Reals const & y, Reals const & x, double target, InterpOpts const & options = {}) {
    YList<double> ys;
    YList<std::int64_t> indices;
    support_FindYFromX(&ys, &indices, y.data(), x.data(), static_cast<std::int64_t>(x.size()), target, options);
    return {Reals(ys.rbegin(), ys.rend()), {indices.rbegin(), indices.rend()}};
}

InterpOpts ofOrder(int order, int direction = 0) {
    InterpOpts options;
    options.order = order;
    options.direction = direction;
    return options;
}

} // namespace

TEST(Interp, ReproducesPolynomialsOfItsOrder) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> step(0.1, 2.0);
    for (int order = 0; order <= 6; ++order) {
        auto const polynomial = [order](double x) {
            double sum = 0;
            for (int k = 0; k <= order; ++k) sum = sum * x + (k + 1) * (k % 2 != 0 ? -1 : 1);
            return sum;
        };
        Reals x, y;
        double at = -1;
        for (int i = 0; i <= order; ++i) {
            x.push_back(at);
            y.push_back(polynomial(at));
            at += step(random);
        }
        for (double place : {x.front(), -0.3, 0.25, x.back()})
            EXPECT_NEAR(support_Interp(y.data(), x.data(), place, ofOrder(order)), polynomial(place),
                        1e-9 * (1 + std::fabs(polynomial(place))))
                << "order " << order << " at " << place;
    }
}

TEST(Interp, GoesThroughItsPoints) {
    Reals const x = {0, 1, 3}, y = {5, -2, 8};
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(support_Interp(y.data(), x.data(), x[i], ofOrder(2)), y[i]);
}

TEST(FindYFromX, FindsOnePlaceInMonotonicData) {
    Found const found = places({0, 10, 20, 40}, {0, 1, 2, 4}, 2.5);
    EXPECT_EQ(found.ys, (Reals{25}));
    EXPECT_EQ(found.indices, (std::vector<std::int64_t>{2}));
}

TEST(FindYFromX, ASampleIsFoundOnceWhereverItStands) {
    Reals const x = {0, 1, 2, 4};
    for (std::size_t i = 0; i < x.size(); ++i) {
        for (double sign : {1.0, -1.0}) {
            Reals turned;
            for (double value : x) turned.push_back(sign * value);
            Found const found = places({5, 6, 7, 8}, turned, sign * x[i]);
            EXPECT_EQ(found.ys, (Reals{5.0 + static_cast<double>(i)}));
            EXPECT_EQ(found.indices, (std::vector<std::int64_t>{static_cast<std::int64_t>(i < 3 ? i : 2)}));
        }
    }
}

TEST(FindYFromX, NothingLiesOutside) {
    EXPECT_TRUE(places({0, 1}, {0, 1}, -0.1).ys.empty());
    EXPECT_TRUE(places({0, 1}, {0, 1}, 1.1).ys.empty());
    EXPECT_TRUE(places({0, 1}, {0, 1}, std::nan("")).ys.empty());
    EXPECT_TRUE(places({}, {}, 0).ys.empty());
}

TEST(FindYFromX, OnePointIsFoundByItsOwnX) {
    EXPECT_EQ(places({7}, {3}, 3).ys, (Reals{7}));
    EXPECT_TRUE(places({7}, {3}, 4).ys.empty());
}

TEST(FindYFromX, DirectionsAreKeptApart) {
    Reals const x = {0, 2, 0, 2, 0}, y = {0, 1, 2, 3, 4};
    EXPECT_EQ(places(y, x, 1).ys, (Reals{0.5, 1.5, 2.5, 3.5}));
    EXPECT_EQ(places(y, x, 1, ofOrder(1, 1)).ys, (Reals{0.5, 2.5}));
    EXPECT_EQ(places(y, x, 1, ofOrder(1, -1)).ys, (Reals{1.5, 3.5}));
}

TEST(FindYFromX, APeakThatTouchesTheLevelIsOnePlace) {
    EXPECT_EQ(places({0, 1, 2}, {0, 1, 0}, 1).ys, (Reals{1}));
}

TEST(FindYFromX, APlateauOnTheLevelIsLeftOnce) {
    EXPECT_EQ(places({0, 1, 2, 3}, {0, 1, 1, 2}, 1).ys, (Reals{2}));
}

TEST(FindYFromX, ACrossingStaysInItsPiece) {
    // The parabola through (0, 0), (1, 10), (2, 10.5) is above 10.5 before x = 2.
    InterpOpts options = ofOrder(2);
    Found found = places({0, 10, 10.5}, {0, 1, 2}, 1.9, options);
    ASSERT_EQ(found.ys.size(), 1u);
    EXPECT_GT(found.ys[0], 10.5);
    options.flags = 1;
    found = places({0, 10, 10.5}, {0, 1, 2}, 1.9, options);
    ASSERT_EQ(found.ys.size(), 1u);
    EXPECT_NEAR(found.ys[0], 10.45, 1e-12);
}

TEST(FindYFromX, EqualXBesideThePieceLeaveTheLine) {
    EXPECT_EQ(places({0, 10, 20}, {0, 1, 1}, 0.5, ofOrder(2)).ys, (Reals{5}));
}

TEST(FindYFromX, HigherOrdersAreLimitedByTheData) {
    EXPECT_EQ(places({0, 10}, {0, 1}, 0.5, ofOrder(9)).ys, (Reals{5}));
    EXPECT_EQ(places({0, 1, 4}, {0, 1, 2}, 1.5, ofOrder(2)).ys, (Reals{2.25}));
}

TEST(FindYFromX, AgreesWithASearchPieceByPiece) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> value(-1, 1);
    for (int round = 0; round < 50; ++round) {
        Reals x(2000), y(2000);
        for (std::size_t i = 0; i < x.size(); ++i) {
            x[i] = value(random);
            y[i] = static_cast<double>(i);
        }
        double const target = value(random);
        Reals wanted;
        for (std::size_t i = 0; i + 1 < x.size(); ++i)
            if ((x[i] < target) != (x[i + 1] < target)) wanted.push_back(static_cast<double>(i));
        Found const found = places(y, x, target);
        ASSERT_EQ(found.ys.size(), wanted.size());
        for (std::size_t k = 0; k < wanted.size(); ++k) {
            EXPECT_EQ(static_cast<double>(found.indices[k]), wanted[k]);
            double const at = found.ys[k] - wanted[k];
            auto const i = static_cast<std::size_t>(found.indices[k]);
            EXPECT_NEAR(x[i] + (x[i + 1] - x[i]) * at, target, 1e-12);
        }
    }
}

TEST(BinarySearch, BracketsAValue) {
    Reals const rising = {1, 2, 2, 5}, falling = {5, 2, 2, 1};
    struct Case {
        double value;
        std::int64_t lowerRising, lowerFalling;
    };
    for (Case const & c : {Case{0, -1, 3}, {1, 0, 3}, {2, 2, 2}, {3, 2, 0}, {5, 3, 0}, {6, 3, -1}}) {
        std::int64_t lower = 9, upper = 9;
        sp_BinarySearch(rising.data(), 4, c.value, &lower, &upper, 1);
        EXPECT_EQ(lower, c.lowerRising) << c.value;
        EXPECT_EQ(upper, lower + 1);
        sp_BinarySearch(falling.data(), 4, c.value, &lower, &upper, -1);
        EXPECT_EQ(lower, c.lowerFalling) << c.value;
        EXPECT_EQ(upper, lower + 1);
    }
}

TEST(BinarySearch, ComplexElementsGoByMagnitude) {
    std::vector<complex> const data = {{1, 0}, {0, -2}, {3, 4}};
    std::int64_t lower = 9, upper = 9;
    sp_BinarySearch(data.data(), 3, 2.5, &lower, &upper, 1);
    EXPECT_EQ(lower, 1);
    EXPECT_EQ(upper, 2);
}
