// Saving a group and opening it again.
#include "Source/DataFiles/DataFilesFixture.h"

#include "Dfs/DfsFile.h"
#include "Vectors/BlockMemory.h"
#include "support/Files.h"

#include <cerrno>
#include <unistd.h>

namespace {

using OpenSave = DataFilesFixture;

TEST_F(OpenSave, AGroupComesBackAsItWas) {
    Group * group = newRun({"b", "a"});
    group->date = "today";
    for (int i = 0; i < 3; ++i) addPoint(group, {"b", "a"}, i);
    stringMember(group, "note", "hello, world");
    group->traces.push_back({"one", "two", true, {{"colour", "red"}}});
    group->analysis = {1, 2, true, false, true, "tran", "more"};
    group->addPostProcess("Let x = 1");
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    std::string const name = text(group->name);
    destroyGroup(group);

    Group * back = open(path);
    ASSERT_NE(back, nullptr) << words->last();
    EXPECT_EQ(text(back->name), name);
    EXPECT_EQ(text(back->title), "A run");
    EXPECT_EQ(text(back->date), "today");
    EXPECT_EQ(values(*back->find("a")), (std::vector<double>{0, 2, 4}));
    EXPECT_EQ(values(back->find("a")->ref), (std::vector<double>{0, 1, 2}));
    EXPECT_EQ(text(back->find("a")->ref.name()), "time");
    EXPECT_EQ(back->find("a")->physType(), PT_VOLTAGE);
    EXPECT_TRUE(back->find("a")->ref.sharesRep(back->find("b")->ref));
    EXPECT_STREQ(back->find("note")->getString(0), "hello, world");
    ASSERT_EQ(back->traces.size(), 1U);
    EXPECT_EQ(text(back->traces[0].properties[0].value), "red");
    EXPECT_EQ(text(back->analysis.text2), "more");
    EXPECT_TRUE(back->analysis.flag3);
    ASSERT_EQ(back->postProcessScripts().size(), 1U);
    EXPECT_EQ(text(back->postProcessScripts()[0]), "Let x = 1");
}

TEST_F(OpenSave, ASecondOpeningGetsANewNameWithANote) {
    Group * group = newRun({});
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    std::string const name = text(group->name);
    Group * second = open(path);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(text(second->name), name);
    EXPECT_EQ(words->last(),
              "Note: group name " + name + " already exists.\nChanging name to " + text(second->name) + " \n");
}

// The machine's files, which refuse to be written.
class ReadOnlyFiles final : public FileSystem {
public:
    explicit ReadOnlyFiles(int error_) : error(error_) {}
    std::unique_ptr<OpenFile> open(YString const & path, FileMode mode) override {
        if (mode == FileMode::read) return systemFiles().open(path, mode);
        errno = error;
        return nullptr;
    }
    std::unique_ptr<OpenFile> openUnique(YString const &, YString *) override { return nullptr; }
    bool replace(YString const &, YString const &) override { return false; }
    bool remove(YString const &) override { return false; }

private:
    int error;
};

TEST_F(OpenSave, WhyAFileCannotBeContinuedIsTold) {
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(newRun({"a"}), path));
    for (auto const & [error, reason] : {std::pair{EACCES, "Permission denied"}, {EROFS, "Read-only file system"}}) {
        ReadOnlyFiles disk(error);
        FileSystemInUse const inUse(disk);
        words->clear();
        EXPECT_EQ(open(path, forUpdate()), nullptr);
        EXPECT_EQ(words->texts, Texts{"Cannot open file '" + text(path) + "': " + reason});
    }
    Group * const writer = open(path, forUpdate());
    ASSERT_NE(writer, nullptr);
    words->clear();
    EXPECT_EQ(open(path, forUpdate()), nullptr);
    EXPECT_EQ(words->texts, Texts{"Cannot read data file '" + text(path) + "' as it is currently being updated"});
}

// The group that was begun is temporary, and takes its file along.
TEST_F(OpenSave, ATemporaryFileThatCannotBeRestoredGoes) {
    YString const path = folder.path("saved.tvdat");
    VecOpenGroupOptions options;
    for (bool temporary : {false, true}) {
        {
            DfsFile file(path, DfsMode::create);
            ASSERT_EQ(file.openOrCreate(false), DfsStatus::good);
        }
        options.temporary = temporary;
        EXPECT_EQ(open(path, options), nullptr);
        EXPECT_EQ(words->last(),
                  "Data file '" + text(path) + "' load failed: could not restore data. File may be corrupted");
        EXPECT_EQ(sp_ExistFile(path), !temporary);
    }
    putBytes(path, "no data file");
    EXPECT_EQ(open(path, options), nullptr);
    EXPECT_TRUE(sp_ExistFile(path)) << "there was no group";
}

TEST_F(OpenSave, MergingReplacesTheGroupOfTheStoredName) {
    Group * group = newRun({"a"});
    addPoint(group, {"a"}, 1);
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    YString const name = group->name;
    addPoint(group, {"a"}, 2);
    VecOpenGroupOptions options;
    options.merge = true;
    YString opened;
    words->clear();
    ASSERT_TRUE(vec_OpenGroup(path, options, &opened, words));
    EXPECT_EQ(text(opened), text(name));
    EXPECT_EQ(findGroup(name)->find("a")->length(), 1);
    EXPECT_TRUE(words->texts.empty());
}

TEST_F(OpenSave, ARunIsKnownByItsNumber) {
    Group * group = makeGroup("A run", "tran", 12345);
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    Group * plain = newRun({});
    YString const without = folder.path("without.tvdat");
    ASSERT_TRUE(save(plain, without));
    VecOpenGroupOptions options;
    options.assignRunId = true;
    EXPECT_EQ(open(path, options)->runId, 12345U);
    EXPECT_GT(open(without, options)->runId, 12345U) << "a fresh one";
    EXPECT_EQ(open(path)->runId, 0U);
    Group * noRun = open(without);
    EXPECT_EQ(noRun->runId, 0U);
    EXPECT_TRUE(noRun->hasRealData);
}

TEST_F(OpenSave, ATemporaryFileGoesWithItsGroup) {
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(newRun({}), path));
    VecOpenGroupOptions options;
    options.temporary = true;
    destroyGroup(open(path, options));
    EXPECT_EQ(folder.fileCount(), 0U);
}

TEST_F(OpenSave, ATemporaryFileThatHasBeenReplacedStays) {
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(newRun({}), path));
    VecOpenGroupOptions options;
    options.temporary = true;
    Group * group = open(path, options);
    ASSERT_TRUE(save(group, path));
    destroyGroup(group);
    EXPECT_EQ(folder.fileCount(), 1U) << "what was saved is no temporary file";
}

TEST_F(OpenSave, NamesMayBeAsLongAsFilesMayHave) {
    Group * group = newRun({"a"});
    for (std::size_t length : {200, 235, 241, 255}) {
        YString const path = folder.path(std::string(length, 'n'));
        for (int n = 0; n < 2; ++n) {
            ASSERT_TRUE(save(group, path)) << words->last();
            EXPECT_NE(open(path), nullptr) << length;
        }
    }
    EXPECT_EQ(folder.fileCount(), 4U);
    words->clear();
    EXPECT_TRUE(save(group, folder.path(std::string(256, 'n')))) << "that is no path";
    EXPECT_TRUE(words->texts.empty());
    EXPECT_EQ(folder.fileCount(), 4U);
}

TEST_F(OpenSave, TheLabelOfASingleDivisionComesBack) {
    Group * group = newRun({"a"});
    addPoint(group, {"a"}, 1);
    vec_AddGroupDivision(group->name, "only");
    stringMember(group, "note", "has none");
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    Group * back = open(path);
    EXPECT_EQ(text(back->find("a")->divisionLabel(0)), "only");
    EXPECT_EQ(text(back->find("a")->ref.divisionLabel(0)), "only");
}

TEST_F(OpenSave, AGroupWithARunNumberHasRealData) {
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(makeGroup("A run", "tran", 12345), path));
    EXPECT_TRUE(open(path)->hasRealData);
}

TEST_F(OpenSave, AVectorThatShowsLessThanItsReferenceStaysSo) {
    for (int what = 0; what < 3; ++what) {
        Group * group = newRun({"a"});
        for (int d = 0; d < 5; ++d) {
            if (d != 0) addDivision(group, {"time", "a"}, "next");
            for (int i = 0; i <= d; ++i) addPoint(group, {"a"}, d * 10 + i);
        }
        dvec & a = *group->find("a");
        if (what == 0) a.selectDivision(2);
        if (what == 1) a.openDivisionAt(3);
        if (what == 2) a.limitDivisions(2);
        YString const path = folder.path("saved.tvdat");
        ASSERT_TRUE(save(group, path));
        dvec const & is = *open(path)->find("a");
        ASSERT_EQ(is.numDivisions(), a.numDivisions());
        for (std::int64_t d = 0; d < a.numDivisions(); ++d) EXPECT_EQ(values(is, d), values(a, d));
        EXPECT_EQ(is.ref.numDivisions(), 5);
        EXPECT_EQ(is.ref.totalLength(), 15);
    }
}

TEST_F(OpenSave, APathThatCannotBeWrittenIsNotTold) {
    Group * group = newRun({});
    EXPECT_TRUE(save(group, folder.path("no/such/folder.tvdat")));
    EXPECT_TRUE(words->texts.empty());
    EXPECT_TRUE(save(group, YString("/dev/null")));
}

TEST_F(OpenSave, AFileIsSavedOverItself) {
    Group * group = newRun({"a"});
    for (int i = 0; i < 10000; ++i) addPoint(group, {"a"}, i);
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    destroyGroup(group);
    for (int n = 0; n < 3; ++n) {
        Group * back = open(path);
        ASSERT_NE(back, nullptr);
        ASSERT_TRUE(save(back, path));
        EXPECT_EQ(values(*back->find("a")).size(), 10000U) << "the group keeps what it was opened from";
        destroyGroup(back);
    }
    EXPECT_EQ(values(*open(path)->find("a")).back(), 9999);
    EXPECT_EQ(folder.fileCount(), 1U);
}

TEST_F(OpenSave, ALinkStaysALinkAndItsTargetIsReplaced) {
    YString const path = folder.path("saved.tvdat"), link = folder.path("link.tvdat");
    ASSERT_TRUE(save(newRun({}), path));
    ASSERT_EQ(symlink("saved.tvdat", link.c_str()), 0);
    Group * group = newRun({"a"});
    ASSERT_TRUE(save(group, link));
    EXPECT_TRUE(std::filesystem::is_symlink(text(link)));
    EXPECT_NE(open(path)->find("a"), nullptr);
}

TEST_F(OpenSave, ValuesStayInTheFileUntilTheyAreUsed) {
    Group * group = newRun({"a"});
    for (int i = 0; i < 200'000; ++i) addPoint(group, {"a"}, i);
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    destroyGroup(group);
    BlockMemory::resetPeak();
    std::size_t const before = BlockMemory::bytesInUse();
    Group * back = open(path);
    EXPECT_EQ(back->find("a")->length(), 200'000);
    EXPECT_LT(BlockMemory::peakBytes(), before + 100'000);
    double part[5];
    EXPECT_TRUE(back->find("a")->readRealBlock(part, 5, 0));
    EXPECT_EQ(part[4], 4);
    EXPECT_LT(BlockMemory::peakBytes(), before + 100'000);
    EXPECT_EQ(back->find("a")->getReal(199'999), 199'999);
    EXPECT_GE(BlockMemory::bytesInUse(), before + 1'600'000);
}

TEST_F(OpenSave, AVectorOfAFileIsWrittenInMemoryOnly) {
    Group * group = newRun({"a"});
    addPoint(group, {"a"}, 1);
    YString const path = folder.path("saved.tvdat");
    ASSERT_TRUE(save(group, path));
    destroyGroup(group);
    std::string const before = bytesOf(path);
    Group * back = open(path);
    back->find("a")->addVal(5.0);
    back->find("a")->writableRealData()[0] = 7;
    EXPECT_EQ(values(*back->find("a")), (std::vector<double>{7, 5}));
    destroyGroup(back);
    EXPECT_EQ(bytesOf(path), before);
}

TEST_F(OpenSave, VersionsAreKnownByName) {
    YString name;
    int code = 0;
    vec_GetCurrentDataFileVersion(&name, &code);
    EXPECT_EQ(text(name), "7.1");
    EXPECT_EQ(code, 71);
    EXPECT_EQ(vec_GetDataVersionCode("4.5", &code), VEC_OK);
    EXPECT_EQ(code, 45);
    EXPECT_EQ(vec_GetDataVersionCode("9.9", &code), VEC_NOT_DONE);
    EXPECT_EQ(code, 0);
}

} // namespace
