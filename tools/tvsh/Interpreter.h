// The script language of tvsh: one command or expression a line.
#pragma once

#include "Console.h"
#include "ExitStatus.h"

#include "torvelan/Evaluate.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using Lines = std::function<bool(std::string & line)>; // the next line; false at the end

class Interpreter {
public:
    // One in a process at a time: while it lives, expressions run scripts through it.
    explicit Interpreter(std::shared_ptr<ConsoleMessages> console);
    ~Interpreter();
    Interpreter(Interpreter const &) = delete;
    Interpreter & operator=(Interpreter const &) = delete;

    // One line: a command by its name, or an expression, whose values are printed. Comments do nothing.
    ExitStatus runLine(std::string const & line);
    // Lines until they end, one fails or one quits. In a script messages name the file and the line.
    ExitStatus runLines(Lines const & next);
    // A script in a context of its own, with arguments: expressions by value, "@name" a variable by reference.
    ExitStatus runScript(std::string const & name, std::vector<std::string> const & arguments);
    // A line as Execute makes it: "script /ne @$execute_rv $execute_arg1 ...".
    bool execute(char const * line);

    ConsoleMessages & console() const noexcept { return *console_; }
    YRef<MessageHandler> messages() const noexcept { return console_; }
    std::shared_ptr<ConsoleMessages> const & sharedConsole() const noexcept { return console_; }
    ScpParseContext context() const { return ScpParseContext(console_); }
    ExitStatus fail(std::string const & words) const; // says them, and answers exitExpression

    void quit() noexcept { isQuitting_ = true; }
    bool isQuitting() const noexcept { return isQuitting_; }
    void goOnAfterErrors(bool on) noexcept { goesOn_ = on; }

private:
    ExitStatus evaluate(std::string const & line);
    ExitStatus runFile(std::filesystem::path const & path);
    std::filesystem::path find(std::string const & name) const;

    std::shared_ptr<ConsoleMessages> console_;
    std::vector<std::filesystem::path> scripts_; // that run, the innermost last
    bool isQuitting_ = false;
    bool goesOn_ = false;
};
