#include "Evaluation/ScriptFunctions.h"

#include "torvelan/Functions.h"
#include "torvelan/Host.h"

#include <algorithm>
#include <forward_list>

namespace {

constexpr int mostArguments = FuncInfo::maxArguments - 1; // Execute takes the script's name as well

// Never destroyed, since a session may end among static destructors.
std::forward_list<ScriptFunction> & list() {
    static auto & functions = *new std::forward_list<ScriptFunction>;
    return functions;
}

ScriptFunction * find(YString const & name) noexcept {
    auto & functions = list();
    auto const found = std::find_if(functions.begin(), functions.end(), [&name](ScriptFunction const & function) {
        return equalNoCase(function.name, name);
    });
    return found != functions.end() ? &*found : nullptr;
}

void deleteScriptFunctions() {
    list().clear();
}

AutoFunc const atExit("Exit", deleteScriptFunctions, "deleteUserHashTables");

} // namespace

void registerScriptFunction(YString const & name, YString const & scriptName, int minArgs, int maxArgs) {
    ScriptFunction const function{name, scriptName, minArgs, maxArgs < 0 ? mostArguments : maxArgs};
    if (ScriptFunction * const present = find(name))
        *present = function;
    else
        list().push_front(function);
}

ScriptFunction const * findScriptFunction(YString const & name) noexcept {
    return find(name);
}

bool isScriptFunction(YString const & name) noexcept {
    return find(name) != nullptr;
}

void vec_GetScriptFunctions(YList<FunctionInfo> * out) {
    for (ScriptFunction const & function : list())
        out->push_back({function.name, function.minArgs, function.maxArgs,
                        YString::joined("Script ", {function.scriptName.view()})});
}
