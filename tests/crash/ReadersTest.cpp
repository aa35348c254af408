// One process writes, four read: every value is what it should be, no reader is refused, and lengths never shrink. The
// environment variable TORVELAN_SOAK sets the seconds; `make crashtest` asks for more.
#include "Source/DataFiles/DataFilesFixture.h"
#include "support/ChildProcess.h"

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int signalCount = 100;

double valueOf(int signal, std::int64_t i) {
    return static_cast<double>(i) * 3 - signal;
}

double now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double seconds() {
    char const * const asked = std::getenv("TORVELAN_SOAK");
    return asked != nullptr ? std::atof(asked) : 2;
}

off_t sizeOf(YString const & path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_size : 0;
}

class Readers : public DataFilesFixture {
protected:
    [[noreturn]] void write(YString const & path) {
        Group * run = makeGroup("A run", "tran", 0);
        std::vector<dvec *> signals;
        for (int k = 0; k < signalCount; ++k) {
            signals.push_back(new dvec(YString("s" + std::to_string(k)), run, PT_VOLTAGE));
            signals.back()->enterGroup();
        }
        if (initialise(run, path) != VEC_OK) _exit(1);
        for (std::int64_t i = 0;; ++i) {
            for (int k = 0; k < signalCount; ++k) {
                if (i % 64 == 63) signals[static_cast<std::size_t>(k)]->addDivision(run->name);
                signals[static_cast<std::size_t>(k)]->addVal(valueOf(k, i));
            }
            if (i % 16 == 0) vec_DataSent(run->name, false);
        }
    }

    // The answer is the number of times that the file was read; 0 when something was wrong.
    int read(YString const & path, double until) {
        std::vector<std::int64_t> before(signalCount, 0);
        int times = 0;
        while (now() < until) {
            words->clear();
            Group * seen = open(path, ignoringLock());
            if (seen == nullptr || !words->texts.empty()) return fail("refused: " + words->last());
            for (int k = 0; k < signalCount; ++k) {
                dvec const & signal = *seen->find("s" + std::to_string(k));
                std::int64_t const n = signal.totalLength();
                double const * const values = signal.allRealData();
                if (n < before[static_cast<std::size_t>(k)]) return fail("a length has shrunk");
                for (std::int64_t i = 0; i < n; ++i)
                    if (values[i] != valueOf(k, i)) return fail("a value is wrong");
                before[static_cast<std::size_t>(k)] = n;
            }
            destroyGroup(seen);
            ++times;
        }
        return times;
    }

    static int fail(std::string const & what) {
        std::fprintf(stderr, "%s\n", what.c_str());
        return 0;
    }
};

TEST_F(Readers, OfARunSeeNothingButWhatWasWritten) {
    YString const path = folder.path("run.tvdat");
    pid_t const writer = forkBounded();
    if (writer == 0) write(path);
    for (int tries = 0; sizeOf(path) < 200'000; ++tries) { // until the records are there
        ASSERT_LT(tries, 30'000) << "the writer does not write";
        usleep(1000);
    }
    std::vector<pid_t> readers;
    double const until = now() + seconds();
    for (int r = 0; r < 4; ++r) {
        readers.push_back(forkBounded());
        if (readers.back() == 0) _exit(read(path, until) > 0 ? 0 : 1);
    }
    for (pid_t reader : readers) {
        int status = -1;
        waitpid(reader, &status, 0);
        EXPECT_EQ(status, 0);
    }
    ::kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
}

} // namespace
