#include "torvelan/Messages.h"

#include "torvelan/Host.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

class StandardErrorHandler final : public MessageHandler {
public:
    void finalOutput(MessageLevel, YString const & text) override {
        std::fprintf(stderr, "%.*s\n", static_cast<int>(std::min<std::size_t>(text.length(), 1U << 30)), text.data());
    }
};

// Never destroyed: static destructors of other modules may still have something to say.
YRef<MessageHandler> const & standardErrorHandler() {
    static auto const & handler = *new YRef<MessageHandler>(std::make_shared<StandardErrorHandler>());
    return handler;
}

} // namespace

MessageHandler::~MessageHandler() = default;

void MessageHandler::send(MessageLevel level, char const * format, PrintfArg const (&args)[4]) {
    if (wantsMessages()) output(level, formatMessage(format, args[0], args[1], args[2], args[3]));
}

void MessageHandler::error(char const * format, PrintfArg a, PrintfArg b, PrintfArg c, PrintfArg d) {
    send(MessageLevel::error, format, {a, b, c, d});
}

void MessageHandler::warning(char const * format, PrintfArg a, PrintfArg b, PrintfArg c, PrintfArg d) {
    send(MessageLevel::warning, format, {a, b, c, d});
}

void MessageHandler::info(char const * format, PrintfArg a, PrintfArg b, PrintfArg c, PrintfArg d) {
    send(MessageLevel::info, format, {a, b, c, d});
}

void MessageHandler::printf(char const * format, PrintfArg a, PrintfArg b, PrintfArg c, PrintfArg d) {
    send(MessageLevel::print, format, {a, b, c, d});
}

void MessageHandler::output(MessageLevel level, YString const & text) {
    finalOutput(level, text);
}

void NullMessageHandler::finalOutput(MessageLevel, YString const &) {}

void internal_error(char const * format, PrintfArg a, PrintfArg b, PrintfArg c, PrintfArg d) {
    defaultMessageHandler()->error(format, a, b, c, d);
}

void tv_error(char const * format, PrintfArg a, PrintfArg b, PrintfArg c, PrintfArg d) {
    defaultMessageHandler()->error(format, a, b, c, d);
}

YRef<MessageHandler> defaultMessageHandler() {
    using Getter = YRef<MessageHandler> (*)();
    auto const getter = reinterpret_cast<Getter>(support_GetDynamicFunction("getDefaultMessageHandler"));
    YRef<MessageHandler> handler = getter != nullptr ? getter() : nullptr;
    return handler != nullptr ? handler : standardErrorHandler();
}
