// A handler run for each division, and over new points only.

#include "FrameHandlers.h"

namespace {

// Words through both handlers, no result.
FUNC_ERROR speak(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler> messages,
                 MessageHandler & handlerMessages, ScpParseContext const &) {
    messages->error("through the reference");
    handlerMessages.error("through the handler");
    return FUNC_FAILED;
}

// A code that the loop does not forgive.
FUNC_ERROR noResult(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                    ScpParseContext const &) {
    result->makeReal(1, ALLOC_HINT, 0);
    return args.data(0)[0] == -1 ? FUNC_NO_RESULT : FUNC_OK;
}

// Carries the reference along, and announces a division for an element of -1 but does not fill it.
FUNC_ERROR announce(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                    ScpParseContext const &) {
    result->setType(VD_REAL, VD_REAL);
    result->copyRefFromArgs(args, ALLOC_HINT, 0, 0);
    if (args.data(0)[0] == -1)
        result->getYVec()->addDivision(YString());
    else
        result->makeReal(1, ALLOC_HINT, 0)[0] = args.data(0)[0];
    return FUNC_OK;
}

using HandlerLoopTest = CallTest;

} // namespace

// --- several divisions

TEST_F(HandlerLoopTest, TheHandlerRunsForEachDivision) {
    dvec * v = fiveSteps(8);
    dvec * out = call(twice, {v});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{2, 4}, {6}, {16, 8}, {10}, {12, 14}}));
    EXPECT_EQ(labelsOf(*out), (Texts{"a", "b", "c", "d", "e"}));
    EXPECT_TRUE(out->isMultiple());
    EXPECT_TRUE(out->ref.sharesRep(v->ref));
    EXPECT_EQ(out->currentDivisionIndex(), 0);
    EXPECT_EQ(v->currentDivisionIndex(), 0);
    EXPECT_EQ(v->ref.currentDivisionIndex(), 0);
}

TEST_F(HandlerLoopTest, AFailingDivisionIsDroppedInSilence) {
    dvec * out = call(twice, {fiveSteps(-1)});
    ASSERT_NE(out, nullptr);
    EXPECT_TRUE(messages->texts.empty());
    EXPECT_EQ(code, FUNC_OK);
    EXPECT_EQ(divisionsOf(*out), (Divisions{{2, 4}, {6}, {10}, {12, 14}}));
    EXPECT_EQ(labelsOf(*out), (Texts{"a", "b", "d", "e"}));
    EXPECT_EQ(divisionsOf(out->ref), (Divisions{{0, 1}, {0}, {0}, {0, 2}}));
    EXPECT_EQ(out->ref.name(), "t");
    EXPECT_TRUE(out->isMultiple());
}

TEST_F(HandlerLoopTest, TheReferenceThatLosesADivisionIsACopy) {
    dvec * v = fiveSteps(-1);
    v->ref.setPhysType(PT_TIME);
    dvec * out = call(twice, {v});
    EXPECT_EQ(v->ref.numDivisions(), 5);
    EXPECT_FALSE(out->ref.sharesRep(v->ref));
    EXPECT_EQ(out->ref.physType(), PT_TIME);
}

TEST_F(HandlerLoopTest, AHandlerThatFailsAfterWritingIsCutBack) {
    FuncInfo info = makeInfo("count", count, 1, 1);
    for (Divisions const & steps :
         {Divisions{{-1, 1}, {1}, {1, 1}}, Divisions{{1, 1}, {-1}, {1}}, Divisions{{1, 1}, {1}, {-1}}}) {
        dvec * out = call(info, {makeVector("v", steps)});
        Divisions expected;
        for (Values const & values : steps)
            if (values[0] != -1) expected.push_back({static_cast<double>(values.size())});
        EXPECT_EQ(divisionsOf(*out), expected);
    }
}

TEST_F(HandlerLoopTest, ADivisionThatIsOnlyAnnouncedIsDropped) {
    FuncInfo info = makeInfo("announce", announce, 1, 1);
    dvec * out = call(info, {makeMember("v", {{1}, {-1}, {3}}, {{0}, {1}, {2}})});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{1}, {3}}));
    EXPECT_EQ(divisionsOf(out->ref), (Divisions{{0}, {2}}));
}

TEST_F(HandlerLoopTest, WithOneDivisionTheFailureIsHeard) {
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(call(twice, {makeVector("v", {{1, -1}})}), nullptr);
    EXPECT_EQ(messages->texts, Texts{"refused"});
    EXPECT_EQ(code, FUNC_FAILED);
    expectNoResult(before);
}

TEST_F(HandlerLoopTest, BothHandlersAreSilentWithSeveralDivisionsAndRealWithOne) {
    FuncInfo info = makeInfo("speak", speak, 1, 1);
    EXPECT_NE(call(info, {makeVector("v", {{1}, {2}})}), nullptr);
    EXPECT_TRUE(messages->texts.empty());
    EXPECT_EQ(call(info, {makeVector("v", {{1}})}), nullptr);
    EXPECT_EQ(messages->texts, (Texts{"through the reference", "through the handler"}));
}

TEST_F(HandlerLoopTest, WhenNoDivisionGivesAnythingTheResultIsEmpty) {
    dvec * out = call(twice, {makeVector("v", {{-1}, {-1, 2}}, {{0}, {0, 1}})});
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->totalLength() + out->ref.totalLength(), 0);
    EXPECT_EQ(out->numDivisions(), 1);
}

TEST_F(HandlerLoopTest, WithoutLabelsALoneDivisionIsStillUnknown) {
    dvec * out = call(twice, {makeVector("v", {{-1}, {3}, {-1}})});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{6}}));
    EXPECT_EQ(labelsOf(*out), Texts{"?"});
}

TEST_F(HandlerLoopTest, AnotherCodeEndsTheCall) {
    FuncInfo info = makeInfo("f", noResult, 1, 1);
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(call(info, {makeVector("v", {{1}, {-1}, {1}})}), nullptr);
    EXPECT_EQ(code, FUNC_NO_RESULT);
    EXPECT_TRUE(messages->texts.empty());
    expectNoResult(before);
}

TEST_F(HandlerLoopTest, TheFirstCodeIsKept) {
    FuncInfo info = makeInfo("f", noResult, 1, 1);
    EvaluationDepth const depth;
    ParseState state("", {}, context);
    callFunction(info, info.name, listOf({makeVector("v", {{-1}})}), result, state);
    callFunction(twice, twice.name, listOf({makeVector("v", {{-1}})}), result, state);
    EXPECT_EQ(state.functionError, FUNC_NO_RESULT);
}

TEST_F(HandlerLoopTest, LabelsThatDifferBecomeUnknown) {
    dvec * v = makeMember("v", {{1}, {2}, {3}});
    dvec * w = makeMember("w", {{1}, {2}, {3}});
    v->setLabels(namesOf({"a", "b", "c"}), false);
    w->setLabels(namesOf({"A", "x", "c"}), false);
    EXPECT_EQ(labelsOf(*call(sum, {v, w})), (Texts{"a", "?", "c"}));
    dvec * bare = makeMember("u", {{1}, {2}, {3}});
    EXPECT_EQ(labelsOf(*call(sum, {v, bare})), (Texts{"?", "?", "?"}));
    EXPECT_EQ(labelsOf(*call(sum, {bare, v})), (Texts{"?", "?", "?"}));
}

TEST_F(HandlerLoopTest, LabelsAreThoseOfTheDivisionsShown) {
    dvec * v = makeMember("v", {{1}, {2}, {3}});
    v->setLabels(namesOf({"a", "b", "c"}), false);
    dvec * view = new dvec(*v);
    view->openDivisionAt(1);
    dvec * out = call(twice, {view});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{4}, {6}}));
    EXPECT_EQ(labelsOf(*out), (Texts{"b", "c"}));
}

TEST_F(HandlerLoopTest, TheResultIsMultipleOnlyWhenEveryArgumentOfSeveralDivisionsIs) {
    dvec * multiple = makeMember("v", {{1}, {2}});
    multiple->setMultiple();
    EXPECT_TRUE(call(sum, {multiple, makeVector("s", {{1}})})->isMultiple());
    EXPECT_FALSE(call(sum, {multiple, makeMember("w", {{1}, {2}})})->isMultiple());
}

TEST_F(HandlerLoopTest, AVectorGivenWholeTakesNoPartInTheIteration) {
    FuncInfo info = makeInfo("count", count, 1, 1, ARG_ANY, MULTI_WHOLE);
    EXPECT_EQ(divisionsOf(*call(info, {makeVector("v", {{1, 2, 3}, {4}})})), (Divisions{{3}}));
}

TEST_F(HandlerLoopTest, ACollapsedResultHasOneDivision) {
    FuncInfo info = makeInfo("NumElems", count, 1, 1, ARG_ANY, MULTI_COLLAPSE);
    dvec * v = makeVector("v", {{1, 2, 3}, {4}, {5, 6}});
    v->setMultiple();
    dvec * out = call(info, {v});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{3, 1, 2}}));
    EXPECT_FALSE(out->isMultiple());
}

TEST_F(HandlerLoopTest, AScalarMeetsThreeDivisions) {
    dvec * b = makeMember("b", {{1, 2}, {3}, {4, 5}}, {{0, 1}, {0}, {0, 1}});
    dvec * out = call(sum, {makeVector("a", {{10}}), b});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{11, 12}, {13}, {14, 15}}));
    EXPECT_TRUE(out->ref.sharesRep(b->ref));
}

TEST_F(HandlerLoopTest, AViewOfOneDivisionMeetsEveryDivision) {
    dvec * v = makeMember("v", {{1, 2}, {3, 4}, {5, 6}}, {{0, 1}, {0, 1}, {0, 1}});
    for (std::int64_t shown : {0, 1, 2}) {
        dvec * view = new dvec(*v);
        view->selectDivision(shown);
        view->ref.selectDivision(shown);
        Divisions expected;
        for (Values const & step : divisionsOf(*v))
            expected.push_back({step[0] + v->getReal(0, shown), step[1] + v->getReal(1, shown)});
        dvec * out = call(sum, {v, view});
        ASSERT_NE(out, nullptr);
        EXPECT_EQ(divisionsOf(*out), expected) << shown;
    }
}

TEST_F(HandlerLoopTest, VectorsOfOneElementWithDifferentReferencesLoseThem) {
    dvec * out = call(sum, {makeVector("a", {{1}}, {{0}}), makeVector("b", {{2}}, {{1}})});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{3}}));
    EXPECT_TRUE(out->ref.noData());
}

TEST_F(HandlerLoopTest, MatchingSpeaksEvenWithSeveralDivisionsAndItsFailureEndsTheCall) {
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(call(sum, {makeVector("a", {{1, 2}, {1, 2}}), makeVector("b", {{1, 2}, {1, 2, 3}})}), nullptr);
    EXPECT_EQ(messages->texts, Texts{"The vectors 'a' and 'b' are incompatible.\nThe specified operation may not be "
                                     "performed"});
    EXPECT_EQ(code, FUNC_FAILED);
    expectNoResult(before);
}

TEST_F(HandlerLoopTest, AMissingReferenceIsAWarningForEachDivision) {
    dvec * a = makeMember("a", {{1, 2}, {3, 4}}, {{0, 1}, {0, 1}});
    ASSERT_NE(call(sum, {a, makeMember("b", {{1, 2}, {3, 4}})}), nullptr);
    EXPECT_EQ(messages->texts, (Texts{"'b' has no reference", "'b' has no reference"}));
}

TEST_F(HandlerLoopTest, AReferenceOfAnotherKindIsConvertedInEveryDivision) {
    FuncInfo info = makeInfo("widen", widen, 1, 1);
    for (bool flat : {false, true}) {
        info.flatDivisions = flat;
        dvec * out = call(info, {fiveSteps(8, flat ? "v" : "w")});
        ASSERT_TRUE(out->ref.isComplex());
        EXPECT_EQ(out->numDivisions(), 5);
        EXPECT_EQ(divisionsOf(out->ref), (Divisions{{0, 1}, {0}, {0, 1}, {0}, {0, 2}}));
        EXPECT_EQ(out->ref.name(), "t");
    }
}

// --- new points only

namespace {

class Incremental : public CallTest {
protected:
    EvalOptions from(std::int64_t division, std::int64_t offset, BaseVector const & reference) {
        EvalOptions options;
        options.incrementalOnly = true;
        options.incrementalDivision = division;
        options.incrementalOffset = offset;
        options.incrementalReference = &reference;
        return options;
    }
    // Elements of a division behind the offset.
    Values behind(BaseVector const & vector, std::int64_t division, std::int64_t offset) {
        Values const all = divisionsOf(vector).at(static_cast<std::size_t>(division));
        return Values(all.begin() + offset, all.end());
    }
};

} // namespace

TEST_F(Incremental, AFunctionThatKnowsItsNeighboursGivesNothingWithoutAWord) {
    twice.supportsIncremental = false;
    dvec * v = makeMember("v", {{1, 2}}, {{0, 1}});
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(call(twice, {v}, from(0, 1, v->ref)), nullptr);
    EXPECT_TRUE(messages->texts.empty());
    EXPECT_EQ(code, FUNC_OK);
    expectNoResult(before);
}

TEST_F(Incremental, OnlyNewPointsAreComputed) {
    dvec * v = makeMember("v", {{-1, 2, 3, 4}}, {{0, 1, 2, 3}});
    dvec * out = call(twice, {v}, from(0, 2, v->ref));
    ASSERT_NE(out, nullptr) << "the old point that would be refused is not looked at";
    EXPECT_EQ(out->length(), 4);
    EXPECT_EQ(behind(*out, 0, 2), (Values{6, 8}));
    EXPECT_TRUE(out->ref.sharesRep(v->ref));
}

TEST_F(Incremental, ANestedResultGoesOnWithTheSameReference) {
    dvec * v = makeMember("v", {{1, 2, 3}}, {{0, 1, 2}});
    EvalOptions const options = from(0, 2, v->ref);
    EXPECT_EQ(behind(*call(sum, {call(twice, {v}, options), v}, options), 0, 2), Values{9});
    EXPECT_EQ(behind(*call(sum, {makeVector("s", {{10}}), v}, options), 0, 2), Values{13});
}

TEST_F(Incremental, WhatIsMadeOfConstantsAloneIsWhole) {
    dvec * v = makeMember("v", {{1, 2, 3}}, {{0, 1, 2}});
    EvalOptions const options = from(0, 2, v->ref);
    dvec * constant = call(sum, {makeVector("a", {{1}}), makeVector("b", {{2}})}, options);
    EXPECT_EQ(divisionsOf(*constant), (Divisions{{3}}));
    EXPECT_EQ(behind(*call(sum, {v, constant}, options), 0, 2), Values{6});
}

TEST_F(Incremental, DivisionsBeforeAreSkippedAndThoseBehindAreWhole) {
    dvec * v = makeMember("v", {{-1, 2}, {-1, 4, 5}, {6, 7}}, {{0, 1}, {0, 1, 2}, {0, 1}});
    dvec * out = call(twice, {v}, from(1, 1, v->ref));
    ASSERT_NE(out, nullptr);
    ASSERT_EQ(out->numDivisions(), 3);
    EXPECT_EQ(out->length(0), 2);
    EXPECT_EQ(behind(*out, 1, 1), (Values{8, 10}));
    EXPECT_EQ(behind(*out, 2, 0), (Values{12, 14}));
}

TEST_F(Incremental, AnotherReferenceIsComputedFromTheStart) {
    dvec * v = makeMember("v", {{1, 2, 3}}, {{0, 1, 2}});
    dvec * other = makeMember("w", {{4, 5, 6}}, {{0, 1, 2}});
    dvec * out = call(twice, {other}, from(0, 2, v->ref));
    EXPECT_EQ(divisionsOf(*out), (Divisions{{8, 10, 12}}));
}

TEST_F(Incremental, AnEmptyResultFromTheNewDivisionOnEndsTheCall) {
    FuncInfo info = makeInfo("twice", countCalls, 1, 1);
    dvec * v = makeMember("v", {{1}, {-1}, {3}, {4}}, {{0}, {0}, {0}, {0}});
    dvec * out = call(info, {v}, from(1, 0, v->ref));
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(info.state.words[0], 2u);
    EXPECT_EQ(out->numDivisions(), 1);
    EXPECT_TRUE(out->ref.sharesRep(v->ref) || out->ref.noData()) << "the x data are not copied";
}
