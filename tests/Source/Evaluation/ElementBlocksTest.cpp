// Loops over arrays that are cut into blocks: repeated operands, and results written past the cache.

#include "Evaluation/ElementBlocks.h"

#include "NumberSamples.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace kernels;

namespace {

// An operand of `width` doubles an element, as Operand and as seen element by element.
struct TestOperand {
    std::vector<double> values;
    std::size_t width;
    bool repeated;

    Operand operand() const { return {values.data(), width, repeated}; }
    double const * at(std::size_t i) const { return &values[repeated ? 0 : i * width]; }
};

TestOperand makeOperand(NumberSamples & samples, std::size_t width, bool repeated, std::size_t count) {
    return {samples.many(repeated ? width : width * count), width, repeated};
}

void expectEachElement(Loop loop, std::vector<double> const & out, std::size_t outWidth, TestOperand const & a,
                       TestOperand const & b) {
    for (std::size_t i = 0; i < out.size() / outWidth; ++i) {
        double want[2];
        ASSERT_EQ(loop(want, a.at(i), b.at(i), 1), 0);
        for (std::size_t k = 0; k < outWidth; ++k) ASSERT_TRUE(sameNumber(out[i * outWidth + k], want[k])) << i;
    }
}

constexpr std::size_t large = streamingSize / sizeof(double) + 77; // an odd number of elements, blocks and lines

int twice(double * out, double const * in, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out[i] = 2 * in[i];
    return 0;
}

} // namespace

TEST(ElementBlocks, ARepeatedOperandStandsForEveryElement) {
    NumberSamples samples(21);
    for (std::size_t count : {0U, 1U, 2U, 3U, 127U, 128U, 129U, 300U, 1000U})
        for (bool left : {false, true})
            for (bool right : {false, true}) {
                SCOPED_TRACE(std::to_string(count) + (left ? " left" : "") + (right ? " right" : ""));
                TestOperand const a = makeOperand(samples, 1, left, count), b = makeOperand(samples, 1, right, count);
                std::vector<double> out(count);
                ASSERT_EQ(runLoop(realSubtract, out.data(), 1, a.operand(), b.operand(), count), 0);
                ASSERT_NO_FATAL_FAILURE(expectEachElement(realSubtract, out, 1, a, b));
            }
}

TEST(ElementBlocks, RepeatedOperandsMayBeComplex) {
    NumberSamples samples(22);
    for (std::size_t count : {1U, 5U, 128U, 300U}) {
        TestOperand const a = makeOperand(samples, 2, true, count), b = makeOperand(samples, 1, false, count);
        std::vector<double> out(2 * count);
        ASSERT_EQ(runLoop(complexMultiplyReal, out.data(), 2, a.operand(), b.operand(), count), 0);
        ASSERT_NO_FATAL_FAILURE(expectEachElement(complexMultiplyReal, out, 2, a, b));
    }
}

TEST(ElementBlocks, ARepeatedOperandGoesWithWorkInPlace) {
    NumberSamples samples(23);
    std::vector<double> values = samples.many(1000);
    std::vector<double> const before = values;
    double const three = 3;
    ASSERT_EQ(runLoop(realMultiply, values.data(), 1, {values.data(), 1, false}, {&three, 1, true}, 1000), 0);
    for (std::size_t i = 0; i < 1000; ++i) ASSERT_TRUE(sameNumber(values[i], before[i] * 3));
}

TEST(ElementBlocks, LargeResultsAreTheSameNumbers) {
    NumberSamples samples(24);
    for (bool right : {false, true}) {
        TestOperand const a = makeOperand(samples, 1, false, large), b = makeOperand(samples, 1, right, large);
        std::vector<double> out(large);
        ASSERT_EQ(runLoop(realMultiply, out.data(), 1, a.operand(), b.operand(), large), 0);
        ASSERT_NO_FATAL_FAILURE(expectEachElement(realMultiply, out, 1, a, b));
    }
}

TEST(ElementBlocks, LargeResultsMayBeginAnywhere) {
    NumberSamples samples(25);
    TestOperand const a = makeOperand(samples, 1, false, large), b = makeOperand(samples, 1, false, large);
    for (std::size_t shift : {1U, 2U, 3U}) {
        std::vector<double> out(large + 8, 77.0);
        ASSERT_EQ(runLoop(realAdd, out.data() + shift, 1, a.operand(), b.operand(), large), 0);
        EXPECT_EQ(out[shift - 1], 77.0);
        EXPECT_EQ(out[shift + large], 77.0);
        out.erase(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(shift));
        out.resize(large);
        ASSERT_NO_FATAL_FAILURE(expectEachElement(realAdd, out, 1, a, b));
    }
}

TEST(ElementBlocks, LargeComplexResultsAreTheSameNumbers) {
    NumberSamples samples(26);
    std::size_t const count = large / 2;
    TestOperand const a = makeOperand(samples, 2, false, count), b = makeOperand(samples, 2, false, count);
    std::vector<double> out(2 * count);
    ASSERT_EQ(runLoop(complexMultiplyComplex, out.data(), 2, a.operand(), b.operand(), count), 0);
    ASSERT_NO_FATAL_FAILURE(expectEachElement(complexMultiplyComplex, out, 2, a, b));
}

TEST(ElementBlocks, ARefusalIsReportedFromAnyBlock) {
    std::vector<double> const a(large, 1.0);
    std::vector<double> b(large, 2.0), out(large);
    for (std::size_t bad : {std::size_t{0}, std::size_t{500}, large - 1}) {
        b[bad] = 0;
        EXPECT_EQ(runLoop(realDivide, out.data(), 1, {a.data(), 1, false}, {b.data(), 1, false}, large),
                  refusedDivisor);
        EXPECT_EQ(runLoop(realDivide, out.data(), 1, {a.data(), 1, true}, {b.data(), 1, false}, large), refusedDivisor);
        b[bad] = 2;
    }
}

TEST(ElementBlocks, LoopsOfOneOperandRunInAnySize) {
    NumberSamples samples(27);
    for (std::size_t count : {std::size_t{0}, std::size_t{5}, large}) {
        std::vector<double> const in = samples.many(count);
        std::vector<double> out(count);
        ASSERT_EQ(runLoop(twice, out.data(), 1, {in.data(), 1, false}, count), 0);
        for (std::size_t i = 0; i < count; ++i) ASSERT_TRUE(sameNumber(out[i], 2 * in[i]));
    }
}
