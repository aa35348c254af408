// The commands of scripts and of the prompt.
#pragma once

#include "ExitStatus.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

class Interpreter;

struct ScriptCommand {
    char const * name;
    char const * usage; // of what stands behind the name
    char const * help;
    std::size_t minWords, maxWords; // behind the name, not counting switches
    char const * switches;          // those that there may be, with blanks between them
    ExitStatus (*run)(std::vector<std::string> const & words, std::string_view line, Interpreter & interpreter);
};

std::span<ScriptCommand const> scriptCommands();                // in order of their names
ScriptCommand const * findScriptCommand(std::string_view name); // in any case; null when there is none
// Checks the words of a line against the command, and runs it.
ExitStatus runScriptCommand(ScriptCommand const & command, std::string const & line, Interpreter & interpreter);
