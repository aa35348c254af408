// Functions that ask about vectors.

#include "Evaluation/Action.h"
#include "Evaluation/Resolve.h"
#include "Funcs/FunctionFamily.h"
#include "Funcs/Waveform.h"
#include "Groups/GroupStore.h"

#include <cmath>

namespace {

FUNC_ERROR giveWhether(FuncResult & result, bool answer) {
    giveNumber(result, answer ? 1.0 : 0.0, PT_NONE);
    return FUNC_OK;
}

FUNC_ERROR isComplex(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    return giveWhether(result, args.type(0) == VD_COMPLEX);
}

FUNC_ERROR isNum(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    return giveWhether(result, args.type(0) == VD_REAL || args.type(0) == VD_COMPLEX);
}

FUNC_ERROR isStr(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    return giveWhether(result, args.type(0) == VD_STRING);
}

FUNC_ERROR physTypeName(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    giveStrings(result, {std::string(sp_GetPhysTypeName(args.physType(0)))});
    return FUNC_OK;
}

FUNC_ERROR refName(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    giveStrings(result, {std::string(args.refName(0))});
    return FUNC_OK;
}

// A string names the vector that is meant.
FUNC_ERROR units(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    PhysType type = args.physType(0);
    if (args.type(0) == VD_STRING) {
        dvec const * const vector = findVector(textOf(args, 0), nullptr, false);
        if (vector == nullptr) return FUNC_OK;
        type = vector->physType();
    }
    giveStrings(result, {std::string(sp_GetPhysTypeUnit(type))});
    return FUNC_OK;
}

// --- existence

FUNC_ERROR isTrue(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    bool const searchesCurrent = equalNoCase(textOf(args, 1), "SearchCurrent");
    dvec const * const vector = findVector(textOf(args, 0), nullptr, !searchesCurrent);
    return giveWhether(result, vector != nullptr && !vector->noData() && vector->getReal(0) != 0);
}

FUNC_ERROR existVec(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    bool const isLimited = equalNoCase(textOf(args, 1), "GlobalLocal");
    bool wasQualified = false, existsAsPlainName = false;
    dvec const * const vector = findVector(textOf(args, 0), &wasQualified, isLimited, &existsAsPlainName);
    double const found = vector != nullptr ? 1 : 0;
    giveNumber(result, wasQualified && existsAsPlainName ? 2 : found, PT_NONE);
    return FUNC_OK;
}

// Without a colon as an expression would find it; with one in the group that stands before it.
dvec * namedVector(FuncArgs const & args) {
    std::string_view const name = textOf(args, 0);
    if (args.getNumArgs() < 2) return findVector(name, nullptr, false);
    Group const * const group = findGroupOrCurrent(textOf(args, 1));
    return group != nullptr ? group->find(name) : nullptr;
}

FUNC_ERROR vec(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler> messages, MessageHandler &,
               ScpParseContext const & context) {
    dvec * const vector = namedVector(args);
    dvec * resolved = nullptr;
    if (vector == nullptr || !resolveVector(vector, &resolved, messages, context)) return FUNC_OK;
    result->copyVector(*resolved, resolved->ref);
    if (resolved != vector) releaseTemporary(resolved);
    return FUNC_OK;
}

// --- spacing of a sweep

constexpr double spacingTolerance = 0.01;

bool isNear(double a, double b) noexcept {
    return std::fabs(a - b) <= spacingTolerance * std::fabs(b);
}

// Each value the same multiple of the one before, and not also the same step away.
template <class At> bool isLogarithmic(At const & at, std::int64_t n) {
    if (n < 3 || !(at(0) > 0)) return false;
    double const ratio = at(1) / at(0), step = at(1) - at(0);
    bool isLinear = true;
    for (std::int64_t i = 2; i < n; ++i) {
        if (!(at(i) > 0) || !isNear(at(i) / at(i - 1), ratio)) return false;
        isLinear = isLinear && isNear(at(i) - at(i - 1), step);
    }
    return ratio != 1 && !isLinear;
}

bool isLogarithmic(double const * reals, complex const * pairs, std::int64_t n) {
    return isLogarithmic([=](std::int64_t i) { return reals != nullptr ? reals[i] : pairs[i].re; },
                         reals != nullptr || pairs != nullptr ? n : 0);
}

// Of the reference, or of the values of a vector that has none.
FUNC_ERROR hasLogSpacing(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    bool const answer = args.refLength(0) > 0
                            ? isLogarithmic(args.refData(0), args.complexRefData(0), args.refLength(0))
                            : isLogarithmic(args.data(0), args.complexData(0), args.length(0));
    return giveWhether(result, answer);
}

constexpr argType text = ARG_STRING, any = ARG_ANY;
constexpr MultiDef whole = MULTI_WHOLE;

constexpr FunctionRow rows[] = {
    {"ExistVec", handlerOf<existVec>, 1, 2, {text, text}, {}, "Whether there is a vector of a name"},
    {"HasLogSpacing", handlerOf<hasLogSpacing>, 1, 1, {ARG_NUMERIC}, {whole}, "Whether x values are spaced by a ratio"},
    {"IsComplex", handlerOf<isComplex>, 1, 1, {any}, {whole}, "Whether a vector is complex"},
    {"IsNum", handlerOf<isNum>, 1, 1, {any}, {whole}, "Whether a vector is real or complex"},
    {"IsStr", handlerOf<isStr>, 1, 1, {any}, {whole}, "Whether a vector is a string vector"},
    {"PhysType", handlerOf<physTypeName>, 1, 1, {any}, {whole}, "What a vector measures"},
    {"RefName", handlerOf<refName>, 1, 1, {any}, {whole}, "Name of the reference of a vector"},
    {"True", handlerOf<isTrue>, 1, 2, {text, text}, {}, "Whether a vector exists and its first value is not 0"},
    {"Units", handlerOf<units>, 1, 1, {any}, {whole}, "Unit of a vector, or of the vector of a name"},
    {"Vec", vec, 1, 2, {text, text}, {}, "The vector of a name"},
};

FunctionFamily const family(rows);

} // namespace
