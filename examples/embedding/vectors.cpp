#include "torvelan/torvelan.h"

#include <cinttypes>
#include <cstdio>

namespace {

void show(XYVector const & v) {
    std::printf("%s: %" PRId64 " division(s), unit '%s', over %s\n", v.name().c_str(), v.numDivisions(),
                sp_GetPhysTypeUnit(v.physType()).c_str(), v.ref.name().c_str());
    for (std::int64_t d = 0; d < v.numDivisions(); ++d)
        std::printf("  %" PRId64 " points, the first is %g\n", v.length(d), v.getReal(0, d));
}

} // namespace

// vectors FILE EXPRESSION: opens a SPICE3 result file and shows what an expression gives over its vectors.
int main(int argc, char ** argv) {
    if (argc != 3) return 2;
    EngineSession session;
    EngineSession::Command command;
    auto const messages = defaultMessageHandler();
    YString group;
    if (!vec_OpenForeignDataFile(argv[1], DATA_SPICE3, {}, &group, messages)) return 3;

    YArray<XYVector *> values;
    VEC_ERROR const code = vec_EvalVecList(argv[2], &values, ScpParseContext(messages), group, false);
    for (XYVector * value : values) {
        show(*value);
        vec_ReleaseVector(value);
    }
    return code == VEC_OK ? 0 : 4;
}
