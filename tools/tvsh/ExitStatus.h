// What tvsh answers to the shell.
#pragma once

enum ExitStatus : int {
    exitDone = 0,
    exitCheckFailed = 1, // a check that was asked for failed
    exitUsage = 2,       // wrong usage
    exitInput = 3,       // an input could not be read or is damaged
    exitExpression = 4,  // an expression failed
    exitOutput = 5,      // an output could not be written
    exitInterrupted = 130,
};
