// What a host program registers with the library and reads from it: phases, options, functions by name.
#pragma once

#include "torvelan/Export.h"
#include "torvelan/YString.h"

// Runs a callback in a phase of the session: "Init", "InitCli", "PostInit", "PreExec", "PreCli", "PostCli", "ExitCli",
// "Exit". Made at file scope. Within a phase callbacks run by rising priority, then in order of registration.
class TORVELAN_API AutoFunc {
public:
    AutoFunc(char const * phase, void (*proc)(), char const * name, int priority = 100);
};

// Runs the callbacks of a phase, by EngineSession; a host that runs its own phases may call it instead.
TORVELAN_API void support_RunPhase(char const * phase);

enum class OptionPersistence : unsigned char { session, stored };

// Registers an option with its default, from a static initialiser.
class TORVELAN_API MakeOption {
public:
    MakeOption(char const * name, char const * defaultValue, OptionPersistence persistence, char const * file,
               int line);
    MakeOption(char const * name, int defaultValue, OptionPersistence persistence, char const * file, int line);
    MakeOption(char const * name, bool defaultValue, OptionPersistence persistence, char const * file, int line);
    MakeOption(char const * name, double defaultValue, OptionPersistence persistence, char const * file, int line);
};

// Values by name, in any case; `found`, where given, says whether the option exists. An unknown option, or one whose
// text is not of the type asked for, reads as the empty string, 0, false.
TORVELAN_API YString sp_GetStringOption(char const * name, bool * found = nullptr);
TORVELAN_API int sp_GetIntOption(char const * name, bool * found = nullptr);
TORVELAN_API bool sp_GetBoolOption(char const * name, bool * found = nullptr);
TORVELAN_API double sp_GetDoubleOption(char const * name, bool * found = nullptr);
// Sets an option; an unknown one is created. The value of a stored option is kept in the host's settings, where it has
// opened any.
TORVELAN_API void sp_SetOption(char const * name, YString const & value);
// Opens a file of settings, which need not exist yet, and takes the values of options from it; from now on stored
// options that are set are written to it. False when it cannot be read. An empty path ends the keeping of options. The
// library opens no settings by itself.
TORVELAN_API bool support_OpenSettings(YString const & path);

// A table of functions by name that joins the library and its host.
using DynamicFunction = void (*)();
TORVELAN_API DynamicFunction support_GetDynamicFunction(char const * name); // null when unknown
class TORVELAN_API MakeDynamicFunction {
public:
    MakeDynamicFunction(char const * name, DynamicFunction function); // a later one of the same name wins
};
