#include "Evaluation/Operators.h"

#include "Evaluation/ElementBlocks.h"
#include "Evaluation/EvaluatorHandlers.h"
#include "Evaluation/PlacedFunction.h"
#include "Evaluation/StringOperators.h"

#include <algorithm>
#include <array>
#include <iterator>

using namespace kernels;

namespace {

// --- the element table

// Pairs of operand kinds.
enum Pair { realReal, realComplex, complexReal, complexComplex, pairCount, noPair };

struct PairLoop {
    Loop loop = nullptr;
    VD_type result = VD_REAL;
};

struct ElementRow {
    char const * name; // in messages
    PairLoop loops[pairCount];
    PhysType (*rule)(PhysType, PhysType);
    bool keepRef;
};

constexpr PairLoop real(Loop loop) {
    return {loop, VD_REAL};
}

constexpr PairLoop pair(Loop loop) {
    return {loop, VD_COMPLEX};
}

// The names of SUBTRACT and LESS_OR_EQUAL have always been those; messages show them.
enum Row {
    ADD,
    SUBTRACT,
    MULTIPLY,
    DIVIDE,
    POWER,
    EQUAL,
    PAIR,
    MODULO,
    GREATER,
    LESS,
    GREATER_OR_EQUAL,
    LESS_OR_EQUAL,
    UNEQUAL,
    AND,
    OR,
    MAXIMUM,
    MINIMUM
};

constexpr ElementRow elementRows[] = {
    {"+", {real(realAdd), pair(realAddComplex), pair(complexAddReal), pair(complexAddComplex)}, add, true},
    {"=",
     {real(realSubtract), pair(realSubtractComplex), pair(complexSubtractReal), pair(complexSubtractComplex)},
     add,
     true},
    {"*",
     {real(realMultiply), pair(realMultiplyComplex), pair(complexMultiplyReal), pair(complexMultiplyComplex)},
     mult,
     true},
    {"/", {real(realDivide), pair(realDivideComplex), pair(complexDivideReal), pair(complexDivideComplex)}, div, true},
    {"^", {real(realPower), pair(realPowerComplex), pair(complexPowerReal), pair(complexPowerComplex)}, unknown, true},
    {"==", {real(realEqual), real(realEqualComplex), real(complexEqualReal), real(complexEqualComplex)}, none, true},
    {",", {pair(realPair), pair(realPairComplex), pair(complexPairReal), pair(complexPairComplex)}, add, true},
    {"%", {real(realModulo), {}, {}, {}}, unknown, true},
    {">", {real(realGreater), {}, {}, {}}, none, true},
    {"<", {real(realLess), {}, {}, {}}, none, true},
    {">=", {real(realGreaterOrEqual), {}, {}, {}}, none, true},
    {">=", {real(realLessOrEqual), {}, {}, {}}, none, true},
    {"!=",
     {real(realUnequal), real(realUnequalComplex), real(complexUnequalReal), real(complexUnequalComplex)},
     none,
     true},
    {"&&", {real(realAnd), {}, {}, {}}, none, true},
    {"||", {real(realOr), {}, {}, {}}, none, true},
    {"max", {real(realMax), {}, {}, {}}, add, false},
    {"min", {real(realMin), {}, {}, {}}, add, false},
};
static_assert(std::size(elementRows) == MINIMUM + 1);

// --- one call of a row

Pair pairOf(VD_type a, VD_type b) noexcept {
    if (a == VD_REAL) return b == VD_REAL ? realReal : b == VD_COMPLEX ? realComplex : noPair;
    if (a == VD_COMPLEX) return b == VD_REAL ? complexReal : b == VD_COMPLEX ? complexComplex : noPair;
    return noPair;
}

// An argument as the loops read it. A repeated scalar lies in the object itself.
class Side {
public:
    Side(FuncArgs const & args, int i) : length_(args.length(i)) {
        bool const isComplex = args.type(i) == VD_COMPLEX;
        operand_.width = isComplex ? 2 : 1;
        if (args.isRepeatedScalar(i)) {
            value_ = args.repeatedValue(i);
            operand_ = {&value_.re, operand_.width, true};
        } else {
            operand_.data = isComplex ? reinterpret_cast<double const *>(args.complexData(i)) : args.data(i);
        }
    }
    Side(Side const &) = delete;
    Side & operator=(Side const &) = delete;

    std::int64_t length() const noexcept { return length_; }
    Operand const & operand() const noexcept { return operand_; }
    bool canRepeat() const noexcept { return length_ == 1; }
    void repeat() noexcept { operand_.repeated = true; }

private:
    std::int64_t length_;
    complex value_;
    Operand operand_;
};

// Elements of the result: the common length, where one element stands for any number of them; -1 for lengths that do
// not go together.
std::int64_t matchLengths(Side & a, Side & b) noexcept {
    if (a.length() == b.length()) return a.length();
    if (!a.canRepeat() && !b.canRepeat()) return -1;
    Side & scalar = a.canRepeat() ? a : b;
    scalar.repeat();
    return std::max(a.length() == 1 ? b.length() : a.length(), std::int64_t{0});
}

// Room for the result: that of a temporary operand where it is free, else new.
void makeRoom(FuncArgs const & args, FuncResult & result, VD_type kind, std::int64_t count) {
    for (int i : {0, 1})
        if (args.type(i) == kind && result.takeStorage(args, i, count)) return;
    result.allocate(count, ALLOC_HINT, args.totalLength(0));
}

double * elements(FuncResult & result, VD_type kind) {
    return kind == VD_REAL ? result.data() : reinterpret_cast<double *>(result.complexData());
}

FUNC_ERROR applyRow(ElementRow const & row, FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    result.setPhysType(row.rule(args.physType(0), args.physType(1)), PT_UNCHANGED);
    Pair const kinds = pairOf(args.type(0), args.type(1));
    if (kinds == noPair) return FUNC_OK;
    auto const [loop, kind] = row.loops[kinds];
    if (loop == nullptr) {
        messages.error("The operator '%s' requires real arguments", row.name);
        return FUNC_FAILED;
    }
    Side a(args, 0), b(args, 1);
    std::int64_t const count = matchLengths(a, b);
    if (count < 0) return FUNC_OK;
    result.setType(kind, kind == VD_REAL ? VD_REAL : args.refType(0));
    makeRoom(args, result, kind, count);
    int const refused = runLoop(loop, elements(result, kind), kind == VD_REAL ? 1 : 2, a.operand(), b.operand(),
                                static_cast<std::size_t>(count));
    if (row.keepRef) result.copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    if (refused == refusedNothing) return FUNC_OK;
    messages.error("Arguments out of range for operator '%s'", row.name);
    result.emptyVectors();
    return FUNC_FAILED;
}

// --- handlers

template <Row row>
FUNC_ERROR rowHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                      MessageHandler & messages, ScpParseContext const &) {
    return applyRow(elementRows[row], args, *result, messages);
}

// Strings are compared without regard to case; anything else goes to the row.
template <Row row, StringRelation holds>
FUNC_ERROR comparisonHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                             MessageHandler & messages, ScpParseContext const &) {
    if (args.type(0) == VD_STRING && args.type(1) == VD_STRING) return compareStrings(args, *result, messages, holds);
    return applyRow(elementRows[row], args, *result, messages);
}

bool equal(int order) {
    return order == 0;
}
bool unequal(int order) {
    return order != 0;
}
bool greater(int order) {
    return order > 0;
}
bool greaterOrEqual(int order) {
    return order >= 0;
}
bool less(int order) {
    return order < 0;
}
bool lessOrEqual(int order) {
    return order <= 0;
}

// --- the syntax table

struct Syntax {
    int token;
    char const * spelling;
    argType type; // of every operand
    FuncHandler handler;
    int operands = 2;
};

constexpr Syntax syntaxRows[] = {
    {'+', "+", ARG_NUMERIC, rowHandler<ADD>},
    {'-', "-", ARG_NUMERIC, rowHandler<SUBTRACT>},
    {'*', "*", ARG_NUMERIC, rowHandler<MULTIPLY>},
    {'%', "%", ARG_NUMERIC, rowHandler<MODULO>},
    {'/', "/", ARG_NUMERIC, rowHandler<DIVIDE>},
    {'^', "^", ARG_NUMERIC, rowHandler<POWER>},
    {TOKEN_EQ, "==", ARG_ANY, comparisonHandler<EQUAL, equal>},
    {'>', ">", ARG_ANY, comparisonHandler<GREATER, greater>},
    {'<', "<", ARG_ANY, comparisonHandler<LESS, less>},
    {TOKEN_GE, ">=", ARG_ANY, comparisonHandler<GREATER_OR_EQUAL, greaterOrEqual>},
    {TOKEN_LE, "<=", ARG_ANY, comparisonHandler<LESS_OR_EQUAL, lessOrEqual>},
    {TOKEN_NE, "<>", ARG_ANY, comparisonHandler<UNEQUAL, unequal>},
    {TOKEN_AND, "&&", ARG_NUMERIC, rowHandler<AND>},
    {TOKEN_OR, "||", ARG_NUMERIC, rowHandler<OR>},
    {',', ",", ARG_NUMERIC, rowHandler<PAIR>},
    {'&', "&", ARG_STRING, concatenationHandler},
    {TOKEN_UMINUS, "-", ARG_NUMERIC, unaryMinusHandler, 1},
    {'!', "!", ARG_NUMERIC, logicalNotHandler, 1},
};

constexpr argType twoNumbers[] = {ARG_NUMERIC, ARG_NUMERIC};
constexpr MultiDef eachOfTwo[] = {MULTI_EACH, MULTI_EACH};

OperatorRow rowOf(Syntax const & syntax) {
    argType const types[] = {syntax.type, syntax.type};
    bool const isBinary = syntax.operands == 2;
    FuncInfo info(syntax.spelling, types, syntax.operands, syntax.operands, syntax.handler, eachOfTwo, isBinary);
    info.matchArgs = true;
    info.flatDivisions = syntax.type != ARG_STRING;
    return {syntax.token, syntax.spelling, info};
}

// The rows, and the place of each by its token.
class OperatorTable {
public:
    OperatorTable() {
        for (Syntax const & syntax : syntaxRows) {
            rows_[used_] = rowOf(syntax);
            byToken_[static_cast<std::size_t>(syntax.token)] = &rows_[used_++];
        }
    }

    OperatorRow * find(int token) noexcept {
        bool const known = token >= 0 && token < tokenLimit;
        return known ? byToken_[static_cast<std::size_t>(token)] : nullptr;
    }

private:
    static constexpr int tokenLimit = TOKEN_NAME + 1;
    std::array<OperatorRow, std::size(syntaxRows)> rows_;
    std::array<OperatorRow *, tokenLimit> byToken_{};
    std::size_t used_ = 0;
};

FuncInfo choice(char const * name, FuncHandler handler, char const * summary) {
    FuncInfo info(name, twoNumbers, 2, 2, handler, eachOfTwo, false);
    info.flatDivisions = true;
    info.summary = summary;
    return info;
}

PlacedFunction const maxFunction(choice("max", rowHandler<MAXIMUM>, "The greater of two values, element by element"));
PlacedFunction const minFunction(choice("min", rowHandler<MINIMUM>, "The lesser of two values, element by element"));

} // namespace

OperatorRow * findOperator(int token) {
    static OperatorTable table;
    return table.find(token);
}
