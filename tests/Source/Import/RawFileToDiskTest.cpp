#include "Dfs/FileHeader.h"
#include "ImportFixture.h"
#include "RawFileFixture.h"
#include "torvelan/DataFiles.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

// With the data files that hosts get.
class RawFileToDiskTest : public ImportFixture {
protected:
    RawFileToDiskTest() { fs::create_directory(folder_); }
    ~RawFileToDiskTest() override {
        vec_DestroyAllGroups();
        fs::remove_all(folder_);
    }

    std::string pathOf(char const * name) const { return (folder_ / name).string(); }
    // What a data file holds once the groups of the import have gone.
    void reopen(char const * name) {
        messages_->clear();
        EXPECT_TRUE(vec_OpenGroup(pathOf(name), {}, &groupName_, messages_));
        EXPECT_THAT(texts(), IsEmpty());
    }

    fs::path const folder_ = fs::temp_directory_path() / ("torvelan-sets-" + std::to_string(getpid()));
};

TEST_F(RawFileToDiskTest, SectionsOfACsdfFileAreThereAgain) {
    std::string const header = "#H TITLE='a circuit' SWEEPVAR=TIME #N V(a) I(b) ";
    std::string text = header + "#C 0 2 1 2 #C 1 2 3 4 #; " + header;
    for (int i = 0; i < 10000; ++i) text += "#C " + std::to_string(i) + " 2 5 " + std::to_string(-i) + "\n";
    file_.rewrite(text + "#;");
    VecOpenRawFileOptions options;
    options.csdf = true;
    ASSERT_TRUE(vec_OpenRawFile(file_.path(), pathOf("x.tvdat"), options, messages_));
    EXPECT_THAT(texts(), IsEmpty());
    vec_DestroyAllGroups();
    reopen("x.tvdat");
    EXPECT_EQ(group()->title, "a circuit");
    EXPECT_THAT(names(), ElementsAre("a", "b#p", "TIME"));
    EXPECT_THAT(reals("a"), ElementsAre(1, 3));
    EXPECT_THAT(realsOf(vector("b#p")->ref), ElementsAre(0, 1));
    reopen("x_1.tvdat");
    std::vector<double> const values = reals("b#p");
    ASSERT_EQ(values.size(), 10000u);
    for (std::size_t i = 0; i < values.size(); ++i) EXPECT_EQ(values[i], -static_cast<double>(i));
}

TEST_F(RawFileToDiskTest, FileOfARefusedSectionGoes) {
    file_.rewrite("#H #N V(a) #C 0 1 2 #; #H #N V(a) #C 0 1 x y");
    VecOpenRawFileOptions options;
    options.csdf = true;
    EXPECT_FALSE(vec_OpenRawFile(file_.path(), pathOf("x.tvdat"), options, messages_));
    EXPECT_TRUE(fs::exists(pathOf("x.tvdat")));
    EXPECT_FALSE(fs::exists(pathOf("x_1.tvdat")));
}

// A file that the user named may be of any kind, a name that follows from it stands for data files only.
TEST_F(RawFileToDiskTest, NothingIsWrittenThroughALinkNorOverAFileThatNobodyNamed) {
    std::string const text = RawFile().text() + RawFile().text();
    auto warnings = [&] {
        messages_->clear();
        file_.rewrite(text);
        EXPECT_TRUE(vec_OpenRawFile(file_.path(), pathOf("x"), {}, messages_));
        vec_DestroyAllGroups();
        return texts().size();
    };
    EXPECT_EQ(warnings(), 0u);
    std::ofstream(pathOf("x")) << "of the user's choice";
    EXPECT_EQ(warnings(), 0u);
    std::ofstream(pathOf("x_1")) << "something else";
    EXPECT_EQ(warnings(), 1u);
    std::ofstream(pathOf("x_1")) << makeFileHeader(latestVersion());
    EXPECT_EQ(warnings(), 0u);
    fs::rename(pathOf("x_1"), pathOf("other"));
    fs::create_symlink("other", pathOf("x_1"));
    EXPECT_EQ(warnings(), 1u);
    fs::remove(pathOf("x"));
    fs::create_symlink("nowhere", pathOf("x"));
    EXPECT_EQ(warnings(), 2u);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 3);
}

TEST_F(RawFileToDiskTest, FileThatSomebodyWritesIsLeftAlone) {
    file_.rewrite(RawFile().text());
    ASSERT_TRUE(vec_OpenRawFile(file_.path(), pathOf("x"), {}, messages_)); // and is still open
    ASSERT_TRUE(vec_OpenRawFile(file_.path(), pathOf("x"), {}, messages_));
    EXPECT_THAT(texts(), ElementsAre("Cannot create data file '" + pathOf("x") + "'. The data are kept in memory"));
}

} // namespace
