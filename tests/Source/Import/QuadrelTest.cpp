#include "Import/Quadrel.h"

#include "Import/QuadrelColumn.h"
#include "ImportFixture.h"
#include "Vectors/BlockMemory.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// The parts of a file, each with a sound default.
struct QuadrelFile {
    std::string title = "Quadrel\na circuit\na day\n";
    std::string points = "2 points\n", nodes = "2 nodes\n";
    std::string columns = "0 TIME\n1 V(OUT)\n2 I(R1)\n";
    std::string values = "0 1.5 2.5\n1e-9 3 4k\n";

    std::string text() const { return title + points + nodes + columns + values; }

    static QuadrelFile withColumns(std::string lines, std::string data) {
        QuadrelFile file;
        file.nodes = std::to_string(std::count(lines.begin(), lines.end(), '\n') - 1) + "\n";
        file.columns = std::move(lines);
        file.values = std::move(data);
        return file;
    }
};

class QuadrelTest : public ImportFixture {
protected:
    static constexpr char const * failure = "Quadrel data file read failed. Possibly incorrect format";

    bool open(std::string_view content) { return ImportFixture::open(content, DATA_QUADREL); }
    bool open(QuadrelFile const & file) { return open(file.text()); }
    // The group of a refused file stays.
    void expectRefused(std::string_view content) {
        EXPECT_FALSE(open(content)) << content;
        EXPECT_THAT(texts(), ElementsAre(failure));
        EXPECT_EQ(groupName_, "untouched");
        EXPECT_TRUE(groupListHead()->name.beginsWith("quadrel"));
        groupName_ = groupListHead()->name;
    }
    void expectRefused(QuadrelFile const & file) { expectRefused(file.text()); }
    void expectColumnsRefused(std::string lines) {
        expectRefused(QuadrelFile::withColumns(std::move(lines), "1 2 3\n"));
    }
};

TEST_F(QuadrelTest, RealColumns) {
    ASSERT_TRUE(open(QuadrelFile()));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_TRUE(groupName_.beginsWith("quadrel"));
    EXPECT_EQ(group()->title, file_.path());
    EXPECT_EQ(nameSpace().current, group());
    EXPECT_THAT(reals("time"), ElementsAre(0, 1e-9));
    EXPECT_THAT(reals("out"), ElementsAre(1.5, 3));
    EXPECT_THAT(reals("r1#p"), ElementsAre(2.5, 4000));
    EXPECT_EQ(vector("time")->physType(), PT_TIME);
    EXPECT_EQ(vector("out")->physType(), PT_VOLTAGE);
    EXPECT_EQ(vector("r1#p")->physType(), PT_CURRENT);
    for (char const * name : {"time", "out", "r1#p"}) EXPECT_EQ(vector(name)->ref.name(), "TIME");
    EXPECT_THAT(realsOf(vector("out")->ref), ElementsAre(0, 1e-9));
}

TEST_F(QuadrelTest, PairsOfColumnsAreComplexVectors) {
    ASSERT_TRUE(open(QuadrelFile::withColumns(
        "0 Frequency\n1 V(A,0).REAL\n1 V(A,0).IMAG\n2 I(R1) .real\n2 I(R1) .imag\n", "10 1 2 3 4\n20 5 6 7 8\n")));
    EXPECT_THAT(complexes("frequency"), ElementsAre(complex{10, 0}, complex{20, 0}));
    EXPECT_TRUE(vector("frequency")->isComplex());
    EXPECT_EQ(vector("frequency")->physType(), PT_FREQUENCY);
    EXPECT_THAT(complexes("a"), ElementsAre(complex{1, 2}, complex{5, 6}));
    EXPECT_THAT(complexes("r1#p"), ElementsAre(complex{3, 4}, complex{7, 8}));
}

TEST_F(QuadrelTest, CurrentHasAnAliasForTheOtherDirection) {
    ASSERT_TRUE(open(QuadrelFile()));
    EXPECT_THAT(names(), ElementsAre("OUT", "R1#n", "R1#p", "TIME"));
    dvec const * const alias = vector("r1#n");
    ASSERT_TRUE(alias->isAlias());
    EXPECT_STREQ(alias->getString(0), "-:R1#p");
    double value = 0;
    ASSERT_EQ(vec_Evaluate(&value, ":r1#n[1]", ScpParseContext(messages_)), VEC_EVAL_OK) << texts().back();
    EXPECT_EQ(value, -4000);
}

// --- descriptions of columns

std::string described(std::string_view line) {
    QuadrelColumn column;
    if (!parseQuadrelColumn(line, column)) return "refused";
    char const * const parts[] = {"", " real", " imaginary"};
    return std::string(column.name.view()) + " " + std::to_string(column.type) + parts[static_cast<int>(column.part)];
}

TEST(QuadrelColumn, Voltages) {
    EXPECT_EQ(described("1 V(A)"), "A 2");
    EXPECT_EQ(described("1 v(A,0)"), "A 2");
    EXPECT_EQ(described("1 V(A,B)"), "VA_B 2");
    EXPECT_EQ(described("1 V (A, B)\r"), "VA_B 2");
    EXPECT_EQ(described("1 V(A,0).REAL"), "A 2 real");
    EXPECT_EQ(described("1 V(A,B).IMAG"), "VA_B 2 imaginary");
    EXPECT_EQ(described("1 V(A).REAL"), "VA_.REAL 2");
    EXPECT_EQ(described("1 V(A,00)"), "VA_00 2");
    EXPECT_EQ(described("1 V(A,0) x .REAL"), "A 2");
}

TEST(QuadrelColumn, Currents) {
    EXPECT_EQ(described("1 I(R1)"), "R1#p 3");
    EXPECT_EQ(described("1 i(R1).REAL"), "R1#p 3 real");
    EXPECT_EQ(described("1 I(R1) .Imag more"), "R1#p 3 imaginary");
    EXPECT_EQ(described("1 I(R1,x).REAL"), "R1#p 3");
}

TEST(QuadrelColumn, References) {
    EXPECT_EQ(described("0 Time"), "Time 4");
    EXPECT_EQ(described("0 FREQUENCY (Hz)"), "FREQUENCY 5");
}

TEST(QuadrelColumn, PartsOfAHierarchicalNameLoseTheirKind) {
    EXPECT_EQ(described("1 V(X$U1.N$OUT)"), "U1.OUT 2");
    EXPECT_EQ(described("1 V(X$U1.N$A,N$B)"), "VU1.A_B 2");
    EXPECT_EQ(described("1 I(X$U1.R$1)"), "U1.1#p 3");
    EXPECT_EQ(described("1 V($A.B$.C$$.D.X)"), "$A..$.D.X 2");
    EXPECT_EQ(described("1 V(.N$a.)"), ".a. 2");
    EXPECT_EQ(described("1 V(N$)"), " 2");
}

TEST(QuadrelColumn, AnythingElseIsNone) {
    for (char const * line : {"", "1", "1 V", "1 I", "1 W(R1)", "1 freq", "TIME", "1 VV(A)", "( V", "V(A)"})
        EXPECT_EQ(described(line), "refused") << line;
}

TEST_F(QuadrelTest, ColumnThatIsNoneIsRefused) {
    for (char const * lines : {"0 TIME\nx\n", "0 TIME\n1 V\n", "0 TIME\n1 X(A)\n", "TIME\n"})
        expectColumnsRefused(lines);
}

TEST_F(QuadrelTest, RealAndImaginaryPartsComeInPairs) {
    for (char const * lines :
         {"0 TIME\n1 V(A,0).REAL\n1 V(B,0).REAL\n", "0 TIME\n1 V(A,0).REAL\n1 V(A,0).REAL\n",
          "0 TIME\n1 V(A,0).REAL\n1 V(B,0).IMAG\n", "0 TIME\n1 V(A,0).REAL\n2 V(B)\n", "0 TIME\n1 V(A,0).REAL\n",
          "0 TIME\n1 V(A,0).IMAG\n", "0 TIME\n1 V(A,0).REAL\n1 V(A,0).IMAG\n1 V(A,0).IMAG\n"})
        expectColumnsRefused(lines);
    EXPECT_TRUE(open(QuadrelFile::withColumns("0 TIME\n1 V(a,0).REAL\n1 V(A,0).IMAG\n", "1 2 3\n")));
}

TEST_F(QuadrelTest, VectorsMadeBeforeAMistakeStay) {
    expectColumnsRefused("0 TIME\n1 V(A)\n2 W(R)\n");
    EXPECT_THAT(names(), ElementsAre("A", "TIME"));
    EXPECT_THAT(reals("A"), IsEmpty());
}

TEST_F(QuadrelTest, EqualNamesAreMadeSingle) {
    ASSERT_TRUE(open(QuadrelFile::withColumns("0 TIME\n1 V(A)\n2 V(a)\n3 I(R)\n4 I(R)\n", "0 1 2 3 4\n")));
    EXPECT_THAT(names(), ElementsAre("A", "a_1", "R#n", "R#n_1", "R#p", "R#p_1", "TIME"));
    EXPECT_STREQ(vector("R#n_1")->getString(0), "-:R#p_1");
}

TEST_F(QuadrelTest, AnyColumnMayBeFirst) {
    ASSERT_TRUE(open(QuadrelFile::withColumns("0 V(A)\n1 TIME\n", "1 2\n")));
    EXPECT_EQ(vector("time")->ref.name(), "A");
    EXPECT_EQ(vector("A")->ref.name(), "A");
}

// --- counts and lines

TEST_F(QuadrelTest, ThreeLinesAndTwoCountsAreThere) {
    std::string const text = QuadrelFile().text();
    std::size_t const columns = text.find("0 TIME");
    for (std::size_t n = 0; n <= columns; ++n) expectRefused(text.substr(0, n));
    QuadrelFile file;
    file.points = " \t\n";
    expectRefused(file);
    file.points = "1\n";
    file.nodes = "\n";
    expectRefused(file);
}

TEST_F(QuadrelTest, FileCutAnywhereIsRefusedOrReadInPart) {
    std::string const text = QuadrelFile().text();
    std::size_t const described = text.find("I(R1)") + 3; // the name may be shorter
    for (std::size_t n = 0; n <= text.size(); ++n) {
        EXPECT_EQ(open(text.substr(0, n)), n >= described) << n;
        vec_DestroyAllGroups();
    }
    expectUsable();
}

TEST_F(QuadrelTest, LinesHaveAGreatestLength) {
    QuadrelFile file;
    file.title = std::string(1024, 'x') + "\n\n\n";
    EXPECT_TRUE(open(file));
    for (std::size_t const length : {1025u, 1000000u}) {
        file.title = "\n\n" + std::string(length, 'x') + "\n";
        expectRefused(file);
    }
    auto withColumn = [](std::size_t length) {
        std::string const start = "1 V(A) ";
        return QuadrelFile::withColumns("0 TIME\n" + start + std::string(length - start.size(), ' ') + "\n", "1 2\n");
    };
    EXPECT_TRUE(open(withColumn(998)));
    for (std::size_t const length : {999u, 1000u, 1000000u}) expectRefused(withColumn(length));
}

TEST_F(QuadrelTest, PointsAnnouncedAreOnlyAGuess) {
    std::size_t const before = BlockMemory::peakBytes();
    for (char const * points : {"0", "-1", "1", "2147483647", "99999999999999999999", "x", "1e9"}) {
        QuadrelFile file;
        file.points = std::string(points) + "\n";
        ASSERT_TRUE(open(file)) << points;
        EXPECT_THAT(reals("out"), ElementsAre(1.5, 3));
    }
    EXPECT_LE(BlockMemory::peakBytes() - before, 1U << 20);
}

TEST_F(QuadrelTest, NodesAnnouncedMustBeThere) {
    for (char const * nodes : {"3", "2147483647", "99999999999999999999"}) {
        QuadrelFile file;
        file.nodes = std::string(nodes) + "\n";
        expectRefused(file);
    }
}

TEST_F(QuadrelTest, NoColumnsHaveNoVectors) {
    for (char const * nodes : {"-1", "-2147483648", "-99999999999999999999"}) {
        QuadrelFile file;
        file.nodes = std::string(nodes) + "\n";
        ASSERT_TRUE(open(file)) << nodes;
        EXPECT_THAT(names(), IsEmpty());
        EXPECT_EQ(nameSpace().current, group());
    }
}

TEST_F(QuadrelTest, DataThatEndEarlyAreNoFailure) {
    QuadrelFile file;
    for (char const * values : {"", "\n\n", "0 1.5 2.5\n1", "0 1.5 2.5\n\nx y\n1 2 3\n", "0 1.5 2.5\n(1 2 3"}) {
        file.values = values;
        EXPECT_TRUE(open(file)) << values;
        EXPECT_THAT(texts(), IsEmpty());
    }
    file.values = "0 1.5 2.5\n1\n";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("r1#p"), ElementsAre(2.5, 0));
}

TEST_F(QuadrelTest, GroupIsThereEvenWhenTheFileDoesNotOpen) {
    EXPECT_FALSE(openPath("/nonexistent/x", DATA_QUADREL));
    ASSERT_EQ(texts().size(), 1u);
    EXPECT_THAT(texts()[0], HasSubstr("/nonexistent/x"));
    EXPECT_EQ(groupListHead()->title, "/nonexistent/x");
}

TEST_F(QuadrelTest, AnyByteChangedIsRefusedOrRead) {
    std::string const text =
        QuadrelFile::withColumns("0 FREQUENCY\n1 V(A,0).REAL\n1 V(A,0).IMAG\n2 I(R)\n", "1 2 3 4\n5 6 7 8\n").text();
    for (std::size_t i = 0; i < text.size(); ++i)
        for (char const c : {'\0', '\n', '.', '$', '(', '9', '-', '\xff'}) {
            std::string damaged = text;
            damaged[i] = c;
            bool const done = open(damaged);
            EXPECT_EQ(done, texts().empty());
            vec_DestroyAllGroups();
        }
    expectUsable();
}

TEST_F(QuadrelTest, ManyColumnsOfOneNameAreNoBurden) {
    std::string columns = "0 TIME\n", values = "0";
    for (int i = 0; i < 50000; ++i) {
        columns += "1 I(R)\n";
        values += " 1";
    }
    ASSERT_TRUE(open(QuadrelFile::withColumns(columns, values + "\n")));
    EXPECT_THAT(reals("R#p_49999"), ElementsAre(1));
}

} // namespace
