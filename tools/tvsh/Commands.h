// The commands of tvsh.
#pragma once

#include <span>
#include <string>
#include <vector>

using Arguments = std::vector<std::string>; // those behind the name of the command

int runDump(Arguments const & arguments);
int runEval(Arguments const & arguments);
int runFunctions(Arguments const & arguments);
int runImport(Arguments const & arguments);
int runList(Arguments const & arguments);
int runPrint(Arguments const & arguments);
int runScript(Arguments const & arguments);
int runPrompt(std::vector<std::string> const & files); // which it opens first

struct CommandRow {
    char const * name;
    char const * summary;
    int (*run)(Arguments const & arguments);
};
std::span<CommandRow const> commandRows();
