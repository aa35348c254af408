#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "ExitStatus.h"
#include "JsonOutput.h"

#include "torvelan/EngineSession.h"
#include "torvelan/Functions.h"

namespace {

std::string jsonLine(FunctionInfo const & function) {
    return "{\"name\":" + jsonString(function.name) + ",\"minArgs\":" + std::to_string(function.minArgs) +
           ",\"maxArgs\":" + std::to_string(function.maxArgs) + ",\"summary\":" + jsonString(function.summary) + "}\n";
}

int listFunctions(bool json) {
    EngineSession const session(std::make_shared<ConsoleMessages>());
    YList<FunctionInfo> functions;
    vec_GetFunctions(&functions, false);
    functions.sort([](FunctionInfo const & a, FunctionInfo const & b) { return compareNoCase(a.name, b.name) < 0; });
    for (FunctionInfo const & function : functions)
        writeOut(json ? jsonLine(function) : std::string(function.name.view()) + "\n");
    return exitDone;
}

} // namespace

int runFunctions(Arguments const & arguments) {
    CommandLine line({.command = "functions",
                      .summary = "Lists the functions that expressions may call, one name a line.",
                      .operands = {},
                      .operandHelp = {},
                      .example = "tvsh functions --json | grep '\"name\":\"phase'"});
    bool json = false;
    line.app.add_flag("--json", json, "one JSON object a line: name, minArgs, maxArgs, summary");
    if (auto const status = line.parse(arguments)) return *status;
    if (!line.operands().empty()) return line.usageError("unexpected '" + line.operands().front() + "'");
    return finishOutput(listFunctions(json));
}
