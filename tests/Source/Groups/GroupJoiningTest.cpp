#include "Source/Groups/DataFileFixture.h"

namespace {

class GroupJoiningTest : public DataFileFixture {
protected:
    static std::vector<double> valuesOf(BaseVector const & vector) {
        std::vector<double> values;
        for (std::int64_t d = 0; d < vector.numDivisions(); ++d)
            for (std::int64_t i = 0; i < vector.length(d); ++i) values.push_back(vector.getReal(i, d));
        return values;
    }
    // A y vector over an x vector of the same group.
    static dvec * overReference(Group * group, char const * name, double value, dvec const & x) {
        dvec * y = member(group, name, value);
        y->ref = x;
        return y;
    }

    Group * target = groupWithFile("target", "t");
    Group * source = groupWithFile("source", "s");
};

TEST_F(GroupJoiningTest, VectorsOfTheSameNameGoOn) {
    dvec * y = member(target, "Y", 1);
    dvec * other = member(target, "other", 5);
    member(source, "y", 2);
    member(source, "only here", 3);
    appendGroup(*target, *source);
    EXPECT_THAT(valuesOf(*y), testing::ElementsAre(1, 2));
    EXPECT_EQ(y->numDivisions(), 2);
    EXPECT_THAT(valuesOf(*other), testing::ElementsAre(5));
    EXPECT_EQ(target->find("only here"), nullptr);
    EXPECT_THAT(valuesOf(*source->find("y")), testing::ElementsAre(2));
    EXPECT_EQ(fileOf(target).links, Texts{"s"});
    EXPECT_EQ(events, Texts{"t links written"});
}

TEST_F(GroupJoiningTest, LabelsOfTheSourceStandBehindThoseOfTheTarget) {
    target->addLabel("a");
    source->addLabel("b");
    dvec * y = member(target, "y", 1);
    member(source, "y", 2);
    appendGroup(*target, *source);
    EXPECT_THAT(*target->labels, testing::ElementsAre(YString("a"), YString("b")));
    EXPECT_THAT(fileOf(target).streams[labelStream], testing::ElementsAre(YString("a"), YString("b")));
    EXPECT_EQ(text(y->divisionLabel(1)), "b");
    EXPECT_EQ(source->labels->size(), 1U);
}

TEST_F(GroupJoiningTest, SharedReferenceGoesOnOnce) {
    dvec * x = member(target, "x", 10);
    dvec * y = overReference(target, "y", 1, *x);
    dvec * z = overReference(target, "z", 2, *x);
    dvec * sourceX = member(source, "x", 20);
    overReference(source, "y", 3, *sourceX);
    overReference(source, "z", 4, *sourceX);
    appendGroup(*target, *source);
    EXPECT_THAT(valuesOf(*x), testing::ElementsAre(10, 20));
    EXPECT_TRUE(y->ref.sharesRep(*x));
    EXPECT_THAT(valuesOf(z->ref), testing::ElementsAre(10, 20));
    EXPECT_THAT(valuesOf(*y), testing::ElementsAre(1, 3));
    EXPECT_THAT(valuesOf(*z), testing::ElementsAre(2, 4));
}

TEST_F(GroupJoiningTest, ReferenceWithoutNameDoesNotGoOn) {
    dvec * y = member(target, "y", 1);
    y->ref.addVal(10.0);
    member(source, "y", 2)->ref.addVal(20.0);
    appendGroup(*target, *source);
    EXPECT_THAT(valuesOf(y->ref), testing::ElementsAre(10));
}

TEST_F(GroupJoiningTest, OtherKindsStringsAndTheRunStayAsTheyAre) {
    dvec * real = member(target, "kind", 1);
    stringMember(target, "text", "a");
    dvec * run = member(target, "$$RunId", 7);
    auto * complexVector = new dvec("kind", source, PT_NONE);
    complexVector->setSize(1, VD_COMPLEX);
    complexVector->enterGroup();
    stringMember(source, "text", "b");
    member(source, "$$runid", 8);
    appendGroup(*target, *source);
    EXPECT_EQ(real->totalLength(), 1);
    EXPECT_EQ(target->find("text")->totalLength(), 1);
    EXPECT_THAT(valuesOf(*run), testing::ElementsAre(7));
}

TEST_F(GroupJoiningTest, FileThatIsLinkedAlreadyAddsNoData) {
    dvec * y = member(target, "y", 1);
    member(source, "y", 2);
    source->addLabel("again");
    appendGroup(*target, *source);
    appendGroup(*target, *source);
    EXPECT_THAT(valuesOf(*y), testing::ElementsAre(1, 2));
    EXPECT_EQ(target->labels->size(), 2U);
    EXPECT_EQ(events, (Texts{"t links written", "t links written"}));
}

TEST_F(GroupJoiningTest, NothingHappensWithoutTwoFiles) {
    source->addLabel("b");
    dvec * y = member(target, "y", 1);
    member(source, "y", 2);
    auto const file = std::exchange(source->dataFile, nullptr);
    appendGroup(*target, *source);
    appendGroup(*source, *target);
    EXPECT_EQ(y->totalLength(), 1);
    EXPECT_TRUE(target->labels->empty());
    EXPECT_TRUE(events.empty());
    source->dataFile = file;
}

TEST_F(GroupJoiningTest, GroupIsNotAppendedToItself) {
    dvec * y = member(target, "y", 1);
    target->addLabel("a");
    appendGroup(*target, *target);
    EXPECT_EQ(y->totalLength(), 1);
    EXPECT_EQ(target->labels->size(), 1U);
}

TEST_F(GroupJoiningTest, VectorsThatReferToThemselvesAndEachOtherGoOnOnce) {
    for (Group * group : {target, source}) {
        dvec * self = member(group, "self", 1);
        self->ref = *self;
        dvec * a = member(group, "a", 2);
        dvec * b = overReference(group, "b", 3, *a);
        a->ref = *b;
    }
    appendGroup(*target, *source);
    EXPECT_THAT(valuesOf(*target->find("self")), testing::ElementsAre(1, 1));
    EXPECT_THAT(valuesOf(*target->find("a")), testing::ElementsAre(2, 2));
    EXPECT_THAT(valuesOf(target->find("a")->ref), testing::ElementsAre(3, 3));
    EXPECT_TRUE(target->find("a")->ref.sharesRep(*target->find("b")));
}

TEST_F(GroupJoiningTest, MergingReplacesWhatIsNotReadOnly) {
    member(target, "fixed", 1)->flags |= VF_READONLY;
    member(target, "gone", 2);
    member(target, "replaced", 3);
    dvec * x = member(source, "x", 10);
    overReference(source, "replaced", 4, *x)->flags |= VF_READONLY;
    member(source, "FIXED", 5);
    mergeGroup(*target, *source);
    EXPECT_EQ(target->namesInOrder().size(), 3U);
    EXPECT_EQ(target->find("fixed")->getReal(0), 1);
    EXPECT_EQ(target->find("gone"), nullptr);
    dvec const * replaced = target->find("replaced");
    EXPECT_EQ(replaced->getReal(0), 4);
    EXPECT_FALSE(replaced->isReadOnly());
    EXPECT_EQ(replaced->owner(), target);
    EXPECT_TRUE(replaced->ref.sharesRep(*target->find("x")));
    EXPECT_EQ(text(replaced->ref.name()), "x");
    EXPECT_EQ(source->find("x"), x);
}

TEST_F(GroupJoiningTest, MergingTakesLabelsAliasesAndTheMarkOfRealData) {
    target->addLabel("old");
    source->addLabel("new");
    stringMember(source, "alias", "1+1")->flags |= VF_ALIAS;
    source->hasRealData = true;
    mergeGroup(*target, *source);
    EXPECT_THAT(*target->labels, testing::ElementsAre(YString("new")));
    EXPECT_TRUE(target->find("alias")->isAlias());
    EXPECT_TRUE(target->hasRealData);
    source->addLabel("later");
    EXPECT_EQ(target->labels->size(), 1U);
}

} // namespace
