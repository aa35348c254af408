// Runs every case under tests/expressions. A case is named by its file and line.

#include "ExpressionCases.h"

#include <gtest/gtest.h>

class ExpressionFiles : public testing::TestWithParam<ExpressionCase> {};

TEST_P(ExpressionFiles, Behave) {
    ExpressionCase const & c = GetParam();
    EXPECT_EQ(runExpressionCase(c), "") << c.file << ".txt line " << c.line << ": " << c.name;
}

INSTANTIATE_TEST_SUITE_P(All, ExpressionFiles,
                         testing::ValuesIn(loadExpressionCases(TORVELAN_SOURCE_DIR "/tests/expressions")),
                         [](testing::TestParamInfo<ExpressionCase> const & param) {
                             return param.param.file + "_" + std::to_string(param.param.line);
                         });
