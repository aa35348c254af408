// A run that writes its data file, and those who read it meanwhile.
#include "Source/DataFiles/DataFilesFixture.h"

#include "Vectors/BlockMemory.h"
#include "torvelan/Exceptions.h"
#include "torvelan/SharedBlocks.h"

#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Streaming = DataFilesFixture;

TEST_F(Streaming, ReadersSeeWhatTheLastUpdateShowed) {
    YString const path = folder.path("run.tvdat");
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    constexpr int points = 10000; // more than one extent
    for (int i = 0; i < points; ++i) addPoint(run, {"a"}, i);
    ASSERT_EQ(vec_FixGroup(run->name), VEC_OK);
    ASSERT_EQ(vec_DataSent(run->name, false), VEC_OK);
    addPoint(run, {"a"}, points);

    Group * seen = open(path, ignoringLock());
    ASSERT_NE(seen, nullptr) << words->last();
    EXPECT_EQ(seen->find("a")->length(), points);
    EXPECT_EQ(values(*seen->find("a")).back(), points - 1);
    EXPECT_EQ(seen->find("a")->ref.length(), points);
    EXPECT_EQ(run->find("a")->length(), points + 1);
    EXPECT_EQ(run->find("a")->getReal(points), points);
}

TEST_F(Streaming, AReferenceThatIsNoMemberIsShownToo) {
    YString const path = folder.path("run.tvdat");
    Group * run = makeGroup("A run", "tran", 0);
    auto * a = new dvec("a", run, PT_VOLTAGE);
    a->ref.setName("time");
    a->enterGroup();
    ASSERT_EQ(initialise(run, path), VEC_OK);
    for (int i = 0; i < 100; ++i) {
        a->addVal(static_cast<double>(-i));
        a->ref.addVal(static_cast<double>(i));
    }
    vec_FixGroup(run->name);
    vec_DataSent(run->name, false);
    Group * seen = open(path, ignoringLock());
    ASSERT_EQ(seen->find("a")->length(), 100);
    EXPECT_EQ(values(*seen->find("a")).back(), -99);
    EXPECT_EQ(values(seen->find("a")->ref).back(), 99);
}

TEST_F(Streaming, OthersAreTurnedAwayWhileTheRunWrites) {
    YString const path = folder.path("run.tvdat");
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    EXPECT_EQ(open(path), nullptr);
    EXPECT_EQ(words->last(), "Cannot read data file '" + text(path) + "' as it is currently being updated");
    destroyGroup(run);
    EXPECT_NE(open(path), nullptr);
}

TEST_F(Streaming, ValuesGoToTheFileAndNotToMemory) {
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, folder.path("run.tvdat")), VEC_OK);
    for (int i = 0; i < 1000; ++i) addPoint(run, {"a"}, i);
    std::vector<double> const seen = values(*run->find("a"));
    ASSERT_EQ(seen.size(), 1000U);
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(seen[static_cast<std::size_t>(i)], i);
}

TEST_F(Streaming, ARangeIsFoundWhereTheValuesAre) {
    constexpr int n = 50'000; // several pieces
    Group * run = newRun({"a"});
    auto * c = new dvec("c", run, PT_VOLTAGE);
    c->setSize(0, VD_COMPLEX);
    c->enterGroup();
    ASSERT_EQ(initialise(run, folder.path("run.tvdat")), VEC_OK);
    for (int i = 0; i < n; ++i) {
        run->find("time")->addVal(static_cast<double>(i));
        run->find("a")->addVal(i == 40'000 ? -7.5 : i % 1000);
        c->addVal(complex{i == 30'000 ? 5.0 : 0.0, i == 45'000 ? -12.0 : 1.0});
    }
    destroyGroup(run);
    Group * seen = open(folder.path("run.tvdat"));
    dvec const & a = *seen->find("a");
    std::size_t const before = BlockMemory::bytesInUse();
    EXPECT_EQ(a.getRange(false).min, -7.5);
    EXPECT_EQ(a.getRange(false).max, 999);
    EXPECT_EQ(seen->find("c")->getRange(false).max, 5);
    EXPECT_EQ(seen->find("c")->getRange(false).min, 0);
    EXPECT_EQ(BlockMemory::bytesInUse(), before) << "the values stay where they are";
    destroyGroup(seen);
    seen = open(folder.path("run.tvdat"));
    EXPECT_EQ(seen->find("c")->getRange(true).max, 12);
    EXPECT_EQ(seen->find("c")->getRange(true).min, 1);
}

TEST_F(Streaming, DivisionsAndTheirLabelsComeAsTheyAreAnnounced) {
    YString const path = folder.path("run.tvdat");
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    for (int step = 0; step < 300; ++step) {
        if (step == 0)
            vec_AddGroupDivision(run->name, "s0");
        else
            addDivision(run, {"time", "a"}, ("s" + std::to_string(step)).c_str());
        for (int i = 0; i <= step % 3; ++i) addPoint(run, {"a"}, step + i);
        vec_DataSent(run->name, false);
    }
    vec_FixGroup(run->name);
    vec_DataSent(run->name, false);
    Group * seen = open(path, ignoringLock());
    ASSERT_NE(seen, nullptr) << words->last();
    dvec & a = *seen->find("a");
    ASSERT_EQ(a.numDivisions(), 300);
    EXPECT_EQ(a.length(5), 3);
    EXPECT_EQ(values(a, 4), (std::vector<double>{4, 5}));
    EXPECT_EQ(text(a.divisionLabel(299)), "s299");
    EXPECT_EQ(a.ref.numDivisions(), 300);
}

TEST_F(Streaming, AnotherProcessReadsWhileThisOneWrites) {
    YString const path = folder.path("run.tvdat");
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    for (int i = 0; i < 5000; ++i) addPoint(run, {"a"}, i);
    vec_FixGroup(run->name);
    vec_DataSent(run->name, false);
    pid_t const reader = fork();
    if (reader == 0) {
        Group * seen = open(path, ignoringLock());
        bool const refused = open(path) == nullptr;
        bool good = seen != nullptr && refused && seen->find("a")->length() == 5000;
        for (int i = 0; good && i < 5000; ++i) good = seen->find("a")->getReal(i) == i;
        _exit(good ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(reader, &status, 0), reader);
    EXPECT_EQ(status, 0);
}

// --- saving over the file of a run

TEST_F(Streaming, ARunIsNotReplacedByItsOwnSave) {
    YString const path = folder.path("run.tvdat");
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    for (int i = 0; i < 10; ++i) addPoint(run, {"a"}, i);
    EXPECT_FALSE(save(run, path));
    EXPECT_EQ(words->texts, Texts{"Write failure to data file " + text(path)});
    for (int i = 10; i < 20; ++i) addPoint(run, {"a"}, i);
    destroyGroup(run);
    Group * again = open(path, forUpdate());
    ASSERT_EQ(again->find("a")->length(), 20);
    EXPECT_FALSE(save(again, path)) << "one that is continued is not either";
    words->clear();
    EXPECT_TRUE(save(again, path, true));
    EXPECT_TRUE(words->texts.empty()) << "to one who wants to hold it the path just does not open";
    again->find("a")->addVal(7.0);
    again->find("time")->addVal(7.0);
    destroyGroup(again);
    EXPECT_EQ(open(path)->find("a")->length(), 21);
    EXPECT_EQ(folder.fileCount(), 1U);
}

TEST_F(Streaming, ARunOfAnotherProcessIsNotReplaced) {
    YString const path = folder.path("run.tvdat");
    constexpr int points = 1000;
    auto const addPoints = [](Group * run, int first) {
        for (int i = first; i < first + points; ++i) addPoint(run, {"a"}, i);
    };
    int ready[2], go[2];
    ASSERT_EQ(pipe(ready), 0);
    ASSERT_EQ(pipe(go), 0);
    pid_t const writer = fork();
    char signal = 0;
    if (writer == 0) {
        close(go[1]);
        Group * run = newRun({"a"});
        if (initialise(run, path) != VEC_OK) _exit(1);
        addPoints(run, 0);
        if (write(ready[1], &signal, 1) != 1 || read(go[0], &signal, 1) != 1) _exit(2);
        addPoints(run, points);
        destroyGroup(run);
        _exit(0);
    }
    close(ready[1]);
    close(go[0]);
    ASSERT_EQ(read(ready[0], &signal, 1), 1);
    Group * other = newRun({"a"});
    addPoint(other, {"a"}, 1);
    EXPECT_FALSE(save(other, path));
    EXPECT_EQ(words->texts, Texts{"Write failure to data file " + text(path)});
    ASSERT_EQ(write(go[1], &signal, 1), 1);
    int status = -1;
    ASSERT_EQ(waitpid(writer, &status, 0), writer);
    EXPECT_EQ(status, 0);
    close(ready[0]);
    close(go[1]);
    EXPECT_EQ(open(path)->find("a")->length(), 2 * points);
    EXPECT_TRUE(save(other, path)) << "now nobody writes it";
    EXPECT_EQ(open(path)->find("a")->length(), 1);
}

// --- shared blocks

TEST_F(Streaming, BlocksOfSharedMemoryGoToTheFile) {
    YString const path = folder.path("run.tvdat");
    auto const pool = SharedBlockManager::create(4096, 2);
    ASSERT_NE(pool, nullptr);
    auto const simulator = SharedBlockManager::open(pool->name());
    ASSERT_NE(simulator, nullptr);
    SharedBlockToken const token(pool);
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    dvec & a = *run->find("a");
    a.addVal(-1.0);
    for (int n = 0; n < 50; ++n) {
        int const id = simulator->allocate();
        ASSERT_GE(id, 0) << "blocks are given back";
        char * memory = nullptr;
        ASSERT_EQ(simulator->get(&memory, id), SHARED_BLOCK_OK);
        for (int i = 0; i < 512; ++i) {
            double const value = n * 512 + i;
            std::memcpy(memory + i * 8, &value, 8);
        }
        ASSERT_TRUE(a.addSharedBlock(token, id, 4096));
    }
    EXPECT_EQ(a.totalLength(), 50 * 512 + 1);
    EXPECT_EQ(a.getReal(50 * 512), 50 * 512 - 1);
    EXPECT_EQ(a.getRange(false).min, -1);
    destroyGroup(run);
    Group * seen = open(path);
    ASSERT_NE(seen, nullptr);
    for (int i = 0; i <= 50 * 512; ++i) ASSERT_EQ(seen->find("a")->getReal(i), i - 1);
}

TEST_F(Streaming, ABlockThatIsRefusedCountsAsZeros) {
    auto const pool = SharedBlockManager::create(64, 1);
    SharedBlockToken token(pool);
    for (bool toFile : {false, true}) {
        Group * run = newRun({"a"});
        if (toFile) {
            ASSERT_EQ(initialise(run, folder.path("run.tvdat")), VEC_OK);
        }
        dvec & a = *run->find("a");
        EXPECT_FALSE(a.addSharedBlock(SharedBlockToken(), 0, 16));
        EXPECT_FALSE(a.addSharedBlock(token, 7, 16));
        EXPECT_EQ(values(a), (std::vector<double>{0, 0, 0, 0}));
        EXPECT_THROW(a.addSharedBlock(token, 0, std::uint64_t{1} << 63), MemoryException);
        EXPECT_THROW(a.addSharedBlock(token, 7, std::uint64_t{1} << 62), MemoryException);
        EXPECT_THROW(a.addSharedBlock(token, 7, (std::uint64_t{1} << 30) + 72), MemoryException) << "a claim, no data";
        EXPECT_EQ(a.length(), 4);
        int const id = pool->allocate();
        EXPECT_TRUE(a.addSharedBlock(token, id, 128)) << "longer than the block";
        EXPECT_EQ(a.length(), 20);
        destroyGroup(run);
    }
    token.destroy();
    EXPECT_EQ(token.get(), nullptr);
}

// A process that takes the memory away must not stop this one.
TEST_F(Streaming, SharedMemoryThatIsCutIsRefused) {
    auto const pool = SharedBlockManager::create(1 << 16, 4);
    SharedBlockToken const token(pool);
    int const id = pool->allocate();
    std::string const behind = "/dev/shm" + text(pool->name());
    ASSERT_EQ(truncate(behind.c_str(), 4096), 0);
    Group * run = newRun({"a"});
    EXPECT_FALSE(run->find("a")->addSharedBlock(token, id, 1 << 16));
    EXPECT_EQ(run->find("a")->length(), 1 << 13);
    ASSERT_EQ(initialise(run, folder.path("run.tvdat")), VEC_OK);
    bool refused = false;
    try {
        refused = !run->find("time")->addSharedBlock(token, id, 1 << 16);
    } catch (FatalException const &) {
        refused = true; // the file cannot tell whose fault it was
    }
    EXPECT_TRUE(refused);
}

// --- continued files

TEST_F(Streaming, AFileIsContinued) {
    YString const path = folder.path("run.tvdat");
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    for (int i = 0; i < 10; ++i) addPoint(run, {"a"}, i);
    destroyGroup(run);
    Group * again = open(path, forUpdate());
    ASSERT_NE(again, nullptr) << words->last();
    EXPECT_EQ(open(path, forUpdate()), nullptr) << "by one at a time";
    for (int i = 10; i < 20; ++i) {
        again->find("time")->addVal(i);
        again->find("a")->addVal(static_cast<double>(i));
    }
    addDivision(again, {"time", "a"}, "next");
    again->find("time")->addVal(0.0);
    again->find("a")->addVal(0.0);
    destroyGroup(again);
    Group * seen = open(path);
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen->find("a")->numDivisions(), 2);
    EXPECT_EQ(seen->find("a")->length(0), 20);
}

TEST_F(Streaming, AGroupGoesOnInTheFilesOfOthers) {
    YString paths[3];
    for (int f = 0; f < 3; ++f) {
        Group * run = newRun({"a"});
        paths[f] = folder.path("part" + std::to_string(f) + ".tvdat");
        ASSERT_EQ(initialise(run, paths[f]), VEC_OK);
        vec_AddGroupDivision(run->name, YString("part " + std::to_string(f)));
        for (int i = 0; i < 5; ++i) addPoint(run, {"a"}, f * 5 + i);
        destroyGroup(run);
    }
    Group * all = open(paths[0], forUpdate());
    ASSERT_NE(all, nullptr);
    std::string const name = text(all->name);
    vec_LinkDatafile(all->name, paths[1]);
    vec_LinkDatafile(all->name, paths[2]);
    vec_LinkDatafile(all->name, folder.path("missing.tvdat"));
    ASSERT_EQ(vec_AppendLinkedDatafiles(YString(name)), VEC_OK);
    EXPECT_EQ(findGroup(name)->find("a")->numDivisions(), 3);
    EXPECT_EQ(values(*findGroup(name)->find("a"), 2), (std::vector<double>{10, 11, 12, 13, 14}));
    destroyGroup(findGroup(name));
    Group * seen = open(paths[0]);
    ASSERT_NE(seen, nullptr) << words->last();
    EXPECT_EQ(seen->find("a")->numDivisions(), 3);
    EXPECT_EQ(values(*seen->find("a"), 1), (std::vector<double>{5, 6, 7, 8, 9}));
    EXPECT_EQ(values(seen->find("a")->ref, 2).size(), 5U);
    EXPECT_EQ(text(seen->find("a")->divisionLabel(1)), "part 1");
    EXPECT_LT(std::filesystem::file_size(text(paths[0])), 400'000U);
    unlink(paths[2].c_str());
    EXPECT_EQ(open(paths[0]), nullptr);
    EXPECT_EQ(words->last(), "Data file '" + text(paths[0]) +
                                 "' load failed: one or more linked data files are missing or could not be opened");
}

} // namespace
