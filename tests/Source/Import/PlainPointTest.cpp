#include "Import/PlainPoint.h"

#include <gmock/gmock.h>

#include <algorithm>

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

TEST(PlainRow, TakesAsManyNumbersAsAskedAndTheRestOfTheLine) {
    double values[2] = {};
    EXPECT_EQ(parsePlainRow("1,-2.5e3\n3", values, 2), 9u);
    EXPECT_THAT(values, ElementsAre(1, -2500));
    EXPECT_EQ(parsePlainRow(" .5\t, 2. word\r\n", values, 2), 15u);
    EXPECT_THAT(values, ElementsAre(0.5, 2));
}

TEST(PlainRow, LeavesALineThatIsNotWhole) {
    std::string_view const text = "1 2 3\n";
    double values[2] = {};
    for (std::size_t n = 0; n < text.size(); ++n) EXPECT_EQ(parsePlainRow(text.substr(0, n), values, 2), 0u) << n;
    EXPECT_EQ(parsePlainRow(text, values, 2), 6u);
}

TEST(PlainRow, LeavesTheUnusual) {
    double values[2] = {};
    for (char const * text : {"1\n2\n", "\n1 2\n", "1k 2\n", "+1 2\n", "1 -\n", "1 .\n", "1 -.\n", "1 inf\n",
                              "1 -inf\n", "1 nan\n", "1 1e\n", "(1 2)\n", "1 x\n", "1 0x10\n"})
        EXPECT_EQ(parsePlainRow(text, values, 2), 0u) << text;
}

constexpr PlainColumn numberAndPair[] = {PlainColumn::number, PlainColumn::pair};

TEST(PlainRow, TakesPairsInParenthesesOrNot) {
    complex values[2] = {};
    for (std::string_view const text :
         {"1 (2,-3)\n", "1,(2 \t-3)\r\n", "1 2 -3\n", " 1, 2,-3 4 word\n", "1 (2,-3),x\n"}) {
        std::fill_n(values, 2, complex{9, 9});
        EXPECT_EQ(parsePlainRow(text, values, numberAndPair), text.size()) << text;
        EXPECT_THAT(values, ElementsAre(complex{1, 0}, complex{2, -3})) << text;
    }
}

TEST(PlainRow, LeavesUnusualPairs) {
    complex values[2] = {};
    for (char const * text : {"1 (2,3\n", "1 (2\n", "1 ( 2,3)\n", "1 (2,3 )\n", "1 (2,3)x\n", "1 2,3)\n", "1 (2k,3)\n",
                              "1 (2,)\n", "1 (2,3)", "(1,2) (3,4)\n", "1 (2)\n", "1 2\n", "1 ()\n", "1 (", "1 (2,3"})
        EXPECT_EQ(parsePlainRow(text, values, numberAndPair), 0u) << text;
}

TEST(PlainNumbers, TakesThemFromManyLines) {
    double values[4] = {};
    PlainNumbers const run = parsePlainNumbers("\n1 2\r\n\n3,4 5\n", values, 4);
    EXPECT_EQ(run.count, 4u);
    EXPECT_EQ(run.taken, 10u);
    EXPECT_THAT(values, ElementsAre(1, 2, 3, 4));
}

TEST(PlainNumbers, EndsBeforeTheUnusualAndBeforeTheLast) {
    double values[4] = {};
    EXPECT_EQ(parsePlainNumbers("1 2k 3\n", values, 4).count, 1u);
    PlainNumbers const run = parsePlainNumbers("1 2", values, 4);
    EXPECT_EQ(run.count, 1u);
    EXPECT_EQ(run.taken, 1u);
}

} // namespace
