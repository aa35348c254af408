// The entries of the evaluator.

#include "torvelan/Evaluate.h"

#include "Evaluation/Action.h"
#include "Evaluation/Grammar.h"
#include "Evaluation/ParseState.h"
#include "Evaluation/Resolve.h"
#include "Groups/GroupStore.h"
#include "support/Numbers.h"
#include "support/System.h"

namespace {

// How far evaluations may nest, through aliases and functions that evaluate, before the stack could run out.
constexpr int deepestNesting = 256;
constexpr std::size_t stackReserve = 64 * 1024;

constexpr int printPrecision = 15; // digits of numbers that become text

constexpr char noDataMessage[] = "The vector '%s' has no data.\nThe expression cannot be evaluated";

bool nestsTooDeep() noexcept {
    int const depth = EvaluationDepth::depth();
    return depth > deepestNesting || (depth > 1 && sp_StackAvail() < stackReserve);
}

YString elementText(BaseVector const & vector, std::int64_t i) {
    if (vector.isString()) return YString(vector.getString(i));
    YString const re = sp_FormatG(vector.getReal(i), printPrecision);
    if (!vector.isComplex()) return re;
    return YString::joined("(", {re.view(), ",", sp_FormatG(vector.getImag(i), printPrecision).view(), ")"});
}

// The first value of an expression list if it evaluated without failure, else null.
dvec * firstVector(char const * expr, EvalOptions const & options, ScpParseContext const & context) {
    FUNC_ERROR error = FUNC_OK;
    ExprValue const * value = parseExpression(expr, options, context, &error);
    return value != nullptr && error == FUNC_OK ? value->vector : nullptr;
}

// The name step of the plotting entry: the vector is called by its text form. A member of a group keeps its name, a
// copy takes the new one.
dvec * adoptValueName(dvec * vector, ExprValue const & value) {
    if (equalNoCase(vector->name(), value.text)) return vector;
    if (!vector->isTemporary()) vector = new dvec(*vector);
    vector->setName(value.text);
    return vector;
}

enum class Listed { yes, no, stop };

Listed appendValue(ExprValue const & value, YArray<XYVector *> & out, ScpParseContext const & context) {
    MessageHandler & messages = *context.messages();
    if (value.vector == nullptr) return Listed::no;
    if (value.vector->noData()) {
        messages.error(noDataMessage, value.vector->name());
        return Listed::no;
    }
    dvec * vector = adoptValueName(value.vector, value);
    dvec * resolved = nullptr;
    if (!resolveVector(vector, &resolved, context.messages(), context)) {
        messages.error("Type conversion of '%s' failed", vector->name());
        return Listed::stop;
    }
    if (resolved != vector) releaseTemporary(vector);
    if (resolved->noData()) {
        messages.error(noDataMessage, resolved->name());
        return Listed::no;
    }
    out.push_back(resolved);
    return Listed::yes;
}

// Appends the values of a list. False if any failed.
bool appendValues(ExprValue const * first, YArray<XYVector *> & out, ScpParseContext const & context) {
    bool good = first != nullptr;
    for (ExprValue const * value = first; value != nullptr; value = value->next) {
        Listed const listed = appendValue(*value, out, context);
        good = good && listed == Listed::yes;
        if (listed == Listed::stop) break;
    }
    return good;
}

} // namespace

ScpParseContext::ScpParseContext(YRef<MessageHandler> handler)
    : messages_(handler != nullptr ? std::move(handler) : std::make_shared<NullMessageHandler>()) {}

ParseState::ParseState(char const * expression, EvalOptions const & options, ScpParseContext const & scriptContext)
    : EvalOptions(options), context(scriptContext), position(expression), text(expression) {}

void * ParseState::allocateStack(std::size_t size) noexcept {
    outgrownStack_ = std::move(parserStack_);
    parserStack_.reset(std::malloc(size));
    return parserStack_.get();
}

void ParseState::freeStack(void * stack) noexcept {
    if (stack == outgrownStack_.get()) outgrownStack_.reset();
    if (stack == parserStack_.get()) parserStack_.reset();
}

ExprValue * parseExpression(char const * text, EvalOptions const & options, ScpParseContext const & context,
                            FUNC_ERROR * functionError) {
    EvaluationDepth const depth;
    if (nestsTooDeep()) {
        context.messages()->error("Expression '%s' is nested too deeply", text);
        return nullptr;
    }
    ParseState state(text, options, context);
    int const code = runParser(state);
    if (functionError != nullptr) *functionError = state.functionError;
    return code == 0 && !state.errorReported ? state.result : nullptr;
}

VecEvalError vec_Evaluate(double * out, YString const & expr, ScpParseContext const & context) {
    *out = 0.0;
    EvaluationDepth const depth;
    EvalOptions options;
    options.skipCurrentGroup = true;
    dvec const * vector = firstVector(expr.c_str(), options, context);
    if (vector == nullptr || !vector->isReal() || vector->length() != 1) return VEC_EVAL_FAILED;
    *out = vector->getReal(0);
    return VEC_EVAL_OK;
}

VecEvalError vec_Evaluate(YArray<YString> * out, int maxCount, char const * expr, ScpParseContext const & context,
                          bool skipCurrentGroup) {
    EvaluationDepth const depth;
    EvalOptions options;
    options.skipCurrentGroup = skipCurrentGroup;
    dvec * vector = expr != nullptr ? firstVector(expr, options, context) : nullptr;
    if (vector == nullptr) return VEC_EVAL_FAILED;
    std::int64_t const length = vector->length();
    if (length == 0) context.messages()->error(noDataMessage, vector->name());
    std::int64_t const count = maxCount < 0 || maxCount > length ? length : maxCount;
    for (std::int64_t i = 0; i < count; ++i) out->push_back(elementText(*vector, i));
    releaseTemporary(vector);
    return count > 0 ? VEC_EVAL_OK : VEC_EVAL_FAILED;
}

namespace {

// The first value resolved, with data; null after a message.
dvec * resolvedFirst(char const * expr, EvalOptions const & options, ScpParseContext const & context) {
    dvec * vector = expr != nullptr ? firstVector(expr, options, context) : nullptr;
    if (vector == nullptr) return nullptr;
    dvec * resolved = nullptr;
    if (!resolveVector(vector, &resolved, context.messages(), context)) {
        context.messages()->error("Type conversion of '%s' failed", vector->name());
        releaseTemporary(vector);
        return nullptr;
    }
    if (resolved != vector) releaseTemporary(vector);
    if (!resolved->noData()) return resolved;
    context.messages()->error(noDataMessage, resolved->name());
    releaseTemporary(resolved);
    return nullptr;
}

} // namespace

int vec_Evaluate(char ** out, char const * expr, ScpParseContext const & context, bool equalsIsComparison,
                 bool skipCurrentGroup) {
    if (out != nullptr) *out = nullptr;
    EvaluationDepth const depth;
    EvalOptions options;
    options.equalsIsComparison = equalsIsComparison;
    options.skipCurrentGroup = skipCurrentGroup;
    dvec * vector = resolvedFirst(expr, options, context);
    if (vector == nullptr) return 0;
    if (out != nullptr) *out = elementText(*vector, 0).copy();
    releaseTemporary(vector);
    return out != nullptr ? 1 : 0;
}

VecEvalError vec_Evaluate(YString * out, YString const & expr, ScpParseContext const & context) {
    YArray<YString> texts;
    VecEvalError const error = vec_Evaluate(&texts, 1, expr.c_str(), context, true);
    if (error == VEC_EVAL_OK) *out = texts.front();
    return error;
}

VecEvalError vec_Evaluate(YString * out, YString const & expr, bool skipCurrentGroup) {
    YArray<YString> texts;
    VecEvalError const error = vec_Evaluate(&texts, 1, expr.c_str(), ScpParseContext(nullptr), skipCurrentGroup);
    if (error == VEC_EVAL_OK) *out = texts.front();
    return error;
}

VEC_ERROR vec_EvalVecList(char const * expr, YArray<XYVector *> * out, ScpParseContext const & context,
                          YString const & displayGroupName, bool incrementalOnly) {
    if (expr == nullptr) return VEC_NULL_EXPRESSION;
    EvaluationDepth const depth;
    EvalOptions options;
    options.displayGroup = findGroupOrCurrent(displayGroupName);
    options.incrementalOnly = incrementalOnly;
    FUNC_ERROR error = FUNC_OK;
    ExprValue const * first = parseExpression(expr, options, context, &error);
    if (!appendValues(first, *out, context) || error != FUNC_OK) return VEC_EXPRESSION_FAILED;
    return options.displayGroup != nullptr ? VEC_OK : VEC_NO_GROUP;
}

VEC_ERROR vec_GetNumericVector(YString const & group, YString const & name, XYVector ** out,
                               YRef<MessageHandler> messages, ScpParseContext const & context) {
    EvaluationDepth const depth;
    Group const * owner = group.empty() ? nullptr : findGroup(group);
    if (!group.empty() && owner == nullptr) return VEC_NO_VECTOR;
    dvec * vector = owner != nullptr ? owner->find(name) : findVector(name, nullptr, false);
    dvec * resolved = nullptr;
    if (messages == nullptr) messages = context.messages();
    if (vector == nullptr || !resolveVector(vector, &resolved, messages, context)) return VEC_NO_VECTOR;
    if (out != nullptr) *out = resolved;
    return VEC_OK;
}

void vec_ReleaseVector(XYVector * vector) {
    releaseTemporary(static_cast<dvec *>(vector));
}

bool vec_IsAlias(XYVector const * vector) {
    return vector != nullptr && static_cast<dvec const *>(vector)->isAlias();
}
