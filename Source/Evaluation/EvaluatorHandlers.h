// Handlers that the evaluator itself runs but that stand with the elementwise functions (Funcs/Cmath1), because unary
// minus, '!' and "[]" are rows of the same table and share its dispatcher. This header is the one upward step from the
// evaluator to the function library.
#pragma once

#include "torvelan/Functions.h"

FUNC_ERROR unaryMinusHandler(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                             ScpParseContext const &);
FUNC_ERROR logicalNotHandler(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                             ScpParseContext const &);
FUNC_ERROR elementIndexHandler(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                               ScpParseContext const &);
