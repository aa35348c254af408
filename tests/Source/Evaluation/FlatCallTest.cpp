// A handler run once over all divisions gives what it gives division by division.

#include "FrameHandlers.h"
#include "Vectors/BlockMemory.h"

#include <random>

namespace {

FUNC_ERROR countSums(FuncArgs const & args, FuncResult * result, FuncInfo * info, YRef<MessageHandler> messages,
                     MessageHandler & handlerMessages, ScpParseContext const & context) {
    ++info->state.words[0];
    sumHandler(args, result, info, messages, handlerMessages, context);
    double const * out = result->data();
    if (out == nullptr || std::find(out, out + result->length(), -1.0) == out + result->length()) return FUNC_OK;
    result->emptyVectors();
    return FUNC_FAILED;
}

// Asks for room for all divisions.
FUNC_ERROR roomy(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                 ScpParseContext const &) {
    result->makeReal(args.length(0), ALLOC_DIVISIONS, 0);
    return FUNC_OK;
}

class FlatCalls : public CallTest {
protected:
    FlatCalls() {
        each.matchArgs = flat.matchArgs = true;
        flat.flatDivisions = flatTwice.flatDivisions = true;
    }
    static FuncInfo two(char const * name) { return makeInfo(name, countSums, 2, 2); }

    // The call made flat and division by division gives the same.
    void expectSame(dvec * a, dvec * b, bool runsFlat) {
        flat.state.words[0] = 0;
        std::size_t const before = LoosePool::count();
        dvec * expected = call(each, {new dvec(*a), new dvec(*b)});
        Texts const words = messages->texts;
        messages->clear();
        dvec * out = call(flat, {new dvec(*a), new dvec(*b)});
        EXPECT_EQ(messages->texts, words);
        ASSERT_EQ(out == nullptr, expected == nullptr);
        if (out == nullptr) return;
        EXPECT_EQ(flat.state.words[0] == 1, runsFlat);
        EXPECT_EQ(LoosePool::count(), before + 2) << "the two results";
        EXPECT_EQ(divisionsOf(*out), divisionsOf(*expected));
        EXPECT_EQ(divisionsOf(out->ref), divisionsOf(expected->ref));
        EXPECT_EQ(labelsOf(*out), labelsOf(*expected));
        EXPECT_EQ(out->isMultiple(), expected->isMultiple());
        EXPECT_EQ(out->ref.isMultiple(), expected->ref.isMultiple());
        EXPECT_EQ(out->ref.name(), expected->ref.name());
        EXPECT_EQ(out->ref.sharesRep(b->ref), expected->ref.sharesRep(b->ref));
        EXPECT_EQ(out->currentDivisionIndex(), 0);
        messages->clear();
    }

    FuncInfo each = two("each"), flat = two("flat");
    FuncInfo flatTwice = makeInfo("twice", countCalls, 1, 1);
};

} // namespace

TEST_F(FlatCalls, OneCallServesAllDivisions) {
    dvec * out = call(flatTwice, {fiveSteps(8)});
    EXPECT_EQ(flatTwice.state.words[0], 1u);
    EXPECT_EQ(divisionsOf(*out), (Divisions{{2, 4}, {6}, {16, 8}, {10}, {12, 14}}));
    EXPECT_EQ(divisionsOf(out->ref), (Divisions{{0, 1}, {0}, {0, 1}, {0}, {0, 2}}));
    EXPECT_EQ(labelsOf(*out), (Texts{"a", "b", "c", "d", "e"}));
    EXPECT_TRUE(out->isMultiple());
}

TEST_F(FlatCalls, AFailureIsSoughtDivisionByDivision) {
    dvec * out = call(flatTwice, {fiveSteps(-1)});
    EXPECT_EQ(flatTwice.state.words[0], 6u);
    EXPECT_EQ(divisionsOf(*out), (Divisions{{2, 4}, {6}, {10}, {12, 14}}));
    EXPECT_EQ(labelsOf(*out), (Texts{"a", "b", "d", "e"}));
    EXPECT_EQ(divisionsOf(out->ref), (Divisions{{0, 1}, {0}, {0}, {0, 2}}));
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(FlatCalls, OfOneDivisionNothingChanges) {
    EXPECT_EQ(call(flatTwice, {makeVector("v", {{1, -1}})}), nullptr);
    EXPECT_EQ(flatTwice.state.words[0], 1u);
    EXPECT_EQ(messages->texts, Texts{"refused"});
}

TEST_F(FlatCalls, ScalarsOnEitherSide) {
    dvec * v = fiveSteps(8);
    dvec * s = makeVector("s", {{10}});
    expectSame(v, s, true);
    expectSame(s, v, true);
}

TEST_F(FlatCalls, DivisionsOfOneElementOnlyLeaveTheScalarWithoutReference) {
    dvec * v = makeMember("v", {{1}, {2}}, {{0}, {1}});
    dvec * s = makeVector("s", {{10}});
    expectSame(v, s, true);
    expectSame(s, v, true);
}

TEST_F(FlatCalls, AFirstDivisionOfOneElement) {
    dvec * v = makeMember("v", {{1}, {2, 3}}, {{0}, {0, 1}});
    expectSame(makeVector("s", {{10}}), v, true);
}

TEST_F(FlatCalls, VectorsOfOneReference) {
    dvec * v = fiveSteps(8);
    dvec * w = makeMember("w", {{1, 2}, {3}, {5, 4}, {5}, {6, 7}});
    expectSame(v, w, false);
    w->ref = v->ref;
    expectSame(v, w, true);
}

TEST_F(FlatCalls, VectorsWithoutReference) {
    expectSame(makeMember("v", {{1, 2}, {3}}), makeMember("w", {{4, 5}, {6}}), true);
}

TEST_F(FlatCalls, EqualReferencesThatAreNotOneRecord) {
    expectSame(makeMember("v", {{1, 2}, {3}}, {{0, 1}, {0}}), makeMember("w", {{4, 5}, {6}}, {{0, 1}, {0}}), false);
}

TEST_F(FlatCalls, ScalarsForEachDivision) {
    expectSame(fiveSteps(8), makeMember("m", {{1}, {2}, {3}, {4}, {5}}), false);
}

TEST_F(FlatCalls, AScalarWithItsOwnReference) {
    expectSame(fiveSteps(8), makeVector("s", {{10}}, {{3}}), false);
    expectSame(makeMember("u", {{1, 2}, {3}}), makeVector("s", {{10}}, {{3}}), false);
}

TEST_F(FlatCalls, AVectorOfOneDivisionAmongThoseOfSeveral) {
    expectSame(makeMember("v", {{1, 2}, {3, 4}}), makeMember("w", {{5, 6}}), false);
}

TEST_F(FlatCalls, PartOfTheDivisions) {
    dvec * view = new dvec(*fiveSteps(8));
    view->openDivisionAt(1);
    view->ref.openDivisionAt(1);
    expectSame(view, makeVector("s", {{10}}), false);
}

TEST_F(FlatCalls, DivisionsThatStartElsewhere) {
    expectSame(makeMember("v", {{1, 2}, {3}}), makeMember("w", {{4}, {5, 6}}), false);
}

TEST_F(FlatCalls, AReferenceThatChangesKindHasTheDivisionsOfY) {
    FuncInfo info = makeInfo("widen", widen, 1, 1);
    for (bool runFlat : {false, true}) {
        info.flatDivisions = runFlat;
        dvec * out = call(info, {makeVector("v", {{1, 2, 3}, {4, 5}}, {{0, 1}, {0, 1, 2}})});
        EXPECT_EQ(divisionsOf(out->ref), (Divisions{{0, 1}, {0, 1, 2}})) << runFlat;
    }
}

TEST_F(FlatCalls, AReferenceOfOtherDivisions) {
    expectSame(makeMember("v", {{1, 2}, {3, 4}}, {{0, 1}}), makeVector("s", {{10}}), false);
}

TEST_F(FlatCalls, AnEmptyDivisionAmongOthers) {
    expectSame(makeMember("v", {{1, 2}, {}, {3}}), makeVector("s", {{10}}), false);
    dvec * v = makeMember("u", {{1, 2}, {}, {3}});
    v->setLabels(namesOf({"a", "b", "c"}), false);
    dvec * out = call(flatTwice, {v});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{2, 4}, {6}}));
    EXPECT_EQ(labelsOf(*out), (Texts{"a", "c"}));
}

TEST_F(FlatCalls, AFailureLeavesNoTraceOfTheAttempt) {
    dvec * s = makeVector("s", {{10}});
    dvec * v = makeMember("v", {{1}, {-11, 2}}, {{0}, {0, 1}});
    expectSame(s, v, false);
    dvec * a = makeMember("a", {{1, 2}, {-1, 4}, {5, 6}});
    dvec * b = makeMember("b", {{1, 2}, {0, 4}, {5, 6}});
    expectSame(a, b, false);
    for (dvec * vector : {a, b}) vector->setMultiple();
    expectSame(a, b, false);
}

TEST_F(FlatCalls, AFunctionThatIsNotElementwiseAfterAll) {
    dvec * v = makeMember("v", {{1, 2}, {3}});
    v->setMultiple();
    FuncInfo info = makeInfo("count", count, 1, 1);
    for (bool runFlat : {false, true}) {
        info.flatDivisions = runFlat;
        dvec * out = call(info, {v});
        EXPECT_EQ(divisionsOf(*out), (Divisions{{2}, {1}}));
        EXPECT_TRUE(out->isMultiple());
        EXPECT_TRUE(out->ref.isMultiple());
    }
}

TEST_F(FlatCalls, RoomIsForAllDivisionsOnce) {
    FuncInfo info = makeInfo("roomy", roomy, 1, 1);
    info.flatDivisions = true;
    constexpr std::size_t many = 2000, points = 10;
    dvec * v = makeMember("v", Divisions(many, Values(points, 1.0)));
    std::size_t const before = BlockMemory::bytesInUse();
    BlockMemory::resetPeak();
    EXPECT_EQ(call(info, {v})->numDivisions(), static_cast<std::int64_t>(many));
    EXPECT_LT(BlockMemory::peakBytes() - before, 4 * many * points * sizeof(double));
}

TEST_F(FlatCalls, RandomShapes) {
    std::mt19937 random(777);
    for (int round = 0; round < 100; ++round) {
        Divisions y, x;
        for (std::size_t d = 0, n = 1 + random() % 4; d < n; ++d) {
            y.emplace_back();
            x.emplace_back();
            for (std::size_t i = 0, m = 1 + random() % 3; i < m; ++i) {
                y.back().push_back(static_cast<double>(random() % 9));
                x.back().push_back(static_cast<double>(i));
            }
        }
        dvec * v = makeVector("v", y, random() % 2 != 0 ? x : Divisions());
        dvec * s = makeVector("s", {{static_cast<double>(random() % 9)}});
        flat.state.words[0] = 0;
        bool const swap = random() % 2 != 0;
        Divisions const expected = divisionsOf(*call(each, {new dvec(swap ? *s : *v), new dvec(swap ? *v : *s)}));
        EXPECT_EQ(divisionsOf(*call(flat, {swap ? s : v, swap ? v : s})), expected) << round;
        EXPECT_EQ(flat.state.words[0], 1u) << round;
    }
}
