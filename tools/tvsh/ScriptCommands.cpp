#include "ScriptCommands.h"

#include "Evaluation.h"
#include "Interpreter.h"
#include "OpenFiles.h"
#include "TextPlot.h"
#include "ValueTable.h"
#include "Words.h"

#include "torvelan/torvelan.h"

#include <algorithm>
#include <charconv>

namespace {

using Words = std::vector<std::string>;

constexpr std::size_t any = static_cast<std::size_t>(-1);

ExitStatus statusOf(bool good) {
    return good ? exitDone : exitExpression;
}

bool isSwitch(std::string const & word) {
    return word.size() > 1 && word.front() == '/';
}

bool hasSwitch(Words const & words, std::string_view name) {
    return std::any_of(words.begin(), words.end(),
                       [name](std::string const & word) { return equalNoCase(word, name); });
}

Words operandsOf(Words words) {
    std::erase_if(words, isSwitch);
    return words;
}

WordArray wordArray(Words const & words) {
    WordArray out;
    for (std::string const & word : words) out.push_back(YString(word));
    return out;
}

// The number behind "/rows=" and its kin.
int numberOf(Words const & words, std::string const & prefix, int otherwise) {
    for (std::string const & word : words)
        if (word.size() > prefix.size() && equalNoCase(word.substr(0, prefix.size()), prefix))
            std::from_chars(word.data() + prefix.size(), word.data() + word.size(), otherwise);
    return otherwise;
}

// --- expressions

ExitStatus let(Words const &, std::string_view line, Interpreter & interpreter) {
    return statusOf(vec_LetCommand(YString(line), interpreter.messages(), true, interpreter.context()) == FUNC_OK);
}

// Evaluates each word; false when one fails.
bool evaluateAll(Words const & words, Interpreter const & interpreter, std::vector<std::unique_ptr<Evaluation>> & out,
                 std::vector<XYVector const *> & values) {
    for (std::string const & word : operandsOf(words)) {
        out.push_back(std::make_unique<Evaluation>(word, interpreter.messages()));
        if (!out.back()->ok()) return false;
        values.insert(values.end(), out.back()->values().begin(), out.back()->values().end());
    }
    return true;
}

ExitStatus print(Words const & words, std::string_view, Interpreter & interpreter) {
    std::vector<std::unique_ptr<Evaluation>> evaluations;
    std::vector<XYVector const *> values;
    if (!evaluateAll(words, interpreter, evaluations, values)) return exitExpression;
    TableOptions options;
    options.rows = std::max(numberOf(words, "/rows=", 0), 0);
    writeTables(values, options);
    return exitDone;
}

ExitStatus display(Words const & words, std::string_view, Interpreter & interpreter) {
    std::vector<std::unique_ptr<Evaluation>> evaluations;
    std::vector<XYVector const *> values;
    if (!evaluateAll(words, interpreter, evaluations, values)) return exitExpression;
    PlotOptions options;
    options.width = std::clamp(numberOf(words, "/width=", options.width), 20, 400);
    options.height = std::clamp(numberOf(words, "/height=", options.height), 4, 200);
    writeOut(plotText(values, options));
    return exitDone;
}

// Text, and the values of expressions in braces.
ExitStatus echo(Words const &, std::string_view line, Interpreter & interpreter) {
    std::string text;
    while (!line.empty()) {
        std::size_t const open = std::min(line.find('{'), line.size());
        text += line.substr(0, open);
        line.remove_prefix(open);
        if (line.empty()) break;
        std::size_t const close = line.find('}');
        if (close == std::string_view::npos) return interpreter.fail("'{' without '}'");
        YArray<YString> values;
        std::string const expression(line.substr(1, close - 1));
        if (vec_Evaluate(&values, 1, expression.c_str(), interpreter.context(), false) != VEC_EVAL_OK)
            return exitExpression;
        text += values.front().view();
        line.remove_prefix(close + 1);
    }
    writeOut(text + "\n");
    return exitDone;
}

// --- vectors

ExitStatus setRef(Words const & words, std::string_view line, Interpreter & interpreter) {
    return statusOf(vec_SetRefCommand(YString(words[0]), YString(behindFirstWord(line)), interpreter.messages(),
                                      interpreter.context()));
}

ExitStatus setUnits(Words const & words, std::string_view, Interpreter & interpreter) {
    return statusOf(vec_SetUnitsCommand(YString(words[0]), YString(words[1]), interpreter.console()));
}

// An alias finds the vectors of its own group, so a new one is made in the current group, beside its data.
ExitStatus makeNewAlias(std::string const & name, std::string_view expression, Interpreter const & interpreter) {
    XYVector * found = nullptr;
    YString group;
    vec_GetCurrentGroupName(group);
    if (vec_GetVector(group, YString(name), &found) == VEC_OK)
        return interpreter.fail("there is a vector of name '" + name + "' already");
    return statusOf(vec_MakeAliasVector(YString(name), YString(expression), group, PT_UNKNOWN) == VEC_OK);
}

ExitStatus makeAlias(Words const & words, std::string_view line, Interpreter & interpreter) {
    if (words.size() > 1) return makeNewAlias(words[0], behindFirstWord(line), interpreter);
    return statusOf(vec_MakeAliasCommand(YString(words[0]), interpreter.console()));
}

ExitStatus setReadOnly(Words const & words, std::string_view, Interpreter & interpreter) {
    return statusOf(vec_SetReadOnlyCommand(YString(words[0]), interpreter.console()));
}

ExitStatus discard(Words const & words, std::string_view, Interpreter & interpreter) {
    VecDiscardOptions const options{hasSwitch(words, "/group"), hasSwitch(words, "/delete")};
    return statusOf(vec_DiscardCommand(wordArray(operandsOf(words)), options, interpreter.console()));
}

// --- groups

ExitStatus delGroup(Words const & words, std::string_view, Interpreter & interpreter) {
    VecDelGroupOptions const options{hasSwitch(words, "/all"), hasSwitch(words, "/keep")};
    return statusOf(vec_DelGroupCommand(wordArray(operandsOf(words)), options, interpreter.console()));
}

ExitStatus openGroup(Words const & words, std::string_view, Interpreter & interpreter) {
    return openFile(words[0], interpreter.sharedConsole()) ? exitDone : exitInput;
}

// The library says nothing of a path that cannot be written at all, so that is asked ahead.
ExitStatus saveGroup(Words const & words, std::string_view, Interpreter & interpreter) {
    if (!canWriteFile(words[0], *interpreter.sharedConsole())) return exitOutput;
    bool const saved = vec_SaveGroup(YString(words[0]), VecSaveGroupOptions(), interpreter.sharedConsole());
    return saved ? exitDone : exitOutput;
}

ExitStatus listGroups(Words const &, std::string_view, Interpreter &) {
    YList<YString> names;
    vec_GetGroups(&names);
    YString current;
    vec_GetCurrentGroupName(current);
    for (YString const & name : names) {
        YString title;
        vec_GetGroupTitle(name, title);
        writeOut(std::string(name == current ? "* " : "  ") + std::string(name) + "  " +
                 std::string(trimmed(title.view())) + "\n");
    }
    return exitDone;
}

ExitStatus listVectors(Words const & words, std::string_view, Interpreter & interpreter) {
    YString const group(words.empty() ? "" : words[0]);
    YList<YString> names;
    if (vec_GetVectorsInGroup(&names, group) != VEC_OK)
        return interpreter.fail("there is no group of name '" + words[0] + "'");
    for (YString const & name : names) writeOut(std::string(name) + "\n");
    return exitDone;
}

ExitStatus groupCode(VEC_ERROR code, std::string const & name, Interpreter const & interpreter) {
    return code == VEC_OK ? exitDone : interpreter.fail("there is no group of name '" + name + "'");
}

ExitStatus keepGroup(Words const & words, std::string_view, Interpreter & interpreter) {
    YString const name(operandsOf(words).empty() ? "" : operandsOf(words)[0]);
    return groupCode(vec_KeepGroup(name, !hasSwitch(words, "/no")), std::string(name), interpreter);
}

ExitStatus setGroup(Words const & words, std::string_view, Interpreter & interpreter) {
    return groupCode(vec_SetCurrentGroup(YString(words[0])), words[0], interpreter);
}

// --- scripts

ExitStatus registerUserFunction(Words const & words, std::string_view, Interpreter & interpreter) {
    return statusOf(vec_RegisterUserFunctionCommand(wordArray(words), interpreter.console()));
}

ExitStatus arguments(Words const & words, std::string_view, Interpreter & interpreter) {
    return statusOf(vec_ArgumentsCommand(wordArray(words), interpreter.context()));
}

ExitStatus runCommand(Words const & words, std::string_view, Interpreter & interpreter) {
    std::string name = words[0];
    std::erase(name, '\'');
    return interpreter.runScript(name, Words(words.begin() + 1, words.end()));
}

ExitStatus onError(Words const & words, std::string_view, Interpreter & interpreter) {
    bool const goesOn = equalNoCase(words[0], "continue");
    if (!goesOn && !equalNoCase(words[0], "stop")) return interpreter.fail("OnError takes 'continue' or 'stop'");
    interpreter.goOnAfterErrors(goesOn);
    return exitDone;
}

ExitStatus setOption(Words const & words, std::string_view, Interpreter &) {
    sp_SetOption(words[0].c_str(), YString(words[1]));
    return exitDone;
}

std::string helpOf(ScriptCommand const & command) {
    std::string const blank = *command.usage != '\0' ? " " : "";
    return command.name + blank + command.usage + "\n    " + command.help + "\n";
}

ExitStatus help(Words const & words, std::string_view, Interpreter & interpreter) {
    if (words.empty()) {
        for (ScriptCommand const & command : scriptCommands()) writeOut(helpOf(command));
        return exitDone;
    }
    ScriptCommand const * const command = findScriptCommand(words[0]);
    if (command == nullptr) return interpreter.fail("there is no command '" + words[0] + "'");
    writeOut(helpOf(*command));
    return exitDone;
}

ExitStatus quit(Words const &, std::string_view, Interpreter & interpreter) {
    interpreter.quit();
    return exitDone;
}

constexpr ScriptCommand commands[] = {
    {"Arguments", "[@]NAME[=DEFAULT]...", "names the arguments of a script, '@' those passed by reference", 0, any, "",
     arguments},
    {"DelGroup", "[/all] [/keep] GROUP...", "deletes groups; /keep leaves their data files", 0, any, "/all /keep",
     delGroup},
    {"Discard", "[/group] [/delete] NAME...", "ends a vector, or with /group groups; /delete their data files too", 0,
     any, "/group /delete", discard},
    {"Display", "[/width=N] [/height=N] EXPR...", "draws values over their reference", 1, any,
     "/width= /height=", display},
    {"Echo", "TEXT", "prints a text, with the value of each {EXPR} in it", 0, any, "", echo},
    {"Exit", "", "as Quit", 0, 0, "", quit},
    {"Groups", "", "lists the groups, the newest first; '*' marks the current one", 0, 0, "", listGroups},
    {"Help", "[COMMAND]", "tells what commands do", 0, 1, "", help},
    {"KeepGroup", "[/no] [GROUP]", "keeps a group from giving way to later runs; /no takes it back", 0, 1, "/no",
     keepGroup},
    {"Let", "EXPR", "evaluates an expression, normally an assignment, in silence", 1, any, "", let},
    {"MakeAlias", "VECTOR [EXPR]", "makes an alias of an expression, or one of a string vector", 1, any, "", makeAlias},
    {"OnError", "continue|stop", "whether a script goes on behind a line that fails", 1, 1, "", onError},
    {"OpenGroup", "FILE", "opens a file into a new group, which becomes current", 1, 1, "", openGroup},
    {"Print", "[/rows=N] EXPR...", "prints values over their reference as a table", 1, any, "/rows=", print},
    {"Quit", "", "ends the script or the prompt", 0, 0, "", quit},
    {"RegisterUserFunction", "NAME SCRIPT [MIN [MAX]]", "makes a script a function of expressions", 2, 4, "",
     registerUserFunction},
    {"Run", "SCRIPT [ARGUMENT...]", "runs a script; '@name' passes a variable by reference", 1, any, "", runCommand},
    {"SaveGroup", "FILE", "saves the current group as a native data file", 1, 1, "", saveGroup},
    {"Set", "OPTION VALUE", "sets an option", 2, 2, "", setOption},
    {"SetGroup", "GROUP", "makes a group the current one", 1, 1, "", setGroup},
    {"SetReadOnly", "VECTOR", "forbids changes of a vector", 1, 1, "", setReadOnly},
    {"SetRef", "VECTOR EXPR", "gives a vector a reference", 2, any, "", setRef},
    {"SetUnits", "VECTOR UNIT", "says what a vector measures", 2, 2, "", setUnits},
    {"Vectors", "[GROUP]", "lists the vectors of a group", 0, 1, "", listVectors},
};

bool isKnownSwitch(std::string const & word, std::string_view known) {
    auto const names = splitWords(known);
    std::size_t const equals = word.find('=');
    std::string const name = word.substr(0, equals == std::string::npos ? equals : equals + 1);
    return std::any_of(names->begin(), names->end(), [&](std::string const & row) { return equalNoCase(row, name); });
}

bool takesExpressions(ScriptCommand const & command) {
    return command.run == print || command.run == display || command.run == arguments || command.run == runCommand;
}

ExitStatus wrongUsage(ScriptCommand const & command, std::string const & problem, Interpreter const & interpreter) {
    interpreter.fail(problem + "; usage: " + command.name + " " + command.usage);
    return exitUsage;
}

} // namespace

std::span<ScriptCommand const> scriptCommands() {
    return commands;
}

ScriptCommand const * findScriptCommand(std::string_view name) {
    for (ScriptCommand const & command : commands)
        if (equalNoCase(name, command.name)) return &command;
    return nullptr;
}

ExitStatus runScriptCommand(ScriptCommand const & command, std::string const & line, Interpreter & interpreter) {
    std::string_view const rest = behindFirstWord(line);
    bool const takesText =
        command.run == let || command.run == echo || command.run == setRef || command.run == makeAlias;
    auto const words = splitWords(rest, takesExpressions(command) ? WordKind::expressions : WordKind::names);
    if (!words && !takesText) return wrongUsage(command, "a quote is not closed", interpreter);
    Words const given = words ? *words : Words{std::string(rest)};
    if (*command.switches != '\0')
        for (std::string const & word : given)
            if (isSwitch(word) && !isKnownSwitch(word, command.switches))
                return wrongUsage(command, "unknown switch '" + word + "'", interpreter);
    std::size_t const count = *command.switches != '\0' ? operandsOf(given).size() : given.size();
    if (count < command.minWords || count > command.maxWords)
        return wrongUsage(command, count < command.minWords ? "something is missing" : "too many words", interpreter);
    return command.run(given, rest, interpreter);
}
