// The tokeniser of the expression language.
#pragma once

struct ParseState;
struct Token;

// The next token: a number of OperatorToken, a character code, or -1 at the end of the text. *value is set with
// NUMBER, STRING and NAME. Makes the implicit comma: "1 2", "a b" and "(a)(b)" are lists of values.
int getToken(ParseState & state, Token ** value);
