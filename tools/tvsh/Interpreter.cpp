#include "Interpreter.h"

#include "Evaluation.h"
#include "NumberText.h"
#include "ScriptCommands.h"
#include "TextOutput.h"
#include "Words.h"

#include "torvelan/torvelan.h"

#include <cstdlib>
#include <fstream>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr std::size_t deepestNesting = 64;
constexpr char const * scriptExtension = ".tv";

Interpreter * running = nullptr;

bool executeLine(char const * line, ScpParseContext const &) {
    return running != nullptr && running->execute(line);
}

MakeDynamicFunction const asInterpreter("scp_Execute", reinterpret_cast<DynamicFunction>(executeLine));

// --- the arguments of a script. They are evaluated where it is called, and named where it runs.

class Passed {
public:
    Passed(std::string const & argument, Interpreter const & interpreter) {
        if (argument.starts_with('@'))
            target_ = variable(argument.substr(1));
        else
            ok_ = evaluate(argument, interpreter);
    }
    bool ok() const noexcept { return ok_; }
    // In the local group, as "$arg<i>", or for a variable "$var<i>", which stands for it.
    void enter(std::size_t i, MessageHandler & messages) const {
        std::string const number = std::to_string(i);
        if (!target_.empty()) {
            vec_MakeReferenceAlias(YString("$var" + number), target_, messages);
            return;
        }
        auto * const vector = new dvec(YString("$arg" + number), nullptr, value_.physType());
        static_cast<BaseVector &>(*vector) = value_;
        vector->ref = value_.ref;
        vector->enterGroup();
    }

private:
    // "group:name" of a variable, which is made where there is none.
    static YString variable(std::string const & name) {
        XYVector * found = nullptr;
        vec_GetVector(YString(), YString(name), &found);
        auto * vector = static_cast<dvec *>(found);
        if (vector == nullptr) {
            vector = new dvec(YString(name), nullptr, PT_UNKNOWN);
            vector->enterGroup();
        }
        return vector->fullName();
    }
    bool evaluate(std::string const & expression, Interpreter const & interpreter) {
        Evaluation const evaluation(expression, interpreter.messages());
        if (!evaluation.ok() || evaluation.values().empty()) return false;
        value_ = *evaluation.values().front();
        return true;
    }

    XYVector value_;
    YString target_;
    bool ok_ = true;
};

struct ContextGuard {
    ContextGuard() { vec_PushContext(); }
    ~ContextGuard() { vec_PopContext(); }
    ContextGuard(ContextGuard const &) = delete;
    ContextGuard & operator=(ContextGuard const &) = delete;
};

// "|n" and its kin, as they come from Execute.
std::string unescaped(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool const isEscape = text[i] == '|' && i + 1 < text.size();
        char const c = isEscape ? text[++i] : text[i];
        out += !isEscape ? c : c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c;
    }
    return out;
}

} // namespace

Interpreter::Interpreter(std::shared_ptr<ConsoleMessages> console) : console_(std::move(console)) {
    running = this;
}

Interpreter::~Interpreter() {
    running = nullptr;
}

ExitStatus Interpreter::fail(std::string const & words) const {
    console_->error("%s", words.c_str());
    return exitExpression;
}

ExitStatus Interpreter::evaluate(std::string const & line) {
    Evaluation const evaluation(line, console_);
    for (XYVector const * value : evaluation.values()) writeOut(valueText(*value, shortestPrecision));
    return evaluation.ok() ? exitDone : exitExpression;
}

ExitStatus Interpreter::runLine(std::string const & line) {
    if (isComment(line)) return exitDone;
    std::string const text(trimmed(line));
    ScriptCommand const * const command = findScriptCommand(text.substr(0, text.find_first_of(" \t")));
    return command != nullptr ? runScriptCommand(*command, text, *this) : evaluate(text);
}

ExitStatus Interpreter::runLines(Lines const & next) {
    ExitStatus status = exitDone;
    std::string line;
    while (!isQuitting_ && next(line)) {
        ExitStatus const code = runLine(line);
        if (code != exitDone && status == exitDone) status = code;
        if (code != exitDone && !goesOn_) break;
    }
    return status;
}

ExitStatus Interpreter::runFile(fs::path const & path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        console_->error("cannot read the script '%s'", path.c_str());
        return exitInput;
    }
    int number = 0;
    std::string const outer = console_->location();
    bool const outerGoesOn = std::exchange(goesOn_, false);
    ExitStatus const status = runLines([&](std::string & line) {
        console_->setLocation(path.string() + ":" + std::to_string(++number));
        return static_cast<bool>(std::getline(file, line));
    });
    goesOn_ = outerGoesOn;
    isQuitting_ = false; // a script ends itself alone
    console_->setLocation(outer);
    return status;
}

// Beside the script that calls, in the working folder, and in those of TVSH_PATH; with or without the extension.
fs::path Interpreter::find(std::string const & name) const {
    std::vector<fs::path> folders;
    if (!scripts_.empty()) folders.push_back(scripts_.back().parent_path());
    folders.emplace_back();
    std::string_view rest = std::getenv("TVSH_PATH") != nullptr ? std::getenv("TVSH_PATH") : "";
    while (!rest.empty()) {
        std::size_t const length = std::min(rest.find(':'), rest.size());
        folders.emplace_back(rest.substr(0, length));
        rest.remove_prefix(std::min(length + 1, rest.size()));
    }
    std::error_code ignored;
    for (fs::path const & folder : folders)
        for (std::string const & file : {name, name + scriptExtension})
            if (fs::is_regular_file(folder / file, ignored)) return folder / file;
    return {};
}

ExitStatus Interpreter::runScript(std::string const & name, std::vector<std::string> const & arguments) {
    if (scripts_.size() >= deepestNesting) return fail("scripts are nested too deeply to run '" + name + "'");
    fs::path const path = find(name);
    if (path.empty()) {
        console_->error("there is no script '%s'", name.c_str());
        return exitInput;
    }
    std::vector<Passed> passed;
    for (std::string const & argument : arguments) {
        passed.emplace_back(argument, *this);
        if (!passed.back().ok()) return exitExpression;
    }
    ContextGuard const context;
    for (std::size_t i = 0; i < passed.size(); ++i) passed[i].enter(i + 1, *console_);
    scripts_.push_back(path);
    ExitStatus const status = runFile(path);
    scripts_.pop_back();
    return status;
}

bool Interpreter::execute(char const * line) {
    auto words = splitWords(line);
    if (!words || words->empty()) return false;
    std::string const name = unescaped(words->front());
    words->erase(words->begin());
    std::erase_if(*words, [](std::string const & word) { return word.starts_with('/'); }); // switches
    return runScript(name, *words) == exitDone;
}
