// Rewriting of expression texts.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/Export.h"
#include "torvelan/YString.h"

// What vec_SubstituteExpression asks while it rebuilds a text.
class TORVELAN_API VecSubstExpressionObject {
public:
    // The new text for a vector name.
    virtual YString substituteName(YString const & name) = 0;
    // The new text for a whole call; asked only if substitutesFunctions() answers true.
    virtual YString substituteFunction(YString const & name, NameArray const & args);
    virtual ~VecSubstExpressionObject();
    virtual bool substitutesFunctions();
};

// The text with names (and calls) replaced, in normal form: operators without blanks, "<>" for "!=", "&&" and "||" for
// the words. No vector is touched and nothing is reported; the empty text when the expression does not parse.
TORVELAN_API YString vec_SubstituteExpression(YString expr, VecSubstExpressionObject * object);

// The text with every alias replaced by its definition, in parentheses, down to any depth; otherwise as above. Stops
// after 19 levels, as it must for aliases that go round in a circle, and ahead of a level that would make more than
// 4 MiB of text; what stands then may still hold aliases. A text that does not parse comes back as it is.
TORVELAN_API YString vec_ExpandAlias(YString expr);
