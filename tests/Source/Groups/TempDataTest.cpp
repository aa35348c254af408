// Temporary data: its directory, its names, its end. What is settled once in a process is tried in processes of its
// own.

#include "torvelan/TempData.h"

#include "Groups/ManageTempData.h"
#include "support/FileLock.h"
#include "support/Paths.h"
#include "torvelan/EngineSession.h"
#include "torvelan/Groups.h"
#include "torvelan/Host.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

char const * hostName = "";
char const * identify() {
    return hostName;
}
MakeDynamicFunction const identity("dyn_IdentifyBinary", reinterpret_cast<DynamicFunction>(identify));

class TempData : public testing::Test {
protected:
    TempData() {
        std::string pattern = (fs::temp_directory_path() / "data-XXXXXX").string();
        folder = mkdtemp(pattern.data());
    }
    ~TempData() override {
        fs::remove_all(folder);
        sp_SetOption("TempDataDir", "%TEMPPATH%/TorvelanTempData");
        sp_SetOption("DataGroupDelete", "OnStart");
        hostName = "";
    }
    void use(fs::path const & directory) { sp_SetOption("TempDataDir", YString(directory.string())); }
    std::string resolved() { return std::string(vec_ResolveTempDataDir()); }
    void make(char const * name) { std::ofstream(folder / name) << "data"; }
    bool exists(char const * name) { return fs::exists(folder / name); }
    // Runs in a process of its own; its answer is the exit status.
    static int inProcess(std::function<int()> const & run) {
        pid_t const child = fork();
        if (child == 0) _exit(run());
        int code = -1;
        waitpid(child, &code, 0);
        return WIFEXITED(code) ? WEXITSTATUS(code) : -1;
    }
    // Whether a file is left at the start and at the end of a session of a host.
    void expectDeletion(char const * host, char const * option, char const * moment, bool atStart, bool atEnd) {
        hostName = host;
        use(folder);
        sp_SetOption(option, moment);
        make("old.tvdat");
        {
            EngineSession const session;
            EXPECT_EQ(exists("old.tvdat"), !atStart) << host << " " << moment;
            make("new.tvdat");
        }
        EXPECT_EQ(exists("new.tvdat"), !atEnd) << host << " " << moment;
        sp_SetOption(option, "Never");
    }

    fs::path folder;
};

} // namespace

// --- the directory

TEST_F(TempData, TheOptionNamesTheDirectory) {
    use(folder / "a/b");
    EXPECT_EQ(resolved(), (folder / "a/b").string());
    struct stat status {};
    ASSERT_EQ(stat((folder / "a/b").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0700u) << "a new one is the user's alone";
}

TEST_F(TempData, WithoutTheOptionItIsTheDefault) {
    std::string const usual = std::string(sp_GetTempPath()) + "/TorvelanTempData";
    for (char const * option : {"", "%TEMPPATH%/TorvelanTempData", "%temppath%/TorvelanTempData"}) {
        sp_SetOption("TempDataDir", option);
        EXPECT_EQ(resolved(), usual) << option;
    }
}

TEST_F(TempData, WhatCannotBeUsedGivesWayToTheDefault) {
    std::string const usual = std::string(sp_GetTempPath()) + "/TorvelanTempData";
    make("file");
    fs::create_directory(folder / "open");
    fs::permissions(folder / "open", fs::perms::all);
    fs::create_directory(folder / "target");
    fs::create_directory_symlink(folder / "target", folder / "link");
    for (char const * name : {"file", "file/below", "open", "link"}) {
        use(folder / name);
        EXPECT_EQ(resolved(), usual) << name;
    }
    use("/proc/nothing");
    EXPECT_EQ(resolved(), usual);
    sp_SetOption("TempDataDir", YString(std::string_view("a\0b", 3)));
    EXPECT_EQ(resolved(), usual);
}

TEST_F(TempData, WithoutTheDefaultItIsTheTemporaryPath) {
    std::string const usual = std::string(sp_GetTempPath()) + "/TorvelanTempData";
    fs::remove_all(usual);
    std::ofstream(usual) << "in the way";
    use("/proc/nothing");
    EXPECT_EQ(resolved(), std::string(sp_GetTempPath()));
    fs::remove(usual);
}

TEST_F(TempData, TheDirectoryIsThatOfTheStart) {
    use(folder);
    {
        EngineSession const session;
        use(folder / "later");
        EXPECT_EQ(std::string(vec_GetTempDataDir()), folder.string());
    }
    EngineSession const session;
    EXPECT_EQ(std::string(vec_GetTempDataDir()), (folder / "later").string());
}

TEST_F(TempData, TheTemporaryPathIsThisUsersAlone) {
    EXPECT_TRUE(isPrivateDirectory(sp_GetTempPath()));
    EXPECT_EQ(inProcess([this] {
                  setenv("TMPDIR", folder.c_str(), 1);
                  std::string const taken = (folder / ("torvelan-" + std::to_string(geteuid()))).string();
                  fs::create_directory(taken);
                  fs::permissions(taken, fs::perms::all);
                  std::string const path(sp_GetTempPath());
                  return path != taken && isPrivateDirectory(YString(path)) && sp_GetTempPath() == YString(path) ? 0
                                                                                                                 : 1;
              }),
              0);
}

// --- names

TEST_F(TempData, ANameIsAFileAtOnce) {
    EXPECT_EQ(inProcess([this] {
                  use(folder);
                  EngineSession const session;
                  std::string const first(makeTempDataFileName("tran1")), second(makeTempDataFileName("tran1"));
                  bool const good = first == (folder / "tran1.tvdat").string() &&
                                    second == (folder / "tran1_1.tvdat").string() && fs::file_size(first) == 0 &&
                                    (fs::status(first).permissions() & fs::perms(077)) == fs::perms(0);
                  return good ? 0 : 1;
              }),
              0);
}

TEST_F(TempData, ProcessesDoNotShareNames) {
    constexpr int processes = 8, names = 20;
    std::vector<pid_t> children;
    for (int i = 0; i < processes; ++i) {
        pid_t const child = fork();
        if (child == 0) {
            use(folder);
            EngineSession const session;
            std::ofstream out(folder / ("list" + std::to_string(i)));
            for (int k = 0; k < names; ++k) out << makeTempDataFileName("tran1").view() << "\n";
            out.close();
            _exit(0);
        }
        children.push_back(child);
    }
    for (pid_t const child : children) waitpid(child, nullptr, 0);
    std::set<std::string> all;
    for (int i = 0; i < processes; ++i) {
        std::ifstream in(folder / ("list" + std::to_string(i)));
        for (std::string line; std::getline(in, line);) EXPECT_TRUE(all.insert(line).second) << line;
    }
    EXPECT_EQ(all.size(), static_cast<std::size_t>(processes * names));
}

TEST_F(TempData, TheLastNameIsUsedAsItIs) {
    EXPECT_EQ(inProcess([this] {
                  use(folder);
                  EngineSession const session;
                  for (int i = 0; i < 999; ++i) makeTempDataFileName("g");
                  return makeTempDataFileName("g") == YString((folder / "g_998.tvdat").string()) ? 0 : 1;
              }),
              0);
}

TEST_F(TempData, AGroupsNameCannotLeaveTheDirectory) {
    EXPECT_EQ(inProcess([this] {
                  use(folder);
                  EngineSession const session;
                  int bad = 0;
                  for (std::string_view name : {"../x", "/etc/x", "..", "", ".hidden", "a\nb", "%s%n"}) {
                      fs::path const path{std::string(makeTempDataFileName(YString(name)))};
                      bad += path.parent_path() == folder && fs::exists(path) ? 0 : 1;
                  }
                  bad += fs::exists(std::string(makeTempDataFileName(YString(std::string(5000, 'n'))))) ? 0 : 1;
                  return bad;
              }),
              0);
}

// --- deletion

TEST_F(TempData, OnlyDataFilesAreDeleted) {
    for (char const * name : {"a.tvdat", "b.tvdat", "c.txt", ".hidden.tvdat", "tvdat"}) make(name);
    fs::create_directory(folder / "d.tvdat");
    vec_DeleteTempData(YString(folder.string()));
    EXPECT_FALSE(exists("a.tvdat") || exists("b.tvdat"));
    EXPECT_TRUE(exists("c.txt") && exists("tvdat") && exists("d.tvdat"));
    vec_DeleteTempData("/nonexistent");
    vec_DeleteTempData("");
}

TEST_F(TempData, AFileThatAProcessWritesStays) {
    make("held.tvdat");
    make("free.tvdat");
    int ready[2], done[2];
    ASSERT_EQ(pipe(ready), 0);
    ASSERT_EQ(pipe(done), 0);
    pid_t const child = fork();
    if (child == 0) {
        int const file = open((folder / "held.tvdat").c_str(), O_RDWR);
        bool const held = lockForWriting(file);
        ssize_t n = write(ready[1], held ? "y" : "n", 1);
        char c = 0;
        n += read(done[0], &c, 1);
        _exit(n == 2 ? 0 : 1);
    }
    char answer = 0;
    ASSERT_EQ(read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    vec_DeleteTempData(YString(folder.string()));
    EXPECT_TRUE(exists("held.tvdat"));
    EXPECT_FALSE(exists("free.tvdat"));
    ASSERT_EQ(write(done[1], "x", 1), 1);
    waitpid(child, nullptr, 0);
    vec_DeleteTempData(YString(folder.string()));
    EXPECT_FALSE(exists("held.tvdat")) << "the lock ended with its process";
    for (int end : {ready[0], ready[1], done[0], done[1]}) close(end);
}

TEST_F(TempData, TheOptionOfTheHostSaysWhen) {
    EXPECT_EQ(inProcess([this] {
                  expectDeletion("Torvelan", "DataGroupDelete", "OnStart", true, false);
                  expectDeletion("Torvelan", "DataGroupDelete", "onclose", false, true);
                  expectDeletion("Torvelan", "DataGroupDelete", "OnDelete", false, true);
                  expectDeletion("Torvelan", "DataGroupDelete", "Never", false, false);
                  expectDeletion("Torvelan", "DataGroupDelete", "sometimes", false, false);
                  expectDeletion("TVL", "TvlDataGroupDelete", "OnStart", true, false);
                  expectDeletion("TVL2", "Tvl2DataGroupDelete", "OnClose", false, true);
                  expectDeletion("TVL", "DataGroupDelete", "OnStart", false, false);
                  expectDeletion("", "DataGroupDelete", "OnStart", false, false);
                  expectDeletion("torvelan", "DataGroupDelete", "OnStart", false, false);
                  return testing::Test::HasFailure() ? 1 : 0;
              }),
              0);
}
