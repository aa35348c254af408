// Cases of expression behaviour, kept as readable text under tests/expressions.
//
//   case: scalars take the reference of the other side     starts a case; a fresh session
//   given v = 1 2 3 : voltage                              a vector of the global group (VectorText.h for the values)
//   given tran:v = 1 2 3 : voltage                         a vector of a group, made when first named and then current
//     over t = 0 1 2 : time                                gives the vector just made a reference
//     labels a b c                                         labels of its divisions
//     alias                                                makes it an alias
//     readonly
//   do x=1                                                 evaluated in silence
//   eval v + 1                                             the expression, as it stands
//   compare a=1                                            the same with '=' read as "=="; its text is the value
//   = 2 3 4 : voltage                                      one line for each value of the list
//     named v+1
//     over 0 1 2 : time          (or: over nothing)
//     labels a b c
//   ! Index out of range                                   each message, in order; "\n" is a line feed
//   fails                                                  the evaluation answers an error
//
// A case with no '!' line must give no message. Blank lines and lines with '#' in front are skipped.
#pragma once

#include <ostream>
#include <string>
#include <vector>

struct ExpressionCase {
    std::string file;
    int line = 0;
    std::string name;
    std::vector<std::string> steps; // all its lines, in order

    friend std::ostream & operator<<(std::ostream & out, ExpressionCase const & c) { return out << c.name; }
};

std::vector<ExpressionCase> loadExpressionCases(std::string const & folder);
// Runs a case. Empty when all is as written, else what differs.
std::string runExpressionCase(ExpressionCase const & expressionCase);
