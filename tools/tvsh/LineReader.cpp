#include "LineReader.h"

#include "ScriptCommands.h"
#include "Words.h"

#include "torvelan/Functions.h"
#include "torvelan/Groups.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
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
constexpr int longestHistory = 1000;

void addMatch(std::vector<std::string> & matches, YString const & name, std::string_view start) {
    if (equalNoCase(name.view().substr(0, start.size()), start)) matches.emplace_back(name.view());
}

void addFunctions(std::vector<std::string> & matches, std::string_view start) {
    YList<FunctionInfo> functions;
    vec_GetFunctions(&functions, false);
    vec_GetScriptFunctions(&functions);
    for (FunctionInfo const & function : functions) addMatch(matches, function.name, start);
}

// Of the current and the local group as they stand, and "group:name" of all groups once a group is written.
void addVectors(std::vector<std::string> & matches, std::string_view start) {
    YString local;
    vec_GetLocalGroupName(&local);
    for (YString const & group : {YString(), local}) {
        YList<YString> vectors;
        vec_GetVectorsInGroup(&vectors, group);
        for (YString const & vector : vectors) addMatch(matches, vector, start);
    }
    YList<YString> groups;
    vec_GetGroups(&groups);
    for (YString const & group : groups) {
        addMatch(matches, group, start);
        if (start.size() <= group.size() || start[group.size()] != ':') continue;
        YList<YString> vectors;
        vec_GetVectorsInGroup(&vectors, group);
        for (YString const & vector : vectors)
            addMatch(matches, YString(std::string(group) + ":" + std::string(vector)), start);
    }
}

std::vector<std::string> namesBeginningWith(std::string_view start) {
    std::vector<std::string> matches;
    for (ScriptCommand const & command : scriptCommands()) addMatch(matches, command.name, start);
    addFunctions(matches, start);
    addVectors(matches, start);
    std::sort(matches.begin(), matches.end());
    matches.erase(std::unique(matches.begin(), matches.end()), matches.end());
    return matches;
}

// File names behind these commands.
bool takesFile(std::string_view line) {
    std::string_view const command = trimmed(line).substr(0, trimmed(line).find_first_of(" \t"));
    return equalNoCase(command, "OpenGroup") || equalNoCase(command, "Run");
}

std::vector<std::string> filesBeginningWith(char const * start) {
    std::vector<std::string> matches;
    while (HeapText const file{rl_filename_completion_function(start, static_cast<int>(matches.size()))})
        matches.emplace_back(file.get());
    return matches;
}

// The history, in the user's state folder, for the user alone.
std::string historyFile() {
    char const * const state = std::getenv("XDG_STATE_HOME");
    char const * const home = std::getenv("HOME");
    if ((state == nullptr || *state != '/') && home == nullptr) return {};
    std::filesystem::path folder =
        state != nullptr && *state == '/' ? std::filesystem::path(state) : std::filesystem::path(home) / ".local/state";
    folder /= "tvsh";
    std::error_code problem;
    std::filesystem::create_directories(folder, problem);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, problem);
    return problem ? std::string() : (folder / "history").string();
}

// Called by libedit with state 0 for the first match and 1 for each further one.
char * nextMatch(char const * start, int state) {
    static std::vector<std::string> matches;
    static std::size_t position;
    if (state == 0) {
        bool const atStart = rl_point == static_cast<int>(std::strlen(start));
        matches = !atStart && takesFile(rl_line_buffer) ? filesBeginningWith(start) : namesBeginningWith(start);
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
    history_ = historyFile();
    if (history_.empty()) return;
    stifle_history(longestHistory);
    read_history(history_.c_str());
}

LineReader::~LineReader() {
    if (history_.empty()) return;
    mode_t const mask = umask(S_IRWXG | S_IRWXO);
    write_history(history_.c_str());
    umask(mask);
}

std::optional<std::string> LineReader::next() {
    if (!interactive_) return readPlainLine();
    HeapText const line(readline(promptText));
    if (line == nullptr) return std::nullopt;
    if (*line != '\0') add_history(line.get());
    return line.get();
}
