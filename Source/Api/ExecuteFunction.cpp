// Execute: a script of the host as a function.

#include "Evaluation/ScriptFunctions.h"
#include "Funcs/FunctionFamily.h"
#include "Funcs/Waveform.h"
#include "Groups/GroupStore.h"
#include "support/TextScan.h"
#include "torvelan/Host.h"

#include <string>

namespace {

constexpr char resultName[] = "$execute_rv";

YString argumentName(int i) {
    return YString("$execute_arg" + std::to_string(i));
}

// The vectors by which a script gets its arguments and gives its result. They end with the call, however it ends, even
// if the script has ended them, or their group, before.
class CallVectors {
public:
    CallVectors(Group & home, FuncArgs const & args, int firstArgument, MessageHandler & messages,
                ScpParseContext const & context)
        : home_(home.name), count_(args.getNumArgs()), first_(firstArgument) {
        for (int i = first_; i < count_; ++i) {
            XYVector passed;
            if (args.assignXYVec(&passed, i, messages, context)) enter(home, argumentName(i), passed);
        }
        enter(home, resultName, XYVector());
    }
    ~CallVectors() {
        for (int i = first_; i < count_; ++i) end(argumentName(i));
        end(resultName);
    }
    CallVectors(CallVectors const &) = delete;
    CallVectors & operator=(CallVectors const &) = delete;

    dvec * result() const noexcept { return find(resultName); }

private:
    static void enter(Group & home, YString const & name, XYVector const & data) {
        auto * const vector = new dvec(name, &home, data.physType());
        static_cast<BaseVector &>(*vector) = data;
        vector->ref = data.ref;
        vector->enterGroup();
        if (vector->isTemporary()) vector->release(); // the name was taken, which has been reported
    }
    dvec * find(YString const & name) const noexcept {
        Group const * const home = findGroup(home_);
        return home != nullptr ? home->find(name) : nullptr;
    }
    void end(YString const & name) const {
        dvec * const vector = find(name);
        if (vector == nullptr) return;
        vector->flags &= static_cast<std::uint16_t>(~VF_READONLY);
        vector->release();
    }

    YString home_;
    int count_, first_;
};

// "script /ne @$execute_rv $execute_arg1 ..."
std::string commandLine(FuncArgs const & args, int scriptArgument) {
    char const * const * const script = args.stringData(scriptArgument);
    char const * const text = script != nullptr && script[0] != nullptr ? script[0] : "";
    std::string line(sp_EscapeStringEncode(text, false, '|'));
    line += std::string(" /ne @") + resultName;
    for (int i = scriptArgument + 1; i < args.getNumArgs(); ++i) line.append(" ").append(argumentName(i).view());
    return line;
}

// The host's interpreter, looked up until it is there.
ScriptInterpreter interpreter() {
    static ScriptInterpreter found = nullptr;
    if (found == nullptr) found = reinterpret_cast<ScriptInterpreter>(support_GetDynamicFunction("scp_Execute"));
    return found;
}

void give(FuncResult & result, dvec const & value) {
    if (value.ref.totalLength() > 0)
        result.copyVector(value, value.ref);
    else
        result.copyVector(value);
    result.setPhysType(value.physType(), PT_UNCHANGED);
}

template <int scriptArgument>
FUNC_ERROR execute(FuncArgs const & args, FuncResult * result, FuncInfo *, YRef<MessageHandler>,
                   MessageHandler & messages, ScpParseContext const & context) {
    Group * const home = localOrGlobal();
    if (interpreter() == nullptr || home == nullptr) return FUNC_UNAVAILABLE;
    CallVectors const vectors(*home, args, scriptArgument + 1, messages, context);
    if (!interpreter()(commandLine(args, scriptArgument).c_str(), context)) return FUNC_FAILED;
    dvec const * const value = vectors.result();
    if (value != nullptr && !value->noData()) give(*result, *value);
    return FUNC_OK;
}

// --- ExistFunction

FUNC_ERROR existFunction(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    YString const name(textOf(args, 0));
    bool const exists =
        equalNoCase(textOf(args, 1), "script") ? isScriptFunction(name) : vec_FindFunction(name) != nullptr;
    giveNumber(result, exists ? 1.0 : 0.0, PT_NONE);
    return FUNC_OK;
}

constexpr argType text = ARG_STRING, any = ARG_ANY;
constexpr MultiDef refused = MULTI_REFUSED, each = MULTI_EACH;

constexpr FunctionRow rows[] = {
    {"Execute",
     execute<0>,
     1,
     16,
     {text, any, any, any, any, any, any, any, any, any, any, any, any, any, any, any},
     {refused, each, each, each},
     "Runs a script and gives what it returns"},
    {"_ExecuteAsyncWorker",
     execute<1>,
     2,
     16,
     {any, text, any, any, any, any, any, any, any, any, any, any, any, any, any, any},
     {refused, refused, each, each, each},
     "Runs a script named by the second argument"},
    {"ExistFunction", handlerOf<existFunction>, 1, 2, {text, text}, {}, "Whether there is a function of a name"},
};

FunctionFamily const family(rows);

} // namespace
