// Writes and allocations that fail, the first, the second, and so on until all of a task succeeds: never is an
// incomplete file called complete, and what was there before stays whole.
#include "Source/DataFiles/DataFilesFixture.h"
#include "Vectors/BlockMemory.h"
#include "support/MemoryFiles.h"
#include "support/TemporaryFile.h"
#include "torvelan/Exceptions.h"
#include "torvelan/ForeignData.h"

namespace {

constexpr char const * fileName = "/d/data.tvdat";

class Failure : public DataFilesFixture {
protected:
    ~Failure() override {
        disk.failAt(0);
        destroyAllGroups();
    }

    // Runs a task with each write of it failing in turn, once and for ever. What goes before it does not fail.
    template <class Task> void failEachWrite(Task task) {
        failEachWrite([] {}, task);
    }
    template <class Preparation, class Task> void failEachWrite(Preparation prepare, Task task) {
        for (auto how :
             {MemoryFiles::Failure::noSpace, MemoryFiles::Failure::inputOutput, MemoryFiles::Failure::shortWrite})
            for (bool everAfter : {false, true}) {
                std::uint64_t n = 1;
                for (bool failed = true; failed && n < 3000; ++n) {
                    SCOPED_TRACE("write " + std::to_string(n));
                    prepare();
                    disk.failAt(n, how, everAfter);
                    bool const success = task();
                    failed = disk.hasFailed();
                    disk.failAt(0);
                    ASSERT_NE(success, failed) << "a success is told if and only if there was no failure";
                }
                EXPECT_LT(n, 3000U);
            }
    }

    Group * small() {
        Group * group = newRun({"a", "b"});
        for (int i = 0; i < 100; ++i) addPoint(group, {"a", "b"}, i);
        return group;
    }

    // A file of a run of so many points from `first` on.
    std::string runFrom(int first, int points) {
        Group * run = newRun({"a"});
        EXPECT_EQ(initialise(run, fileName), VEC_OK);
        vec_AddGroupDivision(run->name, "part");
        for (int i = first; i < first + points; ++i) addPoint(run, {"a"}, i);
        destroyGroup(run);
        return disk.bytes(fileName);
    }
    // Whether a task ends without the exception of a file that does not take data.
    template <class Task> static bool endsWell(YString const & path, Task task) {
        try {
            task();
            return true;
        } catch (FatalException const & fatal) {
            EXPECT_EQ(std::string(fatal.text), "*** Fatal error ***\nWrite failure to data file " + text(path));
            return false;
        }
    }
    // How many values of a vector can be read back: those of the line i -> i, as far as it goes.
    std::size_t readBack(YString const & path, char const * vector) {
        words->clear();
        Group * seen = open(path, ignoringLock());
        EXPECT_NE(seen, nullptr) << words->last();
        if (seen == nullptr) return 0;
        std::vector<double> all;
        for (std::int64_t d = 0; d < seen->find(vector)->numDivisions(); ++d)
            for (double value : values(*seen->find(vector), d)) all.push_back(value);
        for (std::size_t i = 0; i < all.size(); ++i) EXPECT_EQ(all[i], static_cast<double>(i));
        destroyGroup(seen);
        return all.size();
    }

    MemoryFiles disk;
    FileSystemInUse inUse{disk};
};

TEST_F(Failure, OfASaveLeavesTheOlderFile) {
    TemporaryFile const real("a file that stands for the older one"); // saving asks the machine whether there is one
    std::string const path(real.path().view());
    Group * group = small();
    disk.put(path, "older");
    failEachWrite([&] {
        disk.put(path, "older");
        words->clear();
        bool const saved = save(group, YString(path));
        EXPECT_EQ(disk.contents.size(), 1U) << "nothing stays beside the file";
        if (!saved) {
            EXPECT_EQ(disk.bytes(path), "older");
            EXPECT_EQ(words->texts.size(), 1U);
        } else {
            EXPECT_NE(open(YString(path), ignoringLock()), nullptr);
        }
        return saved;
    });
}

TEST_F(Failure, OfTheMakingOfARunsFileLeavesTheGroupAsItWas) {
    failEachWrite([&] {
        Group * group = small();
        bool const made = initialise(group, fileName) == VEC_OK;
        if (!made) {
            EXPECT_EQ(group->dataFile, nullptr);
        }
        EXPECT_EQ(values(*group->find("b")).size(), 100U);
        EXPECT_EQ(values(*group->find("b")).back(), 198);
        group->find("b")->addVal(7.0);
        EXPECT_EQ(group->find("b")->length(), 101);
        if (!disk.hasFailed()) disk.failAt(0); // what the end of the group writes is another matter
        destroyGroup(group);
        return made;
    });
}

// Of a run the first failure is told by an exception, and what had been written before can be read.
TEST_F(Failure, OfARunIsToldByOneException) {
    failEachWrite([&] {
        Group * run = newRun({"a"});
        if (initialise(run, fileName) != VEC_OK) {
            destroyGroup(run);
            return false;
        }
        int told = 0;
        std::int64_t shown = 0;
        for (int i = 0; i < 12000 && told == 0; ++i) {
            try {
                addPoint(run, {"a"}, i);
                if (i % 3000 != 2999) continue;
                vec_FixGroup(run->name);
                vec_DataSent(run->name, false);
                shown = i + 1;
            } catch (FatalException const & fatal) {
                ++told;
                EXPECT_STREQ(fatal.text, "*** Fatal error ***\nWrite failure to data file /d/data.tvdat");
                EXPECT_EQ(fatal.errorClass, 6);
            }
        }
        EXPECT_LE(told, 1);
        Group * seen = open(fileName, ignoringLock());
        EXPECT_NE(seen, nullptr) << words->last();
        if (seen != nullptr) {
            auto const there = values(*seen->find("a"));
            EXPECT_GE(static_cast<std::int64_t>(there.size()), shown);
            for (std::size_t i = 0; i < there.size(); ++i) EXPECT_EQ(there[i], static_cast<double>(i));
            destroyGroup(seen);
        }
        bool const closedWell = !disk.hasFailed();
        destroyGroup(run);
        return told == 0 && closedWell && !disk.hasFailed();
    });
}

// A file that goes on in another one has what it had before, or all of both.
TEST_F(Failure, OfAnAppendIsToldAndLosesNothing) {
    constexpr int points = 5000;
    constexpr char const * otherName = "/d/other.tvdat";
    std::string const other = runFrom(points, points), own = runFrom(0, points);
    auto const restore = [&] {
        disk.put(fileName, own);
        disk.put(otherName, other);
    };
    failEachWrite(restore, [&] {
        VecOpenGroupOptions options = forUpdate();
        options.ignoreLock = true;
        Group * target = open(fileName, options);
        Group * source = open(otherName, ignoringLock());
        bool const done = endsWell(fileName, [&] { vec_AppendGroup(target->name, source->name, words); });
        EXPECT_EQ(done, !disk.hasFailed()) << "a failure is told";
        destroyGroup(source);
        destroyGroup(target);
        std::size_t const there = readBack(fileName, "a");
        EXPECT_GE(there, std::size_t{points});
        if (done) {
            EXPECT_EQ(there, std::size_t{2 * points});
        }
        EXPECT_EQ(disk.bytes(otherName), other);
        return done;
    });
}

TEST_F(Failure, OfAnImportIsToldUnlessTheFileIsWhole) {
    constexpr std::size_t points = 6000;
    std::string raw = "Title: t\nDate: d\nPlotname: p\nFlags: real\nNo. Variables: 2\nNo. Points: 6000\n"
                      "Variables:\n\t0\ttime\ttime\n\t1\ta\tvoltage\nValues:\n";
    for (std::size_t i = 0; i < points; ++i) {
        std::string const number = std::to_string(i);
        raw += number + "\t" + number + "\n\t" + number + "\n";
    }
    YString const input = folder.path("input.raw");
    putBytes(input, raw);
    failEachWrite([&] { disk.contents.clear(); },
                  [&] {
                      words->clear();
                      bool read = false;
                      bool const done = endsWell(fileName, [&] { read = vec_OpenRawFile(input, fileName, {}, words); });
                      bool const whole = done && read && words->texts.empty();
                      EXPECT_FALSE(disk.hasFailed() && whole) << "a failure is told";
                      bool const inMemory = done && read && !whole; // what a warning has said
                      if (inMemory) {
                          EXPECT_EQ(values(*groupListHead()->find("a")).size(), points);
                      }
                      destroyAllGroups();
                      if (whole) {
                          EXPECT_EQ(readBack(fileName, "a"), points);
                      }
                      return whole;
                  });
}

TEST_F(Failure, OfAnAllocationLeavesTheBlockAsItWas) {
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, fileName), VEC_OK);
    for (int i = 0; i < 10000; ++i) addPoint(run, {"a"}, i);
    dvec & a = *run->find("a");
    BlockMemory::failAt(1);
    EXPECT_THROW(a.realData(), MemoryException);
    EXPECT_EQ(a.length(), 10000);
    EXPECT_EQ(values(a).back(), 9999);
    a.addVal(5.0);
    EXPECT_EQ(a.getReal(10000), 5);
}

} // namespace
