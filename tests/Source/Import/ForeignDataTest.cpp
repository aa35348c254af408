#include "torvelan/ForeignData.h"

#include "RawFileFixture.h"
#include "Vectors/BlockMemory.h"

#include <sys/stat.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using ForeignDataTest = RawFileFixture;

TEST_F(ForeignDataTest, GroupIsNamedListedAndCurrent) {
    ASSERT_TRUE(open(RawFile()));
    EXPECT_TRUE(groupName_.beginsWith("spice3_"));
    EXPECT_EQ(groupListHead(), group());
    EXPECT_EQ(nameSpace().current, group());
    EXPECT_EQ(group()->title, " a circuit");
    EXPECT_EQ(group()->date, " today");
    EXPECT_EQ(group()->runId, 0u);
}

TEST_F(ForeignDataTest, GroupWithoutTitleIsUntitled) {
    std::string text = RawFile().text();
    text.erase(0, text.find('\n') + 1);
    ASSERT_TRUE(open(text));
    EXPECT_EQ(group()->title, "Untitled");
}

TEST_F(ForeignDataTest, NameThatIsTakenIsChangedAndSaid) {
    ASSERT_TRUE(open(RawFile()));
    int const number = std::stoi(std::string(groupName_.view().substr(7)));
    std::string const next = "spice3_" + std::to_string(number + 1);
    listRestoredGroup(makeUnlistedGroup(""), YString(next), true, *messages_);
    ASSERT_TRUE(open(RawFile()));
    EXPECT_NE(groupName_, next.c_str());
    EXPECT_TRUE(groupName_.beginsWith("spice3_"));
    ASSERT_EQ(texts().size(), 1u);
    EXPECT_THAT(texts()[0], HasSubstr("Note: group name " + next + " already exists."));
    EXPECT_EQ(messages_->levels[0], MessageLevel::info);
}

TEST_F(ForeignDataTest, FirstOfSeveralDataSetsIsRead) {
    RawFile second;
    second.values = "0 7 8\n1 9 10\n";
    ASSERT_TRUE(open(RawFile().text() + second.text()));
    EXPECT_THAT(reals("out"), ElementsAre(1.5, 2.5));
}

TEST_F(ForeignDataTest, FileThatDoesNotOpenIsNamed) {
    Group * const head = groupListHead();
    EXPECT_FALSE(openPath("/nonexistent/%s.raw", DATA_SPICE3));
    ASSERT_EQ(texts().size(), 1u);
    EXPECT_THAT(texts()[0], HasSubstr("/nonexistent/%s.raw"));
    EXPECT_FALSE(openPath("/tmp", DATA_SPICE3));
    EXPECT_FALSE(openPath("", DATA_NOT_RECOGNISED));
    EXPECT_EQ(groupListHead(), head);
}

TEST_F(ForeignDataTest, TypesThatAreNoneReadNothing) {
    file_.rewrite(RawFile().text());
    Group * const head = groupListHead();
    for (int const type : {0, 2, 7, 8, -1, 1000}) {
        EXPECT_TRUE(openPath(file_.path(), static_cast<DataFileType>(type))) << type;
        EXPECT_THAT(texts(), IsEmpty());
        EXPECT_EQ(groupListHead(), head);
        EXPECT_EQ(groupName_, "untouched");
    }
}

TEST_F(ForeignDataTest, TextGroupIsThereBeforeTheFileIsOpened) {
    EXPECT_FALSE(openPath("/nonexistent/table.txt", DATA_TEXT));
    ASSERT_EQ(texts().size(), 1u);
    EXPECT_THAT(texts()[0], HasSubstr("/nonexistent/table.txt"));
    EXPECT_EQ(groupName_, "untouched");
    EXPECT_EQ(groupListHead()->title, "/nonexistent/table.txt");
    EXPECT_TRUE(groupListHead()->name.beginsWith("text"));
    EXPECT_TRUE(groupListHead()->vectors.empty());
}

TEST_F(ForeignDataTest, PSpiceFilesAreKnownByTheirFirstBytes) {
    std::string const mark(6, '\xFF');
    auto test = [this](std::string_view content) {
        file_.rewrite(content);
        return vec_TestDataFileType(file_.path());
    };
    EXPECT_EQ(test(mark + "\1\xF3"), DATA_PSPICE);
    EXPECT_EQ(test(mark), DATA_PSPICE);
    for (std::size_t i = 0; i < mark.size(); ++i) {
        std::string other = mark + "\1\xF3";
        other[i] = '\xFE';
        EXPECT_EQ(test(other), DATA_NOT_RECOGNISED) << i;
    }
    EXPECT_EQ(test(mark.substr(1)), DATA_NOT_RECOGNISED);
    EXPECT_EQ(test(""), DATA_NOT_RECOGNISED);
    EXPECT_EQ(test(RawFile().text()), DATA_NOT_RECOGNISED);
    EXPECT_EQ(vec_TestDataFileType("/nonexistent"), DATA_CANNOT_OPEN);
    EXPECT_EQ(vec_TestDataFileType("/tmp"), DATA_CANNOT_OPEN);
}

TEST_F(ForeignDataTest, PipeInThePlaceOfAFileIsNamedAtOnce) {
    std::string const path = std::string(file_.path()) + ".fifo";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    for (DataFileType const type : {DATA_TEXT, DATA_SPICE2, DATA_SPICE3, DATA_PSPICE, DATA_QUADREL}) {
        EXPECT_FALSE(openPath(path.c_str(), type));
        ASSERT_EQ(texts().size(), 1u);
        EXPECT_THAT(texts()[0], HasSubstr(path));
    }
    EXPECT_EQ(vec_TestDataFileType(path.c_str()), DATA_CANNOT_OPEN);
    std::remove(path.c_str());
}

TEST_F(ForeignDataTest, NameAndMessagesNeedNotBeAskedFor) {
    file_.rewrite(RawFile().text());
    EXPECT_TRUE(vec_OpenForeignDataFile(file_.path(), DATA_SPICE3, VecOpenGroupOptions(), nullptr, nullptr));
    EXPECT_FALSE(vec_OpenForeignDataFile("/nonexistent", DATA_SPICE3, VecOpenGroupOptions(), nullptr, nullptr));
}

TEST_F(ForeignDataTest, FileCutAtAnyLengthIsRefusedOrReadInPart) {
    std::string const real = RawFile().text();
    std::string const complexText = RawFile::complexOne("3", "0 1,2\n1 3,4\n2 5,6\n").text();
    for (std::string const & text : {real, complexText}) {
        std::size_t const values = text.find("Values:") + 6; // the word is complete from here on
        for (std::size_t n = 0; n < text.size(); ++n)
            EXPECT_EQ(openAnything(text.substr(0, n)), n >= values) << "cut to " << n << " bytes";
    }
    expectUsable();
}

TEST_F(ForeignDataTest, AnyByteChangedIsRefusedOrRead) {
    std::string const text = RawFile().text();
    for (std::size_t i = 0; i < text.size(); ++i)
        for (char const c : {'\0', '\n', ':', '9', '-', '\xff'}) {
            std::string damaged = text;
            damaged[i] = c;
            openAnything(damaged);
        }
    expectUsable();
}

TEST_F(ForeignDataTest, MemoryThatRunsOutLeavesNothingInTheStore) {
    std::string const text = RawFile().text();
    file_.rewrite(text);
    Group * const head = groupListHead();
    bool done = false;
    for (std::uint64_t n = 1; !done && n < 100; ++n) {
        BlockMemory::failAt(n);
        try {
            done = vec_OpenForeignDataFile(file_.path(), DATA_SPICE3, VecOpenGroupOptions(), nullptr, messages_);
        } catch (MemoryException const &) {
            EXPECT_EQ(groupListHead(), head);
        }
        BlockMemory::failAt(0);
    }
    EXPECT_TRUE(done);
    expectUsable();
}

} // namespace
