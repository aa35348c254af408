// Every element loop against the plain arithmetic it stands for, over all short lengths, in place and out of place.

#include "Evaluation/Kernels.h"

#include "NumberSamples.h"
#include "torvelan/Exceptions.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace kernels;

namespace {

using Element = std::function<complex(complex a, complex b)>;

// A loop, the doubles in the elements of its result and operands, and what it does to one element.
struct Case {
    char const * name;
    Loop loop;
    std::size_t outWidth, aWidth, bWidth;
    Element element;
};

complex truth(bool b) {
    return {b ? 1.0 : 0.0, 0};
}

double re(complex z) {
    return z.re;
}

Case const cases[] = {
    {"realAdd", realAdd, 1, 1, 1,
     [](complex a, complex b) {
         return complex{re(a) + re(b), 0};
     }},
    {"realSubtract", realSubtract, 1, 1, 1,
     [](complex a, complex b) {
         return complex{re(a) - re(b), 0};
     }},
    {"realMultiply", realMultiply, 1, 1, 1,
     [](complex a, complex b) {
         return complex{re(a) * re(b), 0};
     }},
    {"realEqual", realEqual, 1, 1, 1, [](complex a, complex b) { return truth(re(a) == re(b)); }},
    {"realUnequal", realUnequal, 1, 1, 1, [](complex a, complex b) { return truth(!(re(a) == re(b))); }},
    {"realGreater", realGreater, 1, 1, 1, [](complex a, complex b) { return truth(re(a) > re(b)); }},
    {"realLess", realLess, 1, 1, 1, [](complex a, complex b) { return truth(re(a) < re(b)); }},
    {"realGreaterOrEqual", realGreaterOrEqual, 1, 1, 1, [](complex a, complex b) { return truth(re(a) >= re(b)); }},
    {"realLessOrEqual", realLessOrEqual, 1, 1, 1, [](complex a, complex b) { return truth(re(a) <= re(b)); }},
    {"realAnd", realAnd, 1, 1, 1, [](complex a, complex b) { return truth(re(a) != 0 && re(b) != 0); }},
    {"realOr", realOr, 1, 1, 1, [](complex a, complex b) { return truth(re(a) != 0 || re(b) != 0); }},
    {"realMax", realMax, 1, 1, 1,
     [](complex a, complex b) {
         return complex{re(a) > re(b) ? re(a) : re(b), 0};
     }},
    {"realMin", realMin, 1, 1, 1,
     [](complex a, complex b) {
         return complex{re(a) > re(b) ? re(b) : re(a), 0};
     }},
    {"realPair", realPair, 2, 1, 1,
     [](complex a, complex b) {
         return complex{re(a), re(b)};
     }},
    {"complexAddComplex", complexAddComplex, 2, 2, 2,
     [](complex a, complex b) {
         return complex{a.re + b.re, a.im + b.im};
     }},
    {"complexAddReal", complexAddReal, 2, 2, 1,
     [](complex a, complex b) {
         return complex{a.re + b.re, a.im};
     }},
    {"realAddComplex", realAddComplex, 2, 1, 2,
     [](complex a, complex b) {
         return complex{a.re + b.re, b.im};
     }},
    {"complexSubtractComplex", complexSubtractComplex, 2, 2, 2,
     [](complex a, complex b) {
         return complex{a.re - b.re, a.im - b.im};
     }},
    {"complexSubtractReal", complexSubtractReal, 2, 2, 1,
     [](complex a, complex b) {
         return complex{a.re - b.re, a.im};
     }},
    {"realSubtractComplex", realSubtractComplex, 2, 1, 2,
     [](complex a, complex b) {
         return complex{a.re - b.re, -b.im};
     }},
    {"complexMultiplyComplex", complexMultiplyComplex, 2, 2, 2,
     [](complex a, complex b) {
         return complex{a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
     }},
    {"complexMultiplyReal", complexMultiplyReal, 2, 2, 1,
     [](complex a, complex b) {
         return complex{a.re * b.re, a.im * b.re};
     }},
    {"realMultiplyComplex", realMultiplyComplex, 2, 1, 2,
     [](complex a, complex b) {
         return complex{a.re * b.re, a.re * b.im};
     }},
    {"complexPairComplex", complexPairComplex, 2, 2, 2,
     [](complex a, complex b) {
         return complex{a.re - b.im, a.im + b.re};
     }},
    {"complexPairReal", complexPairReal, 2, 2, 1,
     [](complex a, complex b) {
         return complex{a.re, a.im + b.re};
     }},
    {"realPairComplex", realPairComplex, 2, 1, 2,
     [](complex a, complex b) {
         return complex{a.re - b.im, b.re};
     }},
    {"complexEqualComplex", complexEqualComplex, 1, 2, 2,
     [](complex a, complex b) { return truth(a.re == b.re && a.im == b.im); }},
    {"complexEqualReal", complexEqualReal, 1, 2, 1,
     [](complex a, complex b) { return truth(a.re == b.re && a.im == 0); }},
    {"realEqualComplex", realEqualComplex, 1, 1, 2,
     [](complex a, complex b) { return truth(a.re == b.re && b.im == 0); }},
    {"complexUnequalComplex", complexUnequalComplex, 1, 2, 2,
     [](complex a, complex b) { return truth(!(a.re == b.re && a.im == b.im)); }},
    {"complexUnequalReal", complexUnequalReal, 1, 2, 1,
     [](complex a, complex b) { return truth(!(a.re == b.re && a.im == 0)); }},
    {"realUnequalComplex", realUnequalComplex, 1, 1, 2,
     [](complex a, complex b) { return truth(!(a.re == b.re && b.im == 0)); }},
    {"complexPowerComplex", complexPowerComplex, 2, 2, 2, [](complex a, complex b) { return pow(a, b); }},
    {"complexPowerReal", complexPowerReal, 2, 2, 1, [](complex a, complex b) { return pow(a, b.re); }},
    {"realPowerComplex", realPowerComplex, 2, 1, 2, [](complex a, complex b) { return pow(a.re, b); }},
};

complex elementAt(std::vector<double> const & v, std::size_t width, std::size_t i) {
    return {v[width * i], width == 2 ? v[2 * i + 1] : 0.0};
}

std::vector<double> expected(Case const & c, std::vector<double> const & a, std::vector<double> const & b) {
    std::vector<double> out;
    for (std::size_t i = 0; i < a.size() / c.aWidth; ++i) {
        complex const z = c.element(elementAt(a, c.aWidth, i), elementAt(b, c.bWidth, i));
        out.push_back(z.re);
        if (c.outWidth == 2) out.push_back(z.im);
    }
    return out;
}

void expectSame(std::vector<double> const & got, std::vector<double> const & want) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i) ASSERT_TRUE(sameNumber(got[i], want[i])) << i << ": " << got[i];
}

void runCase(Case const & c, std::size_t count, NumberSamples & samples) {
    std::vector<double> a = samples.many(c.aWidth * count), b = samples.many(c.bWidth * count);
    std::vector<double> const want = expected(c, a, b);
    std::vector<double> out(c.outWidth * count);
    EXPECT_EQ(c.loop(out.data(), a.data(), b.data(), count), 0);
    expectSame(out, want);
    if (c.outWidth == c.bWidth) {
        std::vector<double> inPlace = b;
        EXPECT_EQ(c.loop(inPlace.data(), a.data(), inPlace.data(), count), 0);
        expectSame(inPlace, want);
    }
    if (c.outWidth == c.aWidth) {
        EXPECT_EQ(c.loop(a.data(), a.data(), b.data(), count), 0);
        expectSame(a, want);
    }
}

// One call of a loop of reals.
double one(Loop loop, double a, double b) {
    double out = 77;
    EXPECT_EQ(loop(&out, &a, &b, 1), 0) << a << " " << b;
    return out;
}

int refusal(Loop loop, double a, double b) {
    double out = 0;
    return loop(&out, &a, &b, 1);
}

complex quotient(complex a, complex b) {
    complex out;
    EXPECT_EQ(complexDivideComplex(&out.re, &a.re, &b.re, 1), 0);
    return out;
}

double const infinity = std::numeric_limits<double>::infinity();

} // namespace

TEST(Kernels, EqualTheArithmeticForEveryLengthAndInPlace) {
    NumberSamples samples(11);
    for (Case const & c : cases)
        for (std::size_t count = 0; count <= 41; ++count) {
            SCOPED_TRACE(std::string(c.name) + " of " + std::to_string(count) + ", seed 11");
            ASSERT_NO_FATAL_FAILURE(runCase(c, count, samples));
        }
}

TEST(Kernels, WorkOnElementsThatAreNotAligned) {
    NumberSamples samples(12);
    std::vector<double> const a = samples.many(103), b = samples.many(103);
    std::vector<double> out(103);
    for (std::size_t shift = 0; shift < 3; ++shift) {
        realAdd(out.data() + 1, a.data() + shift, b.data() + 2, 100);
        for (std::size_t i = 0; i < 100; ++i) ASSERT_TRUE(sameNumber(out[1 + i], a[shift + i] + b[2 + i]));
    }
}

TEST(Kernels, GiveAnElementTheSameResultInAnyPlace) {
    NumberSamples samples(19);
    struct {
        Loop loop;
        std::size_t aWidth, bWidth, outWidth;
    } const loops[] = {{complexMultiplyComplex, 2, 2, 2},
                       {complexDivideComplex, 2, 2, 2},
                       {realDivideComplex, 1, 2, 2},
                       {realPower, 1, 1, 1}};
    for (auto const & [loop, aWidth, bWidth, outWidth] : loops)
        for (std::size_t count = 1; count <= 40; ++count) {
            std::vector<double> a(aWidth * count), b(bWidth * count), out(outWidth * count);
            for (double & x : a) x = samples.ordinary(0, 10);
            for (double & x : b) x = samples.ordinary();
            ASSERT_EQ(loop(out.data(), a.data(), b.data(), count), 0);
            for (std::size_t i = 0; i < count; ++i) {
                double alone[2];
                loop(alone, &a[i * aWidth], &b[i * bWidth], 1);
                for (std::size_t k = 0; k < outWidth; ++k) ASSERT_EQ(out[i * outWidth + k], alone[k]) << count;
            }
        }
}

TEST(Kernels, DivisionStopsAtZeroAndNowhereElse) {
    NumberSamples samples(13);
    for (std::size_t count = 1; count <= 41; ++count)
        for (std::size_t bad = 0; bad <= count; ++bad) { // bad == count: no zero at all
            std::vector<double> a = samples.many(count), b = samples.many(count, false), out(count);
            if (bad < count) b[bad] = bad % 2 == 0 ? 0.0 : -0.0;
            int const code = realDivide(out.data(), a.data(), b.data(), count);
            ASSERT_EQ(code, bad < count ? refusedDivisor : refusedNothing);
            for (std::size_t i = 0; i < count && code == 0; ++i) ASSERT_TRUE(sameNumber(out[i], a[i] / b[i]));
        }
    EXPECT_TRUE(std::isnan(one(realDivide, 1, std::nan(""))));
    EXPECT_EQ(one(realDivide, 1, infinity), 0);
}

TEST(Kernels, ComplexDividedByRealDividesBothParts) {
    NumberSamples samples(14);
    for (std::size_t count = 1; count <= 41; ++count) {
        std::vector<double> a = samples.many(2 * count), b = samples.many(count, false), out(2 * count);
        ASSERT_EQ(complexDivideReal(out.data(), a.data(), b.data(), count), 0);
        for (std::size_t i = 0; i < 2 * count; ++i) ASSERT_TRUE(sameNumber(out[i], a[i] / b[i / 2]));
        b[count - 1] = 0;
        EXPECT_EQ(complexDivideReal(out.data(), a.data(), b.data(), count), refusedDivisor);
    }
}

TEST(Kernels, ComplexQuotientsAreCloseToTheExactOnes) {
    NumberSamples samples(15);
    for (int i = 0; i < 100000; ++i) {
        complex const a{samples.ordinary(), samples.ordinary()}, b{samples.ordinary(), samples.ordinary()};
        long double const square = static_cast<long double>(b.re) * b.re + static_cast<long double>(b.im) * b.im;
        long double const wantRe =
            (static_cast<long double>(a.re) * b.re + static_cast<long double>(a.im) * b.im) / square;
        long double const wantIm =
            (static_cast<long double>(a.im) * b.re - static_cast<long double>(a.re) * b.im) / square;
        complex const q = quotient(a, b);
        long double const size = std::hypot(wantRe, wantIm);
        ASSERT_LT(std::hypot(q.re - wantRe, q.im - wantIm), 4 * size * DBL_EPSILON);
    }
}

TEST(Kernels, ComplexQuotientsReachTheEndsOfTheRange) {
    EXPECT_EQ(quotient({1e300, 1e300}, {1e300, 1e300}), (complex{1, 0}));
    EXPECT_EQ(quotient({1e-300, 0}, {1e-300, 0}), (complex{1, 0}));
    EXPECT_EQ(quotient({2, 0}, {0, 1e-200}), (complex{0, -2e200}));
    EXPECT_EQ(quotient({1, 0}, {10, 0}), (complex{0.1, 0}));
    EXPECT_EQ(quotient({4, 2}, {0, 2}), (complex{1, -2}));
    EXPECT_TRUE(std::isnan(quotient({std::nan(""), 0}, {1, 0}).re));
}

TEST(Kernels, ComplexDivisionStopsOnlyWhereBothPartsAreZero) {
    for (std::size_t count : {1U, 5U, 300U})
        for (std::size_t bad = 0; bad < count; bad += 7) {
            std::vector<double> a(2 * count, 3.0), b(2 * count, 1.0), out(2 * count);
            b[2 * bad] = 0;
            EXPECT_EQ(complexDivideComplex(out.data(), a.data(), b.data(), count), 0);
            EXPECT_EQ(realDivideComplex(out.data(), a.data(), b.data(), count), 0);
            b[2 * bad + 1] = -0.0;
            EXPECT_EQ(complexDivideComplex(out.data(), a.data(), b.data(), count), refusedDivisor);
            EXPECT_EQ(realDivideComplex(out.data(), a.data(), b.data(), count), refusedDivisor);
        }
}

TEST(Kernels, RealDividedByComplexEqualsComplexDivision) {
    NumberSamples samples(16);
    for (int i = 0; i < 1000; ++i) {
        double const a = samples.any();
        complex const b{samples.any(), samples.ordinary()};
        complex out;
        ASSERT_EQ(realDivideComplex(&out.re, &a, &b.re, 1), 0);
        complex const want = quotient({a, 0}, b);
        ASSERT_TRUE(sameNumber(out.re, want.re) && sameNumber(out.im, want.im)) << a << " " << b.re << " " << b.im;
    }
}

TEST(Kernels, PowerIsThatOfTheLibrary) {
    NumberSamples samples(17);
    for (std::size_t count = 1; count <= 150; ++count) {
        std::vector<double> a(count), b(count), out(count);
        for (std::size_t i = 0; i < count; ++i) {
            a[i] = std::fabs(samples.any());
            if (std::isnan(a[i])) a[i] = 0; // refused
            b[i] = samples.any();
        }
        ASSERT_EQ(realPower(out.data(), a.data(), b.data(), count), 0);
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_LE(doublesApart(out[i], std::pow(a[i], b[i])), 1U) << a[i] << "^" << b[i];
    }
}

TEST(Kernels, WholePowersOfWholeNumbersAreExact) {
    for (int base = -30; base <= 30; ++base) {
        double want = 1;
        for (int n = 0; n <= 10; ++n, want *= base) ASSERT_EQ(one(realPower, base, n), want) << base << "^" << n;
    }
}

TEST(Kernels, SquaresAreProductsAmongWhateverNeighbours) {
    NumberSamples samples(18);
    std::vector<double> a = samples.many(200, false), b(200, 2.0), squares(200), mixed(200);
    ASSERT_EQ(realPower(squares.data(), a.data(), b.data(), 200), 0);
    for (std::size_t i = 1; i < 200; i += 2) b[i] = 3;
    ASSERT_EQ(realPower(mixed.data(), a.data(), b.data(), 200), 0);
    for (std::size_t i = 0; i < 200; ++i) {
        ASSERT_EQ(squares[i], a[i] * a[i]);
        ASSERT_LE(doublesApart(mixed[i], i % 2 == 0 ? squares[i] : std::pow(a[i], 3)), i % 2);
    }
}

TEST(Kernels, PowerRefusesFractionsOfNegativeBases) {
    EXPECT_EQ(refusal(realPower, -8, 1.0 / 3), refusedExponent);
    EXPECT_EQ(refusal(realPower, std::nan(""), 0.5), refusedExponent);
    EXPECT_EQ(refusal(realPower, -0.0, 0.5), 0);
    EXPECT_EQ(one(realPower, -8, 3), -512);
    EXPECT_EQ(one(realPower, 0, -1), infinity);
    EXPECT_TRUE(std::isnan(one(realPower, std::nan(""), 2)));
    std::vector<double> a(300, 4.0), b(300, 0.5), out(300);
    a[299] = -4;
    EXPECT_EQ(realPower(out.data(), a.data(), b.data(), 300), refusedExponent);
}

TEST(Kernels, ModuloTakesWholeMagnitudes) {
    EXPECT_EQ(one(realModulo, 7.9, 3.2), 1);
    EXPECT_EQ(one(realModulo, -7, 3), 1);
    EXPECT_EQ(one(realModulo, 7, -3), 1);
    EXPECT_EQ(one(realModulo, 2147483646.5, 1000), 646);
    EXPECT_EQ(one(realModulo, 0, 5), 0);
}

TEST(Kernels, ModuloRefusesWhatIsNoWholeNumberOf31Bits) {
    double const nan = std::nan("");
    EXPECT_EQ(refusal(realModulo, nan, 3), refusedModulo);
    EXPECT_EQ(refusal(realModulo, 3, nan), refusedModulo);
    EXPECT_EQ(refusal(realModulo, 3, 0), refusedModulo);
    EXPECT_EQ(refusal(realModulo, 2147483647.0, 3), refusedModulo);
    EXPECT_EQ(refusal(realModulo, 3, -2147483647.0), refusedModulo);
    EXPECT_EQ(refusal(realModulo, infinity, 3), refusedModulo);
}

TEST(Kernels, ModuloByAFractionIsAnIntegerDivisionByZero) {
    try {
        refusal(realModulo, 5, 0.5);
        FAIL() << "nothing was thrown";
    } catch (OsException const & exception) {
        EXPECT_EQ(exception.kind, OsException::integerDivideByZero);
        EXPECT_EQ(exception.status, 0xC0000094U);
        EXPECT_TRUE(std::string(exception.text).starts_with("An integer divide by zero exception occurred at "));
    }
    // The first element that cannot be decides.
    double const a[] = {1, 5}, refusedFirst[] = {0, 0.5};
    double out[2];
    EXPECT_EQ(realModulo(out, a, refusedFirst, 2), refusedModulo);
}
