// tvsh, the command-line host of the library.
#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "ExitStatus.h"
#include "OpenFiles.h"

#include "torvelan/EngineSession.h"
#include "torvelan/Exceptions.h"

#include <cstring>

namespace {

constexpr CommandRow rows[] = {
    {"eval", "evaluate expressions", runEval},
    {"list", "list the groups and vectors of files", runList},
    {"print", "print vectors of a file as a table", runPrint},
    {"import", "turn files of other simulators into native data files", runImport},
    {"dump", "show how native data files are built", runDump},
    {"run", "run a script", runScript},
    {"functions", "list the functions of expressions", runFunctions},
};

std::string overview() {
    std::string text = "Commands ('tvsh COMMAND --help' tells more):\n";
    for (CommandRow const & row : rows)
        text += "  " + std::string(row.name) + std::string(12 - std::strlen(row.name), ' ') + row.summary + "\n";
    return text + "Without a command tvsh is a prompt: each line is a command or an expression,\n"
                  "'Help' lists the commands, 'Quit' ends it.\n"
                  "Example: tvsh --open startup.raw\n\n"
                  "Exit status: 0 done; 1 a check that was asked for failed; 2 wrong usage; 3 an input could not be\n"
                  "read or is damaged; 4 an expression failed; 5 an output could not be written; 130 interrupted.";
}

int runTopLevel(Arguments const & arguments) {
    CommandLine line({.command = {},
                      .summary = "tvsh: evaluates expressions over vectors and simulation results.",
                      .operands = {},
                      .operandHelp = {},
                      .example = {}});
    std::vector<std::string> files;
    line.addRepeated("--open", files, "FILE", std::string("open a file ahead of the prompt: ") + fileHelp);
    line.app.set_version_flag("-V,--version", std::string("tvsh ") + vec_Version(), "show the version");
    line.app.footer(overview());
    if (auto const status = line.parse(arguments)) return *status;
    if (line.operands().empty()) return runPrompt(files);
    return line.usageError("there is no command '" + line.operands().front() + "'");
}

int run(Arguments arguments) {
    if (arguments.empty()) return runPrompt({});
    for (CommandRow const & row : rows) {
        if (arguments.front() != row.name) continue;
        arguments.erase(arguments.begin());
        return row.run(arguments);
    }
    return runTopLevel(arguments);
}

} // namespace

std::span<CommandRow const> commandRows() {
    return rows;
}

int main(int argc, char ** argv) {
    try {
        return run(Arguments(argv + 1, argv + argc));
    } catch (FatalRecord const & fatal) {
        writeMessage(MessageLevel::error, fatal.text);
    } catch (std::bad_alloc const &) {
        writeMessage(MessageLevel::error, "out of memory");
    }
    return exitCheckFailed;
}
