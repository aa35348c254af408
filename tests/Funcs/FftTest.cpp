// Interpolation and measures of waveforms.

#include "HandlerFrame.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <random>

namespace {

constexpr double turn = 6.283185307179586;
constexpr double greatest = std::numeric_limits<double>::max();

class Measures : public HandlerFrame {
protected:
    using Arguments = std::vector<std::reference_wrapper<XYVector>>;

    XYVector & waveform(Reals const & x, Reals const & values) {
        return withReference(real(values, PT_VOLTAGE), x, PT_TIME);
    }
    Reals run(char const * name, Arguments const & arguments) {
        EXPECT_EQ(callFunctionNamed(name, arguments), FUNC_OK);
        EXPECT_TRUE(isSilent());
        return y.totalLength() > 0 ? reals() : Reals();
    }
    Reals places() const {
        return ref.realData() != nullptr ? Reals(ref.realData(), ref.realData() + ref.length()) : Reals();
    }
    void expectRefused(FUNC_ERROR code, char const * name, Arguments const & arguments, std::string const & words) {
        EXPECT_EQ(callFunctionNamed(name, arguments), code);
        EXPECT_EQ(message(), words);
        EXPECT_EQ(y.totalLength(), 0);
    }
    Reals unevenGrid(std::size_t n) {
        Reals x(n);
        for (std::size_t i = 1; i < n; ++i) x[i] = x[i - 1] + std::uniform_real_distribution<double>(0.01, 0.1)(random);
        return x;
    }
    template <class F> Reals sampled(Reals const & x, F f) {
        Reals out;
        for (double at : x) out.push_back(f(at));
        return out;
    }

    std::mt19937_64 random{std::random_device()()};
};

char const noReference[] = "Argument 1 in function 'test' has no reference (xvalues)";

// The search as a queue of points, sample by sample.
struct QueueSearch {
    struct Point {
        double x, y;
        bool marker;
    };
    std::vector<Point> queue, found;
    bool upward, ends, interpolates;

    bool beats(double a, double b) const { return upward ? a > b : a < b; }
    void close() {
        Point const last = queue.back();
        queue.pop_back();
        queue.back() = {(queue.back().x + last.x) / 2, last.y, last.marker};
    }
    void judge() {
        Point const left = queue[0], centre = queue[1], right = queue[2];
        queue.erase(queue.begin());
        if (left.marker && right.marker) return;
        if (!beats(centre.y, left.y) || !beats(centre.y, right.y)) return;
        if (!interpolates || left.marker || right.marker) {
            found.push_back(centre);
            return;
        }
        double const d = (left.y - centre.y) / (left.x - centre.x);
        double const c = ((centre.y - right.y) / (centre.x - right.x) - d) / (right.x - left.x);
        double const at = (d - (left.x + centre.x) * c) * (-0.5) / c;
        found.push_back({at, left.y + d * (at - left.x) + c * (at - left.x) * (at - centre.x), false});
    }
    void run(std::vector<double> const & x, std::vector<double> const & y) {
        double const worst = upward ? -greatest : greatest;
        if (ends) queue.push_back({-greatest, worst, true});
        for (std::size_t i = 0; i < x.size(); ++i) {
            bool const last = i + 1 == x.size();
            std::size_t const n = queue.size();
            if (n >= 2 && queue[n - 1].y == queue[n - 2].y) {
                if (y[i] == queue[n - 1].y) {
                    queue[n - 1] = {x[i], y[i], false};
                    if (last) close();
                } else {
                    close();
                    queue.push_back({x[i], y[i], false});
                }
            } else {
                queue.push_back({x[i], y[i], false});
            }
            if (last && ends) queue.push_back({greatest, worst, true});
            while (queue.size() >= 5 || (last && queue.size() >= 3)) judge();
        }
    }
};

} // namespace

// --- Interp

TEST_F(Measures, ResamplingStopsOneIntervalShort) {
    XYVector & v = waveform({0, 1, 2, 3}, {0, 10, 20, 30});
    EXPECT_EQ(run("Interp", {v, real({3})}), (Reals{0, 10, 20}));
    EXPECT_EQ(places(), (Reals{0, 1, 2}));
    EXPECT_EQ(run("Interp", {v, real({3}), real({2}), real({1})}), (Reals{0, 15, 30}));
    EXPECT_EQ(places(), (Reals{0, 1.5, 3}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_EQ(ref.physType(), PT_TIME);
    EXPECT_STREQ(ref.name().c_str(), "x");
}

TEST_F(Measures, AnIntervalMayBeGiven) {
    XYVector & v = waveform({0, 1, 2, 3}, {0, 10, 20, 30});
    EXPECT_EQ(run("Interp", {v, real({0.75}), real({1}), real({0, 1})}), (Reals{0, 7.5, 15, 22.5, 30}));
    run("Interp", {v, real({0.1}), real({1}), real({0, 1})});
    EXPECT_EQ(y.totalLength(), 31) << "3 / 0.1 is not quite 30";
}

TEST_F(Measures, StartAndEndMayBeGiven) {
    XYVector & v = waveform({0, 1, 2, 3}, {0, 10, 20, 30});
    EXPECT_EQ(run("Interp", {v, real({2, 1, 2}), real({1})}), (Reals{10, 15}));
    EXPECT_EQ(run("Interp", {v, real({2, 1, 2}), real({1}), real({1})}), (Reals{10, 20}));
}

TEST_F(Measures, ResamplingReproducesPolynomialsOfItsOrder) {
    Reals const x = unevenGrid(60);
    auto const cubic = [](double t) { return ((t - 2) * t + 3) * t - 1; };
    Reals const got = run("Interp", {waveform(x, sampled(x, cubic)), real({500}), real({3})}), at = places();
    for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], cubic(at[i]), 1e-9 * (1 + std::fabs(got[i])));
}

TEST_F(Measures, ResamplingOfAnyOrderGoesThroughTheSamples) {
    Reals x(200);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<double>(i);
    Reals const values = sampled(x, [](double t) { return std::fmod(t, 3); });
    for (double order : {1.0, 64.0, 65.0, 100.0, 1e9})
        EXPECT_EQ(run("Interp", {waveform(x, values), real({200}), real({order}), real({1})}), values) << order;
}

TEST_F(Measures, ResamplingWithoutXCountsElements) {
    EXPECT_EQ(run("Interp", {real({0, 10, 20, 30}), real({2}), real({1}), real({1})}), (Reals{0, 30}));
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(Measures, ResamplingNeedsTwoPoints) {
    XYVector & v = waveform({0, 1}, {0, 1});
    std::string const words = "Need at least 2 points for interpolation in function 'test'";
    for (double count : {1.9, 0.0, -5.0, std::nan("")}) expectRefused(FUNC_FAILED, "Interp", {v, real({count})}, words);
    expectRefused(FUNC_FAILED, "Interp", {v, real({2}), real({1}), real({0, 1})}, words);
    expectRefused(FUNC_FAILED, "Interp", {v, real({0}), real({1}), real({0, 1})}, "");
    expectRefused(FUNC_FAILED, "Interp", {real({0, 1}), real({1}), real({1}), real({0, 1})}, "");
    EXPECT_THROW(callFunctionNamed("Interp", {v, real({1e300})}), MemoryException);
}

// --- peaks

TEST_F(Measures, ATriangleHasOnePeak) {
    EXPECT_EQ(run("Maxima", {waveform({0, 1, 2}, {0, 5, 0})}), (Reals{5}));
    EXPECT_EQ(places(), (Reals{1}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_EQ(ref.physType(), PT_TIME);
}

TEST_F(Measures, ParabolasHaveTheirVertex) {
    Reals const x = {0.1, 0.4, 1.1};
    auto const parabola = [](double t) { return 3 - 2 * (t - 0.6) * (t - 0.6); };
    EXPECT_NEAR(run("Maxima", {waveform(x, sampled(x, parabola))}).at(0), 3, 1e-12);
    EXPECT_NEAR(places()[0], 0.6, 1e-12);
    EXPECT_EQ(run("Maxima", {waveform(x, sampled(x, parabola)), real({0}), strings({"NOINTERP"})}),
              (Reals{parabola(0.4)}));
    auto const cup = [&](double t) { return -parabola(t); };
    EXPECT_NEAR(run("Minima", {waveform(x, sampled(x, cup))}).at(0), -3, 1e-12);
}

TEST_F(Measures, TheEndsMayBePeaks) {
    XYVector & ramp = waveform({0, 1, 2}, {1, 2, 3});
    EXPECT_EQ(run("Maxima", {ramp}), (Reals{3}));
    EXPECT_EQ(places(), (Reals{2}));
    EXPECT_EQ(run("Minima", {ramp}), (Reals{1}));
    EXPECT_TRUE(run("Maxima", {ramp, real({-10}), strings({"noendpts"})}).empty());
}

TEST_F(Measures, AFlatTopIsOnePeakInItsMiddle) {
    EXPECT_EQ(run("Maxima", {waveform({0, 1, 2, 3, 4}, {0, 5, 5, 5, 0})}), (Reals{5}));
    EXPECT_EQ(places(), (Reals{2}));
    EXPECT_EQ(run("Maxima", {waveform({0, 1, 2, 3}, {0, 5, 5, 0})}), (Reals{5}));
    EXPECT_EQ(places(), (Reals{1.5}));
}

TEST_F(Measures, PeaksComeBestFirstUnlessSortedByX) {
    XYVector & v = waveform({0, 1, 2, 3, 4, 5, 6}, {0, 1, 0, 3, 0, 2, 0});
    Strings const plain = {"nointerp"}, byX = {"nointerp", "XSort"};
    EXPECT_EQ(run("Maxima", {v, real({0}), strings(plain)}), (Reals{3, 2, 1}));
    EXPECT_EQ(places(), (Reals{3, 5, 1}));
    EXPECT_EQ(run("Maxima", {v, real({0}), strings(byX)}), (Reals{1, 3, 2}));
}

TEST_F(Measures, LimitsAreEdgesToPass) {
    XYVector & v = waveform({0, 1, 2, 3, 4, 5, 6}, {0, 1, 0, 3, 0, 2, 0});
    Strings const words = {"nointerp", "noendpts"};
    EXPECT_EQ(run("Maxima", {v, real({1}), strings(words)}), (Reals{3, 2}));
    EXPECT_EQ(run("Maxima", {v, real({1, 3}), strings(words)}), (Reals{2}));
    XYVector & w = waveform({0, 1, 2, 3, 4, 5, 6}, {0, -1, 0, -3, 0, -2, 0});
    EXPECT_EQ(run("Minima", {w, real({-1}), strings(words)}), (Reals{-3, -2}));
    EXPECT_EQ(run("Minima", {w, real({-1, -3}), strings(words)}), (Reals{-2}));
}

TEST_F(Measures, NeighboursMustKeepTheirDistance) {
    XYVector & v = waveform({0, 1, 1.1, 3, 6, 9}, {0, 4, 0, -1, 5, 0});
    Strings const words = {"nointerp"};
    EXPECT_EQ(run("Maxima", {v, real({0}), strings(words), real({0.5})}), (Reals{5}));
    EXPECT_EQ(run("Maxima", {v, real({0}), strings(words), real({0.05})}), (Reals{5, 4}));
}

TEST_F(Measures, PeaksAgreeWithTheQueueOfPoints) {
    std::uniform_int_distribution<int> level(0, 3), length(2, 14);
    for (int round = 0; round < 20000; ++round) {
        Reals x, values;
        for (int i = length(random); i > 0; --i) {
            x.push_back(static_cast<double>(x.size()));
            values.push_back(level(random));
        }
        for (bool ends : {true, false}) {
            QueueSearch wanted{{}, {}, round % 2 == 0, ends, false};
            wanted.run(x, values);
            Strings words = {"xsort", "nointerp"};
            if (!ends) words.push_back("noendpts");
            Reals const got = run(wanted.upward ? "Maxima" : "Minima",
                                  {waveform(x, values), real({wanted.upward ? -1.0 : 9.0}), strings(words)});
            Reals ys, xs;
            for (auto const & peak : wanted.found) {
                ys.push_back(peak.y);
                xs.push_back(peak.x);
            }
            ASSERT_EQ(got, ys) << testing::PrintToString(values) << (ends ? "" : " without ends");
            ASSERT_EQ(got.empty() ? Reals() : places(), xs) << testing::PrintToString(values);
        }
    }
}

TEST_F(Measures, InterpolatedPeaksAgreeWithTheQueueOfPoints) {
    Reals const x = unevenGrid(5000),
                values = sampled(x, [this](double t) {
                    return std::sin(7 * t) + std::uniform_real_distribution<double>(-0.1, 0.1)(random);
                });
    QueueSearch wanted{{}, {}, true, true, true};
    wanted.run(x, values);
    Reals const got = run("Maxima", {waveform(x, values), real({-10}), strings({"xsort"})}), at = places();
    ASSERT_EQ(got.size(), wanted.found.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
        EXPECT_NEAR(at[i], wanted.found[i].x, 1e-9);
        EXPECT_NEAR(got[i], wanted.found[i].y, 1e-9);
    }
}

TEST_F(Measures, FallingXHasTheSamePeaks) {
    EXPECT_EQ(run("Maxima", {waveform({3, 2, 1, 0}, {0, 1, 4, 9})}), (Reals{9}));
    EXPECT_EQ(places(), (Reals{0}));
}

TEST_F(Measures, OnePointHasNoPeak) {
    EXPECT_TRUE(run("Maxima", {waveform({0}, {1})}).empty());
    EXPECT_TRUE(run("Maxima", {waveform({0, 1, 2}, {1, 1, 1})}).empty());
    expectRefused(FUNC_FAILED, "Maxima", {real({1, 2})}, noReference);
    expectRefused(FUNC_FAILED, "Minima", {real({1, 2})}, noReference);
}

TEST_F(Measures, WhatIsNoNumberIsNoPeak) {
    double const nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(run("Maxima", {waveform({0, 1, 2, 3, 4}, {0, nan, 0, 5, 0}), real({0}), strings({"nointerp"})}),
              (Reals{5}));
    EXPECT_EQ(run("Maxima", {waveform({0, 1, 2, 3, 4}, {0, infinity, 0, 5, 0}), real({0}), strings({"nointerp"})}),
              (Reals{infinity, 5}));
    run("Maxima", {waveform({0, 1, 2, 1, 0}, {0, 2, 1, 3, 0})});
}

// --- crossings

TEST_F(Measures, CrossingsOfASineAreItsRoots) {
    Reals x;
    for (int i = 0; i <= 4000; ++i) x.push_back(i * 0.005 + (i % 3) * 0.0011);
    XYVector & v = waveform(x, sampled(x, [](double t) { return std::sin(t + 0.5); }));
    Reals const got = run("XFromY", {v, real({0})});
    ASSERT_EQ(got.size(), 6u);
    for (std::size_t k = 0; k < got.size(); ++k)
        EXPECT_NEAR(got[k], turn / 2 * (static_cast<double>(k) + 1) - 0.5, 1e-6);
    EXPECT_EQ(y.physType(), PT_TIME);
    EXPECT_EQ(run("XFromY", {v, real({0}), real({2}), real({1})}).size(), 3u);
    EXPECT_EQ(run("XFromY", {v, real({0}), real({2}), real({-5})}).size(), 3u);
    EXPECT_TRUE(run("XFromY", {v, real({2})}).empty());
}

TEST_F(Measures, CrossingsLieOnTheCurve) {
    Reals const x = unevenGrid(500), values = sampled(x, [](double t) { return std::sin(t) + 1.5 * t; });
    XYVector & v = waveform(x, values);
    for (double level : {0.4, 5.0, 17.0}) {
        for (double at : run("XFromY", {v, real({level}), real({3})})) {
            EXPECT_NEAR(std::sin(at) + 1.5 * at, level, 1e-5) << "at " << at;
        }
    }
}

TEST_F(Measures, ValuesAtAPlace) {
    XYVector & v = waveform({0, 1, 2}, {0, 1, 4});
    EXPECT_EQ(run("YFromX", {v, real({1.5})}), (Reals{2.25}));
    EXPECT_EQ(run("YFromX", {v, real({1.5}), real({1})}), (Reals{2.5}));
    EXPECT_EQ(run("YFromX", {v, real({2})}), (Reals{4}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_TRUE(run("YFromX", {v, real({2.1})}).empty());
    EXPECT_TRUE(run("YFromX", {v, real({-0.1})}).empty());
}

TEST_F(Measures, PeriodsPairEveryOtherCrossing) {
    XYVector & v = waveform({0, 1, 2, 3, 4, 5, 6}, {-1, 1, -1, 1, -1, 1, -1});
    Reals const level = {0};
    EXPECT_EQ(run("CyclePeriod", {v, real(level)}), (Reals{2, 2, 2, 2}));
    EXPECT_EQ(places(), (Reals{2.5, 3.5, 4.5, 5.5}));
    run("CyclePeriod", {v, real(level), real({2}), real({1})});
    EXPECT_EQ(places(), (Reals{1.5, 2.5, 3.5, 4.5}));
    run("CyclePeriod", {v, real(level), real({2}), real({2})});
    EXPECT_EQ(places(), (Reals{0.5, 1.5, 2.5, 3.5}));
    run("CyclePeriod", {v, real(level), real({2}), real({3})});
    EXPECT_EQ(places(), (Reals{2.5, 3.5, 4.5, 5.5}));
    EXPECT_EQ(y.physType(), PT_TIME);
    EXPECT_EQ(ref.physType(), PT_TIME);
}

TEST_F(Measures, TwoCrossingsMakeNoPeriod) {
    EXPECT_TRUE(run("CyclePeriod", {waveform({0, 1, 2}, {-1, 1, -1}), real({0})}).empty());
}

TEST_F(Measures, CrossingsNeedX) {
    for (char const * name : {"XFromY", "YFromX", "CyclePeriod"})
        expectRefused(FUNC_FAILED, name, {real({1, 2}), real({0})}, noReference);
}

// --- DiffMergeVecs

TEST_F(Measures, TheDifferenceStandsOnTheMergedGrid) {
    EXPECT_EQ(run("DiffMergeVecs", {waveform({0, 2, 4}, {0, 2, 4}), waveform({0, 1, 2, 3, 4}, {1, 1, 1, 1, 1})}),
              (Reals{-1, 0, 1, 2, 3}));
    EXPECT_EQ(places(), (Reals{0, 1, 2, 3, 4}));
}

TEST_F(Measures, TheTailOfTheLongerGridIsDropped) {
    run("DiffMergeVecs", {waveform({0, 1, 2, 3}, {0, 0, 0, 0}), waveform({0, 1.5}, {1, 1})});
    EXPECT_EQ(places(), (Reals{0, 1, 1.5}));
}

TEST_F(Measures, StraightLinesDifferByAStraightLine) {
    Reals const xa = unevenGrid(200), xb = unevenGrid(300);
    Reals const got = run("DiffMergeVecs", {waveform(xa, sampled(xa, [](double t) { return 3 * t; })),
                                            waveform(xb, sampled(xb, [](double t) { return 1 - t; }))});
    Reals const at = places();
    for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], 4 * at[i] - 1, 1e-11);
    EXPECT_TRUE(std::is_sorted(at.begin(), at.end()));
    EXPECT_EQ(std::adjacent_find(at.begin(), at.end()), at.end()) << "equal x enter once";
}

TEST_F(Measures, NothingIsMergedWithOnePointOrNone) {
    EXPECT_TRUE(run("DiffMergeVecs", {waveform({0}, {1}), waveform({0, 1}, {1, 2})}).empty());
    EXPECT_TRUE(run("DiffMergeVecs", {waveform({0, 1}, {1, 2}), waveform({0}, {1})}).empty());
    EXPECT_TRUE(run("DiffMergeVecs", {real({1, 2}), real({1, 2})}).empty());
}

// --- integral measures

TEST_F(Measures, TheMeanOfALineIsItsMiddle) {
    Reals const x = unevenGrid(200);
    XYVector & v = waveform(x, sampled(x, [](double t) { return 2 * t + 1; }));
    EXPECT_NEAR(run("Mean1", {v}).at(0), x.back() + 1, 1e-11);
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    std::uniform_real_distribution<double> place(0, x.back());
    for (int round = 0; round < 100; ++round) {
        auto const [from, to] = std::minmax({place(random), place(random)});
        EXPECT_NEAR(run("Mean1", {v, real({from}), real({to})}).at(0), from + to + 1, 1e-9);
    }
}

TEST_F(Measures, TheRmsOfASineIsItsAmplitudeByRootTwo) {
    Reals x;
    for (int i = 0; i <= 20000; ++i) x.push_back(i * turn / 20000);
    XYVector & v = waveform(x, sampled(x, [](double t) { return 3 * std::sin(t); }));
    EXPECT_NEAR(run("RMS1", {v}).at(0), 3 / std::sqrt(2.0), 1e-6);
    EXPECT_NEAR(run("RMS1", {v, real({turn / 4}), real({turn / 2})}).at(0), 3 / std::sqrt(2.0), 1e-6);
}

TEST_F(Measures, NoiseSumsAsTheRootOfTheIntegralOfSquares) {
    XYVector & v = withReference(real({2, 2, 2}, PT_VOLTAGE_PER_ROOT_HERTZ), {1, 5, 101}, PT_FREQUENCY);
    for (char const * name : {"SumNoise", "RootSumOfSquares"}) {
        EXPECT_EQ(run(name, {v}), (Reals{20}));
        EXPECT_EQ(y.physType(), PT_VOLTAGE);
        EXPECT_EQ(run(name, {v, real({5}), real({30})}), (Reals{10}));
    }
}

TEST_F(Measures, AnEndBehindTheDataCountsAsNone) {
    XYVector & v = waveform({0, 1, 2}, {0, 1, 2});
    EXPECT_EQ(run("Mean1", {v, real({0}), real({2})}), (Reals{1}));
    EXPECT_EQ(run("Mean1", {v, real({0}), real({99})}), (Reals{1}));
    EXPECT_EQ(run("Mean1", {v, real({-5}), real({99})}), (Reals{1})) << "a start ahead of the data is the first x";
}

TEST_F(Measures, OnePointHasNoMean) {
    EXPECT_TRUE(std::isnan(run("Mean1", {waveform({1}, {5})}).at(0)));
    EXPECT_EQ(run("RMS1", {waveform({1}, {5})}), (Reals{0}));
}

TEST_F(Measures, IntegralsSayWhatIsWrongWithTheirLimits) {
    XYVector & v = waveform({0, 1, 2}, {0, 1, 2});
    for (char const * name : {"Mean1", "RMS1", "SumNoise", "RootSumOfSquares"}) {
        expectRefused(FUNC_NO_RESULT, name, {real({1, 2})}, noReference);
        expectRefused(FUNC_NO_RESULT, name, {v, real({2}), real({1})}, "Start is after end in 'test' function");
        expectRefused(FUNC_NO_RESULT, name, {v, real({5}), real({5})},
                      "Start and end are identical in 'test' function");
        expectRefused(FUNC_NO_RESULT, name, {v, real({3})},
                      "The x value specified for the 'test' function is out of range");
        expectRefused(FUNC_NO_RESULT, name, {waveform({0, 2, 1, 3}, {0, 1, 2, 3}), real({1.5})},
                      "Argument to 'test' function is non-monotonic");
    }
}
