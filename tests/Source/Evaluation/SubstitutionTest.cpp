#include "torvelan/Substitution.h"

#include "torvelan/EngineSession.h"
#include "torvelan/VectorStore.h"

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

// --- aliases written out

namespace {

class ExpandAlias : public testing::Test {
protected:
    void alias(char const * name, char const * definition) {
        vec_MakeAliasVector(name, definition, YString(), PT_UNKNOWN);
    }
    std::string expanded(std::string const & expr) { return std::string(vec_ExpandAlias(YString(expr))); }
    EngineSession session;
};

} // namespace

TEST_F(ExpandAlias, ATextWithoutAliasesComesBackNormalised) {
    EXPECT_EQ(expanded("a != b"), "a<>b");
    EXPECT_EQ(expanded("a and b OR c"), "a&&b||c");
    EXPECT_EQ(expanded("f(x y)"), "f(x, y)");
}

TEST_F(ExpandAlias, ATextThatDoesNotParseComesBackAsItIs) {
    EXPECT_EQ(expanded("1 +"), "1 +");
    alias("a", "1 +");
    EXPECT_EQ(expanded("a*2"), "(1 +)*2") << "the text of the last good pass";
}

TEST_F(ExpandAlias, DefinitionsStandInParentheses) {
    alias("gain", "out/in");
    alias("gaindb", "db(gain)");
    EXPECT_EQ(expanded("gaindb + 1"), "(db((out/in)))+1");
    EXPECT_EQ(expanded("GAIN"), "(out/in)");
}

TEST_F(ExpandAlias, AReferenceAliasNamesItsTarget) {
    NullMessageHandler messages;
    vec_MakeString("target", "text", YString());
    ASSERT_EQ(vec_MakeReferenceAlias("r", "target", messages), VEC_OK);
    EXPECT_EQ(expanded("r"), "(global:target)");
}

TEST_F(ExpandAlias, ACircleEndsAfterNineteenPasses) {
    alias("a", "b+1");
    alias("b", "a+2");
    std::string const text = expanded("a");
    std::string wanted = "a";
    for (int pass = 0; pass < 19; ++pass) {
        bool const isA = pass % 2 == 0;
        std::size_t const at = wanted.find(isA ? 'a' : 'b');
        wanted.replace(at, 1, isA ? "(b+1)" : "(a+2)");
    }
    EXPECT_EQ(text, wanted);
}

TEST_F(ExpandAlias, AnAliasThatDoublesEndsBeforeItFillsTheMemory) {
    alias("a", "a+a+a+a+a+a+a+a");
    std::string const text = expanded("a");
    EXPECT_LT(text.size(), std::size_t{64} << 20);
    EXPECT_GT(text.size(), 1000u);
}

TEST_F(ExpandAlias, LongDefinitionsInManyPlacesStayWithinTheLongestText) {
    std::string definition = "f(a";
    for (int i = 0; i < 50000; ++i) definition += " 1";
    alias("a", (definition + ")").c_str());
    std::string const text = expanded("f(a a a a a a a a)");
    EXPECT_GT(text.size(), 8 * definition.size());
    EXPECT_LT(text.size(), std::size_t{8} << 20) << "twice the longest text, for the commas that lists gain";
}

TEST_F(ExpandAlias, ALongTextWithoutAliasesIsStillNormalised) {
    std::string text = "x", normal = "x";
    for (int i = 0; i < 1100000; ++i) {
        text += " + y";
        normal += "+y";
    }
    ASSERT_GT(text.size(), std::size_t{4} << 20);
    EXPECT_EQ(expanded(text), normal);
}
