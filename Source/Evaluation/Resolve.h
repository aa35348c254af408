// Aliases resolved to what they stand for, and conversions between text and numbers.
#pragma once

#include "torvelan/Evaluate.h"

class dvec;

// The vector itself, the target of a reference alias, or the value of an alias, evaluated afresh in its own group.
// False when there is none; nothing is released.
bool resolveVector(dvec * vector, dvec ** result, YRef<MessageHandler> const & messages,
                   ScpParseContext const & context);
// A numeric vector itself; a string evaluated as an expression. Null on failure, which has been reported.
dvec * convertToNumeric(dvec * vector, YRef<MessageHandler> const & messages, ScpParseContext const & context);
// A string vector itself; numbers as text, in engineering form.
dvec * convertToString(dvec * vector);
