// EngineSession: starts the library for a host, runs the phases around its commands, and shuts it down.
#pragma once

#include "torvelan/Export.h"
#include "torvelan/Messages.h"

// One at a time in a process; a second one beside it is reported as an internal error and does nothing. The constructor
// runs "Init", "InitCli", "PostInit" and "PreExec", the destructor "ExitCli" and "Exit". A later session starts afresh.
class TORVELAN_API EngineSession {
public:
    // Also becomes the default handler, for reports that belong to no command; null leaves that which the host has
    // registered (see Host.h), or else standard error.
    explicit EngineSession(YRef<MessageHandler> defaultMessages = nullptr);
    ~EngineSession();
    EngineSession(EngineSession const &) = delete;
    EngineSession & operator=(EngineSession const &) = delete;

    // One command of the host: "PreCli" (which collects temporaries) when made, "PostCli" when it ends.
    class TORVELAN_API Command {
    public:
        Command();
        ~Command();
        Command(Command const &) = delete;
        Command & operator=(Command const &) = delete;
    };

private:
    bool inert; // made beside a running session
};

// "1.2.3"
TORVELAN_API char const * vec_Version();
