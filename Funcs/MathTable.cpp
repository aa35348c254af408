#include "Funcs/MathTable.h"

#include "Evaluation/ElementBlocks.h"
#include "Evaluation/EvaluatorHandlers.h"

#include <algorithm>
#include <iterator>

using namespace mathkernels;

namespace {

constexpr MathShape elements = MathShape::elements, whole = MathShape::whole, reduces = MathShape::reduces;

// name, real to real, complex to real, real to complex, complex to complex, rule, shape
constexpr MathRow rows[] = {
    {"mag", absolute, complexMagnitude, nullptr, nullptr, same, elements},
    {"phase", zeros, phaseDegrees, nullptr, nullptr, none, whole},
    {"real", copyReal, realPart, nullptr, nullptr, same, elements},
    {"imag", zeros, imaginaryPart, nullptr, nullptr, same, elements},
    {"sign", mathkernels::sign, nullptr, nullptr, nullptr, none, elements},
    {"db", decibels, complexDecibels, nullptr, nullptr, db, elements},
    {"log", mathkernels::log10, nullptr, nullptr, complexLog10, db, elements},
    {"ln", mathkernels::log, nullptr, nullptr, complexLog, db, elements},
    {"exp", mathkernels::exp, nullptr, nullptr, complexExp, db, elements},
    {"sin", mathkernels::sin, nullptr, nullptr, complexSin, db, elements},
    {"cos", mathkernels::cos, nullptr, nullptr, complexCos, db, elements},
    {"sqrt", mathkernels::sqrt, nullptr, nullptr, complexSqrt, ::sqrt, elements},
    {"tan", mathkernels::tan, nullptr, nullptr, complexTan, db, elements},
    {"atan", mathkernels::atan, nullptr, nullptr, complexAtan, db, elements},
    {"norm", normalise, nullptr, nullptr, complexNormalise, none, whole},
    {"-", negate, nullptr, nullptr, complexNegate, same, elements},
    {"rnd", mathkernels::random, nullptr, nullptr, nullptr, same, whole},
    {"!", logicalNot, nullptr, nullptr, nullptr, none, elements},
    {"mean", mean, nullptr, nullptr, complexMean, same, reduces},
    {"maxidx", indexOfGreatest, complexIndexOfGreatest, nullptr, nullptr, none, reduces},
    {"minidx", indexOfLeast, complexIndexOfLeast, nullptr, nullptr, none, reduces},
    {"phase_rad", zeros, phase, nullptr, nullptr, none, whole},
    {"sin_deg", sinDegrees, nullptr, nullptr, complexSin, db, elements},
    {"cos_deg", cosDegrees, nullptr, nullptr, complexCos, db, elements},
    {"tan_deg", tanDegrees, nullptr, nullptr, complexTan, db, elements},
    {"atan_deg", atanDegrees, nullptr, nullptr, complexAtan, db, elements},
    {"phase_b", zeros, argumentDegrees, nullptr, nullptr, none, elements},
    {"phase_b_rad", zeros, argument, nullptr, nullptr, none, elements},
    {"floorv", mathkernels::floor, nullptr, nullptr, nullptr, same, elements},
    {"sum", sum, nullptr, nullptr, complexSum, same, reduces},
    {"sinh", mathkernels::sinh, nullptr, nullptr, complexSinh, db, elements},
    {"cosh", mathkernels::cosh, nullptr, nullptr, complexCosh, db, elements},
    {"tanh", mathkernels::tanh, nullptr, nullptr, complexTanh, db, elements},
};
static_assert(std::size(rows) == static_cast<std::size_t>(Math::count));

// Doubles in an element.
constexpr std::size_t widthOf(VD_type kind) noexcept {
    return kind == VD_COMPLEX ? 2 : 1;
}

struct Source {
    double const * data;
    std::size_t count;
    VD_type kind;
};

Source sourceOf(FuncArgs const & args) {
    bool const isReal = args.type(0) == VD_REAL;
    double const * data = isReal ? args.data(0) : reinterpret_cast<double const *>(args.complexData(0));
    std::int64_t const count = data != nullptr ? std::max<std::int64_t>(args.length(0), 0) : 0;
    return {data, static_cast<std::size_t>(count), isReal ? VD_REAL : VD_COMPLEX};
}

struct Choice {
    Routine routine;
    VD_type kind; // of the result
};

Choice choose(MathRow const & row, VD_type kind) noexcept {
    if (kind == VD_REAL)
        return row.realToReal ? Choice{row.realToReal, VD_REAL} : Choice{row.realToComplex, VD_COMPLEX};
    return row.complexToReal ? Choice{row.complexToReal, VD_REAL} : Choice{row.complexToComplex, VD_COMPLEX};
}

// Writable elements of the result, in the memory of a temporary argument where that is free. A reducing row finds its
// one element cleared.
double * destination(MathShape shape, FuncArgs const & args, FuncResult & result, Source const & source, VD_type kind) {
    auto const count = static_cast<std::int64_t>(source.count);
    if (shape == reduces) {
        result.allocate(1, ALLOC_DIVISIONS, args.totalLength(0));
    } else if (kind != source.kind || !result.takeStorage(args, 0, count)) {
        result.allocate(count, ALLOC_HINT, args.totalLength(0));
    }
    double * out = kind == VD_REAL ? result.data() : reinterpret_cast<double *>(result.complexData());
    if (shape == reduces) std::fill_n(out, widthOf(kind), 0.0);
    return out;
}

int run(MathShape shape, Choice const & choice, double * out, Source const & source) {
    if (shape != elements) return choice.routine(out, source.data, source.count);
    return kernels::runLoop(choice.routine, out, widthOf(choice.kind), {source.data, widthOf(source.kind), false},
                            source.count);
}

} // namespace

MathRow const & mathRow(Math row) noexcept {
    return rows[static_cast<std::size_t>(row)];
}

FUNC_ERROR refuseElements(int refusal, char const * name, FuncResult & result, MessageHandler & messages) {
    switch (refusal) {
    case outOfRange: messages.error("Argument out of range for function '%s'", name); break;
    case overflow: messages.error("Overflow in function '%s'", name); break;
    case zeroVector: messages.error("Cannot normalise zero vector"); break;
    default: break;
    }
    result.emptyVectors();
    return FUNC_FAILED;
}

FUNC_ERROR applyMathRow(MathRow const & row, FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Source const source = sourceOf(args);
    result.setPhysType(row.rule(args.physType(0)), PT_UNCHANGED);
    Choice const choice = choose(row, source.kind);
    if (choice.routine == nullptr) {
        if (source.kind == VD_REAL) return FUNC_OK;
        messages.error("The function '%s' requires a real argument", row.name);
        return FUNC_FAILED;
    }
    result.setType(choice.kind, choice.kind == VD_REAL ? VD_REAL : args.refType(0));
    double * const out = destination(row.shape, args, result, source, choice.kind);
    int const refusal = run(row.shape, choice, out, source);
    if (row.shape != reduces) result.copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    return refusal == refusedNothing ? FUNC_OK : refuseElements(refusal, row.name, result, messages);
}

FUNC_ERROR unaryMinusHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                             MessageHandler & messages, ScpParseContext const &) {
    return applyMathRow(mathRow(Math::minus), args, *result, messages);
}

FUNC_ERROR logicalNotHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                             MessageHandler & messages, ScpParseContext const &) {
    return applyMathRow(mathRow(Math::logicalNot), args, *result, messages);
}
