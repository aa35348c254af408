// The filters, histograms and builders of vectors, apart from their registration.
#pragma once

#include "torvelan/Functions.h"

namespace funcs1 {

// Filters.cpp
FUNC_ERROR fir(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
FUNC_ERROR iir(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// GroupDelay.cpp
FUNC_ERROR groupDelay(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// Histogram.cpp
FUNC_ERROR histogram(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// Truncate.cpp
FUNC_ERROR truncate(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// Extremes.cpp
FUNC_ERROR maximum(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
FUNC_ERROR minimum(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
// VectorParts.cpp
FUNC_ERROR range(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
FUNC_ERROR ref(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
FUNC_ERROR xy(FuncArgs const & args, FuncResult & result, MessageHandler & messages);

} // namespace funcs1
