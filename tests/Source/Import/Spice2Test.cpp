#include "Import/Spice2.h"

#include "ImportFixture.h"
#include "Spice2File.h"
#include "Vectors/BlockMemory.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Numbers = std::vector<double>;

class Spice2Test : public ImportFixture {
protected:
    static constexpr char const * generalFailure = "Spice2 raw data file read failed because of incorrect format";

    bool open(std::string_view content) { return ImportFixture::open(content, DATA_SPICE2); }
    bool open(Spice2File const & file) { return open(file.text()); }
    void expectRefused(std::string_view content) {
        Group * const head = groupListHead();
        EXPECT_FALSE(open(content));
        EXPECT_THAT(texts(), ElementsAre(generalFailure));
        EXPECT_EQ(groupListHead(), head);
        EXPECT_EQ(groupName_, "untouched");
    }
    static Spice2File transient() {
        Spice2File file;
        file.values = Spice2File::reals({0, 1, 2, 0.5, 1.5, 2.5});
        return file;
    }
    static Spice2File sweep() {
        Spice2File file;
        file.names = {"freq", "1"};
        file.values = Spice2File::pairs({{1, 0}, {2, 3}, {10, 0}, {4, 5}});
        return file;
    }
};

TEST_F(Spice2Test, NodesAreVoltagesAndDevicesCurrents) {
    ASSERT_TRUE(open(transient()));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_THAT(names(), ElementsAre("12", "time", "vin#p"));
    EXPECT_EQ(vector("12")->physType(), PT_VOLTAGE);
    EXPECT_EQ(vector("vin#p")->physType(), PT_CURRENT);
    EXPECT_EQ(vector("time")->physType(), PT_TIME);
    EXPECT_THAT(reals("time"), ElementsAre(0, 0.5));
    EXPECT_THAT(reals("12"), ElementsAre(1, 1.5));
    EXPECT_THAT(reals("vin#p"), ElementsAre(2, 2.5));
}

TEST_F(Spice2Test, FirstIsTheReferenceOfAllItselfIncluded) {
    ASSERT_TRUE(open(transient()));
    for (char const * name : {"time", "12", "vin#p"}) EXPECT_TRUE(vector(name)->ref.sharesRep(*vector("time"))) << name;
}

TEST_F(Spice2Test, GroupIsNamedByACounterAndDescribedByTheHeader) {
    ASSERT_TRUE(open(transient()));
    EXPECT_EQ(group()->title, "an amplifier");
    EXPECT_EQ(group()->date, "05/06/78");
    EXPECT_EQ(nameSpace().current, group());
    ASSERT_TRUE(groupName_.beginsWith("spice2_"));
    int const number = std::stoi(std::string(groupName_.view().substr(7)));
    expectRefused("short"); // takes a number as well
    ASSERT_TRUE(open(transient()));
    EXPECT_EQ(groupName_, YString("spice2_" + std::to_string(number + 2)));
}

TEST_F(Spice2Test, FrequencyMakesAllComplex) {
    ASSERT_TRUE(open(sweep()));
    EXPECT_EQ(vector("freq")->physType(), PT_FREQUENCY);
    EXPECT_THAT(complexes("freq"), ElementsAre(complex{1, 0}, complex{10, 0}));
    EXPECT_THAT(complexes("1"), ElementsAre(complex{2, 3}, complex{4, 5}));
    Spice2File file = transient();
    file.names = {"time", "freq", "FREQ"};
    ASSERT_TRUE(open(file)); // only the first one counts
    EXPECT_FALSE(vector("time")->isComplex());
    EXPECT_EQ(vector("freq#p")->physType(), PT_CURRENT);
    EXPECT_EQ(vector("FREQ#p_1")->physType(), PT_CURRENT);
}

TEST_F(Spice2Test, ReferenceIsTypedByItsName) {
    struct Row {
        char const * name;
        PhysType type;
    };
    for (Row const row : {Row{"TIME", PT_TIME},
                          {"Freq", PT_FREQUENCY},
                          {"vin", PT_VOLTAGE},
                          {"I1", PT_CURRENT},
                          {"temp", PT_UNKNOWN},
                          {"1", PT_UNKNOWN}}) {
        Spice2File file = transient();
        file.names = {row.name};
        ASSERT_TRUE(open(file));
        EXPECT_EQ(vector(row.name)->physType(), row.type) << row.name;
    }
}

TEST_F(Spice2Test, NamesMayBeFullBlankEqualOrHoldANul) {
    Spice2File file;
    file.names = {"12345678", "", "a", "a", std::string("b\0c", 3)};
    file.values = Spice2File::reals({1, 2, 3, 4, 5});
    ASSERT_TRUE(open(file));
    EXPECT_THAT(names(), ElementsAre("#p", "12345678", "a#p", "a#p_1", "b#p"));
    EXPECT_THAT(reals("a#p_1"), ElementsAre(4));
}

TEST_F(Spice2Test, BlankTitleIsUntitled) {
    Spice2File file = transient();
    file.title = "";
    ASSERT_TRUE(open(file));
    EXPECT_EQ(group()->title, "Untitled");
}

TEST_F(Spice2Test, PointThatIsCutLeavesTheFirstVectorsLonger) {
    std::string const whole = transient().text();
    for (std::size_t n = 0; n <= 24; ++n) {
        ASSERT_TRUE(open(whole.substr(0, whole.size() - n)));
        std::size_t const values = (24 - n) / 8; // of the last point
        EXPECT_EQ(reals("time").size(), values > 0 ? 2u : 1u) << n;
        EXPECT_EQ(reals("12").size(), values > 1 ? 2u : 1u) << n;
        EXPECT_EQ(reals("vin#p").size(), values > 2 ? 2u : 1u) << n;
    }
}

TEST_F(Spice2Test, BadHeadersAreRefused) {
    Spice2File file = transient();
    file.count = std::uint16_t{0};
    expectRefused(file.text());
    file.count = std::uint16_t{65535};
    expectRefused(file.text());
    file.count.reset();
    for (int const format : {0, 3, 5, 0x0400, 0xFFFF}) {
        file.format = static_cast<std::uint16_t>(format);
        expectRefused(file.text());
    }
}

TEST_F(Spice2Test, FileCutAtAnyLengthIsRefusedOrReadInPart) {
    for (Spice2File const & file : {transient(), sweep()}) {
        std::string const text = file.text();
        std::size_t const behindNames = 100 + 8 * file.names.size();
        for (std::size_t n = 0; n < text.size(); ++n) {
            if (n < behindNames) {
                expectRefused(text.substr(0, n));
                continue;
            }
            ASSERT_TRUE(open(text.substr(0, n))) << n;
            EXPECT_EQ(vector(file.names[0].c_str())->length() > 0, n >= file.header().size() + 8) << n;
            vec_DestroyGroup(groupName_, false);
        }
    }
    expectUsable();
}

TEST_F(Spice2Test, EveryCountOfVariablesIsReadOrRefused) {
    std::string text = transient().text();
    for (unsigned n = 0; n < 65536; n += n < 64 ? 1 : 97) {
        text[96] = static_cast<char>(n & 0xFF);
        text[97] = static_cast<char>(n >> 8);
        bool const done = open(text);
        EXPECT_EQ(texts().empty(), done) << n;
        if (done) vec_DestroyGroup(groupName_, false);
    }
    expectUsable();
}

TEST_F(Spice2Test, MemoryIsThatOfTheFile) {
    Spice2File file = sweep();
    file.values.resize(std::size_t{8} << 20);
    std::uint64_t const before = BlockMemory::peakBytes();
    ASSERT_TRUE(open(file));
    EXPECT_LT(BlockMemory::peakBytes() - before, 3 * file.values.size());
    EXPECT_EQ(vector("1")->length(), static_cast<std::int64_t>(file.values.size() / 16));
}

TEST_F(Spice2Test, ManyPointsKeepTheirOrder) {
    constexpr int points = 100000;
    Spice2File file;
    Numbers values;
    for (int i = 0; i < points; ++i) values.insert(values.end(), {i * 1.0, i * 2.0, i * 3.0});
    file.values = Spice2File::reals(values);
    ASSERT_TRUE(open(file));
    for (int column = 0; column < 3; ++column) {
        Numbers const found = reals(column == 0 ? "time" : column == 1 ? "12" : "vin#p");
        ASSERT_EQ(found.size(), static_cast<std::size_t>(points));
        for (int i = 0; i < points; ++i) ASSERT_EQ(found[static_cast<std::size_t>(i)], i * (column + 1.0));
    }
}

} // namespace
