// Limits of a real machine: a disk that is full, files that may not grow, memory that may not be had. Each is met by a
// process of its own.
#include "Source/DataFiles/DataFilesFixture.h"
#include "torvelan/Evaluate.h"
#include "torvelan/Exceptions.h"

#include <csignal>
#include <cstdio>
#include <functional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr rlim_t oneMiB = 1 << 20;
constexpr int cannotBeDone = 77;

class Limits : public DataFilesFixture {
protected:
    // What the process answers: 0 when nothing failed in it.
    static int answerOf(std::function<int()> const & task) {
        std::fflush(nullptr);
        pid_t const child = fork();
        if (child == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            alarm(60);
            int const answer = task();
            std::fflush(nullptr);
            _exit(answer != 0 ? answer : HasFailure() ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    static void limit(int resource, rlim_t bytes) {
        rlimit const both{bytes, bytes};
        ASSERT_EQ(setrlimit(resource, &both), 0);
    }

    // What this process has of it.
    static rlim_t addressSpace() {
        rlim_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    }

    // A run that goes on until the file takes no more; then what had been shown is there.
    void writeUntilFull(YString const & path) {
        Group * run = newRun({"a"});
        ASSERT_EQ(initialise(run, path), VEC_OK);
        std::size_t shown = 0;
        int told = 0;
        for (int i = 0; i < 1'000'000 && told == 0; ++i) {
            try {
                addPoint(run, {"a"}, i);
                if (i % 5000 != 4999) continue;
                vec_FixGroup(run->name);
                vec_DataSent(run->name, false);
                shown = static_cast<std::size_t>(i) + 1;
            } catch (FatalException const & fatal) {
                ++told;
                EXPECT_EQ(std::string(fatal.text), "*** Fatal error ***\nWrite failure to data file " + text(path));
            }
        }
        EXPECT_EQ(told, 1);
        EXPECT_GT(shown, 0U);
        destroyGroup(run);
        Group * seen = open(path);
        ASSERT_NE(seen, nullptr) << words->last();
        auto const there = values(*seen->find("a"));
        EXPECT_GE(there.size(), shown);
        for (std::size_t i = 0; i < there.size(); ++i) ASSERT_EQ(there[i], static_cast<double>(i));
    }

    // Saving says so, and leaves what was there.
    void saveTooMuch(YString const & path, std::size_t files) {
        putBytes(path, "older");
        Group * group = newRun({"b"});
        for (int i = 0; i < 200'000; ++i) addPoint(group, {"b"}, i);
        words->clear();
        EXPECT_FALSE(save(group, path));
        EXPECT_EQ(words->texts, Texts{"Write failure to data file " + text(path)});
        EXPECT_EQ(bytesOf(path), "older");
        EXPECT_EQ(folder.fileCount(), files);
    }

    void expectToWork() {
        double value = 0;
        EXPECT_EQ(vec_Evaluate(&value, "1+1", ScpParseContext(words)), VEC_EVAL_OK);
        EXPECT_EQ(value, 2);
    }
};

TEST_F(Limits, AFullDiskIsToldAndLosesNothing) {
    std::string const place = std::filesystem::path(text(folder.path("x"))).parent_path();
    int const answer = answerOf([&] {
        bool const isOwn = unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        if (!isOwn || mount("none", place.c_str(), "tmpfs", 0, "size=1m") != 0) return cannotBeDone;
        putBytes(folder.path("saved.tvdat"), ""); // so that there is an entry for it
        writeUntilFull(folder.path("run.tvdat"));
        putBytes(folder.path("run.tvdat"), "");
        saveTooMuch(folder.path("saved.tvdat"), 2);
        expectToWork();
        return 0;
    });
    if (answer == cannotBeDone) GTEST_SKIP() << "this process may not mount a file system";
    EXPECT_EQ(answer, 0);
}

TEST_F(Limits, AFileThatMayNotGrowIsToldAndLosesNothing) {
    EXPECT_EQ(answerOf([&] {
                  std::signal(SIGXFSZ, SIG_IGN);
                  limit(RLIMIT_FSIZE, oneMiB);
                  writeUntilFull(folder.path("run.tvdat"));
                  saveTooMuch(folder.path("saved.tvdat"), 2);
                  expectToWork();
                  return 0;
              }),
              0);
}

TEST_F(Limits, MemoryThatMayNotBeHadIsTold) {
#ifdef TORVELAN_SANITIZED
    GTEST_SKIP() << "a checked program needs more address space than can be limited";
#endif
    EXPECT_EQ(answerOf([&] {
                  YString const path = folder.path("run.tvdat");
                  Group * run = newRun({"a"});
                  EXPECT_EQ(initialise(run, path), VEC_OK);
                  std::vector<double> const zeros(1 << 20);
                  for (char const * name : {"time", "a"})
                      for (int i = 0; i < 8; ++i) run->find(name)->addVals(zeros.data(), zeros.size());
                  limit(RLIMIT_AS, addressSpace() + 32 * oneMiB);
                  EXPECT_THROW(run->find("a")->realData(), MemoryException);
                  EXPECT_EQ(run->find("a")->length(), 8 << 20);
                  addPoint(run, {"a"}, 1);
                  expectToWork();
                  destroyGroup(run);
                  Group * seen = open(path);
                  EXPECT_NE(seen, nullptr);
                  if (seen == nullptr) return 1;
                  EXPECT_EQ(seen->find("a")->length(), (8 << 20) + 1);
                  EXPECT_THROW(seen->find("a")->realData(), MemoryException);
                  expectToWork();
                  return 0;
              }),
              0);
}

} // namespace
