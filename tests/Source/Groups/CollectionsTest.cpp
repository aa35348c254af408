#include "Source/Groups/StoreFixture.h"

namespace {

using CollectionsTest = StoreFixture;

TEST_F(CollectionsTest, GroupsBearTheNameOfTheOpenCollection) {
    EXPECT_TRUE(openCollection("Sweep", true));
    Group * group = makeGroup("", "tran", 0);
    EXPECT_EQ(text(group->collection), "Sweep");
    EXPECT_EQ(text(group->name).substr(0, 11), "Sweep_tran1");
    EXPECT_EQ(text(makeGroup("", "", 0)->name), "Sweep_unnamed1");
    closeCollection();
    Group * outside = makeGroup("", "coltest", 0);
    EXPECT_TRUE(outside->collection.empty());
    EXPECT_EQ(text(outside->name), "coltest1");
}

TEST_F(CollectionsTest, KnownCollectionIsOpenedAgainWithItsOldFlag) {
    EXPECT_TRUE(openCollection("a", true));
    EXPECT_TRUE(openCollection("b", false));
    EXPECT_FALSE(openCollection("A", false));
    EXPECT_EQ(text(currentCollection()), "A");
    EXPECT_TRUE(collectionFlag("a"));
    EXPECT_FALSE(collectionFlag("b"));
    EXPECT_FALSE(collectionFlag("never"));
}

TEST_F(CollectionsTest, EmptyNameChangesNothing) {
    openCollection("a", false);
    EXPECT_TRUE(openCollection("", true));
    EXPECT_EQ(text(currentCollection()), "a");
}

TEST_F(CollectionsTest, ClosingForgetsNoCollection) {
    openCollection("a", false);
    closeCollection();
    EXPECT_TRUE(currentCollection().empty());
    EXPECT_FALSE(openCollection("a", false));
}

} // namespace
