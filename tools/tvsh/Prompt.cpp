#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "ExitStatus.h"
#include "Interpreter.h"
#include "LineReader.h"
#include "OpenFiles.h"

#include "torvelan/EngineSession.h"

namespace {

// Each line is a command of the session. At a terminal the next line follows whatever came of this one.
ExitStatus runLines(LineReader & reader, Interpreter & interpreter) {
    ExitStatus status = exitDone;
    while (!interpreter.isQuitting()) {
        auto const line = reader.next();
        if (!line) {
            if (reader.isInteractive()) writeOut("\n"); // else what follows stands behind the last prompt
            break;
        }
        EngineSession::Command const command;
        ExitStatus const code = interpreter.runLine(*line);
        if (code != exitDone && status == exitDone) status = code;
    }
    return reader.isInteractive() ? exitDone : status;
}

} // namespace

int runPrompt(std::vector<std::string> const & files) {
    auto const console = std::make_shared<ConsoleMessages>();
    EngineSession const session(console);
    for (std::string const & file : files) {
        EngineSession::Command const command;
        if (!openFile(file, console)) return finishOutput(exitInput);
    }
    Interpreter interpreter(console);
    LineReader reader;
    if (reader.isInteractive())
        writeOut(std::string("tvsh ") + vec_Version() + "; 'Help' lists commands, 'Quit' ends it\n");
    return finishOutput(runLines(reader, interpreter));
}

int runScript(Arguments const & arguments) {
    CommandLine line({.command = "run",
                      .summary = "Runs a script: a command or an expression a line ('Help' at the prompt lists them).",
                      .operands = "SCRIPT ARGUMENT",
                      .operandHelp = "the script, and expressions that it gets as arguments",
                      .example = "tvsh run --open startup.raw review.tv 0.9"});
    std::vector<std::string> files;
    line.addRepeated("--open", files, "FILE", std::string("open a file first: ") + fileHelp);
    if (auto const status = line.parse(arguments)) return *status;
    if (line.operands().empty()) return line.usageError("a SCRIPT is needed");
    auto const console = std::make_shared<ConsoleMessages>();
    EngineSession const session(console);
    EngineSession::Command const command;
    for (std::string const & file : files)
        if (!openFile(file, console)) return finishOutput(exitInput);
    Interpreter interpreter(console);
    std::vector<std::string> const given(line.operands().begin() + 1, line.operands().end());
    return finishOutput(interpreter.runScript(line.operands().front(), given));
}
