// Two operands made comparable.

#include "FrameTools.h"
#include "Groups/LoosePool.h"

#include <random>

namespace {

constexpr char incompatible[] =
    "The vectors '%s' and '%s' are incompatible.\nThe specified operation may not be performed";

class MatchVecs : public FrameTest {
protected:
    MatchVecs() { args.setNumArgs(2); }

    void add(dvec * a, dvec * b) {
        args.add(a, ARG_ANY, messages, context);
        args.add(b, ARG_ANY, messages, context);
    }
    bool match(std::int64_t division = 0) {
        args.setDivision(division);
        return args.matchVecs(*messages, &count);
    }
    Values elements(int i) const {
        double const * data = args.data(i);
        return data != nullptr ? Values(data, data + args.length(i)) : Values();
    }
    Values reference(int i) const {
        double const * data = args.refData(i);
        return data != nullptr ? Values(data, data + args.refLength(i)) : Values();
    }

    FuncArgs args{"+"};
    std::int64_t count = -1;
};

std::string incompatibleText(char const * a, char const * b) {
    return std::string(formatMessage(incompatible, a, b).view());
}

} // namespace

TEST_F(MatchVecs, NeedsTwoArguments) {
    FuncArgs one(YString("f"));
    one.setNumArgs(3);
    EXPECT_FALSE(one.matchVecs(*messages, &count));
    for (int i = 0; i < 3; ++i) one.add(makeVector("a", {{1}}), ARG_ANY, messages, context);
    EXPECT_FALSE(one.matchVecs(*messages, &count));
}

TEST_F(MatchVecs, AScalarIsRepeatedAndTakesTheReference) {
    dvec * v = makeMember("v", {{1, 2, 3}}, {{0, 1, 2}});
    add(makeVector("s", {{7}}), v);
    ASSERT_TRUE(match());
    EXPECT_EQ(count, 1) << "the length of the first argument on entry";
    EXPECT_TRUE(args.isRepeatedScalar(0));
    EXPECT_FALSE(args.isRepeatedScalar(1));
    EXPECT_EQ(args.length(0), 3);
    EXPECT_EQ(args.totalLength(0), 3);
    EXPECT_EQ(args.repeatedValue(0), (complex{7, 0}));
    EXPECT_EQ(args.getXVec(0), &v->ref);
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(MatchVecs, ARepeatedScalarIsWrittenOutForWhoeverAsks) {
    add(makeMember("v", {{1, 2, 3}}, {{0, 1, 2}}), makeVector("s", {{7}}));
    ASSERT_TRUE(match());
    EXPECT_EQ(count, 3);
    EXPECT_EQ(args.repeatedValue(1), (complex{7, 0}));
    EXPECT_EQ(elements(1), (Values{7, 7, 7}));
    EXPECT_FALSE(args.isRepeatedScalar(1));
    EXPECT_EQ(reference(1), (Values{0, 1, 2}));
    EXPECT_EQ(args.getYVec(1)->name(), "s");
}

TEST_F(MatchVecs, AMemberIsNotTouchedByTheCopies) {
    dvec * s = makeMember("s", {{7}});
    add(makeMember("v", {{1, 2, 3}}, {{0, 1, 2}}), s);
    ASSERT_TRUE(match());
    EXPECT_EQ(elements(1).size(), 3u);
    EXPECT_EQ(divisionsOf(*s), (Divisions{{7}}));
    EXPECT_TRUE(s->ref.noData());
}

TEST_F(MatchVecs, AComplexScalarIsRepeated) {
    add(makeMember("v", {{1, 2}}), makeComplexVector("z", {{3, 4}}));
    ASSERT_TRUE(match());
    EXPECT_EQ(args.repeatedValue(1), (complex{3, 4}));
    ASSERT_NE(args.complexData(1), nullptr);
    EXPECT_EQ(args.complexData(1)[1], (complex{3, 4}));
}

TEST_F(MatchVecs, AScalarMeetsEveryDivision) {
    dvec * v = makeMember("v", {{1, 2}, {3, 4, 5}, {6, 7}}, {{0, 1}, {0, 1, 2}, {0, 1}});
    add(makeVector("s", {{7}}), v);
    Divisions seen;
    for (std::int64_t d : {0, 1, 2}) {
        ASSERT_TRUE(match(d));
        EXPECT_EQ(args.length(0), v->length(d));
        EXPECT_EQ(args.numYDivisions(0), 3);
        EXPECT_EQ(args.totalLength(0), 7);
    }
    for (std::int64_t d : {0, 1, 2}) {
        ASSERT_TRUE(match(d));
        seen.push_back(elements(0));
    }
    EXPECT_EQ(seen, (Divisions{{7, 7}, {7, 7, 7}, {7, 7}}));
}

TEST_F(MatchVecs, AScalarForEachDivisionKeepsItsOwnValue) {
    dvec * v = makeMember("v", {{1, 2}, {3, 4, 5}, {6}}, {{0, 1}, {0, 1, 2}, {0}});
    dvec * m = makeMember("m", {{10}, {20}, {30}});
    add(v, m);
    for (std::int64_t d : {0, 1, 2}) {
        ASSERT_TRUE(match(d));
        EXPECT_EQ(args.repeatedValue(1).re, 10.0 * static_cast<double>(d + 1));
        EXPECT_EQ(args.length(1), v->length(d));
    }
    args.setDivision(1);
    EXPECT_EQ(elements(1), (Values{20, 20, 20}));
    args.setDivision(2);
    EXPECT_EQ(elements(1), Values{30});
    EXPECT_EQ(m->currentDivisionIndex(), 0) << "the member that left the frame is back at its first division";
}

TEST_F(MatchVecs, ScalarsOfSeveralDivisionsTakeTheLengthOfALoneVector) {
    add(makeMember("m", {{10}, {20}}), makeMember("v", {{1, 2, 3}}, {{0, 1, 2}}));
    ASSERT_TRUE(match(0));
    EXPECT_EQ(args.numYDivisions(0), 2);
    EXPECT_EQ(args.totalLength(0), 6);
    ASSERT_TRUE(match(1));
    EXPECT_EQ(elements(0), (Values{20, 20, 20}));
}

TEST_F(MatchVecs, ADivisionOfOneElementBeforeLongerOnes) {
    add(makeVector("s", {{7}}), makeMember("v", {{1}, {2, 3, 4, 5, 6}}, {{0}, {0, 1, 2, 3, 4}}));
    ASSERT_TRUE(match(0));
    EXPECT_EQ(count, 1);
    EXPECT_FALSE(args.isRepeatedScalar(0));
    EXPECT_EQ(args.refLength(0), 0) << "equal lengths: no reference is taken";
    ASSERT_TRUE(match(1));
    EXPECT_EQ(elements(0), (Values{7, 7, 7, 7, 7}));
    EXPECT_EQ(reference(0), (Values{0, 1, 2, 3, 4}));
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(MatchVecs, AVectorWhoseFirstDivisionIsOneElementIsRepeatedByParts) {
    add(makeMember("u", {{7}, {1, 2}}), makeMember("v", {{1, 2, 3}, {4, 5}}));
    ASSERT_TRUE(match(0));
    EXPECT_EQ(elements(0), (Values{7, 7, 7}));
    ASSERT_TRUE(match(1));
    EXPECT_EQ(elements(0), (Values{1, 2}));
}

TEST_F(MatchVecs, AVectorWithoutReferenceTakesThatOfTheScalar) {
    add(makeVector("s", {{7}}, {{5}}, "q"), makeVector("v", {{1, 2}}));
    ASSERT_TRUE(match());
    EXPECT_EQ(reference(1), Values{5});
    EXPECT_EQ(elements(0), (Values{7, 7}));
    EXPECT_EQ(reference(1), Values{5}) << "also after the scalar has been written out and released";
    EXPECT_EQ(args.refName(1), "q");
}

TEST_F(MatchVecs, AScalarWithAReferenceIsAtOddsWithTheSecondDivision) {
    add(makeVector("s", {{7}}, {{5}}), makeMember("v", {{1, 2}, {3, 4}}, {{0, 1}, {0, 1}}));
    EXPECT_TRUE(match(0));
    EXPECT_FALSE(match(1));
    EXPECT_EQ(messages->texts, Texts{incompatibleText("s", "v")});
}

TEST_F(MatchVecs, EqualReferences) {
    add(makeMember("a", {{1, 2}}, {{0, 1}}), makeMember("b", {{3, 4}}, {{0, 1}}));
    EXPECT_TRUE(match());
    EXPECT_EQ(count, 2);
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(MatchVecs, NoReferenceOnEitherSideIsNoMatterForWords) {
    add(makeMember("a", {{1, 2}}), makeMember("b", {{3, 4}}));
    EXPECT_TRUE(match());
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(MatchVecs, AMissingReferenceIsAWarning) {
    add(makeMember("a", {{1, 2}}), makeMember("b", {{3, 4}}, {{0, 1}}));
    EXPECT_TRUE(match());
    EXPECT_EQ(messages->texts, Texts{"'a' has no reference"});
    EXPECT_EQ(messages->levels, std::vector{MessageLevel::warning});
    EXPECT_EQ(args.refLength(0), 0) << "nothing is taken from the other side";
}

TEST_F(MatchVecs, TheWarningNamesTheSideThatLacksIt) {
    add(makeMember("a", {{1, 2}}, {{0, 1}}), makeMember("b", {{3, 4}}));
    EXPECT_TRUE(match());
    EXPECT_EQ(messages->texts, Texts{"'b' has no reference"});
}

TEST_F(MatchVecs, OfOneElementEachAMissingReferenceGoesWithoutWords) {
    add(makeMember("a", {{1}}, {{0}}), makeMember("b", {{3}}));
    EXPECT_TRUE(match());
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(messages->texts.empty());
    EXPECT_EQ(reference(0), Values{0});
}

TEST_F(MatchVecs, OfOneElementEachDifferentReferencesAreDropped) {
    dvec * a = makeMember("a", {{1}}, {{0}});
    dvec * b = makeVector("b", {{3}}, {{1}});
    add(a, b);
    std::size_t const before = LoosePool::count();
    EXPECT_TRUE(match());
    EXPECT_EQ(args.refLength(0) + args.refLength(1), 0);
    EXPECT_EQ(elements(0), Values{1});
    EXPECT_EQ(elements(1), Values{3});
    EXPECT_EQ(divisionsOf(a->ref), (Divisions{{0}}));
    EXPECT_EQ(LoosePool::count(), before + 1) << "two copies, and the temporary they replace is released";
}

TEST_F(MatchVecs, DifferentReferencesAreBroughtTogether) {
    dvec * a = makeMember("a", {{0, 10}}, {{0, 4}});
    dvec * b = makeMember("b", {{1, 2, 4, 7, 11}}, {{0, 1, 2, 3, 4}});
    add(a, b);
    EXPECT_TRUE(match());
    EXPECT_EQ(count, 2);
    EXPECT_EQ(elements(0), (Values{0, 2.5, 5, 7.5, 10}));
    EXPECT_EQ(args.getYVec(1), b);
    EXPECT_EQ(reference(0), reference(1));
    EXPECT_EQ(a->length(), 2);
}

TEST_F(MatchVecs, DigitalSignalsMeetOnTheUnionOfTheirX) {
    add(makeVector("a", {{0, 0, 1, 1}}, {{0, 1, 1, 3}}), makeVector("b", {{5, 5, 7, 7}}, {{0, 2, 2, 4}}));
    EXPECT_TRUE(match());
    EXPECT_EQ(count, 4);
    EXPECT_EQ(reference(0), (Values{0, 1, 1, 2, 2, 3, 4}));
    EXPECT_EQ(reference(1), reference(0));
    EXPECT_EQ(elements(0), (Values{0, 0, 1, 1, 1, 1, 1}));
    EXPECT_EQ(elements(1), (Values{5, 5, 5, 5, 7, 7, 7}));
}

TEST_F(MatchVecs, DifferentReferencesOfSeveralDivisionsAreIncompatible) {
    add(makeMember("a", {{1, 2}, {3, 4}}, {{0, 1}, {0, 1}}), makeMember("b", {{1, 2}, {3, 4}}, {{0, 1}, {0, 2}}));
    EXPECT_TRUE(match(0));
    EXPECT_FALSE(match(1));
    EXPECT_EQ(messages->texts, Texts{incompatibleText("a", "b")});
    EXPECT_EQ(messages->levels, std::vector{MessageLevel::error});
}

TEST_F(MatchVecs, DifferentLengthsWithoutReferenceAreIncompatible) {
    add(makeMember("a", {{1, 2}}), makeMember("b", {{1, 2, 3}}));
    EXPECT_FALSE(match());
    EXPECT_EQ(messages->texts, Texts{incompatibleText("a", "b")});
}

TEST_F(MatchVecs, EqualNamesAreShownWithTheirGroups) {
    dvec * a = makeMember("v", {{1, 2}});
    dvec * b = makeVector("V", {{1, 2, 3}});
    add(a, b);
    EXPECT_FALSE(match());
    EXPECT_EQ(messages->texts, Texts{incompatibleText(a->fullName().c_str(), b->fullName().c_str())});
}

TEST_F(MatchVecs, EmptyDivisionsOnBothSidesMatch) {
    add(makeVector("a", {}), makeVector("b", {}));
    EXPECT_TRUE(match());
    EXPECT_EQ(count, 0);
}

TEST_F(MatchVecs, AnEmptyVectorAndAScalarDoNotMatch) {
    add(makeVector("a", {}), makeVector("b", {{1}}));
    EXPECT_FALSE(match());
}

TEST_F(MatchVecs, OffsetsDoNotCount) {
    dvec * v = makeMember("v", {{1, 2, 3}}, {{0, 1, 2}});
    dvec * w = makeMember("w", {{4, 5, 6}});
    w->ref = v->ref;
    add(v, w);
    ASSERT_TRUE(args.setIncrementalOffset(2, &v->ref));
    EXPECT_TRUE(match());
    EXPECT_EQ(count, 3);
}

TEST_F(MatchVecs, ARepeatedScalarMovesWithTheOffsetOfTheReferenceItTook) {
    dvec * v = makeMember("v", {{1, 2, 3}}, {{0, 1, 2}});
    add(v, makeVector("s", {{7}}));
    ASSERT_TRUE(match());
    ASSERT_TRUE(args.setIncrementalOffset(2, &v->ref));
    EXPECT_EQ(args.length(1), 1);
    EXPECT_EQ(args.repeatedValue(1).re, 7);
    EXPECT_EQ(elements(1), Values{7});
}

TEST_F(MatchVecs, VectorsThatAreNoneOfTheStoreAreMatchedToo) {
    NamedVector y0(YString("y0")), x0, y1(YString("y1")), x1;
    appendTo(y0, {{1, 2, 3}});
    appendTo(x0, {{0, 1, 2}});
    appendTo(y1, {{4}});
    std::size_t const before = LoosePool::count();
    {
        FuncArgs frame(YString("+"));
        frame.setNumArgs(2);
        frame.add(&y0, &x0);
        frame.add(&y1, &x1);
        ASSERT_TRUE(frame.matchVecs(*messages, &count));
        EXPECT_EQ(frame.data(1)[2], 4);
        EXPECT_EQ(frame.getXVec(1), &x0);
    }
    EXPECT_EQ(LoosePool::count(), before) << "the copy belonged to the frame";
    EXPECT_EQ(y1.length(), 1);
}

TEST_F(MatchVecs, RepeatingShowsWhatWritingOutGives) {
    std::mt19937 random(2024);
    for (int round = 0; round < 50; ++round) {
        Divisions v;
        std::size_t const divisions = 1 + random() % 4;
        for (std::size_t d = 0; d < divisions; ++d) v.emplace_back(1 + random() % 4, 1.0);
        Divisions s;
        for (std::size_t d = 0; d < (random() % 2 != 0 ? divisions : 1); ++d) s.push_back({double(random() % 100)});
        FuncArgs lazy(YString("+"));
        FuncArgs written(YString("+"));
        for (FuncArgs * frame : {&lazy, &written}) {
            frame->setNumArgs(2);
            frame->add(makeVector("s", s), ARG_ANY, messages, context);
            frame->add(makeVector("v", v), ARG_ANY, messages, context);
        }
        for (std::size_t d = 0; d < divisions; ++d) {
            for (FuncArgs * frame : {&lazy, &written}) {
                frame->setDivision(static_cast<std::int64_t>(d));
                ASSERT_TRUE(frame->matchVecs(*messages, &count));
            }
            double const * data = written.data(0);
            EXPECT_EQ(lazy.length(0), written.length(0)) << round;
            EXPECT_EQ(lazy.totalLength(0), written.totalLength(0)) << round;
            EXPECT_EQ(lazy.numYDivisions(0), written.numYDivisions(0)) << round;
            EXPECT_EQ(lazy.repeatedValue(0).re, data[written.length(0) - 1]) << round;
        }
    }
}
