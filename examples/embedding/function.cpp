#include "torvelan/torvelan.h"

#include <algorithm>
#include <cstdio>

namespace {

// clip(v, limit): v held between -limit and limit. Written for one division; the frame calls it once for each.
FUNC_ERROR clip(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler & messages,
                ScpParseContext const &) {
    double const limit = args.data(1)[0];
    if (!(limit >= 0)) {
        messages.error("The limit of '%s' is negative", args.getFuncName());
        return FUNC_FAILED;
    }
    double const * v = args.data(0);
    result->setType(VD_REAL, args.refType(0));
    result->setPhysType(args.physType(0), PT_UNCHANGED);
    double * out = result->makeReal(args.length(0), ALLOC_HINT, args.totalLength(0));
    std::transform(v, v + args.length(0), out, [limit](double x) { return std::clamp(x, -limit, limit); });
    result->copyRefFromArgs(args, ALLOC_HINT, args.totalLength(0), 0); // the x values come along
    return FUNC_OK;
}

constexpr argType types[] = {ARG_REAL, ARG_REAL};
constexpr MultiDef divisions[] = {MULTI_EACH, MULTI_REFUSED};
FuncDef const registration(FuncInfo("clip", types, 2, 2, clip, divisions, false));

} // namespace

int main() {
    EngineSession session;
    EngineSession::Command command;
    double value = 0;
    if (vec_Evaluate(&value, "sum(clip([-3, 1, 7], 2))", ScpParseContext(defaultMessageHandler())) != VEC_EVAL_OK)
        return 1;
    std::printf("%g\n", value);
}
