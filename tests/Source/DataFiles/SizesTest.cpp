// Many vectors, and many divisions, written, read again and looked up, in a time that they can be waited for.
#include "Source/DataFiles/DataFilesFixture.h"
#include "support/MemoryFiles.h"

#include <chrono>

namespace {

constexpr char const * fileName = "/d/many.tvdat";
#ifdef TORVELAN_SANITIZED
constexpr int vectorCount = 10'000;
constexpr int divisionCount = 20'000;
#else
constexpr int vectorCount = 50'000;
constexpr int divisionCount = 100'000;
#endif

class ManyOfThem : public DataFilesFixture {
protected:
    ~ManyOfThem() override {
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
        destroyAllGroups();
    }

    MemoryFiles disk;
    FileSystemInUse inUse{disk};
    std::chrono::steady_clock::time_point const start = std::chrono::steady_clock::now();
};

TEST_F(ManyOfThem, Vectors) {
    Group * run = newRun({});
    std::vector<dvec *> signals;
    for (int i = 0; i < vectorCount; ++i) {
        auto * signal = new dvec(YString("signal" + std::to_string(i)), run, PT_VOLTAGE);
        signal->setSize(0, VD_REAL);
        static_cast<NamedVector &>(signal->ref) = *run->find("time");
        signal->enterGroup();
        signals.push_back(signal);
    }
    ASSERT_EQ(initialise(run, fileName), VEC_OK);
    for (int point = 0; point < 2; ++point) {
        run->find("time")->addVal(static_cast<double>(point));
        for (int i = 0; i < vectorCount; ++i) signals[static_cast<std::size_t>(i)]->addVal(i + point * 0.5);
        ASSERT_EQ(vec_DataSent(run->name, false), VEC_OK);
    }
    destroyGroup(run);
    Group * seen = open(fileName, ignoringLock());
    ASSERT_NE(seen, nullptr) << words->last();
    EXPECT_EQ(seen->vectors.size(), static_cast<std::size_t>(vectorCount) + 1);
    for (int i = 0; i < vectorCount; ++i) {
        dvec * const signal = seen->find(YString("SIGNAL" + std::to_string(i)));
        ASSERT_NE(signal, nullptr) << i;
        ASSERT_EQ(values(*signal), (std::vector<double>{static_cast<double>(i), i + 0.5}));
        ASSERT_TRUE(signal->ref.sharesRep(seen->find("signal0")->ref));
    }
}

TEST_F(ManyOfThem, Divisions) {
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, fileName), VEC_OK);
    for (int d = 0; d < divisionCount; ++d) {
        vec_AddGroupDivision(run->name, YString("step " + std::to_string(d)));
        if (d != 0)
            for (char const * name : {"time", "a"}) run->find(name)->addDivision(run->name);
        addPoint(run, {"a"}, d);
        if (d % 1000 == 0) {
            ASSERT_EQ(vec_DataSent(run->name, false), VEC_OK);
        }
    }
    destroyGroup(run);
    Group * seen = open(fileName, ignoringLock());
    ASSERT_NE(seen, nullptr) << words->last();
    dvec & a = *seen->find("a");
    ASSERT_EQ(a.numDivisions(), divisionCount);
    for (int d = 0; d < divisionCount; ++d) {
        ASSERT_EQ(a.length(d), 1);
        ASSERT_EQ(a.getReal(0, d), d);
    }
    EXPECT_EQ(text(a.divisionLabel(divisionCount - 1)), "step " + std::to_string(divisionCount - 1));
}

} // namespace
