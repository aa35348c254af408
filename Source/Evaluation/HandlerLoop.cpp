#include "Evaluation/HandlerLoop.h"

#include "Evaluation/FlatCall.h"
#include "Evaluation/FunctionTimers.h"
#include "torvelan/dvec.h"

#include <algorithm>

namespace {

// With several divisions a failing step is silent.
YRef<MessageHandler> handlerMessages(DivisionState const & divisions, ParseState const & state) {
    if (divisions.count > 1) return std::make_shared<NullMessageHandler>();
    return state.context.messages();
}

// Copies a division of one numeric vector behind those that another has.
void appendDivision(NamedVector & to, NamedVector const & from, std::int64_t d) {
    std::int64_t const n = from.length(d);
    if (n == 0) return;
    std::int64_t const before = to.totalLength();
    if (before > 0) to.addDivision(YString());
    to.setLength(before + n);
    to.setDivision(to.numDivisions() - 1);
    if (double const * real = from.realData(d)) std::copy_n(real, n, to.writableRealData());
    if (complex const * pairs = from.complexData(d)) std::copy_n(pairs, n, to.writableComplexData());
}

} // namespace

FUNC_ERROR HandlerCall::run() {
    if (info.handler == nullptr) return FUNC_UNAVAILABLE;
    TimedCall const timed(info);
    return info.handler(args, &result, &info, messages, *messages, context);
}

HandlerLoop::HandlerLoop(FuncInfo & function, FuncArgs & frame, dvec & resultVector,
                         DivisionState const & divisionState, ParseState const & parseState)
    : info(function), args(frame), divisions(divisionState),
      state(parseState), call{function, frame, result, handlerMessages(divisionState, parseState), parseState.context} {
    result.add(&resultVector);
    result.setNumDivisions(divisions.count);
    if (state.incrementalOnly) result.setPreferComplexResult();
}

FUNC_ERROR HandlerLoop::run() {
    if (divisions.count == 1) return runDivision(0);
    FUNC_ERROR const code = runEach();
    if (code != FUNC_OK) return code;
    assemble();
    result.getYVec()->setDivision(0);
    result.getXVec()->setDivision(0);
    return FUNC_OK;
}

bool HandlerLoop::mayRunFlat() const noexcept {
    return (info.flatDivisions || info.walksDivisions) && !divisions.collapse && !isIncremental();
}

FUNC_ERROR HandlerLoop::runEach() {
    if (mayRunFlat() && callFlat(call, divisions.count)) {
        produced = divisions.count;
        return FUNC_OK;
    }
    FUNC_ERROR code = FUNC_OK;
    for (std::int64_t d = 0; d < divisions.count && code == FUNC_OK && !ended; ++d) code = runDivision(d);
    return code;
}

FUNC_ERROR HandlerLoop::runDivision(std::int64_t d) {
    args.setDivision(d);
    result.setDivision(produced);
    std::int64_t count = 0;
    if (!matchArguments(&count)) return FUNC_FAILED;
    setOffset(d, count);
    if (divisions.count == 1) return call.run();
    result.beginCall();
    FUNC_ERROR const code = call.run();
    if (code == FUNC_FAILED) result.emptyVectors();
    noteOutcome(d);
    return code == FUNC_FAILED ? FUNC_OK : code;
}

void HandlerLoop::noteOutcome(std::int64_t d) {
    if (result.hasNewDivision()) {
        ++produced;
        return;
    }
    result.emptyVectors();
    dropped.push_back(d);
    ended = isIncremental() && d >= state.incrementalDivision;
}

// Gives the length that says how many points of this division there are. False after an error.
bool HandlerLoop::matchArguments(std::int64_t * count) {
    bool const matches = info.matchArgs && args.getNumArgs() == 2;
    if (matches && args.type(0) != VD_STRING && args.type(1) != VD_STRING)
        return args.matchVecs(state.messages(), count);
    NamedVector const * first = args.getYVec(0);
    *count = first != nullptr ? first->length() : 0;
    return true;
}

void HandlerLoop::setOffset(std::int64_t d, std::int64_t count) {
    if (!isIncremental()) return;
    std::int64_t offset = 0;
    if (d == state.incrementalDivision) offset = state.incrementalOffset;
    if (d < state.incrementalDivision) offset = count;
    bool const follows = args.setIncrementalOffset(offset, state.incrementalReference);
    // Constants are whole in every evaluation, and so is what is made of them alone.
    result.setIncrementalOffset(follows && args.hasIncrementalOffset() ? offset : 0);
}

void HandlerLoop::assemble() {
    NamedVector & y = *result.getYVec();
    NamedVector & ref = *result.getXVec();
    if (produced == 0 && !divisions.collapse) {
        y.reset();
        ref.reset();
    }
    if (produced < divisions.count && !isIncremental()) dropFromReference();
    setLabels();
    if (divisions.allMultiple) result.setMultiple();
    if (!divisions.collapse) return;
    y.collapseDivisions();
    if (ref.numDivisions() > 1) ref.collapseDivisions();
}

void HandlerLoop::setLabels() {
    std::shared_ptr<NameArray const> const labels = produced < divisions.count ? keptLabels() : divisions.labels;
    if (labels == nullptr) return;
    result.getXVec()->setLabels(labels, true);
    result.getYVec()->setLabels(labels, false);
}

// The labels of the divisions that have produced something.
std::shared_ptr<NameArray const> HandlerLoop::keptLabels() const {
    // Without labels only a lone division has to be told that its label is unknown.
    if (divisions.labels == nullptr) return produced == 1 ? std::make_shared<NameArray>(1, YString("?")) : nullptr;
    auto kept = std::make_shared<NameArray>();
    auto nextDropped = dropped.begin();
    std::int64_t const visited = produced + static_cast<std::int64_t>(dropped.size());
    for (std::int64_t d = 0; d < visited; ++d) {
        if (nextDropped != dropped.end() && *nextDropped == d)
            ++nextDropped;
        else
            kept->push_back((*divisions.labels)[static_cast<std::size_t>(d)]);
    }
    return kept;
}

// A reference carried along whole still has the divisions that y has lost.
void HandlerLoop::dropFromReference() {
    NamedVector & ref = *result.getXVec();
    if (ref.numDivisions() != divisions.count || produced == 0) return;
    NamedVector kept(ref.name());
    kept.allocate(ref.totalLength(), ref.type());
    auto nextDropped = dropped.begin();
    for (std::int64_t d = 0; d < divisions.count; ++d) {
        if (nextDropped != dropped.end() && *nextDropped == d)
            ++nextDropped;
        else
            appendDivision(kept, ref, d);
    }
    kept.setPhysType(ref.physType());
    if (ref.isMultiple()) kept.setMultiple();
    ref = kept;
}
