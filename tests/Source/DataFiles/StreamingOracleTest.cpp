// Random runs twice: one group in memory, one that writes a file at some time. They always look the same, and so does
// the file.
#include "Source/DataFiles/DataFilesFixture.h"

#include "Vectors/VectorRep.h"
#include "torvelan/SharedBlocks.h"

#include <cstring>
#include <random>

namespace {

constexpr int blockBytes = 4096;
constexpr char const * members[] = {"a", "b", "c", "time"};

class StreamingOracle : public DataFilesFixture {
protected:
    Group * newGroup() {
        Group * group = newRun({"a", "b"});
        auto * c = new dvec("c", group, PT_VOLTAGE);
        c->setSize(0, VD_COMPLEX);
        static_cast<NamedVector &>(c->ref) = *group->find("time");
        c->enterGroup();
        return group;
    }
    unsigned below(unsigned n) { return static_cast<unsigned>(random() % n); }
    void toFile() {
        if (isStreaming) return;
        ASSERT_EQ(initialise(streaming, path), VEC_OK);
        isStreaming = true;
    }

    // A few values, or some extents of them.
    int someCount() { return static_cast<int>(below(3) == 0 ? below(6000) : below(10)); }

    void appendOneByOne(char const * name) {
        double const first = below(1000);
        for (int n = someCount(), i = 0; i < n; ++i)
            for (Group * group : both()) group->find(name)->addVal(first + i);
    }
    void appendComplex() {
        double const first = below(1000);
        for (int n = someCount(), i = 0; i < n; ++i)
            for (Group * group : both()) group->find("c")->addVal(complex{first + i, -first});
    }
    void appendMany(char const * name) {
        std::vector<double> values(static_cast<std::size_t>(someCount()));
        for (double & value : values) value = below(1000);
        for (Group * group : both()) group->find(name)->addVals(values.data(), values.size());
    }
    void appendShared(char const * name) {
        std::uint64_t const bytes = 16 * (1 + std::uint64_t{below(blockBytes / 16)});
        double const first = below(1000);
        for (Group * group : both()) {
            int const id = pool->allocate();
            char * memory = nullptr;
            ASSERT_EQ(pool->get(&memory, id), SHARED_BLOCK_OK);
            for (int i = 0; i < blockBytes / 8; ++i) {
                double const value = first + i;
                std::memcpy(memory + i * 8, &value, sizeof value);
            }
            ASSERT_TRUE(group->find(name)->addSharedBlock(token, id, bytes));
        }
    }
    void appendVector() {
        for (Group * group : both()) {
            dvec & a = *group->find("a");
            a.addVal(1.0);
            bool const isSmall = a.numDivisions() < 50 && a.totalLength() < 50000;
            if (isSmall) a.appendVector(group->find("b"), VectorRep::noLink, *group->labels);
        }
    }
    void changeACopy(char const * name) {
        for (Group * group : both()) {
            dvec copy(*group->find(name));
            if (double * data = copy.writableRealData()) *data = -7;
        }
    }

    void step() {
        char const * const name = members[below(std::size(members))];
        switch (below(12)) {
        case 0:
        case 1: return appendOneByOne(name);
        case 2: return appendComplex();
        case 3: return appendMany(name);
        case 4:
            for (Group * group : both()) group->find(name)->addDivision(group->name);
            return;
        case 5:
            for (Group * group : both()) vec_AddGroupDivision(group->name, "label");
            return;
        case 6: vec_DataSent(streaming->name, false); return;
        case 7: vec_FixGroup(streaming->name); return;
        case 8: return appendShared(name);
        case 9: streaming->find(name)->realData(); return; // a copy in memory from now on
        case 10: return changeACopy(name);
        default: return appendVector();
        }
    }

    void expectSame(BaseVector const & is, BaseVector const & was) {
        ASSERT_EQ(is.type(), was.type());
        ASSERT_EQ(is.numDivisions(), was.numDivisions());
        for (std::int64_t d = 0; d < was.numDivisions(); ++d) {
            ASSERT_EQ(is.length(d), was.length(d)) << "division " << d;
            for (std::int64_t i = 0; i < was.length(d); ++i) {
                ASSERT_EQ(is.getReal(i, d), was.getReal(i, d)) << i;
                ASSERT_EQ(is.getImag(i, d), was.getImag(i, d)) << i;
            }
        }
    }
    void expectSameGroups() {
        EXPECT_EQ(*streaming->labels, *inMemory->labels);
        for (char const * name : members) {
            SCOPED_TRACE(name);
            dvec & is = *streaming->find(name);
            dvec & was = *inMemory->find(name);
            expectSame(is, was);
            expectSame(is.ref, was.ref);
            EXPECT_EQ(is.getRange(true).max, was.getRange(true).max);
            EXPECT_EQ(is.getRange(true).min, was.getRange(true).min);
            for (std::int64_t d = 0; d < was.numDivisions(); ++d)
                EXPECT_EQ(text(is.divisionLabel(d)), text(was.divisionLabel(d)));
        }
    }
    // Opened groups show what a vector and its reference have in common; here it is all data that count.
    void expectSameFile() {
        Group * back = open(path);
        ASSERT_NE(back, nullptr) << words->last();
        for (char const * name : members) {
            SCOPED_TRACE(name);
            BaseVector whole;
            static_cast<IfVector &>(whole) = *back->find(name);
            expectSame(whole, *inMemory->find(name));
        }
        destroyGroup(back);
    }

    std::vector<Group *> both() const { return {inMemory, streaming}; }

    YString const path = folder.path("run.tvdat");
    std::shared_ptr<SharedBlockManager> const pool = SharedBlockManager::create(blockBytes, 4);
    SharedBlockToken const token{pool};
    std::mt19937 random{11};
    Group * inMemory = nullptr;
    Group * streaming = nullptr;
    bool isStreaming = false;
};

TEST_F(StreamingOracle, ARunThatWritesLooksLikeOneThatDoesNot) {
    for (int round = 0; round < 100 && !HasFatalFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        inMemory = newGroup();
        streaming = newGroup();
        isStreaming = false;
        unsigned const steps = 5 + below(60), start = below(steps);
        for (unsigned k = 0; k < steps && !HasFatalFailure(); ++k) {
            if (k == start) toFile();
            step();
            if (below(20) == 0) expectSameGroups();
        }
        expectSameGroups();
        destroyGroup(streaming);
        if (!HasFatalFailure()) expectSameFile();
        destroyGroup(inMemory);
    }
}

} // namespace
