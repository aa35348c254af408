// Every element routine against the function it stands for, its guards, and the routines that see the whole array.

#include "Funcs/MathKernels.h"

#include "NumberSamples.h"
#include "torvelan/Complex.h"

#include <gtest/gtest.h>

#include <complex>
#include <functional>
#include <string>

namespace mk = mathkernels;

namespace {

using Values = std::vector<double>;

constexpr double degree = 0.017453292519943295;

double const infinity = std::numeric_limits<double>::infinity();

Values run(mk::Routine routine, Values const & in, std::size_t outSize, int code = 0) {
    Values out(outSize, 77.0);
    EXPECT_EQ(routine(out.data(), in.data(), in.size()), code);
    return out;
}

// A routine of pairs; `width` doubles in an element of the result.
Values runPairs(mk::Routine routine, Values const & in, std::size_t width, int code = 0) {
    Values out(in.size() / 2 * width, 77.0);
    EXPECT_EQ(routine(out.data(), in.data(), in.size() / 2), code);
    return out;
}

double one(mk::Routine routine, double x) {
    return run(routine, {x}, 1)[0];
}

int codeOf(mk::Routine routine, Values const & in, std::size_t count) {
    Values out(in.size());
    return routine(out.data(), in.data(), count);
}

struct RealCase {
    char const * name;
    mk::Routine routine;
    std::function<double(double)> function;
    std::uint64_t tolerance; // in doubles
    bool positive;           // arguments that are not are refused
};

RealCase const realCases[] = {
    {"absolute", mk::absolute, [](double x) { return std::fabs(x); }, 0, false},
    {"copyReal", mk::copyReal, [](double x) { return x; }, 0, false},
    {"zeros", mk::zeros, [](double) { return 0.0; }, 0, false},
    {"sign", mk::sign, [](double x) { return x > 0 ? 1.0 : 0.0; }, 0, false},
    {"negate", mk::negate, [](double x) { return -x; }, 0, false},
    {"logicalNot", mk::logicalNot, [](double x) { return x == 0 ? 1.0 : 0.0; }, 0, false},
    {"floor", mk::floor, [](double x) { return std::floor(x); }, 0, false},
    {"sqrt", mk::sqrt, [](double x) { return std::sqrt(x); }, 0, true},
    {"log10", mk::log10, [](double x) { return std::log10(x); }, 1, true},
    {"log", mk::log, [](double x) { return std::log(x); }, 1, true},
    {"sin", mk::sin, [](double x) { return std::sin(x); }, 1, false},
    {"cos", mk::cos, [](double x) { return std::cos(x); }, 1, false},
    {"tan", mk::tan, [](double x) { return std::tan(x); }, 1, false},
    {"atan", mk::atan, [](double x) { return std::atan(x); }, 1, false},
    {"sinDegrees", mk::sinDegrees, [](double x) { return std::sin(x * degree); }, 1, false},
    {"cosDegrees", mk::cosDegrees, [](double x) { return std::cos(x * degree); }, 1, false},
    {"tanDegrees", mk::tanDegrees, [](double x) { return std::tan(x * degree); }, 1, false},
    {"atanDegrees", mk::atanDegrees, [](double x) { return std::atan(x) * 57.29577951308232; }, 2, false},
    {"tanh", mk::tanh, [](double x) { return std::tanh(x); }, 1, false},
    {"sinh", mk::sinh, [](double x) { return static_cast<double>(std::sinh(static_cast<long double>(x))); }, 1, false},
    {"cosh", mk::cosh, [](double x) { return static_cast<double>(std::cosh(static_cast<long double>(x))); }, 1, false},
};

Values arguments(RealCase const & c, std::size_t count, NumberSamples & samples) {
    Values in = samples.many(count);
    if (c.positive)
        for (double & x : in) x = x == 0 ? 1.0 : std::fabs(x);
    return in;
}

struct ComplexCase {
    char const * name;
    mk::Routine routine;
    complex (*function)(complex);
};

ComplexCase const complexCases[] = {
    {"log10", mk::complexLog10, ::log10}, {"log", mk::complexLog, ::log},    {"exp", mk::complexExp, ::exp},
    {"sin", mk::complexSin, ::sin},       {"cos", mk::complexCos, ::cos},    {"tan", mk::complexTan, ::tan},
    {"atan", mk::complexAtan, ::atan},    {"sinh", mk::complexSinh, ::sinh}, {"cosh", mk::complexCosh, ::cosh},
    {"tanh", mk::complexTanh, ::tanh},    {"sqrt", mk::complexSqrt, ::sqrt},
};

} // namespace

TEST(MathKernels, RealRoutinesEqualTheirFunctionForEveryLength) {
    NumberSamples samples(51);
    for (RealCase const & c : realCases)
        for (std::size_t count = 0; count <= 41; ++count) {
            Values const in = arguments(c, count, samples), out = run(c.routine, in, count);
            for (std::size_t i = 0; i < count; ++i)
                ASSERT_LE(doublesApart(out[i], c.function(in[i])), c.tolerance) << c.name << "(" << in[i] << ")";
        }
}

TEST(MathKernels, RealRoutinesWorkInPlaceOverSeveralPieces) {
    NumberSamples samples(52);
    for (RealCase const & c : realCases) {
        Values in = arguments(c, 1003, samples);
        Values const want = run(c.routine, in, 1003);
        EXPECT_EQ(c.routine(in.data(), in.data(), 1003), 0);
        for (std::size_t i = 0; i < 1003; ++i) ASSERT_TRUE(sameNumber(in[i], want[i])) << c.name << " " << i;
    }
}

TEST(MathKernels, ComplexRoutinesEqualTheirFunctionAndWorkInPlace) {
    NumberSamples samples(53);
    for (ComplexCase const & c : complexCases)
        for (std::size_t count = 0; count <= 10; ++count) {
            Values in = samples.many(2 * count, false);
            Values const out = runPairs(c.routine, in, 2);
            for (std::size_t i = 0; i < count; ++i) {
                complex const want = c.function({in[2 * i], in[2 * i + 1]});
                ASSERT_TRUE(sameNumber(out[2 * i], want.re) && sameNumber(out[2 * i + 1], want.im)) << c.name;
            }
            EXPECT_EQ(c.routine(in.data(), in.data(), count), 0);
            EXPECT_EQ(in, out) << c.name;
        }
}

TEST(MathKernels, NegationOfPairsFlipsBothSigns) {
    Values const out = runPairs(mk::complexNegate, {1, 0.0, -2, std::nan("")}, 2);
    EXPECT_EQ(out[0], -1);
    EXPECT_TRUE(sameNumber(out[1], -0.0));
    EXPECT_EQ(out[2], 2);
}

TEST(MathKernels, LogarithmsRefuseWhatIsNotPositive) {
    for (mk::Routine routine : {mk::log10, mk::log})
        for (std::size_t count : {1U, 7U, 300U})
            for (std::size_t bad = 0; bad < count; bad += 5)
                for (double x : {0.0, -0.0, -1.0, -infinity}) {
                    Values in(count, 2.0);
                    in[bad] = x;
                    ASSERT_EQ(codeOf(routine, in, count), mk::outOfRange) << count << " " << bad << " " << x;
                }
    EXPECT_TRUE(std::isnan(one(mk::log10, std::nan(""))));
    EXPECT_EQ(one(mk::log, infinity), infinity);
    EXPECT_EQ(codeOf(mk::complexLog, {0.0, -0.0}, 1), mk::outOfRange);
    EXPECT_EQ(codeOf(mk::complexLog10, {1, 1, 0.0, 0.0}, 2), mk::outOfRange);
    EXPECT_EQ(codeOf(mk::complexLog, {0, 1e-300}, 1), 0);
}

TEST(MathKernels, RootsOfNegativeRealsAreRefused) {
    EXPECT_EQ(codeOf(mk::sqrt, {4, -1e-300}, 2), mk::outOfRange);
    EXPECT_TRUE(sameNumber(one(mk::sqrt, -0.0), -0.0));
    EXPECT_TRUE(std::isnan(one(mk::sqrt, std::nan(""))));
    EXPECT_EQ(runPairs(mk::complexSqrt, {-4, 0}, 2), (Values{0, 2}));
}

TEST(MathKernels, ExponentialsOverflowAboveOneLimit) {
    EXPECT_LE(doublesApart(one(mk::exp, 709.016), std::exp(709.016)), 1U);
    EXPECT_EQ(codeOf(mk::exp, {709.017}, 1), mk::overflow);
    EXPECT_EQ(codeOf(mk::exp, {infinity}, 1), mk::overflow);
    EXPECT_EQ(one(mk::exp, -infinity), 0);
    EXPECT_TRUE(std::isnan(one(mk::exp, std::nan(""))));
    Values in(300, 1.0);
    in[299] = 1000;
    EXPECT_EQ(codeOf(mk::exp, in, 300), mk::overflow);
    EXPECT_EQ(codeOf(mk::complexExp, {709.016, 1}, 1), 0);
    EXPECT_EQ(codeOf(mk::complexExp, {709.017, 1}, 1), mk::overflow);
}

TEST(MathKernels, TheInverseTangentHasPolesAtPlusAndMinusI) {
    EXPECT_EQ(codeOf(mk::complexAtan, {0, 1}, 1), mk::overflow);
    EXPECT_EQ(codeOf(mk::complexAtan, {-0.0, -1}, 1), mk::overflow);
    EXPECT_EQ(codeOf(mk::complexAtan, {0, 2}, 1), 0);
    EXPECT_EQ(codeOf(mk::complexAtan, {1e-10, 1}, 1), 0);
}

TEST(MathKernels, HyperbolicFunctionsNeverRefuse) {
    EXPECT_EQ(one(mk::sinh, 1000), infinity);
    EXPECT_EQ(one(mk::sinh, -1000), -infinity);
    EXPECT_EQ(one(mk::cosh, 1000), infinity);
    EXPECT_EQ(one(mk::cosh, -1000), infinity);
    EXPECT_EQ(codeOf(mk::complexSinh, {1000, 1}, 1), 0);
    EXPECT_EQ(codeOf(mk::complexSin, {1, 1000}, 1), 0);
    Values inPlace = {1000, 800};
    EXPECT_EQ(mk::sinh(inPlace.data(), inPlace.data(), 2), 0);
    EXPECT_EQ(inPlace, (Values{infinity, infinity}));
}

TEST(MathKernels, TheTangentIsNeverRefused) {
    EXPECT_EQ(codeOf(mk::tan, {1.5707963267948966}, 1), 0);
    EXPECT_EQ(codeOf(mk::tanDegrees, {90}, 1), 0);
    EXPECT_EQ(codeOf(mk::complexTan, {1.5707963267948966, 0}, 1), 0);
}

TEST(MathKernels, MagnitudesAreWithinAnUlpOverTheWholeRange) {
    NumberSamples samples(54);
    Values in = samples.many(100000, true);
    for (std::size_t i = 0; i < in.size(); i += 3) in[i] *= std::exp(samples.ordinary(-600, 600));
    Values const out = runPairs(mk::complexMagnitude, in, 1);
    for (std::size_t i = 0; i < out.size(); ++i) {
        double const want = static_cast<double>(std::hypot(static_cast<long double>(in[2 * i]), in[2 * i + 1]));
        ASSERT_LE(doublesApart(out[i], want), 1U) << in[2 * i] << ", " << in[2 * i + 1];
    }
}

TEST(MathKernels, MagnitudesOfDifficultPairs) {
    double const nan = std::nan("");
    Values const out =
        runPairs(mk::complexMagnitude, {3, -4, -0.0, 0, 1e300, 1e300, 3e-310, 4e-310, infinity, nan, nan, 1}, 1);
    EXPECT_EQ(out[0], 5);
    EXPECT_TRUE(sameNumber(out[1], 0.0));
    EXPECT_EQ(out[2], std::hypot(1e300, 1e300));
    EXPECT_EQ(out[3], std::hypot(3e-310, 4e-310));
    EXPECT_EQ(out[4], infinity);
    EXPECT_TRUE(std::isnan(out[5]));
}

TEST(MathKernels, AMagnitudeDoesNotDependOnItsPlace) {
    NumberSamples samples(55);
    for (std::size_t count = 1; count <= 40; ++count) {
        Values const in = samples.many(2 * count), out = runPairs(mk::complexMagnitude, in, 1),
                     levels = runPairs(mk::complexDecibels, in, 1);
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_TRUE(sameNumber(out[i], runPairs(mk::complexMagnitude, {in[2 * i], in[2 * i + 1]}, 1)[0]));
            ASSERT_TRUE(sameNumber(levels[i], runPairs(mk::complexDecibels, {in[2 * i], in[2 * i + 1]}, 1)[0]));
        }
    }
}

TEST(MathKernels, DecibelsAreExactForDecades) {
    EXPECT_EQ(run(mk::decibels, {1, -10, 100, 1e6, 0.0, -0.0}, 6), (Values{0, 20, 40, 120, -6160, -6160}));
    EXPECT_EQ(runPairs(mk::complexDecibels, {6, 8, 0, -100, 0, -0.0}, 1), (Values{20, 40, -6160}));
    EXPECT_EQ(one(mk::decibels, -infinity), infinity);
    EXPECT_TRUE(std::isnan(one(mk::decibels, std::nan(""))));
}

TEST(MathKernels, DecibelsAreWithinAnUlp) {
    NumberSamples samples(56);
    Values in(200000);
    for (double & x : in) x = std::exp(samples.ordinary(-700, 700));
    Values const out = run(mk::decibels, in, in.size());
    for (std::size_t i = 0; i < in.size(); ++i)
        ASSERT_LE(doublesApart(out[i], static_cast<double>(20 * std::log10(static_cast<long double>(in[i])))), 1U)
            << in[i];
}

TEST(MathKernels, PartsAndArguments) {
    Values const in = {3, 4, -1, 0.0, -1, -0.0, 0.0, -2, 0, 0};
    EXPECT_EQ(runPairs(mk::realPart, in, 1), (Values{3, -1, -1, 0, 0}));
    EXPECT_EQ(runPairs(mk::imaginaryPart, in, 1), (Values{4, 0, -0.0, -2, 0}));
    Values const angles = runPairs(mk::argument, in, 1), degrees = runPairs(mk::argumentDegrees, in, 1);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_LE(doublesApart(angles[i], std::atan2(in[2 * i + 1], in[2 * i])), 1U) << i;
        EXPECT_TRUE(sameNumber(degrees[i], angles[i] * 57.29577951308232)) << i;
    }
    EXPECT_EQ(degrees[1], 180);
    EXPECT_EQ(degrees[2], -180);
}

TEST(MathKernels, PhaseFollowsARotation) {
    Values in;
    for (int i = 0; i < 1000; ++i) {
        in.push_back(std::cos(0.7 * i));
        in.push_back(std::sin(0.7 * i));
    }
    Values const radians = runPairs(mk::phase, in, 1), degrees = runPairs(mk::phaseDegrees, in, 1);
    for (std::size_t i = 0; i < 1000; ++i) {
        ASSERT_NEAR(radians[i], 0.7 * static_cast<double>(i), 1e-10);
        ASSERT_NEAR(degrees[i], 0.7 / degree * static_cast<double>(i), 1e-8);
    }
}

TEST(MathKernels, PhaseNeverMovesTheFirstElement) {
    EXPECT_NEAR(runPairs(mk::phaseDegrees, {std::cos(-3.0), std::sin(-3.0)}, 1)[0], -3 / degree, 1e-12);
    double const c = std::cos(170 * degree), s = std::sin(170 * degree);
    Values const up = runPairs(mk::phaseDegrees, {c, s, c, -s}, 1), down = runPairs(mk::phaseDegrees, {c, -s, c, s}, 1);
    EXPECT_NEAR(up[0], 170, 1e-12);
    EXPECT_NEAR(up[1], 190, 1e-12);
    EXPECT_NEAR(down[0], -170, 1e-12);
    EXPECT_NEAR(down[1], -190, 1e-12);
    EXPECT_TRUE(runPairs(mk::phaseDegrees, {}, 1).empty());
}

TEST(MathKernels, AStepOfHalfATurnIsNoMoreThanHalf) {
    EXPECT_EQ(runPairs(mk::phaseDegrees, {1, 0, -1, 0.0}, 1), (Values{0, 180}));
    EXPECT_EQ(runPairs(mk::phaseDegrees, {1, 0, -1, -0.0}, 1), (Values{0, -180}));
}

TEST(MathKernels, NormalisingDividesByTheGreatestMagnitude) {
    NumberSamples samples(57);
    for (std::size_t count = 1; count <= 41; ++count) {
        Values in = samples.many(count, false);
        in[count / 2] = count % 2 == 0 ? 20 : -20;
        Values const out = run(mk::normalise, in, count);
        for (std::size_t i = 0; i < count; ++i) ASSERT_TRUE(sameNumber(out[i], in[i] / 20));
        EXPECT_EQ(mk::normalise(in.data(), in.data(), count), 0);
        EXPECT_EQ(in, out);
    }
    EXPECT_EQ(runPairs(mk::complexNormalise, {3, 4, 0, 2.5}, 2), (Values{0.6, 0.8, 0, 0.5}));
}

TEST(MathKernels, NothingCanBeNormalisedByZero) {
    EXPECT_EQ(codeOf(mk::normalise, {0.0, -0.0}, 2), mk::zeroVector);
    EXPECT_EQ(codeOf(mk::normalise, {std::nan("")}, 1), mk::zeroVector);
    EXPECT_EQ(codeOf(mk::normalise, {}, 0), mk::zeroVector);
    EXPECT_EQ(codeOf(mk::complexNormalise, {0, 0}, 1), mk::zeroVector);
}

TEST(MathKernels, RandomNumbersFollowTheirSeed) {
    mk::randomSeed() = RandomSeed();
    Values const out = run(mk::random, {1, 10, 0, -4}, 4);
    RandomSeed seed;
    EXPECT_EQ(seed.value, 1U);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(out[i], sp_Random(seed) * (Values{1, 10, 0, -4})[i] / 2147483647.0);
    EXPECT_EQ(mk::randomSeed().value, seed.value);
    for (double x : run(mk::random, Values(10000, 5.0), 10000)) ASSERT_TRUE(x >= 0 && x <= 5);
}

TEST(MathKernels, SumsAreTakenInOrder) {
    EXPECT_EQ(run(mk::sum, {1e16, 1, 1, 1, 1, 1, 1, 1, 1, -1e16}, 1)[0], 0);
    EXPECT_EQ(run(mk::sum, {}, 1)[0], 0);
    EXPECT_EQ(run(mk::mean, {1, 2, 6}, 1)[0], 3);
    EXPECT_TRUE(std::isnan(run(mk::mean, {}, 1)[0]));
    Values out(2);
    Values const in = {1, 10, 2, 20};
    EXPECT_EQ(mk::complexSum(out.data(), in.data(), 2), 0);
    EXPECT_EQ(out, (Values{3, 30}));
    EXPECT_EQ(mk::complexMean(out.data(), in.data(), 2), 0);
    EXPECT_EQ(out, (Values{1.5, 15}));
}

TEST(MathKernels, TheFirstOfEqualExtremesIsFound) {
    EXPECT_EQ(run(mk::indexOfGreatest, {1, 3, 3}, 1)[0], 1);
    EXPECT_EQ(run(mk::indexOfLeast, {2, 1, 1}, 1)[0], 1);
    EXPECT_EQ(run(mk::indexOfGreatest, {std::nan(""), -5, -7}, 1)[0], 1);
    EXPECT_EQ(run(mk::indexOfLeast, {std::nan(""), -5, -7}, 1)[0], 2);
    Values in(600, 1.0);
    in[511] = 2;
    EXPECT_EQ(run(mk::indexOfGreatest, in, 1)[0], 511);
    Values out(1);
    Values pairsOf(2 * 600, 1.0);
    pairsOf[2 * 400 + 1] = -9;
    pairsOf[2 * 300] = pairsOf[2 * 300 + 1] = 0.5;
    EXPECT_EQ(mk::complexIndexOfGreatest(out.data(), pairsOf.data(), 600), 0);
    EXPECT_EQ(out[0], 400);
    EXPECT_EQ(mk::complexIndexOfLeast(out.data(), pairsOf.data(), 600), 0);
    EXPECT_EQ(out[0], 300);
}

TEST(MathKernels, WithoutANumberTheIndexKeepsItsValue) {
    EXPECT_EQ(run(mk::indexOfLeast, {}, 1)[0], 77);
    EXPECT_EQ(run(mk::indexOfGreatest, {std::nan(""), std::nan("")}, 1)[0], 77);
    // Only what is better than the limits of the range counts.
    EXPECT_EQ(run(mk::indexOfGreatest, {-DBL_MAX}, 1)[0], 77);
    EXPECT_EQ(run(mk::indexOfLeast, {infinity}, 1)[0], 77);
}
