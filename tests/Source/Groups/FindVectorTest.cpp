#include "Source/Groups/StoreFixture.h"

#include <cstdlib>
#include <new>

namespace {
std::size_t allocations = 0;
} // namespace

// Counts, for the test that a search allocates nothing.
void * operator new(std::size_t size, std::nothrow_t const &) noexcept {
    ++allocations;
    return std::malloc(size != 0 ? size : 1);
}
void * operator new(std::size_t size) {
    if (void * memory = operator new(size, std::nothrow)) return memory;
    throw std::bad_alloc();
}
void operator delete(void * memory) noexcept {
    std::free(memory);
}
void operator delete(void * memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

class FindVectorTest : public StoreFixture {
protected:
    FindVectorTest() {
        current = makeGroup("", "fv", 0);
        nameSpace().current = current;
        local = pushContext();
    }
    static dvec * find(std::string_view name, bool skipCurrentGroup = false) {
        return findVector(name, nullptr, skipCurrentGroup);
    }
    Group * global = nameSpace().global;
    Group * current;
    Group * local;
};

TEST_F(FindVectorTest, LocalHidesGlobalAndGlobalHidesCurrent) {
    auto * inCurrent = member(current, "x");
    EXPECT_EQ(find("x"), inCurrent);
    auto * inGlobal = member(global, "x");
    EXPECT_EQ(find("X"), inGlobal);
    auto * inLocal = member(local, "x");
    EXPECT_EQ(find("x"), inLocal);
    EXPECT_EQ(find("y"), nullptr);
}

TEST_F(FindVectorTest, CurrentGroupMayBeSkipped) {
    auto * inCurrent = member(current, "x");
    EXPECT_EQ(find("x", true), nullptr);
    EXPECT_EQ(find(":x", true), inCurrent);
    auto * inGlobal = member(global, "x");
    EXPECT_EQ(find("x", true), inGlobal);
}

TEST_F(FindVectorTest, GroupPartNamesOneGroupOnly) {
    auto * inGlobal = member(global, "x");
    auto * inCurrent = member(current, "x");
    auto * inLocal = member(local, "x");
    EXPECT_EQ(find("GLOBAL:x"), inGlobal);
    EXPECT_EQ(find(text(current->name) + ":x"), inCurrent);
    EXPECT_EQ(find(text(local->name) + ":x"), inLocal);
    EXPECT_EQ(find(":x"), inCurrent);
    EXPECT_EQ(find("nowhere:x"), nullptr);
    EXPECT_EQ(find("global:y"), nullptr);
}

TEST_F(FindVectorTest, EmptyGroupPartIsTheCurrentGroupOnly) {
    member(global, "x");
    EXPECT_EQ(find(":x"), nullptr);
    EXPECT_EQ(find(":pi"), nullptr);
}

TEST_F(FindVectorTest, NameIsSplitAtItsFirstColon) {
    auto * vector = member(current, "a:b");
    EXPECT_EQ(find(text(current->name) + ":a:b"), vector);
    EXPECT_EQ(find(":a:b"), vector);
    EXPECT_EQ(find("a:b"), nullptr);
    SplitName const split = splitVectorName("g:a:b");
    EXPECT_EQ(split.group, "g");
    EXPECT_EQ(split.vector, "a:b");
    EXPECT_TRUE(split.hasGroup);
    EXPECT_FALSE(splitVectorName("plain").hasGroup);
    EXPECT_TRUE(splitVectorName(":x").hasGroup);
    EXPECT_EQ(splitVectorName("g:").vector, "");
}

TEST_F(FindVectorTest, TellsWhetherTheNameWasQualified) {
    bool qualified = true;
    findVector("x", &qualified, false);
    EXPECT_FALSE(qualified);
    findVector(":x", &qualified, false);
    EXPECT_FALSE(qualified);
    findVector("nowhere:x", &qualified, false);
    EXPECT_TRUE(qualified);
}

TEST_F(FindVectorTest, TellsWhetherTheWholeTextIsAPlainName) {
    bool exists = true;
    auto * qualified = member(current, "x");
    std::string const name = text(current->name) + ":x";
    EXPECT_EQ(findVector(name, nullptr, false, &exists), qualified);
    EXPECT_FALSE(exists);
    for (Group * group : {local, global, current}) {
        auto * shadow = member(group, name.c_str());
        EXPECT_EQ(findVector(name, nullptr, false, &exists), qualified);
        EXPECT_TRUE(exists);
        shadow->release();
    }
    EXPECT_EQ(findVector("x", nullptr, false, &exists), qualified);
    EXPECT_FALSE(exists);
}

TEST_F(FindVectorTest, PseudonymIsFoundLikeAName) {
    auto * vector = member(current, "long name");
    std::string const pseudonym = text(current->pseudonymOf("long name"));
    EXPECT_EQ(find(":" + pseudonym), vector);
    EXPECT_EQ(find(pseudonym), vector);
}

TEST_F(FindVectorTest, SearchAllocatesNothing) {
    auto * vector = member(current, "a rather long name of a vector");
    std::string const plain = "A RATHER LONG NAME OF A VECTOR";
    std::string const qualified = text(current->name) + ":" + plain;
    bool exists = true;
    std::size_t const before = allocations;
    dvec const * const found[] = {find(plain), find(qualified), findVector(qualified, nullptr, false, &exists),
                                  find("a name that is nowhere to be found")};
    std::size_t const after = allocations;
    EXPECT_EQ(after, before);
    EXPECT_THAT(found, testing::ElementsAre(vector, vector, vector, nullptr));
}

TEST_F(FindVectorTest, MissingSpecialGroupsAreNoneToSearch) {
    auto * vector = member(current, "x");
    nameSpace().local = nullptr;
    EXPECT_EQ(find("x"), vector);
    nameSpace().current = nullptr;
    EXPECT_EQ(find("x"), nullptr);
    EXPECT_EQ(find(":x"), nullptr);
    EXPECT_NE(find("pi"), nullptr);
}

} // namespace
