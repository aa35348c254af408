#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Evaluation.h"
#include "ExitStatus.h"
#include "OpenFiles.h"
#include "ValueTable.h"

#include "torvelan/EngineSession.h"

#include <memory>

namespace {

int printFile(std::vector<std::string> const & operands, TableOptions const & options) {
    auto const console = std::make_shared<ConsoleMessages>();
    EngineSession const session(console);
    EngineSession::Command const command;
    if (!openFile(operands.front(), console)) return exitInput;
    std::vector<std::unique_ptr<Evaluation>> evaluations;
    for (auto expression = operands.begin() + 1; expression != operands.end(); ++expression) {
        evaluations.push_back(std::make_unique<Evaluation>(*expression, console));
        if (!evaluations.back()->ok()) return exitExpression;
    }
    std::vector<XYVector const *> values;
    for (auto const & evaluation : evaluations)
        values.insert(values.end(), evaluation->values().begin(), evaluation->values().end());
    writeTables(values, options);
    return exitDone;
}

} // namespace

int runPrint(Arguments const & arguments) {
    CommandLine line({.command = "print",
                      .summary = "Prints values over their reference as a table.",
                      .operands = "FILE EXPR",
                      .operandHelp = std::string(fileHelp) + "; and expressions over its vectors",
                      .example = "tvsh print --rows 20 startup.raw out 'l1#p' 'out*rload#p'"});
    TableOptions options;
    line.app.add_option("-n,--rows", options.rows, "at most N rows, evenly spaced")
        ->type_name("N")
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{1} << 53));
    line.app.add_option("--precision", options.precision, "significant digits")
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(1, 17));
    if (auto const status = line.parse(arguments)) return *status;
    if (line.operands().size() < 2) return line.usageError("a FILE and an EXPR are needed");
    return finishOutput(printFile(line.operands(), options));
}
