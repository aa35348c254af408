// Lines of the prompt.
#pragma once

#include <optional>
#include <string>

// With editing, history and completion of names when both ends are a terminal, plainly otherwise.
class LineReader {
public:
    LineReader();

    bool isInteractive() const noexcept { return interactive_; }
    std::optional<std::string> next(); // nothing at the end of the input

private:
    bool interactive_;
};
