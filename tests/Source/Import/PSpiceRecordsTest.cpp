#include "Import/PSpice.h"

#include "PSpiceFile.h"
#include "Vectors/BlockMemory.h"

namespace {

using testing::Bool;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> const realHeader = {"CirName=a circuit", "Date=a day", "AnaCols=2",
                                             "AnaRows=0x2",       "DataType=0", "Complex=1"};

class PSpiceRecordsTest : public PSpiceFixture, public testing::WithParamInterface<bool> {
protected:
    static PSpiceRecordsFile start(std::vector<std::string> const & header = realHeader) {
        return PSpiceRecordsFile(GetParam()).first().header(header);
    }
    static PSpiceRecordsFile started(std::vector<std::string> const & header = realHeader) {
        return start(header).names({"Time", "V(out)"});
    }
    static PSpiceRecordsFile sound() { return started().sweep({0, 1}).analysis({1.5F, 2.5F}); }
    static std::vector<std::string> headerWith(std::string const & entry) {
        std::vector<std::string> header = realHeader;
        header.push_back(entry);
        return header;
    }
};

INSTANTIATE_TEST_SUITE_P(Frames, PSpiceRecordsTest, Bool(),
                         [](auto const & kind) { return kind.param ? "Wide" : "Short"; });

TEST_P(PSpiceRecordsTest, RealPoints) {
    ASSERT_TRUE(open(sound()));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_TRUE(groupName_.beginsWith("pspice"));
    EXPECT_EQ(group()->title, "a circuit");
    EXPECT_EQ(group()->date, "a day");
    EXPECT_THAT(reals("time"), ElementsAre(0, 1));
    EXPECT_THAT(reals("out"), ElementsAre(1.5, 2.5));
    EXPECT_EQ(vector("out")->physType(), PT_VOLTAGE);
    EXPECT_THAT(realsOf(vector("out")->ref), ElementsAre(0, 1));
}

TEST_P(PSpiceRecordsTest, ComplexPoints) {
    auto file = started(headerWith("COMPLEX=2")).sweep({10, 20}).analysis({1, 2, 3, 4});
    ASSERT_TRUE(open(file));
    EXPECT_THAT(complexes("time"), ElementsAre(complex{10, 0}, complex{20, 0}));
    EXPECT_THAT(complexes("out"), ElementsAre(complex{1, 2}, complex{3, 4}));
}

TEST_P(PSpiceRecordsTest, AnyKindButOneIsComplex) {
    for (char const * entry : {"Complex=0", "Complex=", "Complex=3"}) {
        ASSERT_TRUE(open(started(headerWith(entry)).sweep({10}).analysis({1, 2})));
        EXPECT_TRUE(vector("out")->isComplex()) << entry;
    }
}

TEST_P(PSpiceRecordsTest, ValuesComeInSeveralRecordsOfBothKinds) {
    auto file = started(headerWith("AnaRows=0x4"));
    file.sweep({0, 1}, 1).analysis({5}, 3).analysis({6, 7}, 2).sweep({2, 3}, 0).analysis({8}, 0);
    file.out.raw("what follows is not looked at");
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("time"), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(reals("out"), ElementsAre(5, 6, 7, 8));
}

TEST_P(PSpiceRecordsTest, PointsHoldEveryVectorButTheFirst) {
    auto file = start(headerWith("AnaCols=3")).names({"Time", "V(a)", "I(b)"});
    file.sweep({0, 1}).analysis({1, 2, 3, 4});
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("a"), ElementsAre(1, 3));
    EXPECT_THAT(reals("b#p"), ElementsAre(2, 4));
}

TEST_P(PSpiceRecordsTest, ValuesBeyondTheRowsAreDropped) {
    auto file = started().sweep({0, 1, 2}, 1).sweep({3}).analysis({5, 6, 7}, 1).analysis({8});
    ASSERT_TRUE(open(file));
    EXPECT_THAT(reals("time"), ElementsAre(0, 1));
    EXPECT_THAT(reals("out"), ElementsAre(5, 6));
}

TEST_P(PSpiceRecordsTest, RowsAreHexadecimalWithAPrefix) {
    std::vector<std::pair<char const *, std::size_t>> const rows = {
        {"AnaRows=0x10", 16}, {"anarows=0x0A", 10}, {"AnaRows=16", 0}, {"AnaRows=0X10", 0}, {"AnaRows=", 0}};
    for (auto const & [entry, count] : rows) {
        auto file = started(headerWith(entry));
        for (int i = 0; i < 20; ++i) file.sweep({1.0 * i}, 1);
        file.sweep({20}).analysis({1});
        ASSERT_TRUE(open(file)) << entry;
        EXPECT_EQ(reals("time").size(), count) << entry;
    }
}

TEST_P(PSpiceRecordsTest, DataTypeMustBeZero) {
    expectRefused(started(headerWith("DataType=1")).sweep({0, 1}).analysis({1, 2}));
    expectRefused(started(headerWith("DATATYPE=-1")).sweep({0, 1}).analysis({1, 2}));
    EXPECT_TRUE(open(started(headerWith("DataType=x")).sweep({0, 1}).analysis({1, 2})));
}

TEST_P(PSpiceRecordsTest, OtherEntriesAreIgnored) {
    for (char const * entry : {"", "=", "AnaCols", "AnaColsX=9", "Temp=27", "=AnaCols=9"}) {
        ASSERT_TRUE(open(started(headerWith(entry)).sweep({0, 1}).analysis({1, 2}))) << entry;
        EXPECT_THAT(reals("out"), ElementsAre(1, 2));
    }
}

TEST_P(PSpiceRecordsTest, FirstTwoRecordsAreThere) {
    expectRefused(PSpiceRecordsFile(GetParam()).header(realHeader).names({"a", "v(b)"}));
    expectRefused(PSpiceRecordsFile(GetParam()).first().names({"a", "v(b)"}));
    expectRefused(start().sweep({1}));
    for (std::uint64_t const size : {0ULL, 8ULL, 0x7FFFFFFFULL, 0xFFFFFFFFULL}) {
        expectRefused(PSpiceRecordsFile(GetParam()).frame('I', 0, size));
        expectRefused(PSpiceRecordsFile(GetParam()).first().frame('H', 0, size));
    }
}

TEST_P(PSpiceRecordsTest, HeaderHasAtMost50000Bytes) {
    PSpiceRecordsFile const empty(GetParam());
    std::size_t const used =
        start(headerWith("")).content().size() - PSpiceRecordsFile(GetParam()).first().content().size();
    EXPECT_TRUE(open(started(headerWith(std::string(50000 - used, 'x'))).sweep({0, 1}).analysis({1, 2})));
    expectRefused(started(headerWith(std::string(50001 - used, 'x'))).sweep({0, 1}).analysis({1, 2}));
}

TEST_P(PSpiceRecordsTest, RecordOfMiscellanyIsSkippedAsIfItsFrameHadEightBytes) {
    auto file = started().sweep({0, 1});
    std::size_t const body = 20;
    file.frame('M', 0, 8 + body);
    file.out.filler(body);
    ASSERT_TRUE(open(file.analysis({1, 2})));
    EXPECT_THAT(reals("out"), ElementsAre(1, 2));
}

TEST_P(PSpiceRecordsTest, AnalysisRecordWhoseFrameIsCountedInWholeTakesWhatFollows) {
    // Of one that counts a wide frame as such, five bytes are left: another value.
    auto file = started(headerWith("AnaRows=0x9")).sweep({0});
    file.frame('A', 0, file.frameBytes() + 4).out.floats({1, 2});
    ASSERT_TRUE(open(file));
    if (GetParam())
        EXPECT_THAT(reals("out"), ElementsAre(1, 2));
    else
        EXPECT_THAT(reals("out"), ElementsAre(1));
}

TEST_P(PSpiceRecordsTest, AnalysisRecordCutShortIsRefusedAtOnce) {
    std::string const content = sound().content();
    for (std::size_t n = 1; n <= 8; ++n) expectRefused(content.substr(0, content.size() - n));
}

TEST_P(PSpiceRecordsTest, SweepRecordCutShortKeepsItsWholeValues) {
    std::string const content = started().sweep({0, 1}, 1).content();
    for (std::size_t n = 1; n < 16; ++n) {
        ASSERT_TRUE(open(content.substr(0, content.size() - n)));
        EXPECT_THAT(texts(), ElementsAre("Possible missing data in PSpice data file"));
        EXPECT_EQ(messages_->levels.front(), MessageLevel::warning);
        EXPECT_EQ(reals("time").size(), (16 - n) / 8);
        EXPECT_THAT(names(), ElementsAre("out", "Time"));
    }
}

TEST_P(PSpiceRecordsTest, RecordOfAnotherTypeOrTheEndEndsTheData) {
    for (bool const other : {false, true}) {
        auto file = started().sweep({0, 1}, 1);
        if (other) file.frame('E', 0, 9).analysis({1, 2});
        ASSERT_TRUE(open(file));
        EXPECT_THAT(reals("time"), ElementsAre(0, 1));
        EXPECT_THAT(reals("out"), IsEmpty());
    }
}

TEST_P(PSpiceRecordsTest, SizesThatLieEndTheReadAtOnce) {
    for (char const type : {'S', 'A', 'M'})
        for (std::uint64_t const size : {0ULL, 1ULL, 7ULL, 0x7FFFFFFFULL, 0x80000000ULL, 0xFFFFFFFFULL}) {
            auto file = started().frame(type, 1, size).sweep({0, 1}).analysis({1, 2});
            if (type == 'S' && size > 7)
                EXPECT_TRUE(openAnything(file.content())) << "as one that the end of the file has cut";
            else
                expectRefused(file);
        }
}

TEST_P(PSpiceRecordsTest, CountsThatLieAreRefused) {
    std::size_t const before = BlockMemory::peakBytes();
    for (char const * entry : {"AnaCols=0", "AnaCols=-1", "AnaCols=2147483647", "AnaCols=99999999999999", "AnaCols=x",
                               "AnaCols=3", "AnaRows=0xFFFFFFFF", "AnaRows=0x-1", "AnaRows=0xFFFFFFFFFFFFFFFFFF"})
        expectRefused(started(headerWith(entry)).sweep({0, 1}).analysis({1, 2}));
    auto large = started(headerWith("AnaRows=0xFFFF"));
    large.out.filler(0x10000);
    EXPECT_TRUE(open(large));
    EXPECT_LE(BlockMemory::peakBytes() - before, 1U << 20);
    expectUsable();
}

TEST_P(PSpiceRecordsTest, OneVectorHasNoAnalysisData) {
    auto file = start(headerWith("AnaCols=1")).names({"Time"}).sweep({0, 1});
    file.frame('A', 0, file.frameBytes() + 8).out.filler(8);
    ASSERT_TRUE(open(file));
    EXPECT_THAT(names(), ElementsAre("Time"));
    EXPECT_THAT(reals("time"), ElementsAre(0, 1));
}

TEST_P(PSpiceRecordsTest, FileCutAtAnyLengthIsRefusedOrReadInPart) {
    std::string const content = sound().content();
    for (std::size_t n = 0; n < content.size(); ++n) openAnything(content.substr(0, n));
    expectUsable();
}

TEST_P(PSpiceRecordsTest, AnyByteChangedIsRefusedOrRead) {
    std::string const content = sound().content();
    for (std::size_t i = 0; i < content.size(); ++i)
        for (char const c : {'\0', '\1', '\x7F', '\x80', '\xFF'}) {
            std::string damaged = content;
            damaged[i] = c;
            openAnything(damaged);
        }
    expectUsable();
}

TEST_F(PSpiceFixture, WideHeaderWhoseSizeCountsAShortFrameIsReadToo) {
    for (std::string const & padding : {std::string(), std::string(4, '\0')}) {
        Bytes body;
        for (std::string const & entry : realHeader) body.text(entry);
        PSpiceRecordsFile file(true);
        file.first().frame('H', 1, (padding.empty() ? 9 : 13) + body.content.size()).out.raw(body.content + padding);
        ASSERT_TRUE(open(file.names({"Time", "V(out)"}).sweep({0, 1}).analysis({1.5F, 2.5F})));
        EXPECT_THAT(reals("out"), ElementsAre(1.5, 2.5));
    }
}

// The letter by which the next record begins may also stand where it would begin if the frame were counted in whole.
TEST_F(PSpiceFixture, WideHeaderMayEndInWhatLooksLikeTheNextRecord) {
    for (char const * last : {"X=NNN", "X=N"}) {
        Bytes body;
        for (std::string const & entry : realHeader) body.text(entry);
        body.text("AnaRows=0x2").text(last);
        PSpiceRecordsFile file(true);
        file.first().frame('H', 1, 9 + body.content.size()).out.raw(body.content);
        ASSERT_TRUE(open(file.names({"Time", "V(out)"}).sweep({0, 1}).analysis({1.5F, 2.5F}))) << last;
        EXPECT_THAT(reals("out"), ElementsAre(1.5, 2.5));
    }
}

TEST_F(PSpiceFixture, LayoutsCountTheirGroupsApart) {
    auto numberOf = [this] { return std::stoi(std::string(groupName_.view().substr(6))); };
    auto openAlone = [this, &numberOf](std::string const & content) {
        EXPECT_TRUE(open(content));
        EXPECT_THAT(texts(), IsEmpty());
        int const number = numberOf();
        vec_DestroyGroup(groupName_, false);
        return number;
    };
    std::string const flat = PSpiceFlatFile().content();
    std::string const records =
        PSpiceRecordsFile().first().header(realHeader).names({"Time", "V(a)"}).sweep({0}).analysis({1}).content();
    int const flatNumber = openAlone(flat), recordsNumber = openAlone(records);
    EXPECT_EQ(openAlone(flat), flatNumber + 1);
    EXPECT_EQ(openAlone(records), recordsNumber + 1);
}

} // namespace
