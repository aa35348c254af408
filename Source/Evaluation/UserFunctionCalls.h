// Registered functions called by other modules.
#pragma once

#include "torvelan/UserFunctions.h"

// The entry of UserFunctionInterface::callFunction.
UserFunctionArgument const * callFunctionFromInterface(UserFunctionEnvironment * environment, char const * name,
                                                       UserFunctionArgument const * arguments, int count, int * error);

// The name of a type, as long as the environment lives.
char const * unitsText(UserFunctionEnvironment & environment, PhysType type);
