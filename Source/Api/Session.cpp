#include "torvelan/EngineSession.h"

#include "torvelan/Host.h"

namespace {

constexpr char const * handlerGetter = "getDefaultMessageHandler";

bool running = false;
DynamicFunction getterBefore = nullptr; // the host's own, which stands again after the session

YRef<MessageHandler> & sessionHandler() {
    static auto & handler = *new YRef<MessageHandler>;
    return handler;
}

YRef<MessageHandler> getSessionHandler() {
    return sessionHandler();
}

bool standsInstalled() {
    return support_GetDynamicFunction(handlerGetter) == reinterpret_cast<DynamicFunction>(getSessionHandler);
}

void installHandler(YRef<MessageHandler> handler) {
    if (handler == nullptr) return;
    getterBefore = support_GetDynamicFunction(handlerGetter);
    sessionHandler() = std::move(handler);
    MakeDynamicFunction(handlerGetter, reinterpret_cast<DynamicFunction>(getSessionHandler));
}

// A getter that the host has registered during the session stays.
void removeHandler() {
    if (standsInstalled()) MakeDynamicFunction(handlerGetter, getterBefore);
    sessionHandler() = nullptr;
}

} // namespace

EngineSession::EngineSession(YRef<MessageHandler> defaultMessages) : inert(running) {
    if (inert) {
        internal_error("Error found in module %s, line %d", "Source\\Session", __LINE__);
        return;
    }
    running = true;
    installHandler(std::move(defaultMessages));
    for (char const * phase : {"Init", "InitCli", "PostInit", "PreExec"}) support_RunPhase(phase);
}

EngineSession::~EngineSession() {
    if (inert) return;
    for (char const * phase : {"ExitCli", "Exit"}) support_RunPhase(phase);
    removeHandler();
    running = false;
}

EngineSession::Command::Command() {
    support_RunPhase("PreCli");
}

EngineSession::Command::~Command() {
    support_RunPhase("PostCli");
}

char const * vec_Version() {
    return TORVELAN_VERSION;
}
