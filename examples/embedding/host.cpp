#include "torvelan/torvelan.h"

#include <cstdio>

int main() {
    EngineSession session;
    EngineSession::Command command;
    double value = 0;
    if (vec_Evaluate(&value, "2 + 3*4", ScpParseContext(defaultMessageHandler())) != VEC_EVAL_OK) return 1;
    std::printf("%g\n", value);
}
