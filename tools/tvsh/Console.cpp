#include "Console.h"

#include "ExitStatus.h"
#include "ReadingProgress.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

struct LevelRow {
    char const * name;
    char const * colour;
};

constexpr LevelRow levelRows[] = {
    {"error", "\033[1;31m"}, {"warning", "\033[1;33m"}, {"info", "\033[1m"}, {"info", ""}};

LevelRow const & rowOf(MessageLevel level) {
    return levelRows[static_cast<unsigned>(level)];
}

bool usesColour() {
    static bool const answer = isatty(STDERR_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr;
    return answer;
}

std::string_view withoutTrailingSpace(std::string_view text) {
    return text.substr(0, text.find_last_not_of(" \n") + 1);
}

} // namespace

void writeOut(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void writeError(std::string_view text) {
    std::fflush(stdout);
    ReadingProgress::giveWay();
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void writeMessage(MessageLevel level, std::string_view text, std::string_view location) {
    if (level == MessageLevel::print) return writeOut(text);
    std::string const label = std::string(rowOf(level).name) + ": ";
    std::string const line = usesColour() ? rowOf(level).colour + label + "\033[0m" : label;
    std::string const where = location.empty() ? "" : std::string(location) + ": ";
    writeError(where + line + std::string(withoutTrailingSpace(text)) + "\n");
}

int finishOutput(int status) {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    writeMessage(MessageLevel::error, std::string("cannot write to standard output: ") + std::strerror(errno));
    return exitOutput;
}

char const * levelName(MessageLevel level) {
    return rowOf(level).name;
}

void ConsoleMessages::finalOutput(MessageLevel level, YString const & text) {
    bool const addSubject =
        !subject_.empty() && level != MessageLevel::print && text.view().find(subject_) == std::string_view::npos;
    writeMessage(level, addSubject ? subject_ + ": " + std::string(text.view()) : std::string(text.view()), location_);
}

void RecordedMessages::finalOutput(MessageLevel level, YString const & text) {
    list_.push_back({level, std::string(text.view())});
}
