#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Evaluation.h"
#include "ExitStatus.h"
#include "JsonOutput.h"
#include "NumberText.h"
#include "OpenFiles.h"
#include "TextOutput.h"

#include "torvelan/EngineSession.h"
#include "torvelan/Groups.h"

namespace {

struct EvalOptions {
    std::vector<std::string> files;
    std::vector<std::string> assignments;
    std::string group;
    bool json = false;
    int precision = shortestPrecision;
};

void declare(CommandLine & line, EvalOptions & options) {
    line.addRepeated("--open", options.files, "FILE", std::string("open a file first: ") + fileHelp);
    line.addRepeated("--let", options.assignments, "EXPR", "evaluate an assignment first, such as 'a=3'");
    line.app.add_option("--group", options.group, "the group in which names are looked up")->type_name("NAME");
    line.app.add_flag("--json", options.json, "one JSON object a line, with all values");
    line.app
        .add_option("--precision", options.precision,
                    "significant digits; by default all of a single number, 6 of several")
        ->type_name("N")
        ->check(CLI::Range(1, 17));
}

bool evaluateForPeople(std::string const & expression, int precision, YRef<MessageHandler> const & messages) {
    EngineSession::Command const command;
    Evaluation const evaluation(expression, messages);
    for (XYVector const * value : evaluation.values()) writeOut(valueText(*value, precision));
    return evaluation.ok();
}

bool evaluateForPrograms(std::string const & expression) {
    EngineSession::Command const command;
    auto const messages = std::make_shared<RecordedMessages>();
    Evaluation const evaluation(expression, messages);
    writeJson(expression, evaluation, *messages);
    return evaluation.ok();
}

bool assign(std::string const & expression, YRef<MessageHandler> const & messages) {
    EngineSession::Command const command;
    return Evaluation(expression, messages).ok();
}

class EvalRun {
public:
    explicit EvalRun(EvalOptions const & options) : options_(options) {}

    int run(std::vector<std::string> const & expressions) {
        for (std::string const & file : options_.files) {
            EngineSession::Command const command;
            if (!openFile(file, console_)) return exitInput;
        }
        if (!options_.group.empty() && !selectGroup()) return exitUsage;
        for (std::string const & assignment : options_.assignments)
            if (!assign(assignment, console_)) return exitExpression;
        bool ok = true;
        for (std::string const & expression : expressions) ok = evaluate(expression) && ok;
        return ok ? exitDone : exitExpression;
    }

private:
    bool selectGroup() {
        if (vec_SetCurrentGroup(YString(options_.group)) == VEC_OK) return true;
        console_->error("there is no group '%s'", std::string_view(options_.group));
        return false;
    }

    bool evaluate(std::string const & expression) {
        return options_.json ? evaluateForPrograms(expression)
                             : evaluateForPeople(expression, options_.precision, console_);
    }

    EvalOptions const & options_;
    std::shared_ptr<ConsoleMessages> console_ = std::make_shared<ConsoleMessages>();
    EngineSession const session_{console_};
};

} // namespace

int runEval(Arguments const & arguments) {
    CommandLine line({.command = "eval",
                      .summary = "Evaluates each EXPR and prints its values.",
                      .operands = "EXPR",
                      .operandHelp = "expressions, taken as they stand; after '--' they may begin with '-'",
                      .example = "tvsh eval --open ac.raw --let 'gain=out/in' 'db(gain[0])' 'maxidx(mag(gain))'"});
    EvalOptions options;
    declare(line, options);
    if (auto const status = line.parse(arguments)) return *status;
    if (line.operands().empty()) return line.usageError("an EXPR is needed");
    return finishOutput(EvalRun(options).run(line.operands()));
}
