// Real processes that die while they write, at moments that nobody chose and behind each of the first writes. The
// environment variable TORVELAN_KILLS sets how many; `make crashtest` asks for many.
#include "Source/DataFiles/DataFilesFixture.h"
#include "support/ChildProcess.h"
#include "support/FileSystem.h"

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char const * signals[] = {"a", "b", "c"};
constexpr int pointsPerUpdate = 500;

double valueOf(std::size_t signal, std::int64_t i) {
    return static_cast<double>(i) * 0.5 + static_cast<double>(signal);
}

int killCount() {
    char const * const asked = std::getenv("TORVELAN_KILLS");
    return asked != nullptr ? std::atoi(asked) : 10;
}

// The machine's files, until so many writes have been made: then the process is gone.
class DyingFiles final : public FileSystem {
public:
    explicit DyingFiles(int writes) : left(writes) {}
    std::unique_ptr<OpenFile> open(YString const & path, FileMode mode) override {
        auto file = systemFiles().open(path, mode);
        return file != nullptr ? std::make_unique<File>(std::move(file), left) : nullptr;
    }
    std::unique_ptr<OpenFile> openUnique(YString const & prefix, YString * path) override {
        return systemFiles().openUnique(prefix, path);
    }
    bool replace(YString const & from, YString const & to) override { return systemFiles().replace(from, to); }
    bool remove(YString const & path) override { return systemFiles().remove(path); }

private:
    class File final : public OpenFile {
    public:
        File(std::unique_ptr<OpenFile> file_, int & left_) : file(std::move(file_)), left(left_) {}
        std::size_t readAt(void * dest, std::size_t bytes, std::uint64_t offset) override {
            return file->readAt(dest, bytes, offset);
        }
        using OpenFile::writeAt;
        bool writeAt(Bytes first, Bytes second, std::uint64_t offset) override {
            if (left-- <= 0) ::raise(SIGKILL);
            return file->writeAt(first, second, offset);
        }
        std::uint64_t size() override { return file->size(); }
        bool truncate() override { return file->truncate(); }
        bool sync() override { return file->sync(); }
        FileIdentity identity() override { return file->identity(); }
        int descriptor() const noexcept override { return file->descriptor(); }

    private:
        std::unique_ptr<OpenFile> file;
        int & left;
    };

    int left;
};

class Kill : public DataFilesFixture {
protected:
    // Writes and never ends by itself; each update that is complete is told by its number. The streams are flushed
    // before it, so that all values are promised.
    [[noreturn]] void write(YString const & path, int told) {
        Group * run = newRun({"a", "b", "c"});
        if (initialise(run, path) != VEC_OK) _exit(1);
        for (std::int64_t n = 0, i = 0;; ++n) {
            if (::write(told, &n, sizeof n) != sizeof n) _exit(0);
            for (int k = 0; k < pointsPerUpdate; ++k, ++i) {
                run->find("time")->addVal(static_cast<double>(i));
                for (std::size_t s = 0; s < std::size(signals); ++s) run->find(signals[s])->addVal(valueOf(s, i));
            }
            vec_FixGroup(run->name);
            vec_DataSent(run->name, false);
        }
    }

    // Starts a writer, ends it with `end`, and looks at what it has left.
    template <class End> void killed(DyingFiles * layer, End end) {
        YString const path = folder.path("killed.tvdat");
        int told[2];
        ASSERT_EQ(pipe(told), 0);
        pid_t const writer = forkBounded();
        if (writer == 0) {
            close(told[0]);
            std::optional<FileSystemInUse> inUse;
            if (layer != nullptr) inUse.emplace(*layer);
            write(path, told[1]);
        }
        close(told[1]);
        std::int64_t updates = -1, n;
        end(writer);
        while (::read(told[0], &n, sizeof n) == sizeof n) updates = n;
        close(told[0]);
        waitpid(writer, nullptr, 0);
        if (updates >= 0) look(path, updates * pointsPerUpdate);
    }

    void look(YString const & path, std::int64_t promised) {
        words->clear();
        Group * left = open(path);
        ASSERT_NE(left, nullptr) << words->last();
        for (std::size_t s = 0; s < std::size(signals); ++s) {
            dvec const & vector = *left->find(signals[s]);
            ASSERT_GE(vector.totalLength(), promised) << "a completed update has been lost";
            double const * const values = vector.realData();
            for (std::int64_t i = 0; i < vector.length(); ++i) ASSERT_EQ(values[i], valueOf(s, i));
        }
        destroyGroup(left);
        goOn(path);
    }

    // What the kill has left of the one and not of the other is no number there; all else stands over its own x.
    void goOn(YString const & path) {
        constexpr std::int64_t more = 10000;
        Group * again = open(path, forUpdate());
        ASSERT_NE(again, nullptr) << words->last();
        std::int64_t const had = again->find("a")->totalLength();
        ASSERT_EQ(again->find("time")->totalLength(), had);
        for (std::int64_t i = had; i < had + more; ++i) {
            again->find("time")->addVal(static_cast<double>(i));
            for (std::size_t s = 0; s < std::size(signals); ++s) again->find(signals[s])->addVal(valueOf(s, i));
        }
        destroyGroup(again);
        Group * whole = open(path);
        ASSERT_NE(whole, nullptr) << words->last();
        for (std::size_t s = 0; s < std::size(signals); ++s) {
            dvec const & vector = *whole->find(signals[s]);
            ASSERT_EQ(vector.totalLength(), had + more);
            ASSERT_EQ(vector.ref.totalLength(), had + more);
            double const * const values = vector.realData();
            double const * const times = vector.ref.realData();
            for (std::int64_t i = 0; i < had + more; ++i) {
                ASSERT_TRUE(times[i] == static_cast<double>(i) || (i < had && std::isnan(times[i]))) << i;
                ASSERT_TRUE(values[i] == valueOf(s, i) || (i < had && std::isnan(values[i]))) << i;
            }
        }
        destroyGroup(whole);
    }
};

TEST_F(Kill, AtAnyMomentLosesNothingThatAnUpdateHasShown) {
    std::mt19937 random(1);
    for (int n = killCount(); n > 0 && !HasFatalFailure(); --n) {
        SCOPED_TRACE(n);
        killed(nullptr, [&](pid_t writer) {
            timespec const pause{0, static_cast<long>(random() % 30'000'000)};
            nanosleep(&pause, nullptr);
            ::kill(writer, SIGKILL);
        });
    }
}

TEST_F(Kill, BehindEachOfTheFirstWritesLosesNothingEither) {
    for (int writes = 1; writes <= 5 * killCount() && !HasFatalFailure(); ++writes) {
        SCOPED_TRACE(writes);
        DyingFiles layer(writes);
        killed(&layer, [](pid_t) {});
    }
}

} // namespace
