// The math table: one row for each elementwise or reducing operation, and the dispatcher that carries a row out on a
// call frame. A script function is a row with a name.
#pragma once

#include "Funcs/MathKernels.h"
#include "torvelan/Functions.h"

// What a row's routines see, and what it gives.
enum class MathShape : unsigned char {
    elements, // each element alone
    whole,    // the array at once: an element's result depends on others or on their order
    reduces,  // the array at once, one element of result
};

struct MathRow {
    char const * name; // in messages; not always that of the script function
    mathkernels::Routine realToReal;
    mathkernels::Routine complexToReal;
    mathkernels::Routine realToComplex;
    mathkernels::Routine complexToComplex;
    PhysType (*rule)(PhysType);
    MathShape shape;
};

enum class Math : unsigned char {
    mag,
    phase,
    real,
    imag,
    sign,
    db,
    log,
    ln,
    exp,
    sin,
    cos,
    sqrt,
    tan,
    atan,
    norm,
    minus,
    rnd,
    logicalNot,
    mean,
    maxidx,
    minidx,
    phaseRad,
    sinDeg,
    cosDeg,
    tanDeg,
    atanDeg,
    arg,
    argRad,
    floorv,
    sum,
    sinh,
    cosh,
    tanh,
    count
};

MathRow const & mathRow(Math row) noexcept;

// Carries a row out on argument 0: kind, PhysType, elements and (unless it reduces) reference of the result.
// FUNC_FAILED after a message, and the result is empty then; FUNC_OK with an untouched result where the row has nothing
// for a real argument.
FUNC_ERROR applyMathRow(MathRow const & row, FuncArgs const & args, FuncResult & result, MessageHandler & messages);

// Says why a routine refused an element, empties the result, and answers FUNC_FAILED. Nothing is said where an
// iteration did not converge.
FUNC_ERROR refuseElements(int refusal, char const * name, FuncResult & result, MessageHandler & messages);

// The handler that runs a row.
template <Math row>
FUNC_ERROR mathHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                       MessageHandler & messages, ScpParseContext const &) {
    return applyMathRow(mathRow(row), args, *result, messages);
}
