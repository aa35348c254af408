// The call sequence: preparation of arguments, the loop over divisions, the result, failures.

#include "FrameTools.h"
#include "Groups/LoosePool.h"
#include "Vectors/BlockMemory.h"
#include "torvelan/Host.h"

#include <new>
#include <random>

namespace {

// --- handlers that do one thing

FUNC_ERROR writeNothing(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                        ScpParseContext const &) {
    return FUNC_OK;
}

// Words through both handlers, no result.
FUNC_ERROR speak(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler> messages,
                 MessageHandler & handlerMessages, ScpParseContext const &) {
    messages->error("through the reference");
    handlerMessages.error("through the handler");
    return FUNC_FAILED;
}

template <class Thrown> [[noreturn]] void throwOne() {
    throw Thrown("thrown");
}
template <> void throwOne<std::bad_alloc>() {
    throw std::bad_alloc();
}

// Writes an element, then throws, in the division whose first element is -1.
template <class Thrown>
FUNC_ERROR throwing(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                    ScpParseContext const &) {
    result->makeReal(1, ALLOC_HINT, 0);
    if (args.data(0)[0] == -1) throwOne<Thrown>();
    return FUNC_OK;
}

// A code that the loop does not forgive.
FUNC_ERROR noResult(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                    ScpParseContext const &) {
    result->makeReal(1, ALLOC_HINT, 0);
    return args.data(0)[0] == -1 ? FUNC_NO_RESULT : FUNC_OK;
}

// One element: the length of the division. An element of -1 is refused after it has been written.
FUNC_ERROR count(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                 ScpParseContext const &) {
    result->makeReal(1, ALLOC_DIVISIONS, 0)[0] = static_cast<double>(args.length(0));
    return args.length(0) > 0 && args.data(0)[0] == -1 ? FUNC_FAILED : FUNC_OK;
}

FUNC_ERROR argumentCount(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                         ScpParseContext const &) {
    result->makeReal(1, ALLOC_HINT, 0)[0] = args.getNumArgs();
    return FUNC_OK;
}

FUNC_ERROR countCalls(FuncArgs const & args, FuncResult * result, FuncInfo * info, YRef<MessageHandler> messages,
                      MessageHandler & handlerMessages, ScpParseContext const & context) {
    ++info->state.words[0];
    return twiceHandler(args, result, info, messages, handlerMessages, context);
}

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

// Adds a repeated scalar without writing it out, in the memory of the first argument where that is free.
FUNC_ERROR addInPlace(FuncArgs const & args, FuncResult * result, FuncInfo * info, YRef<MessageHandler>,
                      MessageHandler &, ScpParseContext const &) {
    std::int64_t const n = args.length(0);
    double const * a = args.data(0);
    double const b = args.repeatedValue(1).re;
    result->setType(VD_REAL, VD_REAL);
    info->state.words[1] = result->takeStorage(args, 0, n);
    if (info->state.words[1] == 0) result->allocate(n, ALLOC_HINT, args.totalLength(0));
    double * out = result->data();
    for (std::int64_t i = 0; i < n; ++i) out[i] = a[i] + b;
    result->copyRefFromArgs(args, ALLOC_HINT, n, 0);
    return FUNC_OK;
}

// Complex result, complex reference.
FUNC_ERROR widen(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                 ScpParseContext const &) {
    result->setType(VD_COMPLEX, VD_COMPLEX);
    std::int64_t const n = args.length(0);
    complex * out = result->makeComplex(n, ALLOC_HINT, args.totalLength(0));
    for (std::int64_t i = 0; i < n; ++i) out[i] = {args.data(0)[i], 1};
    result->copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    return FUNC_OK;
}

FuncInfo makeOperator(char const * name, Handler * handler) {
    FuncInfo info = makeInfo(name, handler, 2, 2);
    info.matchArgs = true;
    return info;
}

class CallFrame : public FrameTest {
protected:
    // A function of one kind of argument, of up to three, one division each or several.
    FuncInfo twice = makeInfo("twice", twiceHandler, 1, 3);
    FuncInfo sum = makeOperator("+", sumHandler);

    dvec * fiveSteps(double third, char const * name = "v") {
        dvec * v = makeMember(name, {{1, 2}, {3}, {third, 4}, {5}, {6, 7}}, {{0, 1}, {0}, {0, 1}, {0}, {0, 2}});
        v->setLabels(namesOf({"a", "b", "c", "d", "e"}), false);
        v->setMultiple();
        return v;
    }
    void expectNoResult(std::size_t poolBefore) {
        EXPECT_EQ(result.vector, nullptr);
        EXPECT_EQ(LoosePool::count(), poolBefore);
    }
};

} // namespace

// --- counts

TEST_F(CallFrame, TooFewAndTooManyArgumentsMakeNoResult) {
    dvec * v = makeMember("v", {{1}});
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(call(twice, {}), nullptr);
    EXPECT_EQ(call(twice, {v, v, v, v}), nullptr);
    EXPECT_EQ(messages->texts, (Texts{"Insufficient number of arguments to function 'twice'",
                                      "Too many arguments to function 'twice'"}));
    expectNoResult(before);
    EXPECT_EQ(code, FUNC_OK);
    EXPECT_NE(call(twice, {v, v, v}), nullptr);
}

TEST_F(CallFrame, AnEmptyArgumentMarkerCountsAsNone) {
    FuncInfo info = makeInfo("f", argumentCount, 0, 2);
    EXPECT_EQ(divisionsOf(*call(info, {})), (Divisions{{0}}));
    EvaluationDepth const depth;
    ParseState state("", {}, context);
    ExprValue marker;
    marker.emptyArgs = true;
    ASSERT_NE(callFunction(info, &marker, result, state), nullptr);
    EXPECT_EQ(result.vector->getReal(0), 0);
}

TEST_F(CallFrame, MoreArgumentsThanARecordHasRoomForAreTooMany) {
    FuncInfo info = makeInfo("f", argumentCount, 0, 32);
    info.maxArgs = 1000;
    dvec * v = makeMember("v", {{1}});
    EXPECT_EQ(divisionsOf(*call(info, std::vector<dvec *>(32, v))), (Divisions{{32}}));
    EXPECT_EQ(call(info, std::vector<dvec *>(33, v)), nullptr);
    EXPECT_EQ(messages->texts, Texts{"Too many arguments to function 'f'"});
}

// --- the result

TEST_F(CallFrame, TheResultIsATemporaryNamedAfterTheText) {
    dvec * v = makeMember("v", {{1, 2}}, {{0, 1}});
    std::size_t const before = LoosePool::count();
    dvec * out = call(twice, {v});
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->name(), "the call");
    EXPECT_TRUE(out->isTemporary());
    EXPECT_EQ(divisionsOf(*out), (Divisions{{2, 4}}));
    EXPECT_TRUE(out->ref.sharesRep(v->ref));
    EXPECT_EQ(LoosePool::count(), before + 1);
    EXPECT_EQ(code, FUNC_OK);
}

TEST_F(CallFrame, AResultOfSingleDivisionsIsMarkedMultiple) {
    dvec * out = call(twice, {makeVector("v", {{1}})});
    EXPECT_TRUE(out->isMultiple());
    EXPECT_TRUE(out->ref.isMultiple());
}

TEST_F(CallFrame, TemporaryArgumentsAreReleased) {
    std::size_t const before = LoosePool::count();
    dvec * out = call(sum, {makeVector("a", {{1}}), makeVector("b", {{2}})});
    EXPECT_EQ(out->getReal(0), 3);
    EXPECT_EQ(LoosePool::count(), before + 1);
}

TEST_F(CallFrame, OneVectorMayStandInBothPlaces) {
    dvec * v = makeMember("v", {{1, 2}});
    EXPECT_EQ(divisionsOf(*call(sum, {v, v})), (Divisions{{2, 4}}));
    dvec * temporary = makeVector("w", {{3}});
    EXPECT_EQ(divisionsOf(*call(sum, {temporary, temporary})), (Divisions{{6}}));
}

TEST_F(CallFrame, AHandlerThatWritesNothingGivesAnEmptyVector) {
    FuncInfo info = makeInfo("f", writeNothing, 1, 1);
    dvec * out = call(info, {makeVector("v", {{1}})});
    ASSERT_NE(out, nullptr);
    EXPECT_TRUE(out->noData());
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(CallFrame, AFunctionWithoutHandlerIsNotAvailable) {
    FuncInfo info = makeInfo("f", nullptr, 0, 1);
    EXPECT_EQ(call(info, {}), nullptr);
    EXPECT_EQ(code, FUNC_UNAVAILABLE);
}

// --- preparation

TEST_F(CallFrame, AFailedConversionIsNamed) {
    EXPECT_EQ(call(twice, {new dvec(YString("broken"), "2+", nullptr, PT_UNKNOWN)}), nullptr);
    ASSERT_EQ(messages->texts.size(), 2u);
    EXPECT_EQ(messages->texts[1], "Type conversion of 'broken' failed");
    EXPECT_EQ(result.vector, nullptr);
    EXPECT_EQ(code, FUNC_OK);
}

TEST_F(CallFrame, AConvertedTemporaryIsReleased) {
    std::size_t const before = LoosePool::count();
    dvec * out = call(twice, {new dvec(YString("text"), "2+3", nullptr, PT_UNKNOWN)});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{10}}));
    EXPECT_EQ(LoosePool::count(), before + 1);
}

TEST_F(CallFrame, SeveralDivisionsWhereNoneAreAllowed) {
    twice.multiDefs[1] = MULTI_REFUSED;
    dvec * v = makeMember("v", {{1}, {2}});
    EXPECT_EQ(call(twice, {v, v}), nullptr);
    EXPECT_EQ(messages->texts, Texts{"Argument '2', function 'twice': Illegal multi-dimensioned argument"});
}

TEST_F(CallFrame, DifferentNumbersOfDivisions) {
    EXPECT_EQ(call(sum, {makeMember("v", {{1}, {2}}), makeMember("w", {{1}, {2}, {3}})}), nullptr);
    EXPECT_EQ(messages->texts, Texts{"Argument '2', function '+': Incompatible multi-dimensioned argument"});
}

TEST_F(CallFrame, ComplexWhereRealIsWanted) {
    FuncInfo info = makeInfo("f", twiceHandler, 1, 2, ARG_REAL);
    EXPECT_EQ(call(info, {makeVector("v", {{1}}), makeComplexVector("z", {{1, 2}})}), nullptr);
    EXPECT_EQ(messages->texts, Texts{"Argument 2 in function 'f' is complex. Expected real"});
}

TEST_F(CallFrame, AnEmptyArgumentIsRefused) {
    EXPECT_EQ(call(twice, {makeVector("hollow", {})}), nullptr);
    EXPECT_EQ(messages->texts, Texts{"The vector 'hollow' has no data.\nThe expression cannot be evaluated"});
}

TEST_F(CallFrame, ThreeFunctionsTakeEmptyArguments) {
    for (char const * name : {"length", "NumElems", "JoinStringArray"}) {
        FuncInfo info = makeInfo(name, count, 1, 1, ARG_ANY, MULTI_WHOLE);
        EXPECT_EQ(divisionsOf(*call(info, {makeVector("hollow", {})})), (Divisions{{0}})) << name;
    }
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(CallFrame, EveryBadArgumentIsNamedInOneGo) {
    FuncInfo info = makeInfo("f", twiceHandler, 1, 5, ARG_REAL);
    dvec * empty = makeVector("hollow", {});
    dvec * text = new dvec(YString("'"), "'", nullptr, PT_UNKNOWN);
    dvec * pairs = makeComplexVector("z", {{1, 2}});
    EXPECT_EQ(call(info, {makeMember("v", {{1}, {2}}), empty, text, pairs, makeMember("w", {{1}, {2}, {3}})}), nullptr);
    Texts ours;
    for (std::string const & words : messages->texts)
        if (words.find("Bad syntax") == std::string::npos) ours.push_back(words);
    EXPECT_EQ(ours, (Texts{"The vector 'hollow' has no data.\nThe expression cannot be evaluated",
                           "Type conversion of ''' failed", "Argument 4 in function 'f' is complex. Expected real",
                           "Argument '5', function 'f': Incompatible multi-dimensioned argument"}));
}

TEST_F(CallFrame, RefusedArgumentsLeaveNoResultBehind) {
    dvec * v = makeMember("v", {});
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(call(twice, {v}), nullptr);
    expectNoResult(before);
}

// --- several divisions

TEST_F(CallFrame, TheHandlerRunsForEachDivision) {
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

TEST_F(CallFrame, AFailingDivisionIsDroppedInSilence) {
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

TEST_F(CallFrame, TheReferenceThatLosesADivisionIsACopy) {
    dvec * v = fiveSteps(-1);
    v->ref.setPhysType(PT_TIME);
    dvec * out = call(twice, {v});
    EXPECT_EQ(v->ref.numDivisions(), 5);
    EXPECT_FALSE(out->ref.sharesRep(v->ref));
    EXPECT_EQ(out->ref.physType(), PT_TIME);
}

TEST_F(CallFrame, AHandlerThatFailsAfterWritingIsCutBack) {
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

TEST_F(CallFrame, ADivisionThatIsOnlyAnnouncedIsDropped) {
    FuncInfo info = makeInfo("announce", announce, 1, 1);
    dvec * out = call(info, {makeMember("v", {{1}, {-1}, {3}}, {{0}, {1}, {2}})});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{1}, {3}}));
    EXPECT_EQ(divisionsOf(out->ref), (Divisions{{0}, {2}}));
}

TEST_F(CallFrame, WithOneDivisionTheFailureIsHeard) {
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(call(twice, {makeVector("v", {{1, -1}})}), nullptr);
    EXPECT_EQ(messages->texts, Texts{"refused"});
    EXPECT_EQ(code, FUNC_FAILED);
    expectNoResult(before);
}

TEST_F(CallFrame, BothHandlersAreSilentWithSeveralDivisionsAndRealWithOne) {
    FuncInfo info = makeInfo("speak", speak, 1, 1);
    EXPECT_NE(call(info, {makeVector("v", {{1}, {2}})}), nullptr);
    EXPECT_TRUE(messages->texts.empty());
    EXPECT_EQ(call(info, {makeVector("v", {{1}})}), nullptr);
    EXPECT_EQ(messages->texts, (Texts{"through the reference", "through the handler"}));
}

TEST_F(CallFrame, WhenNoDivisionGivesAnythingTheResultIsEmpty) {
    dvec * out = call(twice, {makeVector("v", {{-1}, {-1, 2}}, {{0}, {0, 1}})});
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->totalLength() + out->ref.totalLength(), 0);
    EXPECT_EQ(out->numDivisions(), 1);
}

TEST_F(CallFrame, WithoutLabelsALoneDivisionIsStillUnknown) {
    dvec * out = call(twice, {makeVector("v", {{-1}, {3}, {-1}})});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{6}}));
    EXPECT_EQ(labelsOf(*out), Texts{"?"});
}

TEST_F(CallFrame, AnotherCodeEndsTheCall) {
    FuncInfo info = makeInfo("f", noResult, 1, 1);
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(call(info, {makeVector("v", {{1}, {-1}, {1}})}), nullptr);
    EXPECT_EQ(code, FUNC_NO_RESULT);
    EXPECT_TRUE(messages->texts.empty());
    expectNoResult(before);
}

TEST_F(CallFrame, TheFirstCodeIsKept) {
    FuncInfo info = makeInfo("f", noResult, 1, 1);
    EvaluationDepth const depth;
    ParseState state("", {}, context);
    callFunction(info, listOf({makeVector("v", {{-1}})}), result, state);
    callFunction(twice, listOf({makeVector("v", {{-1}})}), result, state);
    EXPECT_EQ(state.functionError, FUNC_NO_RESULT);
}

TEST_F(CallFrame, LabelsThatDifferBecomeUnknown) {
    dvec * v = makeMember("v", {{1}, {2}, {3}});
    dvec * w = makeMember("w", {{1}, {2}, {3}});
    v->setLabels(namesOf({"a", "b", "c"}), false);
    w->setLabels(namesOf({"A", "x", "c"}), false);
    EXPECT_EQ(labelsOf(*call(sum, {v, w})), (Texts{"a", "?", "c"}));
    dvec * bare = makeMember("u", {{1}, {2}, {3}});
    EXPECT_EQ(labelsOf(*call(sum, {v, bare})), (Texts{"?", "?", "?"}));
    EXPECT_EQ(labelsOf(*call(sum, {bare, v})), (Texts{"?", "?", "?"}));
}

TEST_F(CallFrame, LabelsAreThoseOfTheDivisionsShown) {
    dvec * v = makeMember("v", {{1}, {2}, {3}});
    v->setLabels(namesOf({"a", "b", "c"}), false);
    dvec * view = new dvec(*v);
    view->openDivisionAt(1);
    dvec * out = call(twice, {view});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{4}, {6}}));
    EXPECT_EQ(labelsOf(*out), (Texts{"b", "c"}));
}

TEST_F(CallFrame, TheResultIsMultipleOnlyWhenEveryArgumentOfSeveralDivisionsIs) {
    dvec * multiple = makeMember("v", {{1}, {2}});
    multiple->setMultiple();
    EXPECT_TRUE(call(sum, {multiple, makeVector("s", {{1}})})->isMultiple());
    EXPECT_FALSE(call(sum, {multiple, makeMember("w", {{1}, {2}})})->isMultiple());
}

TEST_F(CallFrame, AVectorGivenWholeTakesNoPartInTheIteration) {
    FuncInfo info = makeInfo("count", count, 1, 1, ARG_ANY, MULTI_WHOLE);
    EXPECT_EQ(divisionsOf(*call(info, {makeVector("v", {{1, 2, 3}, {4}})})), (Divisions{{3}}));
}

TEST_F(CallFrame, ACollapsedResultHasOneDivision) {
    FuncInfo info = makeInfo("NumElems", count, 1, 1, ARG_ANY, MULTI_COLLAPSE);
    dvec * v = makeVector("v", {{1, 2, 3}, {4}, {5, 6}});
    v->setMultiple();
    dvec * out = call(info, {v});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{3, 1, 2}}));
    EXPECT_FALSE(out->isMultiple());
}

TEST_F(CallFrame, AScalarMeetsThreeDivisions) {
    dvec * b = makeMember("b", {{1, 2}, {3}, {4, 5}}, {{0, 1}, {0}, {0, 1}});
    dvec * out = call(sum, {makeVector("a", {{10}}), b});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{11, 12}, {13}, {14, 15}}));
    EXPECT_TRUE(out->ref.sharesRep(b->ref));
}

TEST_F(CallFrame, AViewOfOneDivisionMeetsEveryDivision) {
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

TEST_F(CallFrame, VectorsOfOneElementWithDifferentReferencesLoseThem) {
    dvec * out = call(sum, {makeVector("a", {{1}}, {{0}}), makeVector("b", {{2}}, {{1}})});
    EXPECT_EQ(divisionsOf(*out), (Divisions{{3}}));
    EXPECT_TRUE(out->ref.noData());
}

TEST_F(CallFrame, MatchingSpeaksEvenWithSeveralDivisionsAndItsFailureEndsTheCall) {
    std::size_t const before = LoosePool::count();
    EXPECT_EQ(call(sum, {makeVector("a", {{1, 2}, {1, 2}}), makeVector("b", {{1, 2}, {1, 2, 3}})}), nullptr);
    EXPECT_EQ(messages->texts, Texts{"The vectors 'a' and 'b' are incompatible.\nThe specified operation may not be "
                                     "performed"});
    EXPECT_EQ(code, FUNC_FAILED);
    expectNoResult(before);
}

TEST_F(CallFrame, AMissingReferenceIsAWarningForEachDivision) {
    dvec * a = makeMember("a", {{1, 2}, {3, 4}}, {{0, 1}, {0, 1}});
    ASSERT_NE(call(sum, {a, makeMember("b", {{1, 2}, {3, 4}})}), nullptr);
    EXPECT_EQ(messages->texts, (Texts{"'b' has no reference", "'b' has no reference"}));
}

TEST_F(CallFrame, AReferenceOfAnotherKindIsConvertedInEveryDivision) {
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

// --- all divisions at once

namespace {

class FlatCalls : public CallFrame {
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

// --- memory

TEST_F(CallFrame, ATemporaryOperandLendsItsMemory) {
    FuncInfo info = makeOperator("+", addInPlace);
    dvec * a = makeVector("a", {{1, 2, 3}}, {{0, 1, 2}});
    double const * memory = a->realData();
    dvec * out = call(info, {a, makeVector("s", {{10}})});
    EXPECT_EQ(info.state.words[1], 1u);
    EXPECT_EQ(out->realData(), memory);
    EXPECT_EQ(divisionsOf(*out), (Divisions{{11, 12, 13}}));
    EXPECT_EQ(divisionsOf(out->ref), (Divisions{{0, 1, 2}}));
    dvec * member = makeMember("m", {{1, 2, 3}});
    EXPECT_EQ(divisionsOf(*call(info, {member, makeVector("s", {{10}})})), (Divisions{{11, 12, 13}}));
    EXPECT_EQ(info.state.words[1], 0u);
    EXPECT_EQ(divisionsOf(*member), (Divisions{{1, 2, 3}}));
}

TEST_F(CallFrame, AScalarAgainstALongVectorCostsOnlyTheResult) {
    constexpr std::int64_t n = 1 << 20;
    dvec * v = makeMember("v", {});
    v->setSize(n, VD_REAL);
    std::fill_n(v->writableRealData(), n, 1.0);
    FuncInfo info = makeOperator("+", addInPlace);
    std::size_t const before = BlockMemory::bytesInUse();
    BlockMemory::resetPeak();
    ASSERT_NE(call(info, {v, makeVector("s", {{10}})}), nullptr);
    EXPECT_LT(BlockMemory::peakBytes() - before, n * sizeof(double) + 65536);
}

TEST_F(CallFrame, ManyDivisionsShareTheLabelsOfTheirVector) {
    constexpr std::size_t many = 100000;
    dvec * v = makeMember("v", Divisions(many, Values(2, 1.0)));
    NameArray labels;
    for (std::size_t d = 0; d < many; ++d) labels.push_back(YString(static_cast<unsigned long>(d)));
    v->setLabels(labels, false);
    twice.flatDivisions = true;
    dvec * out = call(twice, {v});
    EXPECT_EQ(out->numDivisions(), static_cast<std::int64_t>(many));
    EXPECT_EQ(out->sharedLabels(), v->sharedLabels());
}

// --- exceptions

namespace {

class Exceptions : public CallFrame {
protected:
    template <class Thrown> void expectReported(std::string const & words, MessageLevel level) {
        for (bool flat : {false, true}) {
            for (Divisions const & steps : {Divisions{{-1}}, Divisions{{1}, {-1}, {1}}}) {
                FuncInfo info = makeInfo("thrower", throwing<Thrown>, 1, 1);
                info.flatDivisions = flat;
                dvec * v = makeMember("v", steps);
                std::size_t const before = LoosePool::count();
                EXPECT_EQ(call(info, {v}), nullptr);
                EXPECT_EQ(code, FUNC_UNAVAILABLE);
                EXPECT_EQ(messages->texts, Texts{words});
                EXPECT_EQ(messages->levels, std::vector{level});
                EXPECT_EQ(v->currentDivisionIndex(), 0);
                expectNoResult(before);
                messages->clear();
                v->leaveGroup();
                v->release();
            }
        }
    }
};

constexpr char outOfMemory[] = "Evaluation of function 'thrower' failed due to insufficient memory";
constexpr char occurred[] = "thrown\nException occurred while executing script function thrower\n";

struct Fault : OsException {
    explicit Fault(char const * words) : OsException(integerDivideByZero, 0, nullptr, words) {}
};

} // namespace

TEST_F(Exceptions, ExhaustedMemoryIsReported) {
    expectReported<MemoryException>(outOfMemory, MessageLevel::error);
    expectReported<std::bad_alloc>(outOfMemory, MessageLevel::error);
}

TEST_F(Exceptions, OthersOfTheLibraryArePrinted) {
    expectReported<TorvelanException>(occurred, MessageLevel::print);
    expectReported<Fault>(occurred, MessageLevel::print);
}

TEST_F(Exceptions, AFatalOnePassesAndLeavesNothingBehind) {
    FuncInfo info = makeInfo("thrower", throwing<FatalException>, 1, 1);
    dvec * v = makeMember("v", {{1}, {-1}});
    std::size_t const before = LoosePool::count();
    EXPECT_THROW(call(info, {v}), FatalException);
    EXPECT_EQ(v->currentDivisionIndex(), 0);
    EXPECT_EQ(result.vector, nullptr);
    EXPECT_EQ(LoosePool::count(), before);
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(Exceptions, EveryAllocationMayFailWithoutLeavingAnythingBehind) {
    dvec * v = fiveSteps(8);
    int failures = 0;
    for (std::uint64_t nth = 1; nth < 100; ++nth) {
        std::size_t const before = LoosePool::count();
        BlockMemory::failAt(nth);
        dvec * out = call(twice, {v});
        BlockMemory::failAt(0);
        if (out == nullptr) {
            ++failures;
            EXPECT_EQ(messages->texts, Texts{"Evaluation of function 'twice' failed due to insufficient memory"});
            EXPECT_EQ(LoosePool::count(), before);
            EXPECT_EQ(v->currentDivisionIndex(), 0);
            messages->clear();
            continue;
        }
        EXPECT_EQ(divisionsOf(*out), (Divisions{{2, 4}, {6}, {16, 8}, {10}, {12, 14}}));
        out->release();
        break;
    }
    EXPECT_GT(failures, 0);
}

// --- new points only

namespace {

class Incremental : public CallFrame {
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

// --- a call with a ready frame

namespace {

FuncDef const registeredTwice(makeInfo("callFrameTestTwice", twiceHandler, 1, 1));
FuncDef const registeredThrower(makeInfo("callFrameTestThrower", throwing<TorvelanException>, 1, 1));

class ReadyFrame : public testing::Test {
protected:
    void callNamed(char const * name, Values const & values) {
        NamedVector y(YString("y"));
        appendTo(y, {values});
        FuncArgs args{YString(name)};
        args.setNumArgs(1);
        args.add(&y, nullptr);
        FuncResult frame;
        frame.add(&out, &out.ref);
        vec_CallFunction(args, &frame);
    }

    std::shared_ptr<RecordedMessages> messages = std::make_shared<RecordedMessages>();
    EngineSession session{messages};
    XYVector out;
};

} // namespace

TEST_F(ReadyFrame, TheFunctionIsFoundByTheNameOfTheFrame) {
    callNamed("CALLFRAMETESTTWICE", {1, 2});
    EXPECT_EQ(divisionsOf(out), (Divisions{{2, 4}}));
}

TEST_F(ReadyFrame, AMissingFunctionDoesNothing) {
    callNamed("callFrameTestMissing", {1});
    EXPECT_TRUE(out.noData());
    EXPECT_TRUE(messages->texts.empty());
}

TEST_F(ReadyFrame, WordsGoToTheHost) {
    callNamed("callFrameTestTwice", {-1});
    EXPECT_EQ(messages->texts, Texts{"refused"});
    EXPECT_TRUE(out.noData());
}

TEST_F(ReadyFrame, AnExceptionIsPrinted) {
    callNamed("callFrameTestThrower", {-1});
    EXPECT_EQ(messages->texts,
              Texts{"thrown\nException occurred while executing script function callFrameTestThrower\n"});
}
