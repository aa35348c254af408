#include "Import/PSpice.h"

#include "PSpiceFile.h"
#include "Vectors/BlockMemory.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Values;

class PSpiceFlatTest : public PSpiceFixture {};

class PSpiceGenerations : public PSpiceFixture, public testing::WithParamInterface<unsigned> {
protected:
    static PSpiceFlatFile file() {
        PSpiceFlatFile result;
        result.marker = GetParam();
        return result;
    }
    static PSpiceFlatFile complexFile() {
        PSpiceFlatFile result = file();
        result.kind = 2;
        result.names = {"Frequency", "V(out)"};
        result.points = {{10, 7, 1, 2}, {20, 7, 3, 4}};
        return result;
    }
};

INSTANTIATE_TEST_SUITE_P(Markers, PSpiceGenerations, Values(0xF3U, 0xF4U, 0xF6U));

TEST_P(PSpiceGenerations, RealPoints) {
    ASSERT_TRUE(open(file()));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_EQ(group()->title, "a circuit");
    EXPECT_EQ(group()->date, "a day");
    EXPECT_THAT(names(), ElementsAre("out", "Time"));
    EXPECT_THAT(reals("time"), ElementsAre(0, 1));
    EXPECT_THAT(reals("out"), ElementsAre(1.5, 2.5));
    EXPECT_TRUE(vector("out")->isReal());
    EXPECT_EQ(vector("out")->physType(), PT_VOLTAGE);
    EXPECT_EQ(vector("time")->physType(), PT_TIME);
}

TEST_P(PSpiceGenerations, ComplexPointsHaveARealReference) {
    ASSERT_TRUE(open(complexFile()));
    EXPECT_THAT(complexes("frequency"), ElementsAre(complex{10, 0}, complex{20, 0}));
    EXPECT_THAT(complexes("out"), ElementsAre(complex{1, 2}, complex{3, 4}));
    EXPECT_TRUE(vector("frequency")->isComplex());
    EXPECT_EQ(vector("frequency")->physType(), PT_FREQUENCY);
}

TEST_P(PSpiceGenerations, FirstVectorIsTheReferenceOfAll) {
    ASSERT_TRUE(open(file()));
    for (char const * name : {"time", "out"}) {
        EXPECT_EQ(vector(name)->ref.name(), "Time");
        EXPECT_THAT(realsOf(vector(name)->ref), ElementsAre(0, 1));
    }
}

TEST_P(PSpiceGenerations, CutAtAPointBoundaryIsReadAndWithinAPointIsRefused) {
    for (bool const isComplex : {false, true}) {
        PSpiceFlatFile const made = isComplex ? complexFile() : file();
        std::string const content = made.content();
        std::size_t const header = made.header().size(), value = isComplex ? 8 : 4, gap = made.is51() ? 1 : 0;
        for (std::size_t n = header; n <= content.size(); ++n) {
            std::size_t const inPoint = (n - header) % (2 * value + gap);
            EXPECT_EQ(openAnything(content.substr(0, n)), inPoint < value || inPoint == 2 * value)
                << n - header << " bytes of data";
        }
    }
    expectUsable();
}

TEST_P(PSpiceGenerations, HeaderCutAnywhereIsRefused) {
    std::string const header = file().header();
    // The last byte of generation 51 means nothing.
    for (std::size_t n = 0; n + (file().is51() ? 1 : 0) < header.size(); ++n) expectRefused(header.substr(0, n));
    expectUsable();
}

TEST_P(PSpiceGenerations, AnyByteChangedIsRefusedOrRead) {
    std::string const content = complexFile().content();
    for (std::size_t i = 0; i < content.size(); ++i)
        for (char const c : {'\0', '\1', '\x7F', '\x80', '\xFF'}) {
            std::string damaged = content;
            damaged[i] = c;
            openAnything(damaged);
        }
    expectUsable();
}

TEST_P(PSpiceGenerations, TextsHaveAtMost130BytesWithTheirZero) {
    for (auto const part : {&PSpiceFlatFile::title, &PSpiceFlatFile::date, &PSpiceFlatFile::dropped}) {
        PSpiceFlatFile made = file();
        made.*part = std::string(129, 'x');
        EXPECT_TRUE(open(made));
        made.*part += 'x';
        expectRefused(made);
    }
}

TEST_F(PSpiceFlatTest, GroupsAreNumbered) {
    ASSERT_TRUE(open(PSpiceFlatFile()));
    ASSERT_TRUE(groupName_.beginsWith("pspice"));
    int const number = std::stoi(std::string(groupName_.view().substr(6)));
    ASSERT_TRUE(open(PSpiceFlatFile()));
    EXPECT_EQ(groupName_, YString("pspice" + std::to_string(number + 1)));
    EXPECT_EQ(nameSpace().current, group());
}

TEST_F(PSpiceFlatTest, UnknownMarkerIsRecognisedButRefused) {
    for (unsigned const marker : {0xF7U, 0xF5U, 0U, 0xFFU}) {
        PSpiceFlatFile file;
        file.marker = marker;
        expectRefused(file);
        EXPECT_EQ(vec_TestDataFileType(file_.path()), DATA_PSPICE);
    }
    expectRefused(std::string(7, '\xFF'));
    expectRefused("no signature at all");
    expectRefused("");
}

TEST_F(PSpiceFlatTest, KindIsOneOrTwo) {
    for (unsigned const kind : {0U, 3U, 0x101U, 0xFFFFU}) {
        PSpiceFlatFile file;
        file.kind = kind;
        expectRefused(file);
    }
}

TEST_F(PSpiceFlatTest, VectorCountThatLiesIsRefusedWithoutMemoryForIt) {
    PSpiceFlatFile file;
    file.vectorCount = 0;
    expectRefused(file);
    std::size_t const before = BlockMemory::peakBytes();
    for (unsigned const count : {3U, 1000U, 0xFFFFU}) {
        file.vectorCount = count;
        expectRefused(file);
    }
    EXPECT_LE(BlockMemory::peakBytes() - before, 1U << 20);
}

TEST_F(PSpiceFlatTest, FileTooShortForAPointIsRefused) {
    PSpiceFlatFile file;
    file.names.assign(60, "V(a)");
    file.vectorCount = 60;
    file.points.clear();
    EXPECT_TRUE(open(file)) << "names are part of the estimate";
    file.names.assign(60, "(");
    file.names[0] = "";
    file.title = file.date = file.dropped = "";
    expectRefused(file); // 218 bytes, of which 60 vectors have less than four each
}

TEST_F(PSpiceFlatTest, NamesOfNoKnownFormAreRefusedButTheFirst) {
    PSpiceFlatFile file;
    file.names = {"anything", "out"};
    expectRefused(file);
    file.names = {"anything", "x:v(out);v(1)"};
    ASSERT_TRUE(open(file));
    EXPECT_THAT(names(), ElementsAre("1", "anything"));
}

TEST_F(PSpiceFlatTest, NamesMayBeLong) {
    PSpiceFlatFile file;
    file.names[1] = "v(out)";
    file.names[1].append(102399 - file.names[1].size(), ';');
    EXPECT_TRUE(open(file));
    file.names[1] += ';';
    expectRefused(file);
    file.names[1] = "v(" + std::string(100000, 'x');
    ASSERT_TRUE(open(file));
    EXPECT_NE(vector(std::string(256, 'x').c_str()), nullptr);
}

TEST_F(PSpiceFlatTest, EqualNamesAreMadeSingle) {
    PSpiceFlatFile file;
    file.names = {"v", "V(v)", "v(V)"};
    file.vectorCount = 3;
    file.points = {{1, 2, 3}};
    ASSERT_TRUE(open(file));
    EXPECT_THAT(names(), ElementsAre("v", "v_1", "V_2"));
    EXPECT_THAT(reals("v_1"), ElementsAre(2));
    EXPECT_THAT(reals("v_2"), ElementsAre(3));
}

TEST_F(PSpiceFlatTest, ManyEqualNamesAreNoBurden) {
    PSpiceFlatFile file;
    file.names.assign(65535, "v(a)");
    file.vectorCount = 65535;
    file.points.assign(1, std::vector<float>(65535, 1));
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("a_65533"), ElementsAre(1));
}

TEST_F(PSpiceFlatTest, LongFileIsReadInPieces) {
    PSpiceFlatFile file;
    file.marker = 0xF6;
    file.points.clear();
    for (int i = 0; i < 50000; ++i) file.points.push_back({static_cast<float>(i), static_cast<float>(-i)});
    ASSERT_TRUE(open(file));
    std::vector<double> const time = reals("time"), out = reals("out");
    ASSERT_EQ(out.size(), 50000u);
    for (std::size_t i = 0; i < out.size(); ++i) {
        EXPECT_EQ(time[i], static_cast<double>(i));
        EXPECT_EQ(out[i], -static_cast<double>(i));
    }
}

TEST_F(PSpiceFlatTest, MemoryIsTakenForWhatIsThere) {
    PSpiceFlatFile file;
    file.points.assign(1000, {1, 2});
    std::size_t const before = BlockMemory::bytesInUse();
    ASSERT_TRUE(open(file));
    EXPECT_LE(BlockMemory::bytesInUse() - before, 2 * (1000 * sizeof(double) + BlockMemory::alignment));
}

TEST_F(PSpiceFlatTest, MemoryThatRunsOutLeavesNothingInTheStore) {
    PSpiceFlatFile file;
    file.points.assign(100, {1, 2});
    file_.rewrite(file.content());
    Group * const head = groupListHead();
    bool done = false;
    for (std::uint64_t n = 1; !done && n < 100; ++n) {
        BlockMemory::failAt(n);
        try {
            done = openPath(file_.path(), DATA_PSPICE);
        } catch (MemoryException const &) {
            EXPECT_EQ(groupListHead(), head);
        }
        BlockMemory::failAt(0);
    }
    EXPECT_TRUE(done);
    expectUsable();
}

} // namespace
