#include "Evaluation/CallFrame.h"

#include "Evaluation/HandlerLoop.h"
#include "Evaluation/ParseState.h"
#include "torvelan/dvec.h"

#include <algorithm>
#include <new>

namespace {

constexpr char noDataMessage[] = "The vector '%s' has no data.\nThe expression cannot be evaluated";
constexpr char exceptionMessage[] = "%s\nException occurred while executing script function %s\n";
constexpr char outOfMemoryMessage[] = "Evaluation of function '%s' failed due to insufficient memory";
constexpr char const * acceptingEmpty[] = {"length", "joinstringarray", "numelems"};

int countArguments(ExprValue const * first) noexcept {
    int count = 0;
    for (ExprValue const * value = first; value != nullptr && !value->emptyArgs; value = value->next) ++count;
    return count;
}

bool acceptsCount(FuncInfo const & info, int count, MessageHandler & messages) {
    if (count < info.minArgs) {
        messages.error("Insufficient number of arguments to function '%s'", info.name);
        return false;
    }
    if (count > std::min<int>(info.maxArgs, FuncInfo::maxArguments)) {
        messages.error("Too many arguments to function '%s'", info.name);
        return false;
    }
    return true;
}

bool acceptsEmpty(FuncInfo const & info) noexcept {
    return std::any_of(std::begin(acceptingEmpty), std::end(acceptingEmpty),
                       [&](char const * name) { return equalNoCase(info.name, name); });
}

// Labels of a vector of several divisions; null when all are unknown.
std::shared_ptr<NameArray const> labelsOf(dvec const & vector) {
    std::shared_ptr<NameArray const> shared = vector.sharedLabels();
    bool const fit = shared != nullptr && static_cast<std::int64_t>(shared->size()) == vector.numDivisions();
    if (shared == nullptr || (fit && vector.isWhole())) return shared;
    auto own = std::make_shared<NameArray>();
    vector.divisionLabels(own.get());
    return own;
}

// Labels of divisions in which two vectors meet: "?" where they differ.
std::shared_ptr<NameArray const> commonLabels(std::shared_ptr<NameArray const> const & a,
                                              std::shared_ptr<NameArray const> const & b) {
    if (a == b || a == nullptr) return a;
    if (b == nullptr) return b;
    if (a->compare(*b)) return a;
    auto common = std::make_shared<NameArray>(*a);
    for (std::size_t i = 0; i < common->size(); ++i)
        if (i >= b->size() || !equalNoCase((*common)[i], (*b)[i])) (*common)[i] = "?";
    return common;
}

// The result of a call, released unless the call succeeds.
class ResultGuard {
public:
    explicit ResultGuard(ExprValue & value) noexcept : resultValue(value) {}
    ~ResultGuard() {
        if (kept) return;
        resultValue.vector->release();
        resultValue.vector = nullptr;
    }
    ResultGuard(ResultGuard const &) = delete;
    ResultGuard & operator=(ResultGuard const &) = delete;
    dvec * keep() noexcept {
        kept = true;
        return resultValue.vector;
    }

private:
    ExprValue & resultValue;
    bool kept = false;
};

// Vectors of a group are seen by others, who expect them at their first division.
struct DivisionGuard {
    FuncArgs & args;
    explicit DivisionGuard(FuncArgs & frame) noexcept : args(frame) {}
    ~DivisionGuard() { args.rewind(); }
    DivisionGuard(DivisionGuard const &) = delete;
    DivisionGuard & operator=(DivisionGuard const &) = delete;
};

class Call {
public:
    Call(FuncInfo & function, YString const & calledName, ParseState & parseState, int count)
        : info(function), state(parseState), messages(parseState.messages()), args(calledName) {
        args.setNumArgs(count);
    }

    // The code of the handler loop; FUNC_FAILED without a trace in the state when arguments were refused.
    FUNC_ERROR run(ExprValue * arguments, dvec & result);

private:
    FUNC_ERROR runUnguarded(ExprValue * arguments, dvec & result);
    bool prepare(ExprValue * arguments);
    bool prepareArgument(int i, ExprValue & value);
    dvec * addArgument(int i, ExprValue & value);
    bool joinDivisions(int i, dvec const & vector);
    bool admitDivisions(int i, std::int64_t n);

    FuncInfo & info;
    ParseState & state;
    MessageHandler & messages;
    FuncArgs args;
    DivisionState divisions;
};

FUNC_ERROR Call::run(ExprValue * arguments, dvec & result) {
    try {
        return runUnguarded(arguments, result);
    } catch (MemoryException const &) {
        messages.error(outOfMemoryMessage, info.name);
    } catch (std::bad_alloc const &) {
        messages.error(outOfMemoryMessage, info.name);
    } catch (TorvelanException const & exception) {
        messages.printf(exceptionMessage, exception.text, info.name);
    }
    if (state.functionError == FUNC_OK) state.functionError = FUNC_UNAVAILABLE;
    return FUNC_UNAVAILABLE;
}

FUNC_ERROR Call::runUnguarded(ExprValue * arguments, dvec & result) {
    if (!prepare(arguments)) return FUNC_FAILED;
    if (divisions.allMultiple) {
        result.setMultiple();
        result.ref.setMultiple();
    }
    DivisionGuard const guard(args);
    FUNC_ERROR const code = HandlerLoop(info, args, result, divisions, state).run();
    if (code != FUNC_OK && state.functionError == FUNC_OK) state.functionError = code;
    return code;
}

// Looks at every argument, so that the user sees all bad ones in one go.
bool Call::prepare(ExprValue * arguments) {
    bool ok = true;
    int i = 0;
    for (ExprValue * value = arguments; value != nullptr && !value->emptyArgs; value = value->next)
        ok &= prepareArgument(i++, *value);
    return ok;
}

bool Call::prepareArgument(int i, ExprValue & value) {
    dvec const * vector = addArgument(i, value);
    if (vector == nullptr) return false;
    bool ok = joinDivisions(i, *vector);
    if (info.argTypes[i] == ARG_REAL && vector->isComplex()) {
        messages.error("Argument %d in function '%s' is complex. Expected real", i + 1, info.name);
        ok = false;
    }
    if (vector->length() == 0 && !acceptsEmpty(info)) {
        messages.error(noDataMessage, vector->name());
        ok = false;
    }
    return ok;
}

dvec * Call::addArgument(int i, ExprValue & value) {
    dvec * const old = value.vector;
    dvec * const added = args.add(old, info.argTypes[i], state.context.messages(), state.context);
    if (added == nullptr) {
        messages.error("Type conversion of '%s' failed", old != nullptr ? old->name() : value.text);
        return nullptr;
    }
    if (added != old && old->isTemporary()) old->release();
    value.vector = added;
    return added;
}

bool Call::joinDivisions(int i, dvec const & vector) {
    std::int64_t const n = vector.numDivisions();
    if (n < 2 || info.multiDefs[i] == MULTI_WHOLE) return true;
    if (!admitDivisions(i, n)) return false;
    if (info.multiDefs[i] == MULTI_COLLAPSE) divisions.collapse = true;
    if (!vector.isMultiple()) divisions.allMultiple = false;
    divisions.labels = divisions.count == 1 ? labelsOf(vector) : commonLabels(divisions.labels, labelsOf(vector));
    divisions.count = n;
    return true;
}

bool Call::admitDivisions(int i, std::int64_t n) {
    if (info.multiDefs[i] == MULTI_REFUSED) {
        messages.error("Argument '%d', function '%s': Illegal multi-dimensioned argument", i + 1, info.name);
        return false;
    }
    if (divisions.count > 1 && divisions.count != n) {
        messages.error("Argument '%d', function '%s': Incompatible multi-dimensioned argument", i + 1, info.name);
        return false;
    }
    return true;
}

} // namespace

dvec * callFunction(FuncInfo & info, YString const & calledName, ExprValue * arguments, ExprValue & resultValue,
                    ParseState & state) {
    resultValue.vector = nullptr;
    int const count = countArguments(arguments);
    if (!acceptsCount(info, count, state.messages())) return nullptr;
    if (state.incrementalOnly && !info.supportsIncremental) return nullptr;
    resultValue.vector = new dvec(resultValue.text, nullptr, PT_UNKNOWN);
    ResultGuard guard(resultValue);
    return Call(info, calledName, state, count).run(arguments, *resultValue.vector) == FUNC_OK ? guard.keep() : nullptr;
}

void vec_CallFunction(FuncArgs const & args, FuncResult * result) {
    FuncInfo * const info = vec_FindFunction(args.getFuncName());
    if (info == nullptr || info->handler == nullptr) return;
    YRef<MessageHandler> const messages = defaultMessageHandler();
    result->beginCall();
    try {
        info->handler(args, result, info, messages, *messages, ScpParseContext(messages));
    } catch (TorvelanException const & exception) {
        messages->printf(exceptionMessage, exception.text, args.getFuncName());
    }
}
