// The commands by which scripts become functions and name their arguments.

#include "torvelan/Commands.h"

#include "Evaluation/ScriptFunctions.h"
#include "Groups/GroupStore.h"
#include "torvelan/Functions.h"

#include <string>

namespace {

// One word of the Arguments command.
struct Declaration {
    explicit Declaration(std::string_view word, std::size_t position) {
        bool const byReference = !word.empty() && word.front() == '@';
        passedName = YString((byReference ? "$var" : "$arg") + std::to_string(position));
        if (byReference) word.remove_prefix(1);
        std::size_t const equals = byReference ? std::string_view::npos : word.find('=');
        hasDefault = equals != std::string_view::npos;
        name = YString(word.substr(0, equals));
    }

    YString passedName; // of the vector that holds the argument
    YString name;       // that it gets
    bool hasDefault = false;
};

dvec * findLocal(YString const & name) {
    Group const * const local = nameSpace().local;
    return local != nullptr ? local->find(name) : nullptr;
}

} // namespace

bool vec_RegisterUserFunctionCommand(WordArray const & words, MessageHandler & messages) {
    YString const & name = words[0];
    if (name.empty() || words[1].empty()) {
        messages.error("A user function needs a name and a script");
        return false;
    }
    if (vec_FindFunction(name) != nullptr) {
        messages.error("The function '%s' is internal and cannot be defined as a user function", name);
        return false;
    }
    registerScriptFunction(name, words[1], words.integer(2, 0), words.integer(3, -1));
    return true;
}

bool vec_ArgumentsCommand(WordArray const & words, ScpParseContext const & context) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        Declaration const declaration(words[i], i + 1);
        if (dvec * const passed = findLocal(declaration.passedName)) {
            passed->setName(declaration.name);
        } else if (declaration.hasDefault) {
            // For its effect alone: the answer is that there is no text.
            static_cast<void>(vec_Evaluate(static_cast<char **>(nullptr), words[i].c_str(), context, false, false));
        } else {
            context.messages()->error("No value passed to argument %d", i + 1);
            return false;
        }
    }
    return true;
}
