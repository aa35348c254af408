// Filters, histograms and builders of vectors.

#include "HandlerFrame.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

class Funcs1 : public HandlerFrame {
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
    void expectRefused(char const * name, Arguments const & arguments, char const * words) {
        EXPECT_EQ(callFunctionNamed(name, arguments), FUNC_FAILED);
        EXPECT_EQ(message(), words);
        EXPECT_EQ(y.totalLength(), 0);
    }
    Reals randomReals(std::size_t n, double low = -1, double high = 1) {
        Reals out(n);
        std::uniform_real_distribution<double> value(low, high);
        for (double & v : out) v = value(random);
        return out;
    }

    // The x of a polyline in a band.
    static Reals clipped(Reals const & x, double low, double high) {
        Reals out;
        if (x[0] >= low && x[0] <= high) out.push_back(x[0]);
        for (std::size_t i = 1; i < x.size(); ++i) {
            double const a = std::clamp(x[i - 1], low, high), b = std::clamp(x[i], low, high);
            bool const touches = a != b || (x[i] >= low && x[i] <= high);
            if (!touches) continue;
            if (a != x[i - 1]) out.push_back(a);
            if (a == x[i - 1] || a != b) out.push_back(b);
        }
        return out;
    }

    std::mt19937_64 random{std::random_device()()};
};

} // namespace

// --- filters

TEST_F(Funcs1, OneTapOfOneIsTheVectorItself) {
    Reals const v = randomReals(700);
    EXPECT_EQ(run("FIR", {real(v), real({1})}), v);
    EXPECT_EQ(run("IIR", {real(v), real({1})}), v);
}

TEST_F(Funcs1, ATapOfOneBehindIsADelay) {
    EXPECT_EQ(run("FIR", {real({7, 8, 9}), real({0, 1})}), (Reals{7, 7, 8}));
    EXPECT_EQ(run("FIR", {real({7, 8, 9}), real({0, 1}), real({5})}), (Reals{5, 7, 8}));
}

TEST_F(Funcs1, TheHistoryBelongsToTheTap) {
    // Taps 1 and 2 see 10 and 20 for every sample before the first, however far back.
    EXPECT_EQ(run("FIR", {real({1, 2, 3, 4}), real({0, 1, 1}), real({10, 20})}), (Reals{30, 21, 3, 5}));
    EXPECT_EQ(run("IIR", {real({1, 1, 1}), real({1, 1, 1}), real({10, 20})}), (Reals{31, 52, 84}));
}

TEST_F(Funcs1, AShortHistoryIsFilledWithZeros) {
    EXPECT_EQ(run("FIR", {real({1, 1, 1}), real({0, 1, 1}), real({10})}), (Reals{10, 1, 2}));
}

TEST_F(Funcs1, ALongHistoryIsCut) {
    EXPECT_EQ(run("FIR", {real({1}), real({1, 1}), real({10, 20, 30})}), (Reals{11}));
    EXPECT_EQ(run("IIR", {real({1}), real({1, 1}), real({10, 20, 30})}), (Reals{11}));
}

TEST_F(Funcs1, AFilterIsADirectConvolution) {
    for (std::size_t taps : {1u, 2u, 5u, 32u, 700u}) {
        Reals const v = randomReals(1500), c = randomReals(taps);
        Reals wanted;
        for (std::size_t i = 0; i < v.size(); ++i) {
            double sum = 0;
            for (std::size_t k = 0; k < c.size(); ++k) sum += c[k] * (k <= i ? v[i - k] : v[0]);
            wanted.push_back(sum);
        }
        EXPECT_EQ(run("FIR", {real(v), real(c)}), wanted) << taps << " taps: taps are added in order";
    }
}

TEST_F(Funcs1, FeedbackIsTheDifferenceEquation) {
    Reals const v = randomReals(300), c = {0.3, 0.5, -0.2};
    Reals const got = run("IIR", {real(v), real(c)});
    for (std::size_t i = 0; i < v.size(); ++i) {
        double const one = i > 0 ? got[i - 1] : 0, two = i > 1 ? got[i - 2] : 0;
        EXPECT_DOUBLE_EQ(got[i], v[i] * c[0] + c[1] * one + c[2] * two);
    }
}

TEST_F(Funcs1, AFilterCarriesReferenceAndUnits) {
    run("FIR", {waveform({0, 1}, {2, 3}), real({1})});
    EXPECT_EQ(places(), (Reals{0, 1}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_EQ(ref.physType(), PT_TIME);
}

// --- group delay

TEST_F(Funcs1, TheGroupDelayOfADelayIsTheDelay) {
    Pairs response;
    Reals f;
    for (int i = 0; i < 400; ++i) {
        f.push_back(1 + 0.01 * i * i);
        double const angle = -6.283185307179586 * 0.003 * f.back();
        response.push_back({std::cos(angle), std::sin(angle)});
    }
    XYVector & v = withReference(pairs(response), f, PT_FREQUENCY);
    for (double delay : run("GroupDelay", {v})) EXPECT_NEAR(delay, 0.003, 1e-9);
    EXPECT_EQ(y.physType(), PT_TIME);
    EXPECT_EQ(places(), f);
}

TEST_F(Funcs1, TheGroupDelayOfAParabolaIsExactInside) {
    Pairs response;
    Reals const f = {0, 0.2, 0.5, 0.6, 1.0};
    for (double x : f) response.push_back({std::cos(x * x), std::sin(x * x)});
    Reals const got = run("GroupDelay", {withReference(pairs(response), f)});
    for (std::size_t i = 1; i + 1 < f.size(); ++i) EXPECT_NEAR(got[i], 2 * f[i] / -6.283185307179586, 1e-12);
    EXPECT_NEAR(got[0], 0.2 / -6.283185307179586, 1e-12);
    EXPECT_NEAR(got[4], 1.6 / -6.283185307179586, 1e-12);
}

TEST_F(Funcs1, AComplexReferenceGivesItsRealPart) {
    XYVector & v = pairs({{1, 0}, {0, 1}});
    v.ref.setSize(2, VD_COMPLEX);
    v.ref.writableComplexData()[0] = {0, 7};
    v.ref.writableComplexData()[1] = {0.25, 9};
    EXPECT_NEAR(run("GroupDelay", {v})[0], -1, 1e-15);
    EXPECT_EQ(places(), (Reals{0, 0.25}));
}

TEST_F(Funcs1, ARealResponseHasNoDelay) {
    EXPECT_EQ(run("GroupDelay", {waveform({0, 1, 2}, {1, -1, 1})}), (Reals{0, 0, 0}));
    EXPECT_EQ(places(), (Reals{0, 1, 2}));
}

TEST_F(Funcs1, GroupDelayRefusesWhatHasNoSlope) {
    expectRefused("GroupDelay", {pairs({{1, 0}})}, "Need at least two points to find group delay");
    expectRefused("GroupDelay", {real({1})}, "Need at least two points to find group delay");
    expectRefused("GroupDelay", {pairs({{1, 0}, {1, 1}})}, "Argument 1 in function 'test' has no reference (xvalues)");
    for (Reals const & x : {Reals{0, 0, 1}, Reals{0, 1, 1}, Reals{0, 1, 0}})
        expectRefused("GroupDelay", {withReference(pairs({{1, 0}, {1, 1}, {0, 1}}), x)},
                      "Cannot find group delay. Argument has infinite slope");
}

// --- histogram

TEST_F(Funcs1, AHistogramCountsEveryValueOnce) {
    Reals const v = randomReals(10007, -3, 5);
    Reals const counts = run("Histogram", {real(v, PT_VOLTAGE), real({50})});
    ASSERT_EQ(counts.size(), 50u);
    double total = 0;
    for (double count : counts) total += count;
    EXPECT_EQ(total, 10007);
    EXPECT_EQ(y.physType(), PT_NONE);
    EXPECT_EQ(ref.physType(), PT_VOLTAGE);
}

TEST_F(Funcs1, TheReferenceHoldsTheMiddleOfEachBin) {
    EXPECT_EQ(run("Histogram", {real({0, 1, 2, 4}), real({2})}), (Reals{2, 2}));
    EXPECT_EQ(places(), (Reals{1, 3}));
}

TEST_F(Funcs1, TheGreatestValueJoinsTheLastBin) {
    EXPECT_EQ(run("Histogram", {real({0, 10}), real({5})}), (Reals{1, 0, 0, 0, 1}));
}

TEST_F(Funcs1, AFixedBinIsAWidth) {
    EXPECT_EQ(run("Histogram", {real({1, 2, 3, 6}), real({2}), strings({"FIXEDBIN"})}), (Reals{2, 1, 1}));
    EXPECT_EQ(places(), (Reals{2, 4, 6}));
    EXPECT_EQ(run("Histogram", {real({1, 2}), real({5}), strings({"fixedBin"})}).size(), 2u);
}

TEST_F(Funcs1, StepsDrawTheOutline) {
    EXPECT_EQ(run("Histogram", {real({0, 1, 2, 4}), real({2}), strings({"Step"})}), (Reals{2, 2, 2, 2}));
    EXPECT_EQ(places(), (Reals{0, 2, 2, 4}));
}

TEST_F(Funcs1, ThereAreTwoBinsAtLeast) {
    EXPECT_EQ(run("Histogram", {real({0, 1}), real({1})}), (Reals{1, 1}));
    EXPECT_EQ(run("Histogram", {real({0, 1}), real({0.5})}), (Reals{1, 1}));
}

TEST_F(Funcs1, NoBinsAreNothing) {
    for (double bins : {0.0, -3.0, std::nan("")}) EXPECT_TRUE(run("Histogram", {real({0, 1}), real({bins})}).empty());
}

TEST_F(Funcs1, AConstantHasNoHistogram) {
    expectRefused("Histogram", {real({2, 2}), real({5})}, "Constant values. Cannot build histogram");
    expectRefused("Histogram", {real({2}), real({5})}, "Constant values. Cannot build histogram");
}

TEST_F(Funcs1, WhatIsNoNumberFallsIntoNoBin) {
    EXPECT_EQ(run("Histogram", {real({0, std::nan(""), 1}), real({2})}), (Reals{1, 1}));
    EXPECT_EQ(run("Histogram", {real({0, infinity, 1}), real({2})}).size(), 2u);
}

TEST_F(Funcs1, BinsBeyondMemoryThrow) {
    EXPECT_THROW(callFunctionNamed("Histogram", {real({0, 1}), real({1e300})}), MemoryException);
    EXPECT_THROW(callFunctionNamed("Histogram", {real({0, 1}), real({1e-300}), strings({"fixedBin"})}),
                 MemoryException);
}

// --- search

TEST_F(Funcs1, LocatesAValueBetweenNeighbours) {
    Reals const rising = {1, 2, 4, 8, 16}, falling = {16, 8, 4, 2, 1};
    struct Case {
        double value, inRising, inFalling;
    };
    for (Case const & c : {Case{0.5, -1, 4}, {1, 0, 4}, {1.5, 0, 3}, {4, 2, 2}, {5, 2, 1}, {16, 4, 0}, {17, 4, -1}}) {
        EXPECT_EQ(run("Locate", {real(rising), real({c.value})}), (Reals{c.inRising})) << c.value;
        EXPECT_EQ(run("Locate", {real(falling), real({c.value})}), (Reals{c.inFalling})) << c.value;
    }
    EXPECT_EQ(run("Locate", {real({5}), real({1})}), (Reals{0}));
}

TEST_F(Funcs1, LocateAgreesWithALinearSearch) {
    for (std::size_t n : {2u, 3u, 17u, 64u, 65u, 1000u}) {
        Reals v = randomReals(n);
        std::sort(v.begin(), v.end());
        for (double value : randomReals(50)) {
            auto const behind = std::upper_bound(v.begin(), v.end(), value);
            EXPECT_EQ(run("Locate", {real(v), real({value})}), (Reals{static_cast<double>(behind - v.begin()) - 1}));
        }
    }
}

TEST_F(Funcs1, TheFirstOfEqualExtremesWins) {
    EXPECT_EQ(run("Maximum", {waveform({0, 1, 2, 3}, {1, 5, 5, 2})}), (Reals{5}));
    EXPECT_EQ(places(), (Reals{1}));
    EXPECT_EQ(run("Minimum", {waveform({0, 1, 2, 3}, {3, 1, 1, 2})}), (Reals{1}));
    EXPECT_EQ(places(), (Reals{1}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_EQ(ref.physType(), PT_TIME);
}

TEST_F(Funcs1, ExtremesKeepToTheirWindow) {
    XYVector & v = waveform({0, 1, 2, 3, 4}, {9, 2, 3, 1, 0});
    EXPECT_EQ(run("Maximum", {v, real({0.5}), real({3})}), (Reals{3}));
    EXPECT_EQ(run("Minimum", {v, real({1}), real({3})}), (Reals{1}));
    EXPECT_EQ(run("Minimum", {v, real({0.5}), real({2.5})}), (Reals{2}));
    EXPECT_TRUE(run("Maximum", {v, real({2}), real({1})}).empty());
    EXPECT_TRUE(run("Minimum", {v, real({4.5})}).empty());
}

TEST_F(Funcs1, TheMinimumSearchesItsStartWhereTheMaximumScans) {
    // x turns back: the search for x = 2 ends behind the first samples.
    XYVector & v = waveform({2, 3, 0, 1, 2, 3}, {-9, 9, 0, 0, 1, 2});
    EXPECT_EQ(run("Maximum", {v, real({2})}), (Reals{9}));
    EXPECT_EQ(run("Minimum", {v, real({2})}), (Reals{1}));
}

TEST_F(Funcs1, EqualXAtTheStartAreAllSeen) {
    EXPECT_EQ(run("Minimum", {waveform({0, 1, 1, 2}, {0, 3, 4, 5}), real({1})}), (Reals{3}));
}

TEST_F(Funcs1, WithoutXLimitsAreIgnored) {
    EXPECT_EQ(run("Maximum", {real({1, 5, 2}), real({100})}), (Reals{5}));
    EXPECT_EQ(run("Minimum", {real({1, 5, 2}), real({100})}), (Reals{1}));
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(Funcs1, ComplexExtremesGoByMagnitude) {
    EXPECT_EQ(run("Maximum", {pairs({{1, 0}, {3, -4}, {-4, 0}})}), (Reals{5}));
    EXPECT_EQ(run("Minimum", {pairs({{-2, 0}, {0, 1}})}), (Reals{1}));
}

TEST_F(Funcs1, NaNIsNoExtreme) {
    EXPECT_EQ(run("Maximum", {real({std::nan(""), 1, std::nan("")})}), (Reals{1}));
    EXPECT_TRUE(run("Minimum", {real({std::nan("")})}).empty());
}

// --- parts

TEST_F(Funcs1, ARangeOfEachKind) {
    EXPECT_EQ(run("Range", {waveform({0, 1, 2}, {5, 6, 7}), real({1})}), (Reals{6, 7}));
    EXPECT_EQ(places(), (Reals{1, 2}));
    EXPECT_EQ(ref.physType(), PT_TIME);
    EXPECT_STREQ(ref.name().c_str(), "x");
    callFunctionNamed("Range", {pairs({{1, 2}, {3, 4}}), real({1}), real({1.9})});
    EXPECT_EQ(complexes(), (Pairs{{3, 4}}));
    callFunctionNamed("Range", {strings({"a", "b", "c"}), real({0}), real({1})});
    EXPECT_EQ(texts(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(Funcs1, ARangeMustLieInside) {
    Reals const v = {1, 2, 3, 4, 5};
    for (auto const & [first, last] : {std::pair{3.0, 2.0}, {-1.0, 2.0}, {0.0, 5.0}, {1e300, 1e300}, {-1e300, 0.0}})
        expectRefused("Range", {real(v), real({first}), real({last})}, "Invalid range in 'Range()' function");
}

TEST_F(Funcs1, TheReferenceAsAVector) {
    EXPECT_EQ(run("Ref", {waveform({5, 6}, {1, 2})}), (Reals{5, 6}));
    EXPECT_EQ(y.physType(), PT_TIME);
    EXPECT_TRUE(run("Ref", {real({1, 2})}).empty());
}

TEST_F(Funcs1, AVectorOverAnother) {
    EXPECT_EQ(run("XY", {real({1, 2}, PT_VOLTAGE), real({5, 6}, PT_CURRENT)}), (Reals{1, 2}));
    EXPECT_EQ(places(), (Reals{5, 6}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_EQ(ref.physType(), PT_CURRENT);
    EXPECT_STREQ(ref.name().c_str(), "real");
}

TEST_F(Funcs1, SidesOfUnlikeLengthsKeepThem) {
    EXPECT_EQ(run("XY", {real({1, 2, 3}), real({5})}), (Reals{1, 0, 0}));
    EXPECT_EQ(places(), (Reals{5}));
    EXPECT_EQ(run("XY", {real({1}), real({5, 6})}), (Reals{1}));
    EXPECT_EQ(places(), (Reals{5, 0}));
}

TEST_F(Funcs1, OnesAndZerosAreTests) {
    EXPECT_EQ(run("Ones", {real({1, 1})}), (Reals{1}));
    EXPECT_EQ(run("Ones", {real({1, 2})}), (Reals{0}));
    EXPECT_EQ(run("Zeros", {real({0, -0.0})}), (Reals{1}));
    EXPECT_EQ(run("Zeros", {real({std::nan("")})}), (Reals{0}));
    EXPECT_EQ(run("Ones", {real({std::nan("")})}), (Reals{0}));
    EXPECT_EQ(run("Ones", {real({})}), (Reals{1}));
    EXPECT_EQ(run("Zeros", {real({})}), (Reals{1}));
}

// --- rms

TEST_F(Funcs1, TheRmsOfASineSettles) {
    Reals x, v;
    for (int i = 0; i <= 40000; ++i) {
        x.push_back(i * 1e-3 * 6.283185307179586);
        v.push_back(2 * std::sin(x.back()));
    }
    EXPECT_NEAR(run("Rms", {waveform(x, v)}).back(), std::sqrt(2.0), 1e-5);
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
}

TEST_F(Funcs1, TheRmsOfALineIsExact) {
    // The square of a straight line from 0 to 3 integrates to 9.
    Reals const got = run("Rms", {waveform({0, 1, 3}, {0, 1, 3})});
    EXPECT_EQ(got[0], 0);
    EXPECT_DOUBLE_EQ(got[1], std::sqrt(1.0 / 3));
    EXPECT_DOUBLE_EQ(got[2], std::sqrt(3.0));
}

TEST_F(Funcs1, RmsStandsStillWhereXDoes) {
    EXPECT_EQ(run("Rms", {waveform({1, 1, 2, 2}, {-3, -4, -4, 100})}), (Reals{3, 4, 4, 4}));
    expectRefused("Rms", {real({1, 2})}, "Argument 1 in function 'test' has no reference (xvalues)");
}

// --- truncation

TEST_F(Funcs1, ATruncatedWaveformIsCutAtItsLimits) {
    EXPECT_EQ(run("Truncate", {waveform({0, 1, 2, 3}, {0, 10, 20, 30}), real({0.5}), real({2.25})}),
              (Reals{5, 10, 20, 22.5}));
    EXPECT_EQ(places(), (Reals{0.5, 1, 2, 2.25}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_EQ(ref.physType(), PT_TIME);
    EXPECT_STREQ(ref.name().c_str(), "x");
}

TEST_F(Funcs1, LimitsMayStandEitherWayRound) {
    XYVector & v = waveform({0, 1, 2}, {0, 10, 20});
    EXPECT_EQ(run("Truncate", {v, real({1.5}), real({0.5})}), (Reals{5, 10, 15}));
    EXPECT_EQ(run("Truncate", {v, real({1})}), (Reals{10, 20}));
    EXPECT_EQ(run("Truncate", {v}), (Reals{0, 10, 20}));
}

TEST_F(Funcs1, OneStepOverTheBandGivesBothLimits) {
    EXPECT_EQ(run("Truncate", {waveform({0, 10}, {0, 100}), real({2}), real({3})}), (Reals{20, 30}));
    EXPECT_EQ(run("Truncate", {waveform({10, 0}, {100, 0}), real({2}), real({3})}), (Reals{30, 20}));
}

TEST_F(Funcs1, NothingOfAWaveformOutsideTheBand) {
    EXPECT_TRUE(run("Truncate", {waveform({0, 1}, {5, 6}), real({2}), real({3})}).empty());
    EXPECT_TRUE(run("Truncate", {waveform({4, 5}, {5, 6}), real({2}), real({3})}).empty());
}

// Each piece of the line clipped for itself; a point that ends one piece and begins the next counts once.
TEST_F(Funcs1, ATruncatedPolylineIsTheClippedOne) {
    std::uniform_int_distribution<int> whole(0, 6);
    for (int round = 0; round < 3000; ++round) {
        Reals x(8);
        for (double & place : x) place = whole(random);
        run("Truncate", {waveform(x, x), real({2}), real({4})});
        ASSERT_EQ(places(), clipped(x, 2, 4)) << testing::PrintToString(x);
        ASSERT_EQ(reals(), places());
    }
}

TEST_F(Funcs1, ALongPolylineThatWandersIsClipped) {
    std::uniform_int_distribution<int> step(-1, 1);
    for (int round = 0; round < 20; ++round) {
        Reals x(20000);
        for (std::size_t i = 1; i < x.size(); ++i) x[i] = x[i - 1] + step(random);
        for (double high : {5.0, 40.0, 1000.0}) {
            run("Truncate", {waveform(x, x), real({-high}), real({high})});
            ASSERT_EQ(places(), clipped(x, -high, high));
            ASSERT_EQ(reals(), places());
        }
    }
}

TEST_F(Funcs1, TruncationNeedsX) {
    for (XYVector & v : {std::ref(real({1, 2})), std::ref(pairs({{1, 2}}))})
        expectRefused("Truncate", {v}, "Argument 1 in function 'test' has no reference (xvalues)");
    expectRefused("Truncate", {withReference(pairs({{1, 2}}), {0})},
                  "Argument 1 in function 'test' is complex. Expected real");
}
