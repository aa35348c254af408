#include "torvelan/torvelan.h"

#include <cstdio>

namespace {

class Log final : public MessageHandler {
public:
    void finalOutput(MessageLevel level, YString const & text) override {
        char const * const words[] = {"error", "warning", "info", "text"};
        std::printf("%s: %s\n", words[static_cast<int>(level)], text.c_str());
    }
};

} // namespace

int main() {
    EngineSession session;
    ScpParseContext const context(std::make_shared<Log>());
    for (char const * expression : {"1/0", "sin(x)", "2 +", "sqrt(16)"}) {
        EngineSession::Command command;
        double value = 0;
        if (vec_Evaluate(&value, expression, context) == VEC_EVAL_OK) std::printf("%s is %g\n", expression, value);
    }
}
