#include "Source/Groups/StoreFixture.h"

namespace {

using GroupLabelsTest = StoreFixture;

TEST_F(GroupLabelsTest, VectorAsksTheGroupThatItsDivisionsName) {
    Group * group = makeGroup("", "lab", 0);
    for (char const * label : {"first", "second"}) group->addLabel(label);
    auto * vector = new dvec("v", group, PT_NONE);
    for (int i = 0; i < 2; ++i) {
        if (i > 0) vector->addDivision(group->name);
        vector->addVal(1.0 * i);
    }
    ASSERT_EQ(vector->numDivisions(), 2);
    EXPECT_EQ(text(vector->divisionLabel(0)), "first");
    EXPECT_EQ(text(vector->divisionLabel(1)), "second");
    EXPECT_EQ(vector->sharedLabels(), group->labels);
}

TEST_F(GroupLabelsTest, LabelsFetchedOutliveTheGroupAndItsLaterLabels) {
    Group * group = makeGroup("", "lab", 0);
    group->addLabel("only");
    auto * vector = new dvec("v", nameSpace().global, PT_NONE);
    vector->addVal(1.0);
    vector->addDivision(group->name);
    vector->addVal(2.0);
    EXPECT_EQ(text(vector->divisionLabel(0)), "only");
    group->addLabel("late");
    EXPECT_EQ(text(vector->divisionLabel(1)), "?");
    destroyGroup(group);
    EXPECT_EQ(text(vector->divisionLabel(0)), "only");
}

TEST_F(GroupLabelsTest, UnknownGroupGivesNoLabels) {
    auto * vector = new dvec("v", nullptr, PT_NONE);
    vector->addVal(1.0);
    vector->addDivision("nowhere");
    vector->addVal(2.0);
    EXPECT_EQ(text(vector->divisionLabel(0)), "?");
}

} // namespace
