// The functions of a family as one table.
#pragma once

#include "support/SourcePlace.h"
#include "torvelan/Functions.h"

#include <span>

// What most handlers need of a call, and the handler around it.
using HandlerBody = FUNC_ERROR (*)(FuncArgs const & args, FuncResult & result, MessageHandler & messages);
template <HandlerBody body>
FUNC_ERROR handlerOf(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                     MessageHandler & messages, ScpParseContext const &) {
    return body(args, *result, messages);
}

// What may be done with a function beyond calling it on one division.
enum FunctionTraits : unsigned char {
    plain = 0,
    incremental = 1, // on new points alone
    flat = 2,        // on all divisions as one array
    elementwise = incremental | flat,
    walks = 4, // on all divisions as one array, through which it goes itself
};

struct FunctionRow {
    static constexpr int maxArguments = 16;

    char const * name;
    FuncHandler handler;
    int minArgs, maxArgs;
    argType types[maxArguments]; // of the arguments that there may be
    MultiDef multiDefs[maxArguments];
    char const * summary;
    FunctionTraits traits = plain;
};

// Registers each row, from a static initialiser, and the place of the family as the place of its functions; the table
// need not outlive it.
class FunctionFamily {
public:
    explicit FunctionFamily(std::span<FunctionRow const> rows, SourcePlace place = SourcePlace::current());
};
