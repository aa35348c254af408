// Functions that count what a vector holds.
#pragma once

#include "torvelan/Functions.h"

// Elements of the current division.
FUNC_ERROR lengthHandler(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                         ScpParseContext const &);
// The same, one for each division in a call over several.
FUNC_ERROR numElemsHandler(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                           ScpParseContext const &);
FUNC_ERROR numDivisionsHandler(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                               ScpParseContext const &);
