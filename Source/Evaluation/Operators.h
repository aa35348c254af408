// The operators of the expression language: one row per token, found by the actions of the grammar.
#pragma once

#include "torvelan/Functions.h"

struct OperatorRow {
    int token;
    char const * spelling; // in text forms
    FuncInfo info;         // ready for callFunction
};

// The row of a token, or null. Unary minus has the token UMINUS.
OperatorRow * findOperator(int token);

// Numbers of the tokens; single characters have their code.
enum OperatorToken : int {
    TOKEN_UMINUS = 258,
    TOKEN_NUMBER = 260,
    TOKEN_EQ = 261,
    TOKEN_GE = 262,
    TOKEN_LE = 263,
    TOKEN_NE = 264,
    TOKEN_AND = 265,
    TOKEN_OR = 266,
    TOKEN_STRING = 270,
    TOKEN_NAME = 271,
};
