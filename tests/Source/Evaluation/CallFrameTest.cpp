// The call sequence: counts, preparation of arguments, failures; the call with a ready frame.

#include "FrameHandlers.h"
#include "Vectors/BlockMemory.h"
#include "torvelan/Host.h"

namespace {

FUNC_ERROR writeNothing(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                        ScpParseContext const &) {
    return FUNC_OK;
}

FUNC_ERROR argumentCount(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                         ScpParseContext const &) {
    result->makeReal(1, ALLOC_HINT, 0)[0] = args.getNumArgs();
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

using CallFrame = CallTest;

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
    ASSERT_NE(callFunction(info, info.name, &marker, result, state), nullptr);
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

class Exceptions : public CallTest {
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
