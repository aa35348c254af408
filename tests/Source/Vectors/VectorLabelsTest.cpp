#include "torvelan/Vectors.h"

#include "VectorTestSupport.h"
#include "Vectors/LabelSource.h"

#include <gtest/gtest.h>

namespace {

NameArray names(std::initializer_list<char const *> texts) {
    NameArray array;
    for (char const * text : texts) array.emplace_back(text);
    return array;
}

std::vector<std::string> labelsOf(BaseVector const & v) {
    NameArray labels;
    v.divisionLabels(&labels);
    std::vector<std::string> texts;
    for (YString const & label : labels) texts.emplace_back(label.view());
    return texts;
}

// Stands for the group store, with one group "run".
class LabelsOfGroups : public testing::Test {
protected:
    LabelsOfGroups() : former(fetchGroupLabels) {
        fetches = 0;
        groupLabels = std::make_shared<NameArray const>(names({"one", "two"}));
        fetchGroupLabels = [](YString const & group, std::shared_ptr<NameArray const> * labels) {
            ++fetches;
            if (!equalNoCase(group, "run")) return false;
            *labels = groupLabels;
            return true;
        };
    }
    ~LabelsOfGroups() override { fetchGroupLabels = former; }

    static inline int fetches = 0;
    static inline std::shared_ptr<NameArray const> groupLabels;

private:
    bool (*former)(YString const &, std::shared_ptr<NameArray const> *);
};

} // namespace

TEST(VectorLabels, WithoutLabels) {
    BaseVector two = steppedVector({{1}, {2}});
    EXPECT_EQ(two.divisionLabel(5), "?");
    EXPECT_EQ(two.divisionLabel(0), "?");
    EXPECT_EQ(two.divisionLabel(-1), "?");
    EXPECT_EQ(realVector({1}).divisionLabel(5), "");
    EXPECT_EQ(realVector({1}).divisionLabel(0), "");
}

TEST(VectorLabels, SetOnAWholeViewOfThatManyDivisions) {
    BaseVector v = steppedVector({{1}, {2}});
    v.setLabels(names({"a"}), false);
    EXPECT_EQ(v.divisionLabel(0), "?");
    v.setLabels(names({"a", "b", "c"}), false);
    EXPECT_EQ(v.divisionLabel(0), "?");
    v.setLabels(names({"a", "b"}), false);
    EXPECT_EQ(labelsOf(v), std::vector<std::string>({"a", "b"}));
    EXPECT_EQ(v.divisionLabel(2), "?");
    BaseVector part = v;
    part.selectDivision(1);
    part.setLabels(names({"z"}), false);
    EXPECT_EQ(part.divisionLabel(0), "b");
    EXPECT_EQ(part.divisionLabel(1), "");
}

TEST(VectorLabels, OneDivisionMayHaveALabel) {
    BaseVector v = realVector({1});
    v.setLabels(names({"only"}), false);
    EXPECT_EQ(v.divisionLabel(0), "only");
}

TEST(VectorLabels, SharedRecordsAreLeftAloneWhenAskedTo) {
    BaseVector a = steppedVector({{1}, {2}});
    BaseVector b = a;
    b.setLabels(names({"a", "b"}), true);
    EXPECT_EQ(b.divisionLabel(0), "?");
    b.setLabels(names({"a", "b"}), false);
    EXPECT_EQ(b.divisionLabel(0), "a");
    EXPECT_EQ(a.divisionLabel(0), "?");
    EXPECT_EQ(a.realData(), b.realData()); // no element was copied for that
    a.setLabels(names({"p", "q"}), true);  // now alone
    EXPECT_EQ(a.divisionLabel(1), "q");
}

TEST(VectorLabels, AnUntouchedVectorIsAlone) {
    BaseVector v;
    v.setLabels(names({"a"}), true);
    EXPECT_EQ(v.divisionLabel(0), "a");
    EXPECT_EQ(BaseVector().divisionLabel(0), "");
}

TEST(VectorLabels, LabelArraysAreShared) {
    auto labels = std::make_shared<NameArray const>(names({"a", "b"}));
    BaseVector v = steppedVector({{1}, {2}});
    v.setLabels(labels, false);
    EXPECT_EQ(v.sharedLabels(), labels);
    v.setLabels(std::shared_ptr<NameArray const>(), false);
    EXPECT_EQ(v.sharedLabels(), labels);
}

TEST(VectorLabels, CollectingAppends) {
    BaseVector v = steppedVector({{1}, {2}});
    NameArray out = names({"before"});
    v.divisionLabels(&out);
    EXPECT_TRUE(out.compare(names({"before", "?", "?"})));
}

TEST_F(LabelsOfGroups, AreFetchedWhenSomebodyAsks) {
    BaseVector v = realVector({1});
    v.addDivision("RUN");
    v.addVal(2.0);
    EXPECT_EQ(fetches, 0);
    EXPECT_EQ(labelsOf(v), std::vector<std::string>({"one", "two"}));
    EXPECT_EQ(fetches, 1);
    EXPECT_EQ(v.sharedLabels(), groupLabels);
}

TEST_F(LabelsOfGroups, AreFetchedAgainAfterTheNextDivision) {
    BaseVector v = realVector({1});
    v.addDivision("run");
    v.addVal(2.0);
    v.divisionLabel(0);
    groupLabels = std::make_shared<NameArray const>(names({"one", "two", "three"}));
    v.addDivision("run");
    v.addVal(3.0);
    EXPECT_EQ(v.divisionLabel(2), "three");
    EXPECT_EQ(fetches, 2);
}

TEST_F(LabelsOfGroups, AnEmptyNameKeepsTheOneBefore) {
    BaseVector v = realVector({1});
    v.addDivision("run");
    v.addDivision("");
    v.addVal(2.0);
    EXPECT_EQ(v.divisionLabel(0), "one");
}

TEST_F(LabelsOfGroups, AnUnknownGroupLeavesWhatIsThere) {
    BaseVector v = steppedVector({{1}, {2}});
    v.setLabels(names({"a", "b"}), false);
    v.addDivision("gone");
    v.addVal(3.0);
    EXPECT_EQ(labelsOf(v), std::vector<std::string>({"a", "b", "?"}));
    EXPECT_EQ(fetches, 1);
}

TEST_F(LabelsOfGroups, LabelsThatAreSetTakeTheirPlace) {
    BaseVector v = realVector({1});
    v.addDivision("run");
    v.addVal(2.0);
    v.setLabels(names({"a", "b"}), false);
    EXPECT_EQ(v.divisionLabel(1), "b");
    EXPECT_EQ(fetches, 0);
}
