#include "support/Files.h"

#include "TemporaryFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

TEST(ForensicMessage, NamesThePathAndTheReason) {
    YString text;
    EXPECT_TRUE(sp_FileOpenForensicMsg("no/such/x.raw", 0, &text));
    EXPECT_EQ(text, "Cannot open file 'no/such/x.raw': No such file or directory");
    EXPECT_TRUE(sp_FileOpenForensicMsg("/tmp", 129, &text));
    EXPECT_EQ(text, "Cannot open file '/tmp': Is a directory");
}

TEST(ForensicMessage, SaysNothingAboutAFileThatOpens) {
    TemporaryFile const file("x");
    YString text("before");
    EXPECT_FALSE(sp_FileOpenForensicMsg(file.path(), 0, &text));
    EXPECT_FALSE(sp_FileOpenForensicMsg(file.path(), 147, &text));
    EXPECT_EQ(text, "before");
}

TEST(ForensicMessage, KeepsPercentSignsOfThePath) {
    YString text;
    EXPECT_TRUE(sp_FileOpenForensicMsg("%s%n", 0, &text));
    EXPECT_EQ(text, "Cannot open file '%s%n': No such file or directory");
}

TEST(ForensicMessage, AFileToWriteNeedsADirectoryThatCanBeWritten) {
    TemporaryFile const file("x");
    YString text;
    EXPECT_FALSE(sp_FileOpenForensicMsg(YString::joined(file.path(), {".new"}), 386, &text));
    EXPECT_TRUE(sp_FileOpenForensicMsg("/no/such/place/x", 386, &text));
    EXPECT_EQ(text, "Cannot open file '/no/such/place/x': No such file or directory");
    EXPECT_TRUE(sp_FileOpenForensicMsg("/tmp", 386, &text));
    EXPECT_EQ(text, "Cannot open file '/tmp': Is a directory");
}

TEST(ForensicMessage, AReadOnlyFileIsNotOneToWrite) {
    if (geteuid() == 0) GTEST_SKIP() << "everything is open to root";
    TemporaryFile const file("x");
    ASSERT_EQ(chmod(file.path().c_str(), 0400), 0);
    YString text;
    EXPECT_TRUE(sp_FileOpenForensicMsg(file.path(), 147, &text));
    EXPECT_EQ(text, YString::joined("Cannot open file '", {file.path(), "': Permission denied"}));
}

TEST(ExistFile, IsTrueOfFilesAlone) {
    TemporaryFile const file("x");
    EXPECT_TRUE(sp_ExistFile(file.path()));
    EXPECT_FALSE(sp_ExistFile("/tmp"));
    EXPECT_FALSE(sp_ExistFile("/tmp/no/such"));
    EXPECT_FALSE(sp_ExistFile(YString()));
    EXPECT_FALSE(sp_ExistFile(YString::joined(file.path(), {std::string_view("\0x", 2)})));
}

} // namespace
