#include "Evaluation/Action.h"

#include "Evaluation/CallFrame.h"
#include "Evaluation/Operators.h"
#include "Evaluation/ScriptFunctions.h"
#include "Groups/GroupStore.h"
#include "support/Numbers.h"
#include "torvelan/Substitution.h"

#include <string>
#include <utility>

namespace {

constexpr char noDataMessage[] = "The vector '%s' has no data.\nThe expression cannot be evaluated";

// The operands have been read for the last time: their texts would only take room until the evaluation ends.
void dropTexts(ExprValue * first) noexcept {
    for (ExprValue * value = first; value != nullptr; value = value->next) value->text = YString();
}

// Runs a call whose text is known already.
ExprValue * call(ParseState & state, FuncInfo & info, YString const & calledName, ExprValue * arguments, YString text) {
    ExprValue * result = EvaluationDepth::newValue();
    result->text = std::move(text);
    if (state.substitution == nullptr && callFunction(info, calledName, arguments, *result, state) == nullptr)
        result = nullptr;
    dropTexts(arguments);
    return result;
}

std::string joinTexts(ExprValue const * first) {
    std::string text;
    for (ExprValue const * value = first; value != nullptr; value = value->next) {
        if (value != first) text += ", ";
        text += value->text.view();
    }
    return text;
}

ExprValue * newValue(YString text, dvec * vector) {
    ExprValue * value = EvaluationDepth::newValue();
    value->text = std::move(text);
    value->vector = vector;
    return value;
}

// What a name calls: a registered function, or a script, which Execute runs in its place.
struct Callee {
    FuncInfo * info = nullptr; // null when there is no such function
    YString name = {};         // for text forms
    bool isScript = false;
    YString script = {};
    int minArgs = 0, maxArgs = 0; // of a script
};

Callee findCallee(YString const & name) {
    if (FuncInfo * const info = vec_FindFunction(name)) return {.info = info, .name = info->name};
    ScriptFunction const * const function = findScriptFunction(name);
    if (function == nullptr) return {.name = name};
    return {vec_FindFunction("Execute"), function->name,    true,
            function->scriptName,        function->minArgs, function->maxArgs};
}

bool acceptsCount(Callee const & callee, ExprValue const * arguments, MessageHandler & messages) {
    int count = 0;
    for (ExprValue const * value = arguments; value != nullptr; value = value->next) ++count;
    if (count > callee.maxArgs)
        messages.error("Too many arguments to function '%s'", callee.name);
    else if (count < callee.minArgs)
        messages.error("Insufficient number of arguments to function '%s'", callee.name);
    else
        return true;
    return false;
}

// The script's name goes in front of the arguments. The context tells handlers of it during this call alone.
ExprValue * callScript(ParseState & state, Callee const & callee, ExprValue * arguments, YString text) {
    if (!acceptsCount(callee, arguments, state.messages())) return nullptr;
    ExprValue * const script =
        newValue(callee.script, new dvec(callee.script, callee.script.view(), nullptr, PT_UNKNOWN));
    script->next = arguments;
    bool const outer = std::exchange(state.context.scriptFunction, true);
    ExprValue * const result = call(state, *callee.info, callee.info->name, script, std::move(text));
    state.context.scriptFunction = outer;
    return result;
}

// How a vector is written in text forms: the text stays a valid name while the display group is current.
YString displayName(ParseState const & state, dvec const & vector, bool wasQualified) {
    Group const * group = vector.owner();
    NameSpace const & names = nameSpace();
    if (group == nullptr || group == names.global || group == names.local) return vector.name();
    if (wasQualified || group != state.displayGroup) return YString::joined(group->name, {":", vector.name().view()});
    return YString::joined(":", {vector.name().view()});
}

void reportMissingVector(ParseState & state, YString const & name) {
    Group const * current = nameSpace().current;
    state.messages().error("Cannot find vector of name '%s'",
                           current != nullptr ? current->resolvePseudonym(name) : name);
}

ExprValue * substituteCall(ParseState & state, YString const & name, ExprValue * arguments) {
    NameArray texts;
    for (ExprValue const * value = arguments; value != nullptr; value = value->next) texts.push_back(value->text);
    return newValue(state.substitution->substituteFunction(name, texts), nullptr);
}

} // namespace

bool hasFailed(ParseState const & state, ExprValue const * value) noexcept {
    if (value == nullptr) return true;
    return value->vector == nullptr && !value->emptyArgs && state.substitution == nullptr;
}

bool anyFailed(ParseState const & state, ExprValue const * first) noexcept {
    for (ExprValue const * value = first; value != nullptr; value = value->next)
        if (hasFailed(state, value)) return true;
    return first == nullptr;
}

void releaseTemporary(dvec * vector) {
    if (vector != nullptr && vector->isTemporary()) vector->release();
}

ExprValue * binaryOperator(ParseState & state, ExprValue * left, int token, ExprValue * right) {
    if (hasFailed(state, left) || hasFailed(state, right)) return nullptr;
    OperatorRow * row = findOperator(token);
    YString text = YString::joined(left->text, {row->spelling, right->text.view()});
    left->next = right;
    right->next = nullptr;
    return call(state, row->info, row->info.name, left, std::move(text));
}

ExprValue * unaryOperator(ParseState & state, int token, ExprValue * operand) {
    if (hasFailed(state, operand)) return nullptr;
    OperatorRow * row = findOperator(token);
    YString text = YString::joined(row->spelling, {operand->text.view()});
    operand->next = nullptr;
    return call(state, row->info, row->info.name, operand, std::move(text));
}

ExprValue * parenthesise(ExprValue * value) {
    if (value != nullptr) value->text = YString::joined("(", {value->text.view(), ")"});
    return value;
}

ExprValue * complexLiteral(ParseState & state, ExprValue * real, ExprValue * imaginary) {
    return parenthesise(binaryOperator(state, real, ',', imaginary));
}

ExprValue * findNamed(ParseState & state, YString const & name, bool createIfMissing) {
    if (state.substitution != nullptr) return newValue(state.substitution->substituteName(name), nullptr);
    bool wasQualified = false;
    // An assignment never lands on a vector of the current group unless qualified.
    bool const skipCurrentGroup = state.skipCurrentGroup || createIfMissing;
    dvec * vector = findVector(name, &wasQualified, skipCurrentGroup);
    if (vector == nullptr && createIfMissing) vector = new dvec(name.c_str(), &state.messages());
    if (vector == nullptr) {
        reportMissingVector(state, name);
        return nullptr;
    }
    return newValue(displayName(state, *vector, wasQualified), vector);
}

ExprValue * nameValue(ParseState & state, Token const * name) {
    return findNamed(state, name->text, false);
}

ExprValue * numberValue(ParseState & state, Token const * number) {
    if (state.substitution != nullptr) return newValue(YString(number->number), nullptr);
    YString text = sp_FormatG(number->number, 6, true);
    return newValue(text, new dvec(text, number->number));
}

ExprValue * stringValue(ParseState & state, Token const * string) {
    YString text = YString::joined("'", {string->text.view(), "'"});
    if (state.substitution != nullptr) return newValue(std::move(text), nullptr);
    return newValue(std::move(text), new dvec(string->text, string->text.view(), nullptr, PT_UNKNOWN));
}

ExprValue * functionCall(ParseState & state, Token const * name, ExprValue * arguments) {
    if (anyFailed(state, arguments)) return nullptr;
    if (arguments->emptyArgs) arguments = nullptr;
    Callee const callee = findCallee(name->text);
    YString const & shown = callee.name;
    if (state.substitution != nullptr && state.substitution->substitutesFunctions())
        return substituteCall(state, shown, arguments);
    YString text = YString::joined(shown, {"(", joinTexts(arguments), ")"});
    if (state.substitution != nullptr) return newValue(std::move(text), nullptr);
    if (callee.info == nullptr) {
        state.messages().error("The function '%s' does not exist", name->text);
        return nullptr;
    }
    return callee.isScript ? callScript(state, callee, arguments, std::move(text))
                           : call(state, *callee.info, name->text, arguments, std::move(text));
}

ExprValue * emptyArguments() {
    ExprValue * marker = EvaluationDepth::newValue();
    marker->emptyArgs = true;
    return startList(marker);
}

ExprValue * startList(ExprValue * value) {
    if (value == nullptr) value = EvaluationDepth::newValue();
    value->next = value;
    return value;
}

ExprValue * appendToList(ExprValue * last, ExprValue * value) {
    if (value == nullptr) value = EvaluationDepth::newValue();
    value->next = last->next;
    last->next = value;
    return value;
}

ExprValue * finishList(ExprValue * last) {
    ExprValue * first = last->next;
    last->next = nullptr;
    return first;
}

namespace {

// Checks one member of a bracketed list. False after a message.
bool acceptMember(ParseState & state, dvec const & member) {
    if (member.noData()) {
        state.messages().error(noDataMessage, member.name());
        return false;
    }
    if (member.length() != 1) {
        state.messages().error("'%s' is non-scalar. Elements in bracketed lists must be scalar", member.name());
        return false;
    }
    return true;
}

// The number of members, which are all scalars of the first one's kind; -1 after a message. *type is what they
// measure, unknown when they differ.
std::int64_t checkMembers(ParseState & state, ExprValue const * first, YString const & text, PhysType * type) {
    std::int64_t count = 0;
    *type = first->vector->physType();
    for (ExprValue const * value = first; value != nullptr; value = value->next, ++count) {
        if (!acceptMember(state, *value->vector)) return -1;
        if (value->vector->type() != first->vector->type()) {
            state.messages().error("The vectors in the list '%s' are not all of the same type", text);
            return -1;
        }
        if (value->vector->physType() != *type) *type = PT_UNKNOWN;
    }
    return count;
}

} // namespace

ExprValue * bracketedList(ParseState & state, ExprValue * first) {
    if (anyFailed(state, first)) return nullptr;
    YString text = YString::joined("[", {joinTexts(first), "]"});
    if (state.substitution != nullptr) return newValue(std::move(text), nullptr);
    PhysType type;
    std::int64_t const count = checkMembers(state, first, text, &type);
    if (count < 0) return nullptr;
    dvec * list = new dvec(text, nullptr, type);
    list->setSize(count, first->vector->type());
    std::int64_t i = 0;
    for (ExprValue * value = first; value != nullptr; value = value->next) {
        list->copyElement(*value->vector, i++, 0);
        releaseTemporary(value->vector);
        value->vector = nullptr;
    }
    dropTexts(first);
    return newValue(std::move(text), list);
}

void storeResult(ParseState & state, ExprValue * first) {
    state.result = first;
}

void reportBadSyntax(ParseState & state) {
    // Values that were stored before the stray token was seen do not count.
    state.result = nullptr;
    if (state.errorReported) return;
    state.errorReported = true;
    state.messages().error("Bad syntax in expression '%s'", state.text);
}
