// Writes and allocations that fail, the first, the second, and so on until all of a task succeeds: never is an
// incomplete file called complete, and what was there before stays whole.
#include "Source/DataFiles/DataFilesFixture.h"
#include "Vectors/BlockMemory.h"
#include "support/MemoryFiles.h"
#include "support/TemporaryFile.h"
#include "torvelan/Exceptions.h"

namespace {

constexpr char const * fileName = "/data.tvdat";

class Failure : public DataFilesFixture {
protected:
    ~Failure() override {
        disk.failAt(0);
        destroyAllGroups();
    }

    // Runs a task with each write of it failing in turn, once and for ever.
    template <class Task> void failEachWrite(Task task) {
        for (auto how :
             {MemoryFiles::Failure::noSpace, MemoryFiles::Failure::inputOutput, MemoryFiles::Failure::shortWrite})
            for (bool everAfter : {false, true}) {
                std::uint64_t n = 1;
                for (bool failed = true; failed && n < 3000; ++n) {
                    SCOPED_TRACE("write " + std::to_string(n));
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
                EXPECT_STREQ(fatal.text, "*** Fatal error ***\nWrite failure to data file /data.tvdat");
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
