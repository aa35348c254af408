// Groups that go on in the files of others.
#include "Source/DataFiles/DataFilesFixture.h"

#include "Source/DataFiles/OlderWriter.h"
#include "support/MemoryFiles.h"

namespace {

constexpr std::size_t pageBytes = 4096;

class Linking : public DataFilesFixture {
protected:
    static constexpr int points = 3;

    static void addPoints(Group * group, double first) {
        for (int i = 0; i < points; ++i) {
            group->find("time")->addVal(static_cast<double>(i));
            group->find("a")->addVal(first + i);
        }
    }
    // Files of groups of one name, whose vectors are the same streams.
    void saveAlike(std::initializer_list<std::pair<YString, double>> files) {
        Group * group = newRun({"a"});
        addPoints(group, 0);
        for (auto const & [path, first] : files) {
            for (int i = 0; i < points; ++i) group->find("a")->writableRealData()[i] = first + i;
            ASSERT_TRUE(save(group, path));
        }
        destroyGroup(group);
    }
    Group * target() {
        Group * run = newRun({"a"});
        EXPECT_EQ(initialise(run, folder.path("target.tvdat")), VEC_OK);
        addPoints(run, 0);
        return run;
    }
    static std::vector<double> from(double first) { return {first, first + 1, first + 2}; }
};

TEST_F(Linking, AMergedGroupIsContinuedWithWhatItShows) {
    YString const one = folder.path("one.tvdat"), two = folder.path("two.tvdat");
    saveAlike({{one, 100}, {two, 200}});
    Group * run = target();
    VecOpenGroupOptions merging;
    merging.merge = true;
    Group * shown = open(one);
    ASSERT_EQ(open(two, merging), shown) << "the vectors of the second file in the group of the first";
    ASSERT_EQ(values(*shown->find("a")), from(200));
    ASSERT_EQ(vec_AppendGroup(run->name, shown->name, words), VEC_OK);
    ASSERT_EQ(run->find("a")->numDivisions(), 2);
    EXPECT_EQ(values(*run->find("a"), 1), from(200));
    destroyGroup(run);
    destroyGroup(shown);
    EXPECT_EQ(values(*open(folder.path("target.tvdat"))->find("a"), 1), from(200));
}

TEST_F(Linking, AVectorThatShowsAnotherFilesIsContinuedWithThat) {
    YString const one = folder.path("one.tvdat"), two = folder.path("two.tvdat");
    saveAlike({{one, 100}, {two, 200}});
    Group * run = target();
    Group * source = open(one);
    source->find("a")->assign(*open(two)->find("a"));
    ASSERT_EQ(vec_AppendGroup(run->name, source->name, words), VEC_OK);
    EXPECT_EQ(values(*run->find("a"), 1), from(200));
    EXPECT_EQ(values(run->find("a")->ref, 1), (std::vector<double>{0, 1, 2}));
}

// Both of two files go on in a third one. By reference its bytes can be there once only.
TEST_F(Linking, FilesThatGoOnInTheSameFileAreAllAppended) {
    YString paths[4];
    for (int k = 0; k < 4; ++k) {
        paths[k] = folder.path("f" + std::to_string(k) + ".tvdat");
        Group * run = newRun({"a"});
        ASSERT_EQ(initialise(run, paths[k]), VEC_OK);
        vec_AddGroupDivision(run->name, YString("part " + std::to_string(k)));
        addPoints(run, k * 10);
        destroyGroup(run);
    }
    auto const append = [&](int target, std::initializer_list<int> others) {
        Group * group = open(paths[target], forUpdate());
        ASSERT_NE(group, nullptr) << words->last();
        YString const name = group->name;
        for (int k : others) vec_LinkDatafile(name, paths[k]);
        ASSERT_EQ(vec_AppendLinkedDatafiles(name), VEC_OK);
        destroyGroup(findGroup(name));
    };
    append(1, {0});
    append(2, {0});
    append(3, {1, 2});
    Group * all = open(paths[3]);
    ASSERT_NE(all, nullptr) << words->last();
    dvec const & a = *all->find("a");
    int const order[] = {3, 1, 0, 2, 0};
    ASSERT_EQ(a.numDivisions(), 5);
    for (int d = 0; d < 5; ++d) {
        EXPECT_EQ(values(a, d), from(order[d] * 10)) << d;
        EXPECT_EQ(text(a.divisionLabel(d)), "part " + std::to_string(order[d]));
    }
}

// A process that dies while it links: there is what was there before, or all of both.
TEST_F(Linking, IsAllOrNothingWhereverItIsCutOff) {
    constexpr int many = 9000;
    constexpr char const * target = "/d/target";
    MemoryFiles disk;
    FileSystemInUse const inUse(disk);
    for (char const * path : {target, "/d/other"}) {
        Group * run = newRun({"a", "b"});
        ASSERT_EQ(initialise(run, path), VEC_OK);
        vec_AddGroupDivision(run->name, "part");
        for (int i = 0; i < many; ++i) addPoint(run, {"a", "b"}, i);
        destroyGroup(run);
    }
    std::string now = disk.bytes(target);
    disk.records = true;
    VecOpenGroupOptions continuing = forUpdate();
    continuing.ignoreLock = true;
    Group * first = open(target, continuing);
    Group * second = open("/d/other", ignoringLock());
    ASSERT_EQ(vec_AppendGroup(first->name, second->name, words), VEC_OK);
    destroyGroup(first);
    destroyGroup(second);
    disk.records = false;

    int states = 0, linked = 0;
    auto const look = [&] {
        ++states;
        disk.put(target, now);
        words->clear();
        Group * seen = open(target, ignoringLock());
        ASSERT_NE(seen, nullptr) << "state " << states << ": " << words->last();
        dvec const & signal = *seen->find("b");
        NamedVector const * const both[] = {&signal, &signal.ref};
        for (NamedVector const * vector : both) {
            double const slope = vector->name() == "time" ? 1 : 2;
            for (std::int64_t d = 0; d < vector->numDivisions(); ++d) {
                ASSERT_EQ(vector->length(d), many) << "state " << states;
                for (int i = 0; i < many; i += 1000) ASSERT_EQ(vector->getReal(i, d), slope * i) << "state " << states;
            }
        }
        linked += seen->find("a")->numDivisions() == 2;
        destroyGroup(seen);
    };
    for (MemoryFiles::Write const & write : disk.writes) {
        ASSERT_EQ(write.path, target) << "the other file is only read";
        for (std::size_t done = 0; done < write.bytes.size() && !HasFatalFailure();) {
            look();
            std::size_t const start = write.offset + done;
            std::size_t const part = std::min(pageBytes - start % pageBytes, write.bytes.size() - done);
            if (now.size() < start + part) now.resize(start + part);
            now.replace(start, part, write.bytes, done, part);
            done += part;
        }
    }
    look();
    EXPECT_GT(states, 20);
    EXPECT_GE(linked, 1);
}

// Groups of older files cannot go on in others, and go again, however many a file has.
TEST_F(Linking, NoGroupOfAnOlderFileStays) {
    Group * run = target();
    YString const name = run->name, path = folder.path("old.tvdat");
    OlderWriter writer("6.0", 60);
    for (char const * group : {"p", "q", "r"}) writer.group(group, {{"a", {1, 2}, {}}});
    for (std::size_t lost : {0, 1}) { // with one byte lost the last group cannot be restored
        putBytes(path, writer.bytes.substr(0, writer.bytes.size() - lost));
        vec_LinkDatafile(name, path);
        ASSERT_EQ(vec_AppendLinkedDatafiles(name), VEC_OK);
        EXPECT_EQ(listedNames(), Texts{text(name)});
        EXPECT_EQ(findGroup(name)->find("a")->numDivisions(), 1);
    }
}

} // namespace
