// The semantic values of the parser, and the arena they live in until the outermost evaluation ends.
#pragma once

#include "torvelan/YString.h"

class dvec;

// What the tokeniser hands over with NUMBER, STRING and NAME.
struct Token {
    double number = 0;
    YString text;
};

// A vector (or none) and the text of the sub-expression, as it appears in names and messages.
struct ExprValue {
    bool emptyArgs = false;     // the marker of a call with no arguments
    dvec * vector = nullptr;    // not owned; null when this part failed, or texts are being rebuilt
    ExprValue * next = nullptr; // in a list
    YString text;
};

// Every entry of the evaluator holds one. Values made meanwhile are freed when the outermost one ends.
class EvaluationDepth {
public:
    EvaluationDepth() noexcept;
    ~EvaluationDepth();
    EvaluationDepth(EvaluationDepth const &) = delete;
    EvaluationDepth & operator=(EvaluationDepth const &) = delete;

    static Token * newToken();
    static ExprValue * newValue();
    static int depth() noexcept;
};
