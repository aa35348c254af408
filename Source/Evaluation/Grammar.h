// The LALR(1) automaton of the expression language, made from Grammar.y.
#pragma once

struct ParseState;

// Runs the parser over the text of the state. 0 when it reached the end (also after a syntax error, which
// state.errorReported tells), 1 aborted, 2 stacks exhausted.
int runParser(ParseState & state);
