// The vector routines: their accuracy, their special values, and that an element's place does not matter.

#include "Evaluation/VectorMath.h"

#include "NumberSamples.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Loop = void (*)(double * out, double const * in, std::size_t count);

struct Range {
    double low, high;
    bool logarithmic; // the exponent is evenly spread instead of the value
};

struct Function {
    char const * name;
    Loop loop;
    double (*library)(double);
    long double (*exact)(long double);
    std::vector<Range> ranges;
    bool positiveOnly;
};

#define TORVELAN_FUNCTION(f) #f, vectormath::f, std::f, ::f##l

Function const functions[] = {
    {TORVELAN_FUNCTION(sin), {{-10, 10, false}, {-20, 60, true}, {-744, -690, true}}, false},
    {TORVELAN_FUNCTION(cos), {{-10, 10, false}, {-20, 60, true}}, false},
    {TORVELAN_FUNCTION(tan), {{-10, 10, false}, {-20, 60, true}, {-744, -690, true}}, false},
    {TORVELAN_FUNCTION(atan), {{-10, 10, false}, {-744, 60, true}, {-744, -690, true}}, false},
    {TORVELAN_FUNCTION(exp), {{-10, 10, false}, {-745, 709, false}}, false},
    {TORVELAN_FUNCTION(log), {{0.5, 2, false}, {-744, 700, true}}, true},
    {TORVELAN_FUNCTION(log10), {{0.5, 2, false}, {-744, 700, true}}, true},
    {TORVELAN_FUNCTION(sinh), {{-10, 10, false}, {-744, 6.5, true}, {-744, -690, true}, {705, 711, false}}, false},
    {TORVELAN_FUNCTION(cosh), {{-10, 10, false}, {-711, 711, false}}, false},
    {TORVELAN_FUNCTION(tanh), {{-10, 10, false}, {-744, 3, true}, {-744, -690, true}}, false},
};

std::vector<double> draw(Range const & range, std::size_t count, unsigned seed) {
    NumberSamples samples(seed);
    std::vector<double> out(count);
    for (double & x : out) {
        x = samples.ordinary(range.low, range.high);
        if (range.logarithmic) x = std::exp(x);
    }
    return out;
}

std::vector<double> resultsOf(Loop loop, std::vector<double> const & in) {
    std::vector<double> out(in.size());
    loop(out.data(), in.data(), in.size());
    return out;
}

double const infinity = std::numeric_limits<double>::infinity();

std::vector<double> specials(bool positiveOnly) {
    std::vector<double> out = {infinity,
                               std::nan(""),
                               1.0,
                               2.0,
                               0.5,
                               DBL_MIN,
                               DBL_MAX,
                               5e-324,
                               1e-310,
                               1e-300,
                               1e-20,
                               1e-9,
                               20,
                               22,
                               40,
                               350,
                               709,
                               709.016,
                               709.78,
                               709.79,
                               710.4,
                               710.48,
                               711,
                               745,
                               1000,
                               1e6,
                               1e15,
                               1e22,
                               1e100,
                               1e300,
                               3.141592653589793,
                               1.5707963267948966};
    if (positiveOnly) return out;
    std::size_t const count = out.size();
    for (std::size_t i = 0; i < count; ++i) out.push_back(-out[i]);
    out.push_back(0.0);
    out.push_back(-0.0);
    return out;
}

std::string levelName(testing::TestParamInfo<vectormath::Level> const & info) {
    static char const * const names[] = {"library", "sse2", "avx2", "avx512"};
    return names[static_cast<int>(info.param)];
}

std::vector<vectormath::Level> levelsHere() {
    using enum vectormath::Level;
    std::vector<vectormath::Level> levels;
    for (vectormath::Level level : {library, sse2, avx2, avx512})
        if (vectormath::useLevel(level)) levels.push_back(level);
    vectormath::useBestLevel();
    return levels;
}

// Once for each instruction set that this processor has.
class VectorMath : public testing::TestWithParam<vectormath::Level> {
protected:
    void SetUp() override { ASSERT_TRUE(vectormath::useLevel(GetParam())); }
    void TearDown() override { vectormath::useBestLevel(); }
};

INSTANTIATE_TEST_SUITE_P(Levels, VectorMath, testing::ValuesIn(levelsHere()), levelName);

} // namespace

TEST_P(VectorMath, ResultsAreWithinOneUlpOfTheCorrectlyRoundedOnes) {
    for (Function const & f : functions)
        for (Range const & range : f.ranges) {
            std::vector<double> const in = draw(range, 200000, 31), out = resultsOf(f.loop, in);
            for (std::size_t i = 0; i < in.size(); ++i)
                ASSERT_LE(doublesApart(out[i], static_cast<double>(f.exact(in[i]))), 1U)
                    << f.name << "(" << in[i] << ")";
        }
}

TEST_P(VectorMath, SpecialValuesAreThoseOfTheLibrary) {
    for (Function const & f : functions) {
        std::vector<double> const in = specials(f.positiveOnly), out = resultsOf(f.loop, in);
        for (std::size_t i = 0; i < in.size(); ++i)
            EXPECT_LE(doublesApart(out[i], f.library(in[i])), 1U)
                << f.name << "(" << in[i] << ") = " << out[i] << ", not " << f.library(in[i]);
    }
}

TEST_P(VectorMath, AnElementsPlaceAndNeighboursDoNotMatter) {
    NumberSamples samples(32);
    for (Function const & f : functions)
        for (std::size_t count = 0; count <= 40; ++count)
            for (int round = 0; round < 8; ++round) {
                std::vector<double> in(count);
                for (double & x : in) x = round % 2 == 0 ? samples.any() : std::exp(samples.ordinary(-5, 60));
                std::vector<double> const out = resultsOf(f.loop, in);
                for (std::size_t i = 0; i < count; ++i)
                    ASSERT_TRUE(sameNumber(out[i], resultsOf(f.loop, {in[i]})[0])) << f.name << "(" << in[i] << ")";
            }
}

TEST_P(VectorMath, WorksInPlace) {
    for (Function const & f : functions) {
        std::vector<double> values = draw(f.ranges[0], 103, 33);
        std::vector<double> const want = resultsOf(f.loop, values);
        f.loop(values.data(), values.data(), values.size());
        EXPECT_EQ(values, want) << f.name;
    }
}

TEST_P(VectorMath, DecadesHaveWholeLogarithms) {
    double power = 1;
    for (int n = 0; n <= 22; ++n, power *= 10) EXPECT_EQ(resultsOf(vectormath::log10, {power})[0], n);
    EXPECT_EQ(resultsOf(vectormath::log, {1.0})[0], 0);
    EXPECT_EQ(resultsOf(vectormath::exp, {0.0, -0.0}), (std::vector<double>{1, 1}));
}

TEST_P(VectorMath, TwoArgumentFunctionsEqualTheLibrary) {
    NumberSamples samples(34);
    std::size_t const count = 200003;
    std::vector<double> a = samples.many(count), b = samples.many(count), angles(count), powers(count);
    vectormath::atan2(angles.data(), a.data(), b.data(), count);
    vectormath::pow(powers.data(), a.data(), b.data(), count);
    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_LE(doublesApart(angles[i], std::atan2(a[i], b[i])), 1U) << a[i] << ", " << b[i];
        ASSERT_LE(doublesApart(powers[i], std::pow(a[i], b[i])), 1U) << a[i] << "^" << b[i];
    }
}

TEST_P(VectorMath, TwoArgumentFunctionsDoNotDependOnThePlace) {
    NumberSamples samples(35);
    for (std::size_t count = 1; count <= 40; ++count) {
        std::vector<double> const a = samples.many(count), b = samples.many(count);
        std::vector<double> angles(count), powers(count);
        vectormath::atan2(angles.data(), a.data(), b.data(), count);
        vectormath::pow(powers.data(), a.data(), b.data(), count);
        for (std::size_t i = 0; i < count; ++i) {
            double angle, power;
            vectormath::atan2(&angle, &a[i], &b[i], 1);
            vectormath::pow(&power, &a[i], &b[i], 1);
            ASSERT_TRUE(sameNumber(angles[i], angle) && sameNumber(powers[i], power)) << a[i] << ", " << b[i];
        }
    }
}

TEST_P(VectorMath, AVectorOfPhasesCoversAllQuadrants) {
    std::vector<double> const y = {0.0, 1, 0.0, -1, -0.0, -0.0, 0.0}, x = {1, 0.0, -1, 0.0, -1, 0.0, -0.0};
    std::vector<double> out(y.size());
    vectormath::atan2(out.data(), y.data(), x.data(), y.size());
    for (std::size_t i = 0; i < y.size(); ++i) EXPECT_TRUE(sameNumber(out[i], std::atan2(y[i], x[i]))) << i;
}

TEST(VectorMathLevels, TheWiderSetsGiveTheSameNumbers) {
    NumberSamples samples(36);
    std::vector<double> const in = samples.many(1000);
    for (Function const & f : functions) {
        if (!vectormath::useLevel(vectormath::Level::avx2)) GTEST_SKIP() << "not on this processor";
        std::vector<double> const narrow = resultsOf(f.loop, in);
        vectormath::useBestLevel();
        std::vector<double> const wide = resultsOf(f.loop, in);
        for (std::size_t i = 0; i < in.size(); ++i) ASSERT_TRUE(sameNumber(narrow[i], wide[i])) << f.name << in[i];
    }
}
