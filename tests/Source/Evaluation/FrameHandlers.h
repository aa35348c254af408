// Functions for the tests of the call sequence, and what these have in common.
#pragma once

#include "FrameTools.h"
#include "Groups/LoosePool.h"

#include <new>

// One element: the length of the division. An element of -1 is refused after it has been written.
inline FUNC_ERROR count(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                        ScpParseContext const &) {
    result->makeReal(1, ALLOC_DIVISIONS, 0)[0] = static_cast<double>(args.length(0));
    return args.length(0) > 0 && args.data(0)[0] == -1 ? FUNC_FAILED : FUNC_OK;
}

inline FUNC_ERROR countCalls(FuncArgs const & args, FuncResult * result, FuncInfo * info, YRef<MessageHandler> messages,
                             MessageHandler & handlerMessages, ScpParseContext const & context) {
    ++info->state.words[0];
    return twiceHandler(args, result, info, messages, handlerMessages, context);
}

// Complex result, complex reference.
inline FUNC_ERROR widen(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                        ScpParseContext const &) {
    result->setType(VD_COMPLEX, VD_COMPLEX);
    std::int64_t const n = args.length(0);
    complex * out = result->makeComplex(n, ALLOC_HINT, args.totalLength(0));
    for (std::int64_t i = 0; i < n; ++i) out[i] = {args.data(0)[i], 1};
    result->copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0);
    return FUNC_OK;
}

template <class Thrown> [[noreturn]] void throwOne() {
    throw Thrown("thrown");
}
template <> [[noreturn]] inline void throwOne<std::bad_alloc>() {
    throw std::bad_alloc();
}

// Writes an element, then throws, in the division whose first element is -1.
template <class Thrown>
FUNC_ERROR throwing(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                    ScpParseContext const &) {
    result->makeReal(1, ALLOC_HINT, 0);
    if (args.data(0)[0] == -1) throwOne<Thrown>();
    return FUNC_OK;
}

inline FuncInfo makeOperator(char const * name, Handler * handler) {
    FuncInfo info = makeInfo(name, handler, 2, 2);
    info.matchArgs = true;
    return info;
}

class CallTest : public FrameTest {
protected:
    // A function of one kind of argument, of up to three, one division each or several.
    FuncInfo twice = makeInfo("twice", twiceHandler, 1, 3);
    FuncInfo sum = makeOperator("+", sumHandler);

    dvec * fiveSteps(double third, char const * name = "v") {
        dvec * v = makeMember(name, {{1, 2}, {3}, {third, 4}, {5}, {6, 7}}, {{0, 1}, {0}, {0, 1}, {0}, {0, 2}});
        v->setLabels(namesOf({"a", "b", "c", "d", "e"}), false);
        v->setMultiple();
        return v;
    }
    void expectNoResult(std::size_t poolBefore) {
        EXPECT_EQ(result.vector, nullptr);
        EXPECT_EQ(LoosePool::count(), poolBefore);
    }
};
