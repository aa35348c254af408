#include "Source/Groups/StoreFixture.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

namespace {

class VectorTableTest : public StoreFixture {
protected:
    // The table looks at no vector, so that any addresses will do.
    static dvec * vectorOf(int number) {
        return reinterpret_cast<dvec *>(static_cast<std::uintptr_t>(number + 1) * 16);
    }

    VectorTable table;
};

TEST_F(VectorTableTest, EmptyTableKnowsNothing) {
    EXPECT_TRUE(table.empty());
    EXPECT_EQ(table.find("x"), nullptr);
    EXPECT_FALSE(table.contains(""));
    table.erase("x");
    table.forEach([](dvec &) { FAIL(); });
}

TEST_F(VectorTableTest, NamesAreTakenOnceInAnyCase) {
    EXPECT_TRUE(table.insert("Name", vectorOf(1)));
    EXPECT_FALSE(table.insert("nAME", vectorOf(2)));
    EXPECT_EQ(table.find("NAME"), vectorOf(1));
    EXPECT_EQ(table.find("Name "), nullptr);
    EXPECT_EQ(table.size(), 1U);
    table.erase("name");
    EXPECT_TRUE(table.empty());
    EXPECT_TRUE(table.insert("", vectorOf(3)));
    EXPECT_EQ(table.find(""), vectorOf(3));
}

TEST_F(VectorTableTest, FollowsAnOrderedMapThroughAnyInsertionsAndErasures) {
    unsigned const seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::map<std::string, dvec *> model;
    for (int step = 0; step < 40000; ++step) {
        // Growing, then shrinking, then growing again.
        bool const mostlyInserts = step / 10000 % 2 == 0;
        std::string const name = "v" + std::to_string(random() % 3000);
        if (random() % 4 != 0 ? mostlyInserts : !mostlyInserts) {
            ASSERT_EQ(table.insert(YString(name), vectorOf(step)), model.emplace(name, vectorOf(step)).second);
        } else {
            table.erase(name);
            model.erase(name);
        }
        ASSERT_EQ(table.size(), model.size());
        std::string const asked = "V" + std::to_string(random() % 3000);
        auto const known = model.find("v" + asked.substr(1));
        ASSERT_EQ(table.find(asked), known != model.end() ? known->second : nullptr);
    }
    for (auto const & [name, vector] : model) ASSERT_EQ(table.find(name), vector);
}

TEST_F(VectorTableTest, WalkMeetsEachVectorOnce) {
    std::set<dvec *> met;
    for (int i = 0; i < 1000; ++i) table.insert(YString(i), vectorOf(i));
    table.forEach([&met](dvec & vector) { EXPECT_TRUE(met.insert(&vector).second); });
    EXPECT_EQ(met.size(), 1000U);
}

TEST_F(VectorTableTest, NamesOfOneHashStandBesideEachOther) {
    // Lengths differ, and a table of eight places makes many of these collide.
    Texts names;
    for (int i = 0; i < 4; ++i) names.push_back(std::string(static_cast<std::size_t>(i + 1), 'n'));
    std::sort(names.begin(), names.end());
    do {
        VectorTable small;
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(small.insert(YString(names[static_cast<std::size_t>(i)]), vectorOf(i)));
        small.erase(names[0]);
        EXPECT_EQ(small.find(names[0]), nullptr);
        for (int i = 1; i < 4; ++i) EXPECT_EQ(small.find(names[static_cast<std::size_t>(i)]), vectorOf(i));
    } while (std::next_permutation(names.begin(), names.end()));
}

} // namespace
