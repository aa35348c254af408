// The gamma family and the error functions as script functions: a table of those of one argument, and one of those of
// two.

#include "Funcs/FunctionFamily.h"
#include "Funcs/GammaMath.h"
#include "Funcs/MathTable.h"

#include "Evaluation/ElementBlocks.h"

namespace {

// --- one argument

enum class One { lgamma, gamma, erf, erfc };

// name, real to real, complex to real, real to complex, complex to complex, rule, shape
constexpr MathRow oneArgument[] = {
    {"lgamma", nullptr, nullptr, gammamath::logGamma, nullptr, none, MathShape::elements},
    {"gamma", gammamath::gamma, nullptr, nullptr, nullptr, none, MathShape::elements},
    {"erf", gammamath::erf, nullptr, nullptr, nullptr, none, MathShape::elements},
    {"erfc", gammamath::erfc, nullptr, nullptr, nullptr, none, MathShape::elements},
};

template <One row> FUNC_ERROR applyRow(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    return applyMathRow(oneArgument[static_cast<std::size_t>(row)], args, result, messages);
}

// --- two arguments: the result has the length and the reference of the first; a second of one element is repeated

struct PairRow {
    char const * name;
    kernels::Loop loop;
};

enum class Two { gammp, gammq, chisquare };

constexpr PairRow twoArguments[] = {
    {"gammp", gammamath::lowerGamma},
    {"gammq", gammamath::upperGamma},
    {"chisquare", gammamath::chiSquare},
};

double * resultOver(FuncArgs const & args, FuncResult & result, std::int64_t count) {
    result.setType(VD_REAL, VD_REAL);
    result.setPhysType(PT_NONE, PT_UNCHANGED);
    if (!result.takeStorage(args, 0, count)) result.allocate(count, ALLOC_HINT, args.totalLength(0));
    return result.data();
}

FUNC_ERROR apply(PairRow const & row, FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    if (args.type(0) != VD_REAL || args.type(1) != VD_REAL) {
        messages.error("The function '%s' requires a real argument", row.name);
        return FUNC_FAILED;
    }
    std::int64_t const count = args.length(0), secondCount = args.length(1);
    kernels::Operand const first{args.data(0)}, second{args.data(1), 1, secondCount == 1};
    if (!second.repeated && secondCount < count)
        return refuseElements(mathkernels::outOfRange, row.name, result, messages);
    double * const out = resultOver(args, result, count);
    int const refusal = kernels::runLoop(row.loop, out, 1, first, second, static_cast<std::size_t>(count));
    result.copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    return refusal == mathkernels::refusedNothing ? FUNC_OK : refuseElements(refusal, row.name, result, messages);
}

template <Two row> FUNC_ERROR applyPairRow(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    return apply(twoArguments[static_cast<std::size_t>(row)], args, result, messages);
}

// --- registration

constexpr argType number = ARG_NUMERIC;
constexpr MultiDef each = MULTI_EACH;

template <One row> constexpr FuncHandler one = handlerOf<applyRow<row>>;
template <Two row> constexpr FuncHandler two = handlerOf<applyPairRow<row>>;

constexpr FunctionRow rows[] = {
    {"lgamma", one<One::lgamma>, 1, 1, {number}, {each}, "Logarithm of the magnitude of gamma", elementwise},
    {"gamma", one<One::gamma>, 1, 1, {number}, {each}, "Gamma function", elementwise},
    {"erf", one<One::erf>, 1, 1, {number}, {each}, "Error function", elementwise},
    {"erfc", one<One::erfc>, 1, 1, {number}, {each}, "Complementary error function", elementwise},
    {"gammp", two<Two::gammp>, 2, 2, {number, number}, {each, each}, "Lower incomplete gamma", elementwise},
    {"gammq", two<Two::gammq>, 2, 2, {number, number}, {each, each}, "Upper incomplete gamma", elementwise},
    {"chisquare", two<Two::chisquare>, 2, 2, {number, number}, {each, each}, "Tail of chi square", elementwise},
};

FunctionFamily const family(rows);

} // namespace
