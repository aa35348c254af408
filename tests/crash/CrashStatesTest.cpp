// Kills at every moment: a run is recorded, and its file is opened in every state that the death of the process can
// leave. Each write is absent, cut at a page edge, or whole. No such file is refused, nothing that the last completed
// update had shown is missing, and no value is wrong. Some are continued, and looked at again.
#include "Source/DataFiles/DataFilesFixture.h"
#include "support/MemoryFiles.h"

#include <map>

namespace {

constexpr std::size_t pageBytes = 4096;
#ifdef TORVELAN_SANITIZED
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif
constexpr char const * fileName = "/run.tvdat";

// What value i of a vector is.
double valueOf(std::string const & name, std::int64_t i) {
    return static_cast<double>(i) * 1.25 + static_cast<double>(name.size() + static_cast<unsigned char>(name.back()));
}

using Lengths = std::map<std::string, std::int64_t>; // of vectors; of the labels under ""

class Crash : public DataFilesFixture {
protected:
    Crash() { disk.records = true; }
    ~Crash() override { destroyAllGroups(); }

    void vectors(int count) {
        group = makeGroup("A run", "run", 0);
        for (int k = 0; k < count; ++k) names.push_back("v" + std::to_string(k));
        for (std::string const & name : names) (new dvec(YString(name), group, PT_VOLTAGE))->enterGroup();
    }
    void append(std::string const & name, int n) {
        dvec & vector = *group->find(name);
        for (; n > 0; --n) vector.addVal(valueOf(name, written[name]++));
    }
    void division(std::string const & name) { group->find(name)->addDivision(group->name); }
    void update() {
        vec_DataSent(group->name, false);
        updates.push_back(disk.writes.size());
    }
    void begin() {
        ASSERT_EQ(vec_InitialiseSimulationGroup(true, fileName, group->name, false, false, words, nullptr), VEC_OK);
        firstPromise = disk.writes.size();
        updates.push_back(firstPromise);
    }
    void end() {
        destroyGroup(group);
        group = nullptr;
    }

    // Opens the file in each state. The answer is the number of states.
    int walk(int continueEvery = 97) {
        constexpr int lookAtEvery = sanitized ? 7 : 1; // of the states
        std::vector<MemoryFiles::Write> const writes = std::move(disk.writes);
        disk.records = false;
        disk.contents.clear();
        disk.put(fileName, {});
        int states = 0;
        std::size_t nextUpdate = 0;
        Lengths promised;
        for (std::size_t k = 0; k < writes.size() && !HasFatalFailure(); ++k) {
            while (nextUpdate < updates.size() && updates[nextUpdate] <= k) {
                promised = lengths(k);
                ++nextUpdate;
            }
            for (std::size_t done = 0; done < writes[k].bytes.size();) {
                if (k >= firstPromise && ++states % lookAtEvery == 0) {
                    check(promised, k, done);
                    if (states % continueEvery == 0) continueFrom(k);
                }
                std::size_t const edge =
                    (writes[k].offset + done) / pageBytes * pageBytes + pageBytes - writes[k].offset;
                std::size_t const part = std::min(edge, writes[k].bytes.size()) - done;
                apply(writes[k], done, part);
                done += part;
            }
        }
        promised = lengths(writes.size());
        for (std::string const & name : names) EXPECT_EQ(promised[name], written[name]) << "the whole file";
        return states;
    }

    Group * group = nullptr;
    std::vector<std::string> names;
    std::map<std::string, std::int64_t> written;

private:
    void apply(MemoryFiles::Write const & write, std::size_t from, std::size_t n) {
        std::string & bytes = disk.contents.at(write.path)->bytes;
        if (bytes.size() < write.offset + from + n) bytes.resize(write.offset + from + n);
        bytes.replace(write.offset + from, n, write.bytes, from, n);
    }

    // Of what a reader sees, whose values are as they should be.
    Lengths lengths(std::size_t k) {
        Lengths seen;
        words->clear();
        Group * reader = open(fileName, ignoringLock());
        EXPECT_NE(reader, nullptr) << "after write " << k << ": " << words->last();
        if (reader == nullptr) return seen;
        seen[""] = static_cast<std::int64_t>(reader->labels->size());
        for (std::string const & name : names) {
            dvec const * vector = reader->find(name);
            EXPECT_NE(vector, nullptr) << name;
            if (vector == nullptr) continue;
            std::int64_t const total = vector->totalLength();
            double const * const values = vector->allRealData();
            std::int64_t good = 0;
            while (good < total && values[good] == valueOf(name, good)) ++good;
            EXPECT_EQ(good, total) << name << " after write " << k;
            seen[name] = total;
            seen[name + " divisions"] = vector->numDivisions();
        }
        destroyGroup(reader);
        return seen;
    }

    void check(Lengths const & promised, std::size_t k, std::size_t done) {
        Lengths const seen = lengths(k);
        for (auto const & [name, length] : promised) {
            auto const there = seen.find(name);
            ASSERT_TRUE(there != seen.end() && there->second >= length)
                << "'" << name << "' has lost data after " << done << " bytes of write " << k;
        }
    }

    // Goes on with what the kill has left, as a new process would, and looks at the result.
    void continueFrom(std::size_t k) {
        std::string const before = disk.bytes(fileName);
        Lengths const had = lengths(k);
        Group * again = open(fileName, continuing());
        ASSERT_NE(again, nullptr) << "to be continued after write " << k << ": " << words->last();
        for (std::string const & name : names)
            for (std::int64_t i = had.at(name); i < had.at(name) + 5000; i += 1)
                again->find(name)->addVal(valueOf(name, i));
        vec_DataSent(again->name, false);
        destroyGroup(again);
        Lengths const has = lengths(k);
        for (std::string const & name : names)
            ASSERT_EQ(has.at(name), had.at(name) + 5000) << "continued after write " << k;
        disk.contents.at(fileName)->bytes = before;
    }

    static VecOpenGroupOptions continuing() {
        VecOpenGroupOptions options = forUpdate();
        options.ignoreLock = true;
        return options;
    }

    MemoryFiles disk;
    FileSystemInUse inUse{disk};
    std::vector<std::size_t> updates; // the writes that had been made when each update was complete
    std::size_t firstPromise = 0;
};

TEST_F(Crash, OneSignal) {
    vectors(1);
    begin();
    for (int i = 0; i < 60; ++i) {
        append("v0", 1700);
        update();
    }
    end();
    EXPECT_GT(walk(), 500);
}

TEST_F(Crash, SignalsThatGrowTogether) {
    vectors(60);
    begin();
    for (int i = 0; i < 40; ++i) {
        for (std::string const & name : names) append(name, 1000);
        update();
    }
    end();
    EXPECT_GT(walk(), 5000);
}

TEST_F(Crash, SignalsThatGrowUnevenly) {
    vectors(25);
    begin();
    for (int i = 0; i < 80; ++i) {
        for (std::size_t k = 0; k < names.size(); ++k) append(names[k], 300 + static_cast<int>(k) * 37 + i % 11);
        update();
    }
    end();
    EXPECT_GT(walk(), 4000);
}

TEST_F(Crash, ManyDivisions) {
    vectors(30);
    begin();
    for (int i = 0; i < 400; ++i) {
        vec_AddGroupDivision(group->name, YString("step " + std::to_string(i)));
        for (std::string const & name : names) {
            if (i != 0) division(name);
            append(name, 20);
        }
        if (i % 3 == 0) update();
    }
    end();
    EXPECT_GT(walk(), 5000);
}

TEST_F(Crash, ADirectoryOfSeveralBlocks) {
    vectors(700);
    begin();
    for (int i = 0; i < 5; ++i) {
        for (std::string const & name : names) append(name, i == 2 ? 4200 : 10);
        update();
    }
    end();
    EXPECT_GT(walk(997), 7000);
}

TEST_F(Crash, UpdatesAfterEachValue) {
    vectors(8);
    begin();
    for (int i = 0; i < 2000; ++i) {
        for (std::string const & name : names) {
            if (i % 5 == 4) division(name);
            append(name, 1);
        }
        update();
    }
    end();
    EXPECT_GT(walk(), 5000);
}

} // namespace
