// Evaluation of expression texts.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/ResultCodes.h"
#include "torvelan/Vectors.h"

// Context of the script interpreter: where messages go, and whether a script function stands in for a built-in.
// Copied by value into an evaluation and handed to every function handler.
class TORVELAN_API ScpParseContext {
public:
    // A null reference discards all messages.
    explicit ScpParseContext(YRef<MessageHandler> handler);

    YRef<MessageHandler> const & messages() const noexcept { return messages_; }
    bool scriptFunction = false; // set during the call of a script function

private:
    YRef<MessageHandler> messages_; // never null
};

// The host's script interpreter, registered by MakeDynamicFunction under "scp_Execute" (see Host.h): runs a script
// line, "script /ne @$execute_rv $execute_arg1 ...", whose first part may hold the escapes |n, |r, |t and ||. The
// vectors named are in the local group; "@" marks the one that the script writes its result to. False after a message
// when the script failed.
using ScriptInterpreter = bool (*)(char const * line, ScpParseContext const & context);

// One real number. *out is 0.0 unless the answer is VEC_EVAL_OK, which needs a real value of length 1. Names are looked
// up in the local and global groups only. The temporary waits for collection.
TORVELAN_API VecEvalError vec_Evaluate(double * out, YString const & expr, ScpParseContext const & context);
// Elements of the first value as text, at most maxCount of them (all when negative): real "%.*g", complex
// "(%.*g,%.*g)", with 15 digits, strings as they stand.
TORVELAN_API VecEvalError vec_Evaluate(YArray<YString> * out, int maxCount, char const * expr,
                                       ScpParseContext const & context, bool skipCurrentGroup);
// Element 0 as text in a strdup copy that the caller frees; aliases are resolved. 1 on success, 0 otherwise, also for a
// null place, when the expression has been evaluated for its effect alone.
TORVELAN_API int vec_Evaluate(char ** out, char const * expr, ScpParseContext const & context, bool equalsIsComparison,
                              bool skipCurrentGroup);
// Element 0 as text, names of the local and global groups only.
TORVELAN_API VecEvalError vec_Evaluate(YString * out, YString const & expr, ScpParseContext const & context);
// The same in silence.
TORVELAN_API VecEvalError vec_Evaluate(YString * out, YString const & expr, bool skipCurrentGroup);

// Appends each value of an expression list to `out`. The caller owns temporaries among them, until vec_ReleaseVector or
// the next collection. VEC_OK; VEC_NO_GROUP when evaluated but the display group is unknown;
// VEC_NULL_EXPRESSION; VEC_EXPRESSION_FAILED when any value failed (the others are still appended).
TORVELAN_API VEC_ERROR vec_EvalVecList(char const * expr, YArray<XYVector *> * out, ScpParseContext const & context,
                                       YString const & displayGroupName, bool incrementalOnly);
enum IncEvalErr : int {
    INC_EVAL_OK = 0,
    INC_EVAL_FAILED = 2, // no value, or a function that needs all points
};
// Extends a vector that an earlier evaluation of `expr` has made, from the points that its reference has and it lacks,
// while a run goes on; divisions that have come since are added, with `displayGroup` as the group of their labels. The
// work depends on the new points alone where only operators and elementwise functions stand between the vectors of the
// run. The reference is the caller's to extend, beforehand. True when *error is not INC_EVAL_OK: `result` is as it was,
// and the expression is to be evaluated afresh.
TORVELAN_API bool vec_IncrementalEvaluate(char const * expr, XYVector * result, YString const & displayGroup,
                                          IncEvalErr * error, YRef<MessageHandler> messages,
                                          ScpParseContext const & context);

// Finds a vector by group and name (an empty group: as an expression does) and converts an alias. VEC_NO_VECTOR when
// there is none or its conversion failed.
TORVELAN_API VEC_ERROR vec_GetNumericVector(YString const & group, YString const & name, XYVector ** out,
                                            YRef<MessageHandler> messages, ScpParseContext const & context);
// Ends a vector that vec_EvalVecList gave, if it is a temporary; members of groups stay. Null is fine.
TORVELAN_API void vec_ReleaseVector(XYVector * vector);
// True for a vector that is an alias (VF_ALIAS).
TORVELAN_API bool vec_IsAlias(XYVector const * vector);
