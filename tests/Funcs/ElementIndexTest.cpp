// One element of a vector.

#include "Evaluation/EvaluatorHandlers.h"

#include "HandlerFrame.h"

#include <cmath>
#include <limits>

namespace {

class ElementIndex : public HandlerFrame {
protected:
    void expectRefused(XYVector & base, XYVector & index, char const * words) {
        EXPECT_EQ(call(elementIndexHandler, {base, index}), FUNC_FAILED);
        EXPECT_EQ(message(), words);
        EXPECT_EQ(y.totalLength(), 0);
    }
};

} // namespace

TEST_F(ElementIndex, GivesOneElementOfEachKind) {
    ASSERT_EQ(call(elementIndexHandler, {real({5, 6, 7}, PT_VOLTAGE), real({2})}), FUNC_OK);
    EXPECT_EQ(reals(), (Reals{7}));
    EXPECT_EQ(y.physType(), PT_VOLTAGE);
    ASSERT_EQ(call(elementIndexHandler, {pairs({{1, 2}, {3, 4}}, PT_CURRENT), real({0})}), FUNC_OK);
    EXPECT_EQ(complexes(), (Pairs{{1, 2}}));
    EXPECT_EQ(y.physType(), PT_CURRENT);
    ASSERT_EQ(call(elementIndexHandler, {strings({"a", "b"}), real({1})}), FUNC_OK);
    EXPECT_EQ(texts(), (std::vector<std::string>{"b"}));
}

TEST_F(ElementIndex, CarriesNoReference) {
    ASSERT_EQ(call(elementIndexHandler, {withReference(real({5, 6}), {1, 2}), real({1})}), FUNC_OK);
    EXPECT_EQ(ref.totalLength(), 0);
}

TEST_F(ElementIndex, ANullStringBecomesTheEmptyString) {
    ASSERT_EQ(call(elementIndexHandler, {strings({nullptr}), real({0})}), FUNC_OK);
    EXPECT_EQ(texts(), (std::vector<std::string>{""}));
}

TEST_F(ElementIndex, RefusesWhatIsNoIndex) {
    XYVector & v = real({5, 6, 7});
    expectRefused(v, pairs({{1, 0}}), "Complex index");
    expectRefused(v, pairs({{1, 0}, {2, 0}}), "Complex index");
    expectRefused(v, real({1, 2}), "Index must be scalar");
    expectRefused(v, real({}), "Index must be scalar");
    expectRefused(v, real({1.5}), "Index must be an integer");
    expectRefused(v, real({std::nan("")}), "Index must be an integer");
}

TEST_F(ElementIndex, RefusesWhatLiesOutside) {
    XYVector & v = real({5, 6, 7});
    expectRefused(v, real({-1}), "Index out of range");
    expectRefused(v, real({3}), "Index out of range");
    expectRefused(v, real({1e300}), "Index out of range");
    expectRefused(v, real({std::numeric_limits<double>::infinity()}), "Index out of range");
    expectRefused(real({}), real({0}), "Index out of range");
    ASSERT_EQ(call(elementIndexHandler, {v, real({-0.0})}), FUNC_OK);
    EXPECT_EQ(reals(), (Reals{5}));
}

TEST_F(ElementIndex, AnIndexWithoutNumbersIsAnInternalError) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(call(elementIndexHandler, {real({5}), strings({"1"})}), FUNC_FAILED);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Error found in module ElementIndex.cpp, line "),
              std::string::npos);
    EXPECT_TRUE(isSilent());
}
