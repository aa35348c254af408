// The state of one evaluation: options given by the caller, and the working fields of tokeniser, parser and actions.
#pragma once

#include "Evaluation/ExprValue.h"
#include "torvelan/Evaluate.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

struct Group;
class VecSubstExpressionObject;

struct EvalOptions {
    Group * displayGroup = nullptr;                    // a vector of this group is written with an empty group part
    std::int64_t incrementalOffset = 0;                // first new element, in incrementalDivision
    std::int64_t incrementalDivision = -1;             // division in which new data begin; -1: not incremental
    bool equalsIsComparison = false;                   // '=' is read as "=="
    bool incrementalOnly = false;                      // only functions that declare supportsIncremental
    bool skipCurrentGroup = false;                     // unqualified names: local and global groups only
    bool letFlag = false;                              // kept for the front end; no step reads it
    BaseVector const * incrementalReference = nullptr; // the reference that the offset applies to
    VecSubstExpressionObject * substitution = nullptr; // not null: texts are rebuilt, no vector is touched
};

struct ParseState : EvalOptions {
    ParseState(char const * expression, EvalOptions const & options, ScpParseContext const & scriptContext);

    ScpParseContext context;
    char const * position; // of the tokeniser
    char const * text;     // start of the expression
    bool errorReported = false;
    int pendingToken = 0;
    int lastToken = 0;
    Token * pendingValue = nullptr;
    ExprValue * result = nullptr;
    FUNC_ERROR functionError = FUNC_OK; // the first failure of a function call

    MessageHandler & messages() const { return *context.messages(); }

    // Memory for parser stacks that outgrew the activation record.
    void * allocateStack(std::size_t size) noexcept;
    void freeStack(void * stack) noexcept;

private:
    struct Free {
        void operator()(void * p) const noexcept { std::free(p); }
    };
    std::unique_ptr<void, Free> parserStack_, outgrownStack_;
};

// Parses and evaluates in one pass. The first value of the expression list, or null. The values live until the
// outermost EvaluationDepth ends.
ExprValue * parseExpression(char const * text, EvalOptions const & options, ScpParseContext const & context,
                            FUNC_ERROR * functionError = nullptr);
