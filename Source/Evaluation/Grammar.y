/* The grammar of the expression language. Actions evaluate at once (Action.h). */

%define api.pure full
%define api.prefix {expr}
%parse-param {ParseState & state}
%lex-param {ParseState & state}
%expect 0

%code top {
#include "Evaluation/Action.h"
#include "Evaluation/Grammar.h"
#include "Evaluation/Operators.h"
#include "Evaluation/Tokeniser.h"

#define YYINITDEPTH 200
#define YYMAXDEPTH 10000
/* A stack that outgrows the activation record belongs to the parse state, so that an exception cannot leak it. */
#define YYMALLOC(size) state.allocateStack(size)
#define YYFREE(stack) state.freeStack(stack)
}

%union {
    Token const * token;
    ExprValue * value;
}

%code {
static int exprlex(EXPRSTYPE * semantic, ParseState & state);
static void exprerror(ParseState &, char const *) {} /* rule `top: error` reports */
}

%token UMINUS 258
%token <token> NUMBER 260
%token EQ 261 GE 262 LE 263 NE 264 AND 265 OR 266
%token <token> STRING 270 NAME 271
%token END 0

%type <value> expr assign args list

/* Lowest first. '=' stands lowest, so that the right side of an assignment takes every operator that follows. */
%precedence '='
%left '&'
%left OR
%left AND
%left EQ NE
%left '<' '>' LE GE
%left '+' '-'
%left '*' '/' '%'
%left '^'
%precedence UNARY

%start top

%%

top: list                                       { storeResult(state, finishList($1)); }
   | error                                      { reportBadSyntax(state); }
   ;

expr: expr '&' expr                             { $$ = binaryOperator(state, $1, '&', $3); }
    | expr OR expr                              { $$ = binaryOperator(state, $1, TOKEN_OR, $3); }
    | expr AND expr                             { $$ = binaryOperator(state, $1, TOKEN_AND, $3); }
    | expr EQ expr                              { $$ = binaryOperator(state, $1, TOKEN_EQ, $3); }
    | expr NE expr                              { $$ = binaryOperator(state, $1, TOKEN_NE, $3); }
    | expr LE expr                              { $$ = binaryOperator(state, $1, TOKEN_LE, $3); }
    | expr GE expr                              { $$ = binaryOperator(state, $1, TOKEN_GE, $3); }
    | expr '>' expr                             { $$ = binaryOperator(state, $1, '>', $3); }
    | expr '<' expr                             { $$ = binaryOperator(state, $1, '<', $3); }
    | expr '+' expr                             { $$ = binaryOperator(state, $1, '+', $3); }
    | expr '-' expr                             { $$ = binaryOperator(state, $1, '-', $3); }
    | expr '*' expr                             { $$ = binaryOperator(state, $1, '*', $3); }
    | expr '/' expr                             { $$ = binaryOperator(state, $1, '/', $3); }
    | expr '%' expr                             { $$ = binaryOperator(state, $1, '%', $3); }
    | expr '^' expr                             { $$ = binaryOperator(state, $1, '^', $3); }
    | '-' expr                     %prec UNARY  { $$ = unaryOperator(state, TOKEN_UMINUS, $2); }
    | '+' expr                     %prec UNARY  { $$ = $2; }
    | '!' expr                     %prec UNARY  { $$ = unaryOperator(state, '!', $2); }
    | '(' expr ')'                              { $$ = parenthesise($2); }
    | NAME                                      { $$ = nameValue(state, $1); }
    | NUMBER                                    { $$ = numberValue(state, $1); }
    | STRING                                    { $$ = stringValue(state, $1); }
    | NAME '(' args ')'                         { $$ = functionCall(state, $1, finishList($3)); }
    | NAME '[' expr ']'                         { $$ = indexValue(state, nameValue(state, $1), $3); }
    | NAME '[' expr ']' '[' expr ']'            { $$ = indexValue(state, indexValue(state, nameValue(state, $1), $3), $6); }
    | NAME '[' ']' '[' expr ']'                 { $$ = indexEachDivision(state, nameValue(state, $1), $5); }
    | '(' expr ')' '[' expr ']'                 { $$ = indexValue(state, parenthesise($2), $5); }
    | '(' expr ')' '[' expr ']' '[' expr ']'    { $$ = indexValue(state, indexValue(state, parenthesise($2), $5), $8); }
    | '(' expr ')' '[' ']' '[' expr ']'         { $$ = indexEachDivision(state, parenthesise($2), $7); }
    | '(' expr ',' expr ')'                     { $$ = complexLiteral(state, $2, $4); }
    | assign
    | '[' list ']'                              { $$ = bracketedList(state, finishList($2)); }
    ;

assign: NAME '=' expr                           { $$ = assignVector(state, $1, $3); }
      | NAME '[' expr ']' '=' expr              { $$ = assignElement(state, $1, $3, $6); }
      ;

args: %empty                                    { $$ = emptyArguments(); }
    | list
    ;

list: expr                                      { $$ = startList($1); }
    | list ',' expr                             { $$ = appendToList($1, $3); }
    ;

%%

static_assert(UMINUS == int(TOKEN_UMINUS) && NUMBER == int(TOKEN_NUMBER) && EQ == int(TOKEN_EQ) && GE == int(TOKEN_GE));
static_assert(LE == int(TOKEN_LE) && NE == int(TOKEN_NE) && AND == int(TOKEN_AND) && OR == int(TOKEN_OR));
static_assert(STRING == int(TOKEN_STRING) && NAME == int(TOKEN_NAME));

static int exprlex(EXPRSTYPE * semantic, ParseState & state) {
    Token * token = nullptr;
    int number = getToken(state, &token);
    semantic->token = token;
    return number;
}

int runParser(ParseState & state) { return exprparse(state); }
