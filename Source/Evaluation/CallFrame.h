// The call sequence: prepares arguments, runs a handler once per division, puts the result together.
#pragma once

#include "Evaluation/ExprValue.h"
#include "torvelan/Functions.h"

struct ParseState;

// Calls `info` with a list of values; handlers hear it by the name that it was called by. The result vector is named by
// resultValue.text and becomes resultValue.vector; null on failure, which has been reported and noted in
// state.functionError. Consumed temporaries among the arguments are released.
dvec * callFunction(FuncInfo & info, YString const & calledName, ExprValue * arguments, ExprValue & resultValue,
                    ParseState & state);
