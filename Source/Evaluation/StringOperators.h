// The operators that work on texts.
#pragma once

#include "torvelan/Functions.h"

// What a comparison asks of an order: below 0, 0 or above 0.
using StringRelation = bool (*)(int order);

// 1.0 or 0.0 for each pair of two strings of equal length, compared without regard to case. Dimensionless, no
// reference. FUNC_FAILED with a message when the lengths differ.
FUNC_ERROR compareStrings(FuncArgs const & args, FuncResult & result, MessageHandler & messages, StringRelation holds);

// `&`: the texts of both strings one behind the other, as long as the longer; the last element of the shorter goes on.
FUNC_ERROR concatenationHandler(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                                ScpParseContext const &);
