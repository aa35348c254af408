#include "Funcs/VectorCounts.h"

namespace {

FUNC_ERROR giveCount(FuncResult & result, ResultAllocType how, std::int64_t count) {
    result.setType(VD_REAL, VD_NONE);
    result.setPhysType(PT_NONE, PT_UNCHANGED);
    result.allocate(1, how, 1);
    *result.data() = static_cast<double>(count);
    return FUNC_OK;
}

} // namespace

FUNC_ERROR lengthHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                         ScpParseContext const &) {
    return giveCount(*result, ALLOC_HINT, args.length(0));
}

FUNC_ERROR numElemsHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                           MessageHandler &, ScpParseContext const &) {
    return giveCount(*result, ALLOC_DIVISIONS, args.length(0));
}

FUNC_ERROR numDivisionsHandler(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                               MessageHandler &, ScpParseContext const &) {
    *result->makeReal(1, ALLOC_HINT, 1) = static_cast<double>(args.numYDivisions(0));
    return FUNC_OK;
}
