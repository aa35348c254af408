// Lines of the prompt.
#pragma once

#include <optional>
#include <string>

// With editing, history and completion of names when both ends are a terminal, plainly otherwise.
class LineReader {
public:
    LineReader();
    ~LineReader(); // keeps the history for the next session of this user
    LineReader(LineReader const &) = delete;
    LineReader & operator=(LineReader const &) = delete;

    bool isInteractive() const noexcept { return interactive_; }
    std::optional<std::string> next(); // nothing at the end of the input

private:
    bool interactive_;
    std::string history_; // its file; empty without one
};
