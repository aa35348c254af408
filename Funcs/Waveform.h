// What the functions of waveforms share: an argument as points over its reference, numbers given as arguments, and
// what is said of an argument that will not do.
#pragma once

#include "torvelan/Functions.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The current division of a real argument. Where the two sides differ in length, the points that have both. A complex
// reference gives its real parts.
class Waveform {
public:
    Waveform(FuncArgs const & args, int argument);
    Waveform(Waveform const &) = delete;
    Waveform & operator=(Waveform const &) = delete;

    double const * y = nullptr; // null when the argument is not real
    double const * x = nullptr; // null without a reference
    std::int64_t length = 0;

    bool hasReference() const noexcept { return x != nullptr; }
    // Whether x rises, or falls, from each point to the next.
    bool isStrictlyMonotonic() const;

private:
    std::vector<double> realParts_;
};

bool isGiven(FuncArgs const & args, int argument);
// A number given as an argument: an element of it, or the other value when it has none there.
double numberOr(FuncArgs const & args, int argument, double otherwise, std::int64_t element = 0);
// Element 0 of a string argument; empty when there is none.
std::string_view textOf(FuncArgs const & args, int argument);
// A count given as a real number, cut to whole; what lies beyond any memory is the greatest count, NaN is 0.
std::int64_t countFrom(double value) noexcept;
// Whether one of the strings of an argument is a word, in any case.
bool hasWord(FuncArgs const & args, int argument, std::string_view word);

// Say what is wrong, and answer FUNC_FAILED.
FUNC_ERROR refuseMissingReference(FuncArgs const & args, int argument, MessageHandler & messages);
FUNC_ERROR refuseRange(char const * name, MessageHandler & messages);

// A real result of n elements over the reference of argument 0, for a loop whose `out` may be the argument: its memory
// is taken where it is a temporary.
double * resultLike(FuncArgs const & args, FuncResult & result, std::int64_t n, PhysType physType);
// String elements, of a call that makes one division.
void giveStrings(FuncResult & result, std::vector<std::string> const & texts);
// One real element, of the result of a call that gives one a division.
void giveNumber(FuncResult & result, double value, PhysType physType);
