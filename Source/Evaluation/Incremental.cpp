// Extending a result from new points only.

#include "Evaluation/Action.h"
#include "Evaluation/ParseState.h"
#include "Evaluation/Resolve.h"
#include "Groups/GroupStore.h"
#include "torvelan/Evaluate.h"

namespace {

// Where the new points of a result begin.
struct Frontier {
    std::int64_t division;
    std::int64_t offset; // within it
    bool isNewDivision;  // the result does not have it yet
};

// A division as long as that of the reference is done; what is new comes in the next one.
Frontier frontierOf(XYVector const & result) {
    std::int64_t const last = result.numDivisions() - 1, length = result.length(last);
    bool const isDone = length == (last < result.ref.numDivisions() ? result.ref.length(last) : 0);
    return isDone ? Frontier{last + 1, 0, true} : Frontier{last, length, false};
}

EvalOptions optionsFor(XYVector const & result, Frontier const & frontier, YString const & displayGroup) {
    EvalOptions options;
    options.displayGroup = findGroupOrCurrent(displayGroup);
    options.incrementalOnly = true;
    options.incrementalDivision = frontier.division;
    options.incrementalOffset = frontier.offset;
    options.incrementalReference = &result.ref;
    return options;
}

// The value with aliases resolved. Null when there is none.
dvec * evaluate(char const * expr, EvalOptions const & options, ScpParseContext const & context) {
    FUNC_ERROR error = FUNC_OK;
    ExprValue * const value = parseExpression(expr, options, context, &error);
    if (value == nullptr || value->vector == nullptr || error != FUNC_OK) return nullptr;
    dvec * resolved = nullptr;
    if (!resolveVector(value->vector, &resolved, context.messages(), context)) return nullptr;
    if (resolved != value->vector) releaseTemporary(value->vector);
    value->vector = nullptr;
    return resolved;
}

void appendElements(XYVector & result, dvec const & value, std::int64_t division, std::int64_t from) {
    std::int64_t const length = value.length(division);
    if (double const * const reals = value.realData(division)) {
        for (std::int64_t i = from; i < length; ++i) result.addVal(reals[i]);
    } else if (complex const * const pairs = value.complexData(division)) {
        for (std::int64_t i = from; i < length; ++i) result.addVal(pairs[i]);
    }
}

// A new division is announced once something is there for it, since an announcement cannot be taken back.
void extend(XYVector & result, dvec const & value, Frontier const & frontier, YString const & displayGroup) {
    std::int64_t const divisions = value.numDivisions();
    std::int64_t from = frontier.offset;
    for (std::int64_t d = frontier.division; d < divisions; ++d) {
        if (d > frontier.division || frontier.isNewDivision) result.addDivision(displayGroup);
        appendElements(result, value, d, from);
        from = 0;
    }
}

ScpParseContext contextWith(YRef<MessageHandler> messages, ScpParseContext const & context) {
    ScpParseContext own(std::move(messages));
    own.scriptFunction = context.scriptFunction;
    return own;
}

} // namespace

bool vec_IncrementalEvaluate(char const * expr, XYVector * result, YString const & displayGroup, IncEvalErr * error,
                             YRef<MessageHandler> messages, ScpParseContext const & context) {
    EvaluationDepth const depth;
    *error = INC_EVAL_OK;
    if (result->totalLength() == result->ref.totalLength()) return false;
    Frontier const frontier = frontierOf(*result);
    dvec * const value = expr == nullptr ? nullptr
                                         : evaluate(expr, optionsFor(*result, frontier, displayGroup),
                                                    contextWith(std::move(messages), context));
    if (value == nullptr) {
        *error = INC_EVAL_FAILED;
        return true;
    }
    if (!value->isString()) extend(*result, *value, frontier, displayGroup);
    releaseTemporary(value);
    return false;
}
