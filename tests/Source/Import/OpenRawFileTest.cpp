#include "torvelan/Exceptions.h"
#include "torvelan/ForeignData.h"

#include "OpenRawFixture.h"
#include "RawFileFixture.h"
#include "Spice2File.h"

#include <sys/stat.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class OpenRawFileTest : public OpenRawFixture {
protected:
    static constexpr char const * generalFailure = "SPICE3 raw data file read failed because of incorrect format";
};

TEST_F(OpenRawFileTest, EachSetGetsAGroupAndADataFile) {
    RawFile second;
    second.values = "0 7 8\n1 9 10\n";
    ASSERT_TRUE(openRaw(RawFile().text() + second.text() + second.text()));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_THAT(groupNames(), SizeIs(3));
    EXPECT_THAT(dataFiles(), ElementsAre("out.tvdat", "out_1.tvdat", "out_2.tvdat"));
    EXPECT_EQ(newest()->dataFile->path(), YString(fullPath("out_2.tvdat")));
    EXPECT_THAT(realsOf(*newest()->find("out")), ElementsAre(8, 10));
    EXPECT_EQ(newest()->runId, 0u);
}

TEST_F(OpenRawFileTest, NumberGoesBeforeTheExtensionWhateverTheSeparator) {
    std::string const text = RawFile().text() + RawFile().text();
    for (auto const & [output, second] :
         std::vector<std::pair<char const *, char const *>>{{"c:\\data\\x.tvdat", "c:\\data\\x_1.tvdat"},
                                                            {"a.b/c", "a.b/c_1"},
                                                            {"a\\b.c\\d.e.f", "a\\b.c\\d.e_1.f"}}) {
        ASSERT_TRUE(openRaw(text, output));
        EXPECT_EQ(newest()->dataFile->path(), sp_GetFullPath(sp_ConvertUnixToLocal(second)));
    }
}

TEST_F(OpenRawFileTest, EmptyFileIsNoMistake) {
    EXPECT_TRUE(openRaw(""));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_THAT(groupNames(), IsEmpty());
}

TEST_F(OpenRawFileTest, BadFirstSetIsRefused) {
    for (std::string const & text : {std::string("no colon\n"), std::string("\n\n"), std::string("Title: x\n")}) {
        EXPECT_FALSE(openRaw(text));
        EXPECT_THAT(texts(), ElementsAre(generalFailure));
        EXPECT_THAT(groupNames(), IsEmpty());
    }
}

TEST_F(OpenRawFileTest, BadLaterSetIsRefusedAndTheOnesBeforeStay) {
    RawFile bad;
    bad.valuesLine = "Binary:\n";
    EXPECT_FALSE(openRaw(RawFile().text() + bad.text()));
    EXPECT_THAT(texts(), ElementsAre(generalFailure));
    EXPECT_THAT(groupNames(), SizeIs(1));
    EXPECT_THAT(dataFiles(), ElementsAre("out.tvdat"));
    EXPECT_FALSE(openRaw(RawFile().text() + "no colon\n"));
    EXPECT_THAT(texts(), ElementsAre(generalFailure));
}

TEST_F(OpenRawFileTest, OlderFileStaysWholeUntilItsSetIsKnownToBeGood) {
    RawFile bad;
    bad.valuesLine = "Binary:\n";
    for (char const * name : {"out.tvdat", "out_1.tvdat"}) disk_.put(fullPath(name), "an older result");
    EXPECT_FALSE(openRaw(bad.text()));
    EXPECT_EQ(disk_.bytes(fullPath("out.tvdat")), "an older result");
    EXPECT_FALSE(openRaw(RawFile().text() + bad.text()));
    EXPECT_THAT(dataFiles(), ElementsAre("out.tvdat", "out_1.tvdat"));
    EXPECT_NE(disk_.bytes(fullPath("out.tvdat")), "an older result");
    EXPECT_EQ(disk_.bytes(fullPath("out_1.tvdat")), "an older result");
}

TEST_F(OpenRawFileTest, OlderFileStaysWholeWhenTheDiskFillsUp) {
    disk_.put(fullPath("out.tvdat"), "an older result");
    bool done = false;
    int failures = 0;
    for (std::uint64_t n = 1; !done && n < 1000; ++n) {
        disk_.failAt(n, MemoryFiles::Failure::noSpace, true);
        try {
            done = openRaw(RawFile().text()) && newest()->dataFile != nullptr;
        } catch (FatalException const & failure) {
            EXPECT_THAT(failure.text, HasSubstr("Write failure to data file " + fullPath("out.tvdat")));
            EXPECT_THAT(groupNames(), IsEmpty());
            ++failures;
        }
        vec_DestroyAllGroups();
        EXPECT_THAT(dataFiles(), ElementsAre("out.tvdat"));
        EXPECT_EQ(disk_.bytes(fullPath("out.tvdat")) == "an older result", !done) << n;
        disk_.failAt(0);
    }
    EXPECT_TRUE(done);
    EXPECT_GT(failures, 0);
}

TEST_F(OpenRawFileTest, SetWhoseFileCannotTakeItsNameIsNotThere) {
    disk_.canReplace = false;
    EXPECT_THROW(openRaw(RawFile().text()), FatalException);
    EXPECT_THAT(groupNames(), IsEmpty());
    EXPECT_THAT(dataFiles(), IsEmpty());
}

TEST_F(OpenRawFileTest, BlankLinesBehindTheLastSetAreItsEnd) {
    EXPECT_TRUE(openRaw(RawFile().text() + "\n \n"));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_THAT(groupNames(), SizeIs(1));
}

TEST_F(OpenRawFileTest, StampsOfCallsRise) {
    VecOpenRawFileOptions options;
    options.stampGroups = true;
    ASSERT_TRUE(openRaw(RawFile().text() + RawFile().text(), "x", options));
    std::uint32_t const stamp = newest()->runId;
    EXPECT_NE(stamp, 0u);
    EXPECT_EQ(newest()->next->runId, stamp);
    ASSERT_TRUE(openRaw(RawFile().text(), "x", options));
    EXPECT_GT(newest()->runId, stamp);
}

TEST_F(OpenRawFileTest, BudgetMayBeAnything) {
    VecOpenRawFileOptions options;
    for (std::int32_t const percent : {-2147483647 - 1, -1, 0, 1, 100, 101, 2147483647}) {
        options.ramPercent = percent;
        EXPECT_TRUE(openRaw(RawFile().text(), "x", options)) << percent;
    }
}

TEST_F(OpenRawFileTest, FileThatDoesNotOpenIsNamed) {
    EXPECT_FALSE(vec_OpenRawFile("/nonexistent/%s", "x", {}, messages_));
    EXPECT_THAT(texts(), ElementsAre("Cannot open data file '/nonexistent/%s'"));
    EXPECT_FALSE(vec_OpenRawFile("/nonexistent", "x", {}, nullptr));
    messages_->clear();
    EXPECT_FALSE(vec_OpenRawFile("/tmp", "x", {}, messages_));
    EXPECT_THAT(texts(), ElementsAre("Cannot open data file '/tmp'"));
    std::string const pipe = std::string(file_.path()) + ".fifo";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(vec_OpenRawFile(pipe, "x", {}, messages_));
    std::remove(pipe.c_str());
}

TEST_F(OpenRawFileTest, ValuesStayInMemoryWhereNoFileCanBeMade) {
    disk_.takesNew = false;
    ASSERT_TRUE(openRaw(RawFile().text(), "%s.tvdat"));
    EXPECT_THAT(texts(), ElementsAre("Cannot create data file '%s.tvdat'. The data are kept in memory"));
    EXPECT_EQ(messages_->levels[0], MessageLevel::warning);
    EXPECT_THAT(realsOf(*newest()->find("out")), ElementsAre(1.5, 2.5));
}

TEST_F(OpenRawFileTest, Spice2FileGoesToOneDataFile) {
    VecOpenRawFileOptions options;
    options.spice2 = true;
    options.stampGroups = true;
    Spice2File file;
    file.values = Spice2File::reals({0, 1, 2, 3, 4, 5});
    ASSERT_TRUE(openRaw(file.text(), "x.tvdat", options));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_THAT(dataFiles(), ElementsAre("x.tvdat"));
    EXPECT_THAT(realsOf(*newest()->find("12")), ElementsAre(1, 4));
    EXPECT_NE(newest()->runId, 0u);
    EXPECT_TRUE(newest()->hasRealData);
}

TEST_F(OpenRawFileTest, BadSpice2FileIsToldOfAndItsGroupStays) {
    VecOpenRawFileOptions options;
    options.spice2 = true;
    Spice2File file;
    file.format = 3;
    for (std::string const & text : {file.text(), std::string("short"), std::string()}) {
        EXPECT_TRUE(openRaw(text, "x.tvdat", options));
        EXPECT_THAT(texts(), ElementsAre("Spice2 raw data file read failed because of incorrect format"));
        EXPECT_TRUE(newest()->name.beginsWith("spice2_"));
        EXPECT_TRUE(newest()->vectors.empty());
        EXPECT_THAT(dataFiles(), IsEmpty());
    }
}

} // namespace
