#include "torvelan/Substitution.h"

#include "torvelan/EngineSession.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class Bracketing : public VecSubstExpressionObject {
public:
    YString substituteName(YString const & name) override { return YString::joined("<", {name.view(), ">"}); }
};

class Renaming final : public Bracketing {
public:
    YString substituteFunction(YString const & name, NameArray const & args) override {
        std::string text = std::string(name) + "{";
        for (YString const & arg : args) text += std::string(arg) + ";";
        return YString(text + "}");
    }
    bool substitutesFunctions() override { return true; }
};

class Substitution : public testing::Test {
protected:
    std::string substituted(char const * expr) {
        Bracketing object;
        return std::string(vec_SubstituteExpression(YString(expr), &object));
    }
    EngineSession session;
};

} // namespace

TEST_F(Substitution, NamesPassThroughTheObject) {
    EXPECT_EQ(substituted("a + g:b*2"), "<a>+<g:b>*2");
}

TEST_F(Substitution, SpellingIsNormalised) {
    EXPECT_EQ(substituted("a != b"), "<a><><b>");
    EXPECT_EQ(substituted("a and NOT b or c"), "<a>&&!<b>||<c>");
    EXPECT_EQ(substituted("1 2  3"), "1, 2, 3");
    EXPECT_EQ(substituted("[ 1 2 ]"), "[1, 2]");
    EXPECT_EQ(substituted("f( a  b )"), "f(<a>, <b>)");
    EXPECT_EQ(substituted("f()"), "f()");
}

TEST_F(Substitution, EveryFormOfIndexAndAssignment) {
    EXPECT_EQ(substituted("a[1]"), "<a>[1]");
    EXPECT_EQ(substituted("a[1][2]"), "<a>[1][2]");
    EXPECT_EQ(substituted("a[][2]"), "<a>[][2]");
    EXPECT_EQ(substituted("(a)[][2]"), "(<a>)[][2]");
    EXPECT_EQ(substituted("a=1"), "<a>=1");
    EXPECT_EQ(substituted("a[2]=1"), "<a>[2]=1");
    EXPECT_EQ(substituted("(1,a)"), "(1,<a>)");
}

TEST_F(Substitution, NumbersKeepTheirValueAndStringsTheirQuotes) {
    EXPECT_EQ(substituted("1.23456789012345"), "1.23456789012345");
    EXPECT_EQ(substituted("1k"), "1000");
    EXPECT_EQ(substituted("'a b'"), "'a b'");
}

TEST_F(Substitution, CallsPassThroughAnObjectThatWantsThem) {
    Renaming object;
    EXPECT_EQ(vec_SubstituteExpression(YString("SIN(a)+nosuch(1,2)"), &object).view(), "sin{<a>;}+nosuch{1;2;}");
}

TEST_F(Substitution, ATextThatDoesNotParseGivesNothing) {
    EXPECT_EQ(substituted("1 +"), "");
    EXPECT_EQ(substituted("1 )"), "");
}
