// The commands that change one vector.

#include "torvelan/Commands.h"

#include "Evaluation/Action.h"
#include "Evaluation/ParseState.h"
#include "Evaluation/Resolve.h"
#include "Groups/GroupStore.h"
#include "Groups/LoosePool.h"

namespace {

// Null after a message.
dvec * find(YString const & name, MessageHandler & messages) {
    dvec * const vector = findVector(name, nullptr, false);
    if (vector == nullptr) messages.error("There is no vector of name '%s'", name);
    return vector;
}

ScpParseContext contextWith(YRef<MessageHandler> messages, ScpParseContext const & context) {
    ScpParseContext own(messages != nullptr ? std::move(messages) : context.messages());
    own.scriptFunction = context.scriptFunction;
    return own;
}

// The value of a reference expression, or null after a message. Belongs to the caller if it is a temporary.
dvec * evaluateReference(YString const & expr, ScpParseContext const & context) {
    MessageHandler & messages = *context.messages();
    FUNC_ERROR error = FUNC_OK;
    ExprValue const * const value = parseExpression(expr.c_str(), EvalOptions(), context, &error);
    if (value != nullptr && value->next != nullptr) {
        messages.warning("Extra expression ignored");
        return nullptr;
    }
    dvec * resolved = nullptr;
    bool const hasValue = value != nullptr && value->vector != nullptr && error == FUNC_OK;
    if (hasValue && resolveVector(value->vector, &resolved, context.messages(), context)) return resolved;
    messages.error("Cannot evaluate reference expression '%s'", expr);
    return nullptr;
}

bool haveSameLengths(BaseVector const & a, BaseVector const & b) {
    if (a.totalLength() != b.totalLength() || a.numDivisions() != b.numDivisions()) return false;
    for (std::int64_t d = 0; d < a.numDivisions(); ++d)
        if (a.length(d) != b.length(d)) return false;
    return true;
}

bool canRefer(dvec const & target, dvec const & reference, YString const & expr, MessageHandler & messages) {
    for (dvec const * vector : {&target, &reference}) {
        if (!vector->noData()) continue;
        messages.error("The vector '%s' has no data. The expression cannot be evaluated", vector->name());
        return false;
    }
    if (haveSameLengths(target, reference)) return true;
    messages.error("Reference '%s' is not the same length as vector '%s'", expr, target.name());
    return false;
}

} // namespace

FUNC_ERROR vec_LetCommand(YString const & expr, YRef<MessageHandler> messages, bool letFlag,
                          ScpParseContext const & context) {
    EvaluationDepth const depth;
    EvalOptions options;
    options.letFlag = letFlag;
    ExprValue const * const value = parseExpression(expr.c_str(), options, contextWith(std::move(messages), context));
    return value != nullptr && value->vector != nullptr ? FUNC_OK : FUNC_FAILED;
}

bool vec_SetRefCommand(YString const & vector, YString const & refExpr, YRef<MessageHandler> messages,
                       ScpParseContext const & context) {
    EvaluationDepth const depth;
    ScpParseContext const own = contextWith(std::move(messages), context);
    if (find(vector, *own.messages()) == nullptr) return false;
    dvec * const reference = evaluateReference(refExpr, own);
    if (reference == nullptr) return false;
    // The evaluation may have run a script, and the script may have ended the vector.
    dvec * const target = find(vector, *own.messages());
    bool const good = target != nullptr && canRefer(*target, *reference, refExpr, *own.messages());
    if (good) {
        NamedVector const shared = *reference; // which may be the target itself
        target->ref.reset();
        target->ref = shared;
    }
    releaseTemporary(reference);
    return good;
}

bool vec_SetUnitsCommand(YString const & vector, YString const & unit, MessageHandler & messages) {
    dvec * const target = find(vector, messages);
    if (target == nullptr) return false;
    PhysType type = PT_UNKNOWN;
    if (!sp_GetPhysTypeFromName(unit, &type)) {
        messages.error("Unit '%s' not recognised", unit);
        return false;
    }
    target->setPhysType(type);
    return true;
}

bool vec_MakeAliasCommand(YString const & vector, MessageHandler & messages) {
    dvec * const target = find(vector, messages);
    if (target == nullptr) return false;
    if (!target->isString()) {
        messages.error("The vector '%s' is not a string and cannot\nbe converted to an alias", vector);
        return false;
    }
    target->flags |= VF_ALIAS;
    return true;
}

bool vec_SetReadOnlyCommand(YString const & vector, MessageHandler & messages) {
    dvec * const target = find(vector, messages);
    if (target == nullptr) return false;
    target->flags |= VF_READONLY;
    return true;
}
