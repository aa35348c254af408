// The spectrum of evenly spaced samples.

#include "HandlerFrame.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct LongPair {
    long double re, im;
};

long double hanning(long double angle) {
    return 1 - std::cos(angle);
}
long double hamming(long double angle) {
    return 1.08L - 0.92L * std::cos(angle);
}
long double flat(long double) {
    return 1;
}

using WindowShape = long double (*)(long double angle);

class Spectrum : public HandlerFrame {
protected:
    XYVector & samples(Reals const & values, double step = 1) {
        Reals x(values.size());
        for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<double>(i) * step;
        return withReference(real(values, PT_VOLTAGE), x, PT_TIME);
    }
    Pairs spectrum(XYVector & v) {
        EXPECT_EQ(callFunctionNamed("fft", {v}), FUNC_OK);
        return complexes();
    }
    Pairs spectrum(XYVector & v, char const * window) {
        EXPECT_EQ(callFunctionNamed("fft", {v, strings({window})}), FUNC_OK);
        return complexes();
    }
    Reals noise(std::size_t n) {
        Reals out(n);
        for (double & v : out) v = std::uniform_real_distribution<double>(-1, 1)(random);
        return out;
    }

    std::mt19937_64 random{20240611};
};

// Element k by its definition.
LongPair element(std::vector<double> const & values, std::size_t k, WindowShape shape) {
    constexpr long double turn = 2 * std::numbers::pi_v<long double>;
    std::size_t n = 1;
    while (n < values.size()) n *= 2;
    LongPair sum{0, 0};
    for (std::size_t i = 0; i < values.size(); ++i) {
        long double const part = turn / static_cast<long double>(n);
        long double const angle = part * static_cast<long double>(i * k % n);
        long double const value = static_cast<long double>(values[i]) * shape(part * static_cast<long double>(i));
        sum.re += value * std::cos(angle);
        sum.im += value * std::sin(angle);
    }
    auto const half = static_cast<long double>(n / 2);
    return {sum.re / half / (k == 0 ? 2 : 1), sum.im / half};
}

void expectElement(complex found, LongPair wanted, double tolerance, std::size_t k, std::size_t n) {
    EXPECT_NEAR(found.re, static_cast<double>(wanted.re), tolerance) << "element " << k << " of " << n << " samples";
    EXPECT_NEAR(found.im, static_cast<double>(wanted.im), tolerance) << "element " << k << " of " << n << " samples";
}

} // namespace

// --- values

TEST_F(Spectrum, EqualsTheSumItStandsForAtEachLength) {
    for (std::size_t n : {2u,   3u,   4u,   5u,   8u,   9u,   16u,   31u,   32u,   33u,  64u,
                          100u, 128u, 129u, 256u, 300u, 512u, 1000u, 1024u, 1025u, 2048u}) {
        Reals const values = noise(n);
        Pairs const found = spectrum(samples(values));
        std::size_t half = 1;
        while (2 * half < n) half *= 2;
        ASSERT_EQ(found.size(), half);
        for (std::size_t k = 0; k < half; ++k) expectElement(found[k], element(values, k, hanning), 2e-15, k, n);
    }
}

TEST_F(Spectrum, EqualsTheSumAtPlacesOfLongSpectra) {
    for (std::size_t n : {4096u, 5000u, 16384u, 20001u, 65536u, 100000u, 262144u, 1000003u}) {
        Reals const values = noise(n);
        Pairs const found = spectrum(samples(values), "none");
        std::size_t const half = found.size();
        for (std::size_t k : {std::size_t(0), std::size_t(1), half / 3, half / 2 - 1, half / 2, half / 2 + 1, half - 2,
                              half - 1, random() % half, random() % half})
            expectElement(found[k], element(values, k, flat), 2e-15, k, n);
    }
}

TEST_F(Spectrum, AnImpulseTurnsOnceForEachElement) {
    for (std::size_t n : {8u, 256u, 2048u, 32768u, 524288u}) {
        Reals values(n);
        values[1] = static_cast<double>(n / 2);
        Pairs const found = spectrum(samples(values), "none");
        double worst = 0;
        for (std::size_t k = 1; k < n / 2; ++k) {
            long double const angle = std::numbers::pi_v<long double> * static_cast<long double>(k) / (n / 2);
            worst = std::max(worst, std::fabs(found[k].re - static_cast<double>(std::cos(angle))));
            worst = std::max(worst, std::fabs(found[k].im - static_cast<double>(std::sin(angle))));
        }
        EXPECT_LT(worst, 2e-15) << n;
        EXPECT_NEAR(found[0].re, 0.5, 2e-15);
    }
}

TEST_F(Spectrum, ASineStandsInItsElementWithItsAmplitude) {
    for (std::size_t n : {16u, 1024u, 65536u}) {
        std::size_t const cycles = n / 16 * 3;
        Reals sine(n);
        for (std::size_t i = 0; i < n; ++i)
            sine[i] = 5 * std::sin(2 * std::numbers::pi * static_cast<double>(i * cycles % n) / static_cast<double>(n));
        Pairs const found = spectrum(samples(sine), "none");
        for (std::size_t k = 0; k < n / 2; ++k) {
            EXPECT_NEAR(found[k].re, 0, 1e-13) << k;
            EXPECT_NEAR(found[k].im, k == cycles ? 5 : 0, 1e-13) << k;
        }
    }
}

TEST_F(Spectrum, TheEnergyOfTheSamplesIsThatOfTheElements) {
    std::size_t const n = 131072;
    Reals const values = noise(n);
    Pairs const found = spectrum(samples(values), "none");
    double energy = 0, highest = 0, ofElements = found[0].re * found[0].re;
    for (std::size_t i = 0; i < n; ++i) {
        energy += values[i] * values[i] / n;
        highest += (i % 2 == 0 ? values[i] : -values[i]) / n;
    }
    for (std::size_t k = 1; k < n / 2; ++k) ofElements += (found[k].re * found[k].re + found[k].im * found[k].im) / 2;
    EXPECT_NEAR(energy, ofElements + highest * highest, 1e-13);
}

TEST_F(Spectrum, IsLinear) {
    std::size_t const n = 8192;
    Reals const a = noise(n), b = noise(n);
    Reals both(n);
    for (std::size_t i = 0; i < n; ++i) both[i] = 2 * a[i] - b[i];
    Pairs const ofA = spectrum(samples(a)), ofB = spectrum(samples(b)), ofBoth = spectrum(samples(both));
    for (std::size_t k = 0; k < n / 2; ++k) {
        EXPECT_NEAR(ofBoth[k].re, 2 * ofA[k].re - ofB[k].re, 1e-15);
        EXPECT_NEAR(ofBoth[k].im, 2 * ofA[k].im - ofB[k].im, 1e-15);
    }
}

TEST_F(Spectrum, ScalesWithTheSamplesDownToDenormalsAndUpToTheGreatest) {
    std::size_t const n = 1024;
    Reals const values = noise(n);
    Pairs const unscaled = spectrum(samples(values));
    for (double factor : {1e-300, 1e300}) {
        Reals scaled = values;
        for (double & v : scaled) v *= factor;
        Pairs const found = spectrum(samples(scaled));
        for (std::size_t k = 0; k < n / 2; ++k) EXPECT_NEAR(found[k].re / factor, unscaled[k].re, 1e-14);
    }
    double const least = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(spectrum(samples({least, least}), "none")[0], (complex{least, 0}));
}

TEST_F(Spectrum, OneSampleThatIsNoNumberSpoilsAll) {
    for (double bad : {infinite, -infinite, notANumber})
        for (std::size_t n : {4u, 1000u, 5000u}) {
            Reals values = noise(n);
            values[n / 2] = bad;
            for (complex const & e : spectrum(samples(values)))
                EXPECT_FALSE(std::isfinite(e.re) && std::isfinite(e.im)) << bad << " among " << n;
        }
}

// --- length and windows

TEST_F(Spectrum, TwoSamplesGiveOneElement) {
    EXPECT_EQ(spectrum(samples({3, 5}), "none"), (Pairs{{4, 0}}));
    EXPECT_EQ(spectrum(samples({3, 5})), (Pairs{{5, 0}}));
}

TEST_F(Spectrum, TheWindowStretchesOverThePadding) {
    Reals const values(1000, 1.0);
    Pairs const found = spectrum(samples(values));
    ASSERT_EQ(found.size(), 512u);
    long double sum = 0;
    for (int i = 0; i < 1000; ++i) sum += hanning(2 * std::numbers::pi_v<long double> * i / 1024);
    EXPECT_NEAR(found[0].re, static_cast<double>(sum / 1024), 1e-15);
    EXPECT_GT(std::fabs(found[0].re - 1000.0 / 1024), 1e-6);
}

TEST_F(Spectrum, TheWindowIsNamedInAnyCaseAndAnyOtherTextIsHanning) {
    Reals const values = noise(50);
    for (char const * name : {"hamming", "Hamming", "HAMMING"})
        for (std::size_t k = 0; k < 32; ++k)
            expectElement(spectrum(samples(values), name)[k], element(values, k, hamming), 1e-15, k, 50);
    Pairs const found = spectrum(samples(values));
    for (char const * name : {"hanning", "Blackman", "", "hamming "})
        EXPECT_EQ(spectrum(samples(values), name), found) << name;
    EXPECT_EQ(spectrum(samples(values), "None"), spectrum(samples(values), "none"));
    EXPECT_NE(spectrum(samples(values), "none"), found);
}

TEST_F(Spectrum, OnlyTheRealPartOfElementZeroIsHalved) {
    Pairs const found = spectrum(samples({1, 1, 1, 1}), "none");
    EXPECT_EQ(found, (Pairs{{1, 0}, {0, 0}}));
}

// --- reference and units

TEST_F(Spectrum, TheReferenceIsMadeOfTheFirstTwoPoints) {
    XYVector & v = withReference(real({1, 2, 3, 4, 5}, PT_CURRENT), {2, 2.25, 7, 9, 100}, PT_TIME);
    spectrum(v);
    ASSERT_TRUE(ref.isComplex());
    ASSERT_EQ(ref.length(), 4);
    for (std::int64_t k = 0; k < 4; ++k) EXPECT_EQ(ref.complexData()[k], (complex{static_cast<double>(k) * 0.5, 0}));
    EXPECT_EQ(y.physType(), PT_CURRENT);
    EXPECT_EQ(ref.physType(), PT_FREQUENCY);
    EXPECT_STREQ(ref.name().c_str(), "frequency");
}

TEST_F(Spectrum, AReferenceOfUnknownUnitGivesOne) {
    spectrum(withReference(real({1, 2}), {0, 1}, PT_UNKNOWN));
    EXPECT_EQ(ref.physType(), PT_UNKNOWN);
    EXPECT_STREQ(ref.name().c_str(), "unknown");
    spectrum(withReference(real({1, 2}), {0, 1}, PT_FREQUENCY));
    EXPECT_EQ(ref.physType(), PT_TIME);
    EXPECT_STREQ(ref.name().c_str(), "time");
}

TEST_F(Spectrum, AComplexReferenceCountsByItsRealParts) {
    XYVector & v = real({1, 2, 3, 4}, PT_VOLTAGE);
    v.ref.setSize(4, VD_COMPLEX);
    for (int i = 0; i < 4; ++i) v.ref.writableComplexData()[i] = {i * 0.5, 7};
    spectrum(v);
    EXPECT_EQ(ref.complexData()[1], (complex{0.5, 0}));
}

TEST_F(Spectrum, EqualFirstPointsGiveNoFiniteFrequencies) {
    Reals x(20, 1.0);
    spectrum(withReference(real(noise(20)), x));
    EXPECT_TRUE(std::isnan(ref.complexData()[0].re));
    for (std::int64_t k = 1; k < 16; ++k) EXPECT_EQ(ref.complexData()[k], (complex{infinite, 0}));
}

TEST_F(Spectrum, AFallingReferenceGivesFrequenciesBelowZero) {
    spectrum(withReference(real(noise(5)), {5, 4, 3, 2, 1}));
    for (std::int64_t k = 0; k < 4; ++k) EXPECT_EQ(ref.complexData()[k], (complex{-0.125 * static_cast<double>(k), 0}));
    EXPECT_FALSE(std::signbit(ref.complexData()[1].im));
}

// --- refusals

TEST_F(Spectrum, NeedsTwoPointsAndAReference) {
    EXPECT_EQ(callFunctionNamed("fft", {samples({1})}), FUNC_FAILED);
    EXPECT_EQ(message(), "Need at least two points for FFT");
    EXPECT_EQ(callFunctionNamed("fft", {real({1})}), FUNC_FAILED);
    EXPECT_EQ(message(), "Need at least two points for FFT");
    EXPECT_EQ(callFunctionNamed("fft", {real({1, 2, 3})}), FUNC_FAILED);
    EXPECT_EQ(message(), "Argument 1 in function 'test' has no reference (xvalues)");
    EXPECT_EQ(y.totalLength(), 0);
}
