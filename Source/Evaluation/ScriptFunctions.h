// Scripts of the front end that expressions call as if they were built in.
#pragma once

#include "torvelan/YString.h"

struct ScriptFunction {
    YString name;
    YString scriptName;
    int minArgs = 0;
    int maxArgs = 0;
};

// Adds a script function, or replaces that of the same name in any case. A maximum below 0 means as many arguments as a
// call may have. The list ends with the session.
void registerScriptFunction(YString const & name, YString const & scriptName, int minArgs, int maxArgs);
ScriptFunction const * findScriptFunction(YString const & name) noexcept; // null when there is none
bool isScriptFunction(YString const & name) noexcept;
