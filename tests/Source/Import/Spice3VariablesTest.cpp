#include "Import/Spice3Variables.h"

#include "RawFileFixture.h"
#include "Vectors/BlockMemory.h"

namespace {

using testing::ElementsAre;
using Spice3VariablesTest = RawFileFixture;

std::string nameOf(std::string_view token, int index = 3) {
    return std::string(spice3VectorName(token, index).view());
}

// A file whose only variable has this name and type.
RawFile oneVariable(std::string const & line) {
    RawFile file;
    file.variableCount = "1";
    file.variables = line + "\n";
    file.values = "0 1\n1 2\n";
    return file;
}

TEST(Spice3Names, VoltageProbeIsNamedAfterItsNode) {
    EXPECT_EQ(nameOf("v(out)"), "out");
    EXPECT_EQ(nameOf("V(Out)"), "Out");
    EXPECT_EQ(nameOf("v(x1:out)"), "x1:out");
    EXPECT_EQ(nameOf("v(out"), "out");
}

TEST(Spice3Names, VoltageProbeOfOtherThanOneNodeIsNamedByItsIndex) {
    EXPECT_EQ(nameOf("v(a)(b)"), "$vec#3");
    EXPECT_EQ(nameOf("v(a)b"), "$vec#3");
    EXPECT_EQ(nameOf("v(a)(b)(c)"), "$vec#3");
    EXPECT_EQ(nameOf("v()"), "$vec#3");
    EXPECT_EQ(nameOf("v("), "$vec#3");
}

TEST(Spice3Names, DeviceParameterIsNamedAfterDeviceAndParameter) {
    EXPECT_EQ(nameOf("@r1[i]"), "r1#p");
    EXPECT_EQ(nameOf("@r1[p]"), "r1#pwr");
    EXPECT_EQ(nameOf("@m1[gm]"), "m1#gm");
    EXPECT_EQ(nameOf("@m.x1.m2[id]"), "m.x1.m2#id");
}

TEST(Spice3Names, BrokenDeviceParameterIsNamedByItsIndex) {
    for (char const * token : {"@", "@[", "@r1", "@r1[]", "@r1[i][j]", "@[i]", "@@@", "@a[b]c"})
        EXPECT_EQ(nameOf(token, 12), "$vec#12") << token;
}

TEST(Spice3Names, AnyOtherTokenStandsWithDotsForColons) {
    EXPECT_EQ(nameOf("time"), "time");
    EXPECT_EQ(nameOf("i(v1)"), "i(v1)");
    EXPECT_EQ(nameOf("x1:out"), "x1.out");
    EXPECT_EQ(nameOf("vm(out)"), "vm(out)");
    EXPECT_EQ(nameOf("::"), "..");
    EXPECT_EQ(nameOf(std::string(1000, ':')), std::string(1000, '.'));
}

TEST(Spice3Types, WordsGiveTheTypeWithoutRegardToCase) {
    struct Case {
        char const * word;
        PhysType type;
    };
    for (Case const & c : std::initializer_list<Case>{{"voltage", PT_VOLTAGE},
                                                      {"V", PT_VOLTAGE},
                                                      {"v", PT_VOLTAGE},
                                                      {"Current", PT_CURRENT},
                                                      {"a", PT_CURRENT},
                                                      {"POWER", PT_POWER},
                                                      {"w", PT_POWER},
                                                      {"frequency", PT_FREQUENCY},
                                                      {"hz", PT_FREQUENCY},
                                                      {"Hertz", PT_FREQUENCY},
                                                      {"time", PT_TIME},
                                                      {"s", PT_TIME},
                                                      {"notype", PT_UNKNOWN},
                                                      {"", PT_UNKNOWN}})
        EXPECT_EQ(spice3PhysType(c.word), c.type) << c.word;
}

Spice3Header headerOf(int points, int variables, bool isComplex) {
    Spice3Header header;
    header.numPoints = points;
    header.numVariables = variables;
    header.isComplex = isComplex;
    return header;
}

TEST(Spice3Buffers, GetOneAndAHalfTimesTheirNeedWithinTheBudget) {
    EXPECT_EQ(spice3BufferBytes(headerOf(1000, 4, false), 1000000), 12000);
    EXPECT_EQ(spice3BufferBytes(headerOf(1000, 4, true), 1000000), 24000);
    EXPECT_EQ(spice3BufferBytes(headerOf(1000, 4, true), 40000), 10000);
    EXPECT_EQ(spice3BufferBytes(headerOf(3, 4, false), 1000000), 1024);
    EXPECT_EQ(spice3BufferBytes(headerOf(3, 4, false), 1024), 256);
    EXPECT_EQ(spice3BufferBytes(headerOf(-3, 4, false), 1000000), 250000);
    EXPECT_EQ(spice3BufferBytes(headerOf(2147483647, 1, true), 2147483647), 2147483647);
    EXPECT_EQ(spice3BufferBytes(headerOf(1, 2147483647, false), 1024), 0);
}

TEST_F(Spice3VariablesTest, VectorsHaveNamesTypesAndTheFirstAsReference) {
    ASSERT_TRUE(open(RawFile()));
    EXPECT_THAT(names(), ElementsAre("out", "time"));
    EXPECT_EQ(vector("out")->physType(), PT_VOLTAGE);
    EXPECT_EQ(vector("time")->physType(), PT_TIME);
    for (char const * name : {"out", "time"}) {
        EXPECT_EQ(vector(name)->ref.name(), "time");
        EXPECT_EQ(vector(name)->ref.physType(), PT_TIME);
        EXPECT_THAT(realsOf(vector(name)->ref), ElementsAre(0.5, 1));
    }
}

TEST_F(Spice3VariablesTest, ReferenceDataAreSharedByAll) {
    ASSERT_TRUE(open(RawFile()));
    EXPECT_TRUE(vector("out")->ref.sharesRep(*vector("time")));
    EXPECT_TRUE(vector("time")->ref.sharesRep(*vector("time")));
}

TEST_F(Spice3VariablesTest, FurtherWordsOfALineAreIgnored) {
    ASSERT_TRUE(open(oneVariable("0 frequency frequency grid=3 dims=2")));
    EXPECT_THAT(names(), ElementsAre("frequency"));
}

TEST_F(Spice3VariablesTest, FirstVariableMayStandBehindTheWordVariables) {
    RawFile file;
    std::string text = file.text();
    text.replace(text.find("Variables:\n\t0"), 13, "Variables:\t0");
    ASSERT_TRUE(open(text));
    EXPECT_THAT(names(), ElementsAre("out", "time"));
}

TEST_F(Spice3VariablesTest, BlankLinesInTheListAreSkipped) {
    RawFile file;
    file.variables = "\n \t\r\n0 time time\r\n\n1 v(out) voltage\r\n";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(names(), ElementsAre("out", "time"));
}

TEST_F(Spice3VariablesTest, ListMustHaveThreeWordsAndTheRightIndex) {
    for (char const * list :
         {"0 time\n1 v(out) voltage\n", "1 time time\n0 v(out) voltage\n", "00 time time\n", "0 time time\n1 v(out)\n",
          "0 time time\n2 v(out) voltage\n", "0 time time\n", "x time time\n", "0 time time\nValues:\n0 1 2\n"}) {
        RawFile file;
        file.variables = list;
        expectRefused(file.text());
        EXPECT_THAT(texts(), ElementsAre("The variable list is incorrectly formatted", generalFailure)) << list;
    }
}

TEST_F(Spice3VariablesTest, SweepVariableMustBeTheFirst) {
    RawFile file;
    file.extra = "Sweepvar: time\n";
    file.variables = "0 frequency frequency\n1 time time\n";
    expectRefused(file.text());
    EXPECT_THAT(texts(),
                ElementsAre("The reference vector, 'time', must be the first in the variable list", generalFailure));
}

TEST_F(Spice3VariablesTest, SweepVariableIsComparedWithTheVectorsNameWithoutRegardToCase) {
    RawFile file;
    file.extra = "Sweepvar: TIME\n";
    EXPECT_TRUE(open(file));
    file.extra = "Sweepvar: out\n";
    file.variables = "0 v(OUT) voltage\n1 v(b) voltage\n";
    EXPECT_TRUE(open(file));
}

TEST_F(Spice3VariablesTest, SweepVariableIsNoFormat) {
    RawFile file;
    file.extra = "Sweepvar: %n%s%99999d\n";
    expectRefused(file.text());
    EXPECT_EQ(texts().front(), "The reference vector, '%n%s%99999d', must be the first in the variable list");
}

TEST_F(Spice3VariablesTest, EqualNamesAreNumbered) {
    RawFile file;
    file.variableCount = "4";
    file.pointCount = "1";
    file.variables = "0 x voltage\n1 X voltage\n2 v(x) voltage\n3 x_1 voltage\n";
    file.values = "0 1 2 3 4\n";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(names(), ElementsAre("x", "X_1", "x_1_1", "x_2"));
    EXPECT_THAT(reals("x_2"), ElementsAre(3));
    EXPECT_TRUE(texts().empty());
}

TEST_F(Spice3VariablesTest, ManyEqualNamesCostNoMoreThanManyOthers) {
    RawFile file;
    int const count = 20000; // with a search from "_1" on for each this would be 200 million look-ups
    file.variableCount = std::to_string(count);
    file.variables.clear();
    for (int i = 0; i < count; ++i) file.variables += std::to_string(i) + " x V\n";
    file.pointCount = "-2";
    ASSERT_TRUE(open(file));
    EXPECT_EQ(group()->vectors.size(), static_cast<std::size_t>(count));
    EXPECT_NE(vector("x_19999"), nullptr);
}

TEST_F(Spice3VariablesTest, LinesOf998CharactersAreTheLongest) {
    auto file = [](std::size_t length) {
        std::string const line = "0 time time";
        return oneVariable(line + std::string(length - line.size(), ' '));
    };
    EXPECT_TRUE(open(file(998)));
    for (std::size_t const length : {999u, 1000u, 1000000u}) {
        expectRefused(file(length).text());
        EXPECT_EQ(texts().front(), "The variable list is incorrectly formatted") << length;
    }
}

TEST_F(Spice3VariablesTest, VariableCountBeyondTheListTakesNoMemory) {
    RawFile file;
    file.variableCount = "2147483647";
    BlockMemory::resetPeak();
    std::size_t const before = BlockMemory::peakBytes();
    expectRefused(file.text());
    EXPECT_LE(BlockMemory::peakBytes() - before, 100000u);
}

} // namespace
