// The options and operands of one command.
#pragma once

#include "Commands.h"

#include <CLI/App.hpp>
#include <optional>

// What the help of a command says, besides its options.
struct CommandHelp {
    std::string command; // empty: tvsh itself
    std::string summary;
    std::string operands; // "EXPR"; empty: the command takes none
    std::string operandHelp;
    std::string example;
};

// Options are CLI11's, which reads values for more than they are: it splits "[1,2]" and stumbles over a leading '-'.
// So operands never reach it, and a value goes to it glued to its option; both arrive as they stand.
class CommandLine {
public:
    explicit CommandLine(CommandHelp const & help);

    CLI::App app;
    // An option that may be given several times, each time with one value that is taken as it stands.
    void addRepeated(std::string const & name, std::vector<std::string> & values, std::string const & type,
                     std::string const & help);

    // The exit status when that is all that was to do: help has been shown, or wrong usage reported.
    std::optional<int> parse(Arguments const & arguments);
    std::vector<std::string> const & operands() const noexcept { return operands_; }
    // Reports wrong usage, and gives its exit status.
    int usageError(std::string const & text) const;

private:
    // Sorts the arguments into operands and what CLI11 is to see.
    std::vector<std::string> split(Arguments const & arguments);
    bool takesValue(std::string const & option) const;

    std::vector<std::string> operands_;
    std::vector<std::string> shownOperands_; // what the help's operand line is bound to; CLI11 puts "-1" there
};
