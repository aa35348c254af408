#include "Import/PlainPoint.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

TEST(PlainPoint, TakesIndexAndValuesUpToTheWhiteSpaceBehindThem) {
    double values[2] = {};
    EXPECT_EQ(parsePlainPoint(" 12\t1.5\n\t-2e3\n 13", values, 2), 13u);
    EXPECT_THAT(values, ElementsAre(1.5, -2000));
}

TEST(PlainPoint, TakesPairsWithAComma) {
    complex values[2] = {};
    EXPECT_EQ(parsePlainPoint("0 1,2\n 3,-4\n", values, 2), 11u);
    EXPECT_THAT(values, ElementsAre(complex{1, 2}, complex{3, -4}));
}

TEST(PlainPoint, LeavesWhatDoesNotEndInTheText) {
    std::string_view const text = "0 1 2\n";
    double values[2] = {};
    for (std::size_t n = 0; n < text.size(); ++n) EXPECT_EQ(parsePlainPoint(text.substr(0, n), values, 2), 0u) << n;
    EXPECT_EQ(parsePlainPoint(text, values, 2), 5u);
}

TEST(PlainPoint, LeavesTheUnusual) {
    double values[1] = {};
    for (char const * text : {"+1 2\n", "-1 2\n", "1x 2\n", "1234567890 2\n", "1 +2\n", "1 nan\n", "1 2x\n", "1 2e\n",
                              "1 2,3\n", "1 x\n", "x 1\n", "1 nan(1)\n", "1.5 2\n"})
        EXPECT_EQ(parsePlainPoint(text, values, 1), 0u) << text;
    complex pairs[1] = {};
    for (char const * text : {"1 2 3\n", "1 2, 3\n", "1 2,+3\n", "1 2;3\n", "1 2,\n", "1 ,2\n", "1 2,3,4\n"})
        EXPECT_EQ(parsePlainPoint(text, pairs, 1), 0u) << text;
}

} // namespace
