#include "Import/Spice3Values.h"

#include "RawFileFixture.h"
#include "Vectors/BlockMemory.h"
#include "support/Streams.h"

#include <cmath>
#include <cstring>
#include <random>

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Spice3ValuesTest = RawFileFixture;

TEST_F(Spice3ValuesTest, RealPoints) {
    ASSERT_TRUE(open(RawFile()));
    EXPECT_THAT(reals("time"), ElementsAre(0.5, 1));
    EXPECT_THAT(reals("out"), ElementsAre(1.5, 2.5));
    EXPECT_TRUE(vector("out")->isReal());
    EXPECT_TRUE(texts().empty());
}

TEST_F(Spice3ValuesTest, ComplexPoints) {
    ASSERT_TRUE(open(RawFile::complexOne("2", "0\t1.0,2.0\n1\t-3,4e1\n")));
    EXPECT_THAT(complexes("frequency"), ElementsAre(complex{1, 2}, complex{-3, 40}));
    EXPECT_TRUE(vector("frequency")->isComplex());
    EXPECT_TRUE(vector("frequency")->ref.isComplex());
}

TEST_F(Spice3ValuesTest, AnyCharacterSeparatesThePartsOfAComplexNumber) {
    ASSERT_TRUE(open(RawFile::complexOne("3", "0 1;2\n1 3 4\n2 5, 6\n")));
    EXPECT_THAT(complexes("frequency"), ElementsAre(complex{1, 2}, complex{3, 4}, complex{5, 6}));
}

TEST_F(Spice3ValuesTest, NoPointsAreReadAsOne) {
    RawFile file;
    file.pointCount = "0";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("out"), ElementsAre(1.5));
}

TEST_F(Spice3ValuesTest, NegativePointCountReadsNone) {
    RawFile file;
    file.pointCount = "-2";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("out"), IsEmpty());
}

TEST_F(Spice3ValuesTest, PointsBeyondTheCountAreNotRead) {
    RawFile file;
    file.pointCount = "1";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("out"), ElementsAre(1.5));
}

TEST_F(Spice3ValuesTest, CarriageReturnsAreWhiteSpace) {
    std::string text = RawFile().text();
    for (std::size_t i = text.find('\n'); i != std::string::npos; i = text.find('\n', i + 2)) text.insert(i, "\r");
    ASSERT_TRUE(open(text));
    EXPECT_THAT(reals("time"), ElementsAre(0.5, 1));
    EXPECT_THAT(reals("out"), ElementsAre(1.5, 2.5));
    EXPECT_EQ(group()->title, " a circuit");
}

TEST_F(Spice3ValuesTest, LineValuesIsFoundWithoutRegardToCaseBehindOtherLines) {
    for (char const * line : {"Values:\n", "VALUES\n", "  values : all\n", "Dims: 1\n\nValues\r\n"}) {
        RawFile file;
        file.valuesLine = line;
        ASSERT_TRUE(open(file)) << line;
        EXPECT_THAT(reals("out"), ElementsAre(1.5, 2.5)) << line;
    }
}

TEST_F(Spice3ValuesTest, NoLineValuesFails) {
    for (char const * line : {"", "Binary:\n", "Value:\n", "xValues:\n"}) {
        RawFile file;
        file.valuesLine = line;
        expectRefused(file.text());
        EXPECT_THAT(texts(), SizeIs(1)) << line;
    }
}

TEST_F(Spice3ValuesTest, OverlongLineAheadOfValuesFails) {
    auto file = [](std::size_t length) {
        RawFile f;
        f.valuesLine = std::string(length, 'x') + "\nValues:\n";
        return f;
    };
    EXPECT_TRUE(open(file(998)));
    for (std::size_t const length : {999u, 1000u, 1000000u}) expectRefused(file(length).text());
}

TEST_F(Spice3ValuesTest, IndexIsNotLookedAt) {
    RawFile file;
    file.values = "-7 1 2\n+99 3 4\n";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("time"), ElementsAre(1, 3));
    EXPECT_THAT(reals("out"), ElementsAre(2, 4));
}

TEST_F(Spice3ValuesTest, CutOffRealFileKeepsWhatWasRead) {
    RawFile file;
    file.pointCount = "1000";
    file.values = "0 1 2\n1 3 4\n2 5\n";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("time"), ElementsAre(1, 3, 5));
    EXPECT_THAT(reals("out"), ElementsAre(2, 4));
    EXPECT_TRUE(texts().empty());
}

TEST_F(Spice3ValuesTest, RealNumberThatTouchesTheEndMayBeCutAndDoesNotCount) {
    RawFile file;
    file.values = "0 1 2\n1 3 1.25";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("time"), ElementsAre(1, 3));
    EXPECT_THAT(reals("out"), ElementsAre(2));
}

TEST_F(Spice3ValuesTest, WordAmongTheNumbersEndsARealFile) {
    for (char const * values : {"0 1 2\n1 3 x\n2 5 6\n", "0 1 2\n1 3 -\n"}) {
        RawFile file;
        file.pointCount = "3";
        file.values = values;
        ASSERT_TRUE(open(file));
        EXPECT_THAT(reals("time"), ElementsAre(1, 3));
        EXPECT_THAT(reals("out"), ElementsAre(2));
    }
}

TEST_F(Spice3ValuesTest, IndexThatIsNoIntegerEndsARealFile) {
    for (char const * values : {"0 1 2\nx 3 4\n", "0 1 2\n99999999999 3 4\n"}) {
        RawFile file;
        file.values = values;
        ASSERT_TRUE(open(file));
        EXPECT_THAT(reals("time"), ElementsAre(1)) << values;
        EXPECT_THAT(reals("out"), ElementsAre(2)) << values;
    }
}

TEST_F(Spice3ValuesTest, CutOffComplexFileRepeatsItsLastState) {
    ASSERT_TRUE(open(RawFile::complexOne("5", "0 1,2\n1 3,4\n")));
    EXPECT_THAT(complexes("frequency"),
                ElementsAre(complex{1, 2}, complex{3, 4}, complex{3, 4}, complex{3, 4}, complex{3, 4}));
}

TEST_F(Spice3ValuesTest, LastStateOfAComplexFileIsWhatWasReadOfEachPart) {
    ASSERT_TRUE(open(RawFile::complexOne("4", "0 1,2\n1 3")));
    EXPECT_THAT(complexes("frequency"), ElementsAre(complex{1, 2}, complex{3, 2}, complex{3, 2}, complex{3, 2}));
    ASSERT_TRUE(open(RawFile::complexOne("2", "")));
    EXPECT_THAT(complexes("frequency"), ElementsAre(complex{0, 0}, complex{0, 0}));
}

TEST_F(Spice3ValuesTest, LastStateIsSharedByAllVariables) {
    RawFile file = RawFile::complexOne("2", "0 1,2 3,4\n1 5,6");
    file.variableCount = "2";
    file.variables += "1 v(a) voltage\n";
    ASSERT_TRUE(open(file));
    EXPECT_THAT(complexes("frequency"), ElementsAre(complex{1, 2}, complex{5, 6}));
    EXPECT_THAT(complexes("a"), ElementsAre(complex{3, 4}, complex{5, 6}));
}

TEST_F(Spice3ValuesTest, CutOffComplexFileHoldsNoMoreThanAFileOfItsSizeCould) {
    RawFile const file = RawFile::complexOne("2147483647", "0 1,2\n");
    BlockMemory::resetPeak();
    std::size_t const before = BlockMemory::peakBytes();
    ASSERT_TRUE(open(file));
    EXPECT_LE(complexes("frequency").size(), file.text().size());
    EXPECT_THAT(complexes("frequency"), Each(complex{1, 2}));
    EXPECT_LE(BlockMemory::peakBytes() - before, 100000u);
}

TEST_F(Spice3ValuesTest, MemoryTakenAheadIsBoundedByTheFile) {
    for (char const * flags : {"real", "complex"})
        for (char const * count : {"2147483647", "-2", "99999999999", "", "1e9"}) {
            RawFile file;
            file.flags = flags;
            file.pointCount = count;
            BlockMemory::resetPeak();
            std::size_t const before = BlockMemory::peakBytes();
            EXPECT_TRUE(open(file));
            EXPECT_LE(BlockMemory::peakBytes() - before, 32 * file.text().size() + 65536) << flags << count;
        }
}

TEST_F(Spice3ValuesTest, MemoryFitsTheValuesOfACompleteFile) {
    RawFile file;
    int const points = 50000;
    file.pointCount = std::to_string(points);
    file.values.clear();
    for (int i = 0; i < points; ++i) file.values += "0 1.000000000000000000 2.000000000000000000\n";
    std::size_t const before = BlockMemory::bytesInUse();
    ASSERT_TRUE(open(file));
    EXPECT_LE(BlockMemory::bytesInUse() - before, 2u * points * sizeof(double) * 11 / 10);
}

// Repeated values outgrow the memory taken ahead, which then has grown in steps.
TEST_F(Spice3ValuesTest, MemoryFitsRepeatedValuesToo) {
    RawFile file = RawFile::complexOne("1100", "0 1,2\n");
    file.extra = "Command: " + std::string(3000, 'x') + "\n";
    std::size_t const before = BlockMemory::bytesInUse();
    ASSERT_TRUE(open(file));
    EXPECT_EQ(vector("frequency")->length(), 1100);
    EXPECT_LE(BlockMemory::bytesInUse() - before, 1100 * sizeof(complex) + BlockMemory::alignment);
}

// --- the points read in the stream's buffer against the stream's own extraction

std::string randomNumber(std::mt19937_64 & random) {
    char text[400];
    auto const bits = random();
    double value;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&value, &bits, sizeof value);
    switch (random() % 16) {
    case 0: return "+1.5";
    case 1: return "nan";
    case 2: return random() % 2 != 0 ? "inf" : "-inf";
    case 3: return ".5";
    case 4: return "7.";
    case 5: return "1e400";
    case 6: return "-1e-400";
    case 7: return std::string(1 + random() % 300, '0') + "1";
    default: break;
    }
    if (!std::isfinite(value)) value = 0;
    std::snprintf(text, sizeof text, random() % 2 != 0 ? "%.17g" : "%.15e", value);
    for (char & c : text)
        if (c == ',') c = '.'; // whatever the locale
    return text;
}

std::string randomSpace(std::mt19937_64 & random) {
    static char const * const spaces[] = {" ", "\t", "\n\t", "\r\n\t", "  ", "\n\n", "\v\f"};
    return spaces[random() % std::size(spaces)];
}

// The values behind "Values", each by the stream.
std::vector<double> extracted(char const * path, bool isComplex, int points, int variables) {
    tvfstream stream(path, tvfstream::modeReadUntranslated, false, false);
    char line[999];
    while (stream.getline(line, sizeof line) && std::string_view(line) != "Values:") {
    }
    std::vector<double> values;
    for (int point = 0; point < points; ++point) {
        int index = 0;
        stream >> index;
        for (int i = 0; i < variables; ++i) {
            double re = 0, im = 0;
            stream >> re;
            values.push_back(re);
            if (!isComplex) continue;
            stream.get();
            stream >> im;
            values.push_back(im);
        }
    }
    EXPECT_FALSE(stream.fail());
    return values;
}

class Spice3RandomValues : public RawFileFixture, public testing::WithParamInterface<bool> {
protected:
    static std::string randomFile(std::mt19937_64 & random, bool isComplex, int points, int variables) {
        RawFile file;
        file.flags = isComplex ? "complex" : "real";
        file.variableCount = std::to_string(variables);
        file.pointCount = std::to_string(points);
        file.variables.clear();
        for (int i = 0; i < variables; ++i) file.variables += std::to_string(i) + " x" + std::to_string(i) + " V\n";
        file.values.clear();
        for (int point = 0; point < points; ++point) {
            file.values += randomSpace(random) + (random() % 20 == 0 ? "+" : "") + std::to_string(point);
            for (int i = 0; i < variables; ++i) {
                file.values += randomSpace(random) + randomNumber(random);
                if (isComplex) file.values += "," + randomNumber(random);
            }
        }
        return file.text() + "\n";
    }
    // What was imported, in file order.
    std::vector<double> imported(bool isComplex, int points, int variables) const {
        std::vector<double> values;
        for (int point = 0; point < points; ++point)
            for (int i = 0; i < variables; ++i) {
                dvec const * v = vector(("x" + std::to_string(i)).c_str());
                values.push_back(v->getReal(point));
                if (isComplex) values.push_back(v->getImag(point));
            }
        return values;
    }
};

TEST_P(Spice3RandomValues, AreThoseOfTheStreamsExtraction) {
    bool const isComplex = GetParam();
    std::mt19937_64 random(20240607);
    for (int const variables : {1, 2, 7, 600, 9000}) {
        int const points = 1 + 60000 / variables; // several buffers of the stream
        ASSERT_TRUE(open(randomFile(random, isComplex, points, variables)));
        auto const expected = extracted(file_.path(), isComplex, points, variables);
        auto const actual = imported(isComplex, points, variables);
        ASSERT_EQ(actual.size(), expected.size());
        std::size_t different = 0;
        for (std::size_t i = 0; i < actual.size(); ++i)
            different += std::memcmp(&actual[i], &expected[i], sizeof(double)) != 0 && actual[i] == actual[i];
        EXPECT_EQ(different, 0u) << variables << " variables";
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, Spice3RandomValues, testing::Bool(),
                         [](auto const & kind) { return kind.param ? "Complex" : "Real"; });

} // namespace
