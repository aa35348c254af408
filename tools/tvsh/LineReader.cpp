#include "LineReader.h"

#include "torvelan/Functions.h"
#include "torvelan/Groups.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>
#include <vector>

#include <editline/readline.h>

namespace {

struct Free {
    void operator()(char * p) const { std::free(p); }
};
using HeapText = std::unique_ptr<char, Free>;

char promptText[] = "tvsh> ";
char wordBreaks[] = " \t,()[]{}+-*/^<>=!&|?;'";
char const programName[] = "tvsh";

void addMatch(std::vector<std::string> & matches, YString const & name, std::string_view start) {
    if (equalNoCase(name.view().substr(0, start.size()), start)) matches.emplace_back(name.view());
}

std::vector<std::string> namesBeginningWith(std::string_view start) {
    std::vector<std::string> matches;
    YList<FunctionInfo> functions;
    vec_GetFunctions(&functions, false);
    for (FunctionInfo const & function : functions) addMatch(matches, function.name, start);
    YString local;
    vec_GetLocalGroupName(&local);
    for (YString const & group : {YString(), local}) {
        YList<YString> vectors;
        vec_GetVectorsInGroup(&vectors, group);
        for (YString const & vector : vectors) addMatch(matches, vector, start);
    }
    std::sort(matches.begin(), matches.end());
    matches.erase(std::unique(matches.begin(), matches.end()), matches.end());
    return matches;
}

// Called by libedit with state 0 for the first match and 1 for each further one.
char * nextMatch(char const * start, int state) {
    static std::vector<std::string> matches;
    static std::size_t position;
    if (state == 0) {
        matches = namesBeginningWith(start);
        position = 0;
    }
    return position < matches.size() ? strdup(matches[position++].c_str()) : nullptr;
}

std::optional<std::string> readPlainLine() {
    char * line = nullptr;
    std::size_t capacity = 0;
    ssize_t length = getline(&line, &capacity, stdin);
    HeapText const owner(line);
    if (length < 0) return std::nullopt;
    if (length > 0 && line[length - 1] == '\n') --length;
    return std::string(line, static_cast<std::size_t>(length));
}

} // namespace

LineReader::LineReader() : interactive_(isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1) {
    if (!interactive_) return;
    rl_readline_name = programName;
    rl_completer_word_break_characters = wordBreaks;
    rl_completion_entry_function = nextMatch;
    rl_completion_append_character = '\0';
    using_history();
}

std::optional<std::string> LineReader::next() {
    if (!interactive_) return readPlainLine();
    HeapText const line(readline(promptText));
    if (line == nullptr) return std::nullopt;
    if (*line != '\0') add_history(line.get());
    return line.get();
}
