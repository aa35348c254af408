// Harmonics of waveforms on any grid, and the windows ahead of them.

#include "HandlerFrame.h"

#include "Funcs/FourierCalculation.h"
#include "torvelan/Fourier.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double turn = 2 * std::numbers::pi;

using Values = std::vector<double>;

using LongPair = std::complex<long double>;

// --- the piecewise polynomial

template <class T> bool fits(T left, T right, T leftSlope, T rightSlope) {
    return left > T(0.1L) * right && 10 * right > left && std::fabs(leftSlope) > T(0.1L) * std::fabs(rightSlope) &&
           10 * std::fabs(rightSlope) > std::fabs(leftSlope);
}

// Half the second derivative of the piece that ends at point i.
template <class T> T bendOf(std::size_t i, Values const & x, Values const & y, int order) {
    auto const step = [&](std::size_t k) { return T(x[k]) - T(x[k - 1]); };
    auto const slope = [&](std::size_t k) { return (T(y[k]) - T(y[k - 1])) / step(k); };
    auto const parabola = [&](std::size_t k) { return (slope(k + 1) - slope(k)) / (step(k) + step(k + 1)); };
    auto const smooth = [&](std::size_t k) { return fits<T>(step(k), step(k + 1), slope(k), slope(k + 1)); };
    if (order == 2 && i + 1 < x.size() && smooth(i)) return parabola(i);
    if (order == 2 && i > 1 && smooth(i - 1)) return parabola(i - 1);
    return 0;
}

// Integral of t^k e^(i angle t) from -1 to 1.
LongPair moment(int k, long double angle) {
    if (std::fabs(angle) > 1) {
        long double const s = std::sin(angle), c = std::cos(angle);
        if (k == 0) return 2 * s / angle;
        if (k == 1) return {0, 2 * (s - angle * c) / (angle * angle)};
        return 2 * ((angle * angle - 2) * s + 2 * angle * c) / (angle * angle * angle);
    }
    LongPair sum = 0, power = 1;
    for (int j = 0; j < 30; ++j) {
        if ((k + j) % 2 == 0) sum += power * (2 / static_cast<long double>(k + j + 1));
        power *= LongPair(0, angle) / static_cast<long double>(j + 1);
    }
    return sum;
}

// Piece by piece around its middle.
LongPair exactHarmonic(Values const & x, Values const & y, int order, long double number, double fundamental) {
    long double const w = 2 * std::numbers::pi_v<long double> * number * static_cast<long double>(fundamental);
    LongPair sum = 0;
    for (std::size_t i = 1; i < x.size(); ++i) {
        long double const a = x[i - 1], b = x[i], ya = y[i - 1], yb = y[i], half = (b - a) / 2;
        long double const bump = bendOf<long double>(i, x, y, order) * half * half, angle = w * half;
        LongPair const inner =
            ((ya + yb) / 2 - bump) * moment(0, angle) + (yb - ya) / 2 * moment(1, angle) + bump * moment(2, angle);
        sum += half * inner * std::polar(1.0L, w * (a + half));
    }
    return sum * ((number == 0 ? 1 : 2) / (static_cast<long double>(x.back()) - x.front()));
}

// What the rounding of slopes, bends and angles makes of a harmonic.
double roundingOf(Values const & x, Values const & y, int order, double number, double fundamental) {
    if (number == 0) return 0;
    double const w = turn * std::fabs(number) * fundamental;
    double sum = (std::fabs(y.front()) + std::fabs(y.back())) / w;
    for (std::size_t i = 1; i < x.size(); ++i) {
        double const bend = std::fabs(bendOf<double>(i, x, y, order));
        double const slope = std::fabs((y[i] - y[i - 1]) / (x[i] - x[i - 1]));
        sum += (slope + bend * (x[i] - x[i - 1])) / (w * w) + 2 * bend / (w * w * w);
    }
    double const angle = w * std::max(std::fabs(x.front()), std::fabs(x.back()));
    return 2 * sum * (1 + angle) * std::numeric_limits<double>::epsilon() / (x.back() - x.front());
}

// Sines and cosines from harmonic to harmonic by turning, in doubles and for the whole of each piece: the plain loop.
std::vector<complex> plainHarmonics(Values const & x, Values const & y, int order, int count, double fundamental) {
    double const w0 = turn * fundamental;
    auto const size = static_cast<std::size_t>(count);
    std::vector<complex> out(size);
    Values sa(size), ca(size);
    for (std::size_t k = 1; k < size; ++k) {
        sa[k] = std::sin(static_cast<double>(k) * w0 * x[0]);
        ca[k] = std::cos(static_cast<double>(k) * w0 * x[0]);
    }
    for (std::size_t i = 1; i < x.size(); ++i) {
        double const c2 = bendOf<double>(i, x, y, order), a = x[i - 1], b = x[i];
        double const c1 = (y[i] - y[i - 1]) / (b - a) - c2 * (a + b);
        double const s0 = std::sin(w0 * b), c0 = std::cos(w0 * b);
        double s = s0, c = c0;
        for (std::size_t k = 1; k < size; ++k) {
            double const w = static_cast<double>(k) * w0, e = 2 * c2 / (w * w);
            double const slopeA = (2 * c2 * a + c1) / (w * w), slopeB = (2 * c2 * b + c1) / (w * w);
            double const valueA = (e - y[i - 1]) / w, valueB = (e - y[i]) / w;
            out[k].re += slopeB * c - valueB * s - (slopeA * ca[k] - valueA * sa[k]);
            out[k].im += slopeB * s + valueB * c - (slopeA * sa[k] + valueA * ca[k]);
            sa[k] = s;
            ca[k] = c;
            double const next = s * c0 + c * s0;
            c = c * c0 - s * s0;
            s = next;
        }
    }
    for (complex & z : out) z = z * (2 / (x.back() - x.front()));
    return out;
}

class Fourier : public HandlerFrame {
protected:
    XYVector & waveform(Reals const & x, Reals const & values) {
        return withReference(real(values, PT_VOLTAGE), x, PT_TIME);
    }
    Pairs harmonics(Reals const & x, Reals const & values, double fundamental, double count,
                    Reals const & options = {0}) {
        EXPECT_EQ(
            callFunctionNamed("Fourier", {waveform(x, values), real({fundamental}), real({count}), real(options)}),
            FUNC_OK);
        EXPECT_TRUE(isSilent());
        return y.totalLength() > 0 ? complexes() : Pairs();
    }
    void expectNothing(std::vector<std::reference_wrapper<XYVector>> const & arguments, char const * name = "Fourier") {
        EXPECT_EQ(callFunctionNamed(name, arguments), FUNC_OK);
        EXPECT_TRUE(isSilent());
        EXPECT_EQ(y.totalLength(), 0);
        EXPECT_EQ(ref.totalLength(), 0);
    }
    double between(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
    // Steps of which some are more than ten times their neighbours.
    Reals unevenGrid(std::size_t n, double start = 0) {
        Reals x(n, start);
        for (std::size_t i = 1; i < n; ++i) x[i] = x[i - 1] + std::pow(10.0, between(-4, -2));
        return x;
    }
    template <class F> Reals sampled(Reals const & x, F f) {
        Reals out;
        for (double at : x) out.push_back(f(at));
        return out;
    }
    void expectExact(Reals const & x, Reals const & values, double fundamental, int count, Reals const & options) {
        Pairs const found = harmonics(x, values, fundamental, count, options);
        ASSERT_EQ(found.size(), static_cast<std::size_t>(count));
        int const order = options.size() > 1 ? static_cast<int>(options[1]) : 2;
        for (int k = 0; k < count; ++k) {
            LongPair const wanted = exactHarmonic(x, values, order, options[0] + k, fundamental);
            double const tolerance = 1e-14 + roundingOf(x, values, order, options[0] + k, fundamental);
            EXPECT_NEAR(found[static_cast<std::size_t>(k)].re, static_cast<double>(wanted.real()), tolerance) << k;
            EXPECT_NEAR(found[static_cast<std::size_t>(k)].im, static_cast<double>(wanted.imag()), tolerance) << k;
        }
    }

    std::mt19937_64 random{987654321};
};

} // namespace

// --- values

TEST_F(Fourier, AConstantIsItsMean) {
    EXPECT_EQ(harmonics({0, 0.3, 0.5, 1}, {1, 1, 1, 1}, 1, 1), (Pairs{{1, 0}}));
    Pairs const found = harmonics({0, 0.3, 0.5, 1}, {1, 1, 1, 1}, 1, 3);
    EXPECT_NEAR(found[1].re, 0, 1e-15);
    EXPECT_NEAR(found[2].im, 0, 1e-15);
}

TEST_F(Fourier, ASineStandsInTheImaginaryPartOfItsHarmonic) {
    Reals x = unevenGrid(3000);
    for (double & at : x) at /= x.back();
    Pairs const found = harmonics(x, sampled(x, [](double t) { return 2 + 5 * std::sin(3 * turn * t); }), 1, 6);
    for (std::size_t k = 0; k < 6; ++k) {
        EXPECT_NEAR(found[k].re, k == 0 ? 2 : 0, 1e-4);
        EXPECT_NEAR(found[k].im, k == 3 ? 5 : 0, 1e-4);
    }
}

TEST_F(Fourier, ATriangleHasItsClosedForm) {
    Pairs const found = harmonics({0, 0.5, 1}, {0, 1, 0}, 1, 8, {0, 1});
    EXPECT_NEAR(found[0].re, 0.5, 1e-15);
    for (int k = 1; k < 8; ++k) {
        double const wanted = k % 2 == 0 ? 0 : -4 / (std::numbers::pi * std::numbers::pi * k * k);
        EXPECT_NEAR(found[static_cast<std::size_t>(k)].re, wanted, 1e-15);
        EXPECT_NEAR(found[static_cast<std::size_t>(k)].im, 0, 1e-15);
    }
}

TEST_F(Fourier, AParabolaIsIntegratedExactly) {
    Reals const x{0, 0.1, 0.25, 0.3, 0.55, 0.7, 1};
    Pairs const found = harmonics(x, sampled(x, [](double t) { return t * t + t; }), 1, 5);
    EXPECT_NEAR(found[0].re, 1.0 / 3 + 0.5, 1e-15);
    for (int k = 1; k < 5; ++k) { // of t^2: 1/(pi k)^2 and -1/(pi k); of t: 0 and -1/(pi k)
        double const w = std::numbers::pi * k;
        EXPECT_NEAR(found[static_cast<std::size_t>(k)].re, 1 / (w * w), 1e-15);
        EXPECT_NEAR(found[static_cast<std::size_t>(k)].im, -2 / w, 1e-15);
    }
}

TEST_F(Fourier, EqualsTheIntegralsPieceByPieceOnUnevenGrids) {
    for (std::size_t n : {3u, 4u, 5u, 17u, 511u, 512u, 513u, 514u, 515u, 1025u, 2000u})
        for (int order : {1, 2}) {
            Reals const x = unevenGrid(n, between(-1, 1));
            Reals const noise = sampled(x, [&](double) { return between(-1, 1); });
            Reals const smooth = sampled(x, [&](double t) { return std::sin(30 * t) + std::cos(7 * t); });
            double const fundamental = 1 / (x.back() - x.front());
            expectExact(x, noise, fundamental, 40, {0, static_cast<double>(order)});
            expectExact(x, smooth, fundamental, 40, {0, static_cast<double>(order)});
        }
}

TEST_F(Fourier, EqualsTheIntegralsForPulsesWithFlatPieces) {
    Reals x{0}, pulse{0};
    for (int i = 0; i < 50; ++i)
        for (double step : {0.009, 1e-5, 0.0099, 1e-5}) {
            x.push_back(x.back() + step);
            pulse.push_back(pulse.size() % 4 >= 2 ? 1 : 0);
        }
    expectExact(x, pulse, 1 / x.back(), 100, {0, 2});
    expectExact(x, pulse, 50 / x.back(), 100, {0, 1});
}

TEST_F(Fourier, StartsAtAnyHarmonic) {
    Reals const x = unevenGrid(300);
    Reals const values = sampled(x, [](double t) { return std::cos(40 * t * t); });
    double const fundamental = 1 / x.back();
    for (double first : {1.0, 5.0, 1000.0, -3.0, -100.0}) expectExact(x, values, fundamental, 70, {first});
    Pairs const all = harmonics(x, values, fundamental, 100), part = harmonics(x, values, fundamental, 10, {33.9});
    for (std::size_t k = 0; k < 10; ++k) EXPECT_NEAR(part[k].re, all[33 + k].re, 1e-14);
}

TEST_F(Fourier, ErrsNoMoreThanThePlainLoop) {
    for (bool smooth : {false, true})
        for (int order : {1, 2}) {
            Reals const x = unevenGrid(4000);
            Reals const values = sampled(x, [&](double t) { return smooth ? std::sin(90 * t) : between(-1, 1); });
            double const fundamental = 1 / x.back();
            Pairs const found = harmonics(x, values, fundamental, 100, {0, static_cast<double>(order)});
            Pairs const plain = plainHarmonics(x, values, order, 100, fundamental);
            double error = 0, plainError = 0;
            for (std::size_t k = 1; k < 100; ++k) {
                LongPair const wanted = exactHarmonic(x, values, order, static_cast<long double>(k), fundamental);
                auto const distance = [&](complex z) {
                    return static_cast<double>(std::abs(LongPair(z.re, z.im) - wanted));
                };
                error = std::max(error, distance(found[k]));
                plainError = std::max(plainError, distance(plain[k]));
            }
            EXPECT_LE(error, plainError) << "order " << order << (smooth ? ", smooth" : ", noise");
            EXPECT_GT(plainError, 0);
        }
}

TEST_F(Fourier, TheOrderIsTwoUnlessLess) {
    Reals const x = unevenGrid(50);
    Reals const values = sampled(x, [](double t) { return std::sin(20 * t); });
    Pairs const parabolas = harmonics(x, values, 3, 4);
    for (double order : {2.0, 2.9, 3.0, 100.0, 1e300, infinite})
        EXPECT_EQ(harmonics(x, values, 3, 4, {0, order}), parabolas);
    Pairs const lines = harmonics(x, values, 3, 4, {0, 1});
    EXPECT_NE(lines, parabolas);
    for (double order : {1.9, 0.0, -5.0, notANumber}) EXPECT_EQ(harmonics(x, values, 3, 4, {0, order}), lines);
}

TEST_F(Fourier, DoesWithoutOptions) {
    Reals const x{0, 1, 2, 4}, values{1, 3, 2, 5};
    Pairs const wanted = harmonics(x, values, 0.25, 3, {0, 2});
    EXPECT_EQ(callFunctionNamed("Fourier", {waveform(x, values), real({0.25}), real({3})}), FUNC_OK);
    EXPECT_EQ(complexes(), wanted);
}

// --- reference and units

TEST_F(Fourier, TheReferenceHoldsTheFrequencies) {
    harmonics({0, 1, 2}, {1, 2, 3}, 2.5, 3.9, {2});
    ASSERT_TRUE(ref.isComplex());
    ASSERT_EQ(ref.length(), 3);
    for (std::int64_t k = 0; k < 3; ++k)
        EXPECT_EQ(ref.complexData()[k], (complex{2.5 * static_cast<double>(k + 2), 0}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_EQ(ref.physType(), PT_FREQUENCY);
    EXPECT_STREQ(ref.name().c_str(), "frequency");
}

// --- points at one place

TEST_F(Fourier, APointWhereThePreviousOneStoodIsDropped) {
    Pairs const wanted = harmonics({1, 2, 3, 4}, {5, 7, 4, 1}, 1.0 / 3, 5);
    EXPECT_EQ(harmonics({1, 2, 2, 3, 4}, {5, 7, 99, 4, 1}, 1.0 / 3, 5), wanted);
    EXPECT_EQ(harmonics({1, 2, 2 + 1e-10, 3, 4}, {5, 7, 99, 4, 1}, 1.0 / 3, 5), wanted);
    EXPECT_NE(harmonics({1, 2, 2 + 3e-10, 3, 4}, {5, 7, 99, 4, 1}, 1.0 / 3, 5), wanted);
}

TEST_F(Fourier, EachPointIsComparedWithTheOneBeforeItDroppedOrNot) {
    Reals x{1}, values{5};
    for (int i = 1; i <= 40; ++i) { // together they go far, each by itself too little
        x.push_back(x.back() + 0.9e-10);
        values.push_back(1000);
    }
    x.insert(x.end(), {2, 3});
    values.insert(values.end(), {7, 4});
    EXPECT_EQ(harmonics(x, values, 0.5, 4), harmonics({1, 2, 3}, {5, 7, 4}, 0.5, 4));
}

TEST_F(Fourier, EqualPlacesNearZeroOrBelowGiveNoNumbers) {
    for (Reals const & x : {Reals{0, 0, 1, 2}, Reals{-2, -1, -1, 0}})
        for (complex const & z : harmonics(x, {1, 2, 3, 5}, 0.5, 3)) EXPECT_FALSE(std::isfinite(z.re)) << x[1];
    EXPECT_FALSE(std::isfinite(harmonics({0, 0, 1, 2}, {1, 1, 1, 1}, 0.5, 1)[0].re));
}

TEST_F(Fourier, AFallingReferenceLeavesNothingToIntegrate) {
    for (complex const & z : harmonics({4, 3, 2, 1}, {1, 2, 3, 4}, 1, 3)) EXPECT_EQ(z, (complex{0, 0}));
}

TEST_F(Fourier, TheSpanIsThatOfAllPoints) {
    Reals const values{1, 1, 1, 1};
    EXPECT_NEAR(harmonics({1, 2, 3, 3 + 1e-11}, values, 0.5, 1)[0].re, 2 / (2 + 1e-11), 1e-15);
}

// --- extremes

TEST_F(Fourier, OneValueOrPlaceThatIsNoNumberSpoilsAll) {
    for (double bad : {notANumber, infinite, -infinite}) {
        for (complex const & z : harmonics({0, 1, 2, 3}, {1, bad, 3, 4}, 0.3, 3))
            EXPECT_FALSE(std::isfinite(z.re)) << bad;
        for (complex const & z : harmonics({0, 1, bad, 3}, {1, 2, 3, 4}, 0.3, 3))
            EXPECT_FALSE(std::isfinite(z.re) && std::isfinite(z.im)) << bad;
    }
}

TEST_F(Fourier, ScalesWithTheValues) {
    Reals const x = unevenGrid(200);
    Reals const values = sampled(x, [&](double) { return between(-1, 1); });
    Pairs const unscaled = harmonics(x, values, 4, 20);
    for (double factor : {0x1p-900, 0x1p900}) {
        Reals scaled = values;
        for (double & v : scaled) v *= factor;
        Pairs const found = harmonics(x, scaled, 4, 20);
        for (std::size_t k = 0; k < 20; ++k) EXPECT_EQ(found[k], unscaled[k] * factor);
    }
}

// --- silence

TEST_F(Fourier, GivesNothingOfTooLittle) {
    expectNothing({waveform({0, 1}, {1, 2}), real({1}), real({3})});
    expectNothing({real({1, 2, 3}), real({1}), real({3})});
    for (double bad : {0.0, -1.0, notANumber, -infinite}) {
        expectNothing({waveform({0, 1, 2}, {1, 2, 3}), real({bad}), real({3})});
        expectNothing({waveform({0, 1, 2}, {1, 2, 3}), real({1}), real({bad})});
    }
    expectNothing({waveform({0, 1, 2}, {1, 2, 3}), real({1}), real({0.99})});
}

TEST_F(Fourier, MoreHarmonicsThanMemoryAreRefused) {
    for (double count : {1e18, 1e300, infinite})
        EXPECT_THROW(callFunctionNamed("Fourier", {waveform({0, 1, 2}, {1, 2, 3}), real({1}), real({count})}),
                     MemoryException)
            << count;
}

TEST_F(Fourier, AFirstHarmonicBeyondAllCountsAsTheGreatest) {
    for (double first : {1e18, 1e300, infinite, -1e300})
        EXPECT_EQ(harmonics({0, 1, 2}, {1, 2, 3}, 1, 2, {first}).size(), 2u);
    EXPECT_EQ(harmonics({0, 1, 2}, {1, 2, 3}, 1, 2, {notANumber}), harmonics({0, 1, 2}, {1, 2, 3}, 1, 2, {0}));
}

// --- FourierWindow

class FourierWindow : public Fourier {
protected:
    Reals windowed(Reals const & x, Reals const & values, char const * name) {
        EXPECT_EQ(callFunctionNamed("FourierWindow", {waveform(x, values), strings({name})}), FUNC_OK);
        EXPECT_TRUE(isSilent());
        return reals();
    }
    Reals windowed(Reals const & x, Reals const & values, char const * name, double width) {
        EXPECT_EQ(callFunctionNamed("FourierWindow", {waveform(x, values), strings({name}), real({width})}), FUNC_OK);
        EXPECT_TRUE(isSilent());
        return reals();
    }
};

TEST_F(FourierWindow, EachShapeIsAClassicalOneOverItsMean) {
    Reals const x = unevenGrid(1000, 3), values = sampled(x, [&](double) { return between(-1, 1); });
    struct {
        char const * name;
        double constant, once, twice;
    } const shapes[] = {{"hanning", 0.5, 0.5, 0}, {"Blackman", 0.42, 0.5, 0.08}, {"HAMMING", 0.54, 0.46, 0}};
    for (auto const & shape : shapes) {
        Reals const found = windowed(x, values, shape.name);
        for (std::size_t i = 0; i < x.size(); ++i) {
            double const u = (x[i] - x[0]) / (x.back() - x[0]);
            double const window =
                shape.constant - shape.once * std::cos(turn * u) + shape.twice * std::cos(2 * turn * u);
            EXPECT_NEAR(found[i], values[i] * window / shape.constant, 1e-14) << shape.name << " " << i;
        }
    }
}

TEST_F(FourierWindow, IsHanningUnlessNamed) {
    Reals const x = unevenGrid(20), values = sampled(x, [&](double) { return between(-1, 1); });
    Reals const wanted = windowed(x, values, "hanning");
    EXPECT_EQ(callFunctionNamed("FourierWindow", {waveform(x, values)}), FUNC_OK);
    EXPECT_EQ(reals(), wanted);
    EXPECT_EQ(Reals(ref.realData(), ref.realData() + ref.length()), x);
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    EXPECT_EQ(ref.physType(), PT_TIME);
    EXPECT_STREQ(ref.name().c_str(), "x");
}

TEST_F(FourierWindow, RectangularTakesThePlaceOfTheData) {
    EXPECT_EQ(windowed({0, 1, 2}, {5, notANumber, 7}, "Rectangular"), (Reals{1, 1, 1}));
    EXPECT_EQ(Reals(ref.realData(), ref.realData() + ref.length()), (Reals{0, 1, 2}));
}

TEST_F(FourierWindow, AnUnknownNameLeavesBothSidesUnfilled) {
    for (char const * name : {"kaiser", ""}) {
        EXPECT_EQ(windowed({5, 6, 7}, {1, 2, 3}, name), (Reals{0, 0, 0}));
        EXPECT_EQ(Reals(ref.realData(), ref.realData() + ref.length()), (Reals{0, 0, 0}));
        EXPECT_EQ(y.physType(), PT_VOLTAGE);
        EXPECT_EQ(ref.physType(), PT_TIME);
    }
}

TEST_F(FourierWindow, ANarrowWindowIsRepeated) {
    Reals const found = windowed({0, 0.25, 0.5, 1, 1.5, 2}, {1, 1, 1, 1, 1, 1}, "hanning", 1);
    Reals const wanted{0, 1, 2, 0, 2, 0};
    for (std::size_t i = 0; i < wanted.size(); ++i) EXPECT_NEAR(found[i], wanted[i], 1e-15);
}

TEST_F(FourierWindow, GivesNothingWithoutAReferenceOrWidth) {
    expectNothing({real({1, 2, 3})}, "FourierWindow");
    for (double width : {0.0, -1.0, -infinite})
        expectNothing({waveform({0, 1, 2}, {1, 2, 3}), strings({"hanning"}), real({width})}, "FourierWindow");
}

TEST_F(FourierWindow, AWidthOfNothingGivesNoNumbers) {
    for (double v : windowed({2, 2}, {1, 1}, "hanning")) EXPECT_TRUE(std::isnan(v));
    for (double v : windowed({2}, {1}, "blackman")) EXPECT_TRUE(std::isnan(v));
    for (double v : windowed({0, 1, 2}, {1, 1, 1}, "hamming", notANumber)) EXPECT_TRUE(std::isnan(v));
}

// --- time

TEST(FourierTime, IsAMultipleOfAMillisecondForTheRun) {
    double seconds = -1;
    fourier_EstimateFourierCalculationTime(&seconds);
    EXPECT_GE(seconds, 0);
    EXPECT_LT(seconds, 1e-3);
    double const milliseconds = seconds * 1000 * 100 * 1000;
    EXPECT_NEAR(milliseconds, std::round(milliseconds), 1e-6);
    double again = -1;
    fourier_EstimateFourierCalculationTime(&again);
    EXPECT_GE(again, 0);
    EXPECT_TRUE(seconds == 0 || again == seconds);
}
