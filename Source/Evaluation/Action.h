// The actions of the grammar. Each makes the value of a rule from the values of its parts, at once: there is no syntax
// tree. A null value says that this part failed, which has been reported; an action with a null operand gives null
// without a further message, so that one fault gives one message.
//
// Text forms of consumed operands are dropped, so that an expression costs memory for what is pending only.
#pragma once

#include "Evaluation/ParseState.h"
#include "torvelan/dvec.h"

ExprValue * binaryOperator(ParseState & state, ExprValue * left, int token, ExprValue * right);
ExprValue * unaryOperator(ParseState & state, int token, ExprValue * operand);
ExprValue * parenthesise(ExprValue * value);
ExprValue * complexLiteral(ParseState & state, ExprValue * real, ExprValue * imaginary);

ExprValue * nameValue(ParseState & state, Token const * name);
ExprValue * numberValue(ParseState & state, Token const * number);
ExprValue * stringValue(ParseState & state, Token const * string);

ExprValue * functionCall(ParseState & state, Token const * name, ExprValue * arguments);
ExprValue * bracketedList(ParseState & state, ExprValue * first);

ExprValue * indexValue(ParseState & state, ExprValue * base, ExprValue * index);
ExprValue * indexEachDivision(ParseState & state, ExprValue * base, ExprValue * index);

ExprValue * assignVector(ParseState & state, Token const * target, ExprValue * rhs);
ExprValue * assignElement(ParseState & state, Token const * target, ExprValue * index, ExprValue * rhs);

// A list under construction is known by its last member, whose `next` is the first: appending costs the same for any
// length. finishList opens the ring and gives the first member. A failed member stays as one without a vector.
ExprValue * emptyArguments();
ExprValue * startList(ExprValue * value);
ExprValue * appendToList(ExprValue * last, ExprValue * value);
ExprValue * finishList(ExprValue * last);

void storeResult(ParseState & state, ExprValue * first);
void reportBadSyntax(ParseState & state);

// True when the vector of a value was asked for and could not be made. Never while texts are being rebuilt.
bool hasFailed(ParseState const & state, ExprValue const * value) noexcept;
// True when any member of a list has failed.
bool anyFailed(ParseState const & state, ExprValue const * first) noexcept;

// The name step: finds the vector of a name; with createIfMissing an assignment target is made, still outside its
// group. Null when there is none.
ExprValue * findNamed(ParseState & state, YString const & name, bool createIfMissing);
// A scalar real integer as an index. False after a message.
bool scalarIndex(BaseVector const & index, double * value, MessageHandler & messages);
// Releases a vector that an action has consumed, if it is a temporary.
void releaseTemporary(dvec * vector);
