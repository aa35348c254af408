// Memory that runs out, at the first allocation, the second, and so on until a task succeeds, once and for good: there
// is one exception that says so, the store is as it was, and the next task works. That nothing leaks is for the checked
// build to see.
#include "Source/DataFiles/DataFilesFixture.h"
#include "Vectors/BlockMemory.h"
#include "faults/FailingNew.h"
#include "torvelan/Evaluate.h"
#include "torvelan/Exceptions.h"
#include "torvelan/ForeignData.h"

#include <cstring>
#include <new>

namespace {

enum class Memory { ofObjects, ofElements };

class OutOfMemory : public DataFilesFixture {
protected:
    ~OutOfMemory() override {
        failingNew::stop();
        BlockMemory::failAt(0);
    }

    static void failAt(Memory memory, std::uint64_t n, bool everAfter) {
        if (memory == Memory::ofObjects)
            failingNew::failAt(n, everAfter);
        else
            BlockMemory::failAt(n, everAfter);
    }

    // Whether a task ends without the exception of exhausted memory.
    template <class Task> static bool endsWell(Task task) {
        bool isOther = false;
        char text[1000] = "";
        try {
            task();
            failingNew::stop();
            BlockMemory::failAt(0);
            return true;
        } catch (MemoryException const & exception) {
            std::memcpy(text, exception.text, sizeof text);
        } catch (...) {
            isOther = true;
        }
        failingNew::stop();
        BlockMemory::failAt(0);
        EXPECT_FALSE(isOther) << "another exception";
        EXPECT_THAT(text, testing::StartsWith("*** Fatal error, out of memory ***\n"));
        return false;
    }

    // `task` is done with each allocation of it failing in turn; `look` is told whether it ended well.
    template <class Preparation, class Task, class Look> void failEach(Preparation prepare, Task task, Look look) {
        for (Memory memory : {Memory::ofObjects, Memory::ofElements})
            for (bool everAfter : {false, true}) {
                std::uint64_t n = 1;
                for (bool done = false; !done && n < 5000 && !HasFailure(); ++n) {
                    SCOPED_TRACE("allocation " + std::to_string(n) + (everAfter ? " and all that follow" : "") +
                                 (memory == Memory::ofObjects ? "" : " of elements"));
                    prepare();
                    words->clear();
                    words->texts.reserve(10);
                    failAt(memory, n, everAfter);
                    done = endsWell(task);
                    look(done);
                    expectToWork();
                }
                EXPECT_LT(n, 5000U);
            }
    }

    void expectToWork() {
        double value = 0;
        EXPECT_EQ(vec_Evaluate(&value, "1+1", ScpParseContext(words)), VEC_EVAL_OK);
        EXPECT_EQ(value, 2);
    }

    Group * withPoints(int n) {
        Group * group = newRun({"a", "b"});
        for (int i = 0; i < n; ++i) addPoint(group, {"a", "b"}, i);
        return group;
    }

    YString const path = folder.path("data.tvdat");
};

TEST_F(OutOfMemory, InARunLeavesTheVectorsAsTheyWere) {
    Group * run = nullptr;
    std::int64_t added = 0; // values of a
    failEach(
        [&] {
            run = withPoints(100);
            added = 100;
        },
        [&] {
            dvec & a = *run->find("a");
            initialise(run, path);
            for (int i = 0; i < 6000; ++i) {
                a.addVal(static_cast<double>(added));
                ++added;
            }
            a.addDivision(run->name);
            vec_DataSent(run->name, false);
        },
        [&](bool) {
            dvec & a = *run->find("a");
            EXPECT_EQ(a.totalLength(), added);
            a.addVal(static_cast<double>(added++));
            auto const there = values(a);
            for (std::size_t i = 0; i < there.size(); ++i) EXPECT_EQ(there[i], static_cast<double>(i));
            destroyGroup(run);
        });
}

TEST_F(OutOfMemory, InASaveLeavesTheOlderFileOrMakesTheNewOne) {
    Group * group = withPoints(3000);
    stringMember(group, "note", "text");
    putBytes(path, "older");
    failEach([&] { putBytes(path, "older"); }, [&] { save(group, path); },
             [&](bool done) {
                 EXPECT_EQ(folder.fileCount(), 1U) << "nothing stays beside it";
                 if (!done) {
                     EXPECT_EQ(bytesOf(path), "older");
                     return;
                 }
                 Group * back = open(path);
                 ASSERT_NE(back, nullptr) << words->last();
                 EXPECT_EQ(values(*back->find("b")).size(), 3000U);
                 destroyGroup(back);
             });
}

TEST_F(OutOfMemory, InAnOpeningLeavesTheStoreAsItWas) {
    Group * group = withPoints(3000);
    ASSERT_TRUE(save(group, path));
    destroyGroup(group);
    Texts const before = listedNames();
    for (bool update : {false, true}) {
        VecOpenGroupOptions options;
        options.update = update;
        bool opened = false;
        failEach([&] { opened = false; },
                 [&] {
                     YString name;
                     opened = vec_OpenGroup(path, options, &name, words);
                 },
                 [&](bool done) {
                     EXPECT_EQ(listedNames().size(), before.size() + opened);
                     if (opened) {
                         EXPECT_EQ(values(*groupListHead()->find("b")).size(), 3000U);
                     } else if (done) {
                         EXPECT_EQ(words->texts.size(), 1U) << "a refusal is told";
                     }
                     destroyAllGroups();
                 });
    }
}

TEST_F(OutOfMemory, InAnAppendLosesNothing) {
    YString const other = folder.path("other.tvdat");
    std::string bytes[2];
    for (int part : {0, 1}) {
        Group * run = newRun({"a"});
        ASSERT_EQ(initialise(run, path), VEC_OK);
        vec_AddGroupDivision(run->name, "part");
        for (int i = 0; i < 100; ++i) addPoint(run, {"a"}, part * 100 + i);
        destroyGroup(run);
        bytes[part] = bytesOf(path);
    }
    failEach(
        [&] {
            putBytes(path, bytes[0]);
            putBytes(other, bytes[1]);
            ASSERT_NE(open(path, forUpdate()), nullptr);
            ASSERT_NE(open(other), nullptr);
        },
        [&] {
            Group * const source = groupListHead();
            vec_AppendGroup(source->next->name, source->name, words);
        },
        [&](bool done) {
            destroyAllGroups();
            Group * back = open(path);
            ASSERT_NE(back, nullptr) << words->last();
            EXPECT_GE(back->find("a")->totalLength(), done ? 200 : 100);
            destroyGroup(back);
            EXPECT_EQ(bytesOf(other), bytes[1]);
        });
}

TEST_F(OutOfMemory, InAnImportLeavesTheStoreUsable) {
    YString const input = folder.path("input.txt");
    std::string table = "x a\n";
    for (int i = 0; i < 200; ++i) table += std::to_string(i) + " " + std::to_string(2 * i) + "\n";
    putBytes(input, table);
    failEach([] {}, [&] { vec_OpenForeignDataFile(input, DATA_TEXT, {}, nullptr, words); },
             [&](bool done) {
                 if (done) {
                     EXPECT_EQ(groupListHead()->find("a")->totalLength(), 200);
                 }
                 destroyAllGroups();
             });
}

TEST_F(OutOfMemory, InAnImportToAFileLeavesTheStoreUsable) {
    YString const input = folder.path("input.raw");
    std::string raw = "Title: t\nDate: d\nPlotname: p\nFlags: real\nNo. Variables: 2\nNo. Points: 200\n"
                      "Variables:\n\t0\ttime\ttime\n\t1\ta\tvoltage\nValues:\n";
    for (int i = 0; i < 200; ++i)
        raw += std::to_string(i) + "\t" + std::to_string(i) + "\n\t" + std::to_string(i) + "\n";
    putBytes(input, raw);
    failEach([] {}, [&] { vec_OpenRawFile(input, path, {}, words); },
             [&](bool done) {
                 if (done) {
                     EXPECT_EQ(groupListHead()->find("a")->totalLength(), 200);
                 }
                 destroyAllGroups();
             });
}

} // namespace
