#include "CommandLine.h"

#include "Console.h"
#include "ExitStatus.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>

CommandLine::CommandLine(CommandHelp const & help)
    : app(help.summary, help.command.empty() ? "tvsh" : "tvsh " + help.command) {
    if (!help.operands.empty()) app.add_option(help.operands, shownOperands_, help.operandHelp)->type_name("");
    if (!help.example.empty()) app.footer("Example: " + help.example);
}

void CommandLine::addRepeated(std::string const & name, std::vector<std::string> & values, std::string const & type,
                              std::string const & help) {
    app.add_option(name, values, help)->type_name(type)->allow_extra_args(false);
}

bool CommandLine::takesValue(std::string const & option) const {
    auto const * known = app.get_option_no_throw(option);
    return known != nullptr && known->get_items_expected_max() > 0;
}

std::vector<std::string> CommandLine::split(Arguments const & arguments) {
    std::vector<std::string> options;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "--") {
            operands_.insert(operands_.end(), argument + 1, arguments.end());
            break;
        }
        bool const isOption = argument->size() > 1 && argument->front() == '-';
        if (!isOption) {
            operands_.push_back(*argument);
            continue;
        }
        options.push_back(*argument);
        if (!takesValue(*argument) || argument + 1 == arguments.end()) continue;
        ++argument;
        if (argument->empty() || options.back().size() == 2)
            options.push_back(*argument);
        else
            options.back() += "=" + *argument;
    }
    return options;
}

std::optional<int> CommandLine::parse(Arguments const & arguments) {
    try {
        auto options = split(arguments);
        std::reverse(options.begin(), options.end());
        app.parse(std::move(options));
    } catch (CLI::Success const & reached) {
        std::string const text = reached.get_name() == "CallForHelp" ? app.help() : std::string(reached.what()) + "\n";
        writeOut(text);
        return finishOutput(exitDone);
    } catch (CLI::ParseError const & problem) {
        return usageError(problem.what());
    }
    if (!shownOperands_.empty())
        return usageError("unexpected '" + shownOperands_.front() + "'; what begins with '-' goes behind '--'");
    return std::nullopt;
}

int CommandLine::usageError(std::string const & text) const {
    writeMessage(MessageLevel::error, text);
    writeError("Try '" + app.get_name() + " --help'.\n");
    return exitUsage;
}
