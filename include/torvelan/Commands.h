// The commands of the front end's language that work on vectors and groups. Each reports its errors through the
// handler given (or that of the context) and stops at the first one, unless it says otherwise; what was changed before
// stays. True is success. Names of vectors are sought as an expression does.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/Evaluate.h"
#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/ResultCodes.h"

struct VecDiscardOptions {
    bool groupMode = false;      // the words are groups; otherwise word 0 is a vector
    bool deleteDataFile = false; // of a group
};

struct VecDelGroupOptions {
    bool all = false; // every group that is neither protected nor local
    bool keepDataFile = false;
};

// Evaluates an expression for its effect. FUNC_OK when it has a value, FUNC_FAILED otherwise. `letFlag` is handed to
// the evaluation for the front end; no step reads it. Null messages mean those of the context.
TORVELAN_API FUNC_ERROR vec_LetCommand(YString const & expr, YRef<MessageHandler> messages, bool letFlag,
                                       ScpParseContext const & context);
// Gives a vector the value of an expression, of the same length in each division, as its reference: name and data of
// the value's own elements.
TORVELAN_API bool vec_SetRefCommand(YString const & vector, YString const & refExpr, YRef<MessageHandler> messages,
                                    ScpParseContext const & context);
// Sets the PhysType of a vector by its name or unit; that of the reference stays.
TORVELAN_API bool vec_SetUnitsCommand(YString const & vector, YString const & unit, MessageHandler & messages);
// Turns a string vector into an alias: element 0 is evaluated whenever the vector is used.
TORVELAN_API bool vec_MakeAliasCommand(YString const & vector, MessageHandler & messages);
// Forbids assignment and deletion. No command takes this back.
TORVELAN_API bool vec_SetReadOnlyCommand(YString const & vector, MessageHandler & messages);
// Takes a vector out of its group (no group part, or an empty one: the current group) and ends it, or destroys groups,
// an empty first word being the current one.
TORVELAN_API bool vec_DiscardCommand(WordArray const & words, VecDiscardOptions options, MessageHandler & messages);
// Destroys groups, from the end of the list, going on after a failure.
TORVELAN_API bool vec_DelGroupCommand(YArray<YString> const & names, VecDelGroupOptions options,
                                      MessageHandler & messages);
// Makes a script callable from expressions: name, script, least number of arguments (0), greatest (-1: no limit). A
// later registration of a name replaces an earlier one; a built-in function cannot be replaced.
TORVELAN_API bool vec_RegisterUserFunctionCommand(WordArray const & words, MessageHandler & messages);
// At the head of a script: names its arguments. Word i (from 1) renames "$arg<i>" of the local group, "@name" renames
// "$var<i>", and "name=default" is evaluated as an assignment where no argument was passed.
TORVELAN_API bool vec_ArgumentsCommand(WordArray const & words, ScpParseContext const & context);
