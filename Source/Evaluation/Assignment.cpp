// Assignment to vectors and to their elements.

#include "Evaluation/Action.h"
#include "Evaluation/Resolve.h"

namespace {

constexpr int longestAliasChain = 100;

ExprValue * valueOf(YString text, dvec * vector) {
    ExprValue * value = EvaluationDepth::newValue();
    value->text = std::move(text);
    value->vector = vector;
    return value;
}

bool conversionFailed(ParseState & state, dvec const & vector) {
    state.messages().error("Type conversion of '%s' failed", vector.name());
    return false;
}

// Replaces an alias by what it stands for. False after a message.
bool resolveOperand(ParseState & state, ExprValue & operand) {
    dvec * resolved = nullptr;
    if (!resolveVector(operand.vector, &resolved, state.context.messages(), state.context))
        return conversionFailed(state, *operand.vector);
    if (resolved != operand.vector) releaseTemporary(operand.vector);
    operand.vector = resolved;
    return true;
}

bool refuseReadOnly(ParseState & state, dvec const & target) {
    if (!target.isReadOnly()) return false;
    state.messages().error("The vector '%s' is read only and may not be assigned", target.name());
    return true;
}

// The vector that is written in the end: the target of a reference alias. Null after a message.
dvec * writtenVector(ParseState & state, dvec * target) {
    dvec * vector = target;
    for (int step = 0; vector != nullptr && vector->isReferenceAlias(); ++step)
        vector = step < longestAliasChain ? vector->resolveReferenceAlias() : nullptr;
    bool const isExpression = vector != nullptr && vector != target && vector->isAlias();
    if (vector != nullptr && !isExpression) return refuseReadOnly(state, *vector) ? nullptr : vector;
    state.messages().error("The vector '%s' is an alias that resolves to an expression and cannot be assigned",
                           target->name());
    return nullptr;
}

bool fail(ParseState & state, char const * message) {
    state.messages().error(message);
    return false;
}

bool writeElement(ParseState & state, dvec & target, ExprValue & index, dvec const & rhs) {
    double i = 0;
    if (!resolveOperand(state, index) || !scalarIndex(*index.vector, &i, state.messages())) return false;
    if (rhs.length() != 1) return fail(state, "Can only assign a scalar to an indexed vector");
    if (!(i >= 0 && i < static_cast<double>(target.length()))) return fail(state, "Index out of range");
    if (rhs.type() != target.type())
        return fail(state, "Type of left and right vectors of assignment are incompatible");
    target.copyElement(rhs, static_cast<std::int64_t>(i), 0);
    return true;
}

// What remains of a target that was made for an assignment which then failed.
void abandon(dvec * target, bool wasMade) {
    if (wasMade) target->release();
}

YString elementText(YString const & target, ExprValue const & index) {
    return YString::joined(target, {"[", index.text.view(), "]"});
}

// The target in its final form, with the right side resolved. Null after a message.
dvec * prepareTarget(ParseState & state, dvec * named, ExprValue & rhs) {
    if (refuseReadOnly(state, *named) || !resolveOperand(state, rhs)) return nullptr;
    return writtenVector(state, named);
}

} // namespace

ExprValue * assignVector(ParseState & state, Token const * target, ExprValue * rhs) {
    if (hasFailed(state, rhs)) return nullptr;
    ExprValue * named = findNamed(state, target->text, true);
    if (state.substitution != nullptr) return valueOf(YString::joined(named->text, {"=", rhs->text.view()}), nullptr);
    bool const wasMade = named->vector->isTemporary();
    dvec * vector = prepareTarget(state, named->vector, *rhs);
    if (vector == nullptr) {
        abandon(named->vector, wasMade);
        return nullptr;
    }
    vector->assign(*rhs->vector);
    if (rhs->vector != vector) releaseTemporary(rhs->vector);
    named->vector = vector;
    return named;
}

ExprValue * assignElement(ParseState & state, Token const * target, ExprValue * index, ExprValue * rhs) {
    if (hasFailed(state, rhs) || hasFailed(state, index)) return nullptr;
    ExprValue * named = findNamed(state, target->text, true);
    YString text = elementText(named->text, *index);
    if (state.substitution != nullptr) return valueOf(YString::joined(text, {"=", rhs->text.view()}), nullptr);
    bool const wasMade = named->vector->isTemporary();
    dvec * vector = prepareTarget(state, named->vector, *rhs);
    bool const written = vector != nullptr && writeElement(state, *vector, *index, *rhs->vector);
    abandon(named->vector, wasMade);
    releaseTemporary(index->vector);
    ExprValue * result = written ? valueOf(std::move(text), new dvec(*rhs->vector)) : nullptr;
    releaseTemporary(rhs->vector);
    return result;
}
