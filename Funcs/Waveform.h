// What the functions of waveforms share: an argument as points over its reference, numbers given as arguments, and
// what is said of an argument that will not do.
#pragma once

#include "torvelan/Functions.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Points over their reference.
struct Samples {
    double const * y = nullptr; // null when the argument is not real
    double const * x = nullptr; // null without a reference
    std::int64_t length = 0;

    bool hasReference() const noexcept { return x != nullptr; }
    // Whether x rises, or falls, from each point to the next.
    bool isStrictlyMonotonic() const;
};

// A real argument: its current division, or in a flat call all of them as one array. Where the two sides differ in
// length, the points that have both. A complex reference gives its real parts.
class Waveform : public Samples {
public:
    Waveform(FuncArgs const & args, int argument);
    Waveform(Waveform const &) = delete;
    Waveform & operator=(Waveform const &) = delete;

    // Calls work(samples, number) for each division; ends and answers false as soon as the work does.
    template <class Work> bool eachDivision(Work const & work) const {
        if (divisions_ == nullptr) return work(*this, 0);
        Samples part{y, x, 0};
        std::int64_t const count = divisions_->numDivisions();
        for (std::int64_t d = 0; d < count; ++d) {
            part.length = divisions_->length(d);
            if (!work(part, d)) return false;
            part.y += part.length;
            if (x != nullptr) part.x += part.length;
        }
        return true;
    }
    // Calls work(out, samples) for each division, and the part of `to` that is as far on.
    template <class Work> void eachDivision(double * to, Work const & work) const {
        double const * const first = y;
        eachDivision([&](Samples const & part, std::int64_t) {
            work(to + (part.y - first), part);
            return true;
        });
    }

private:
    NamedVector const * divisions_; // null unless the call is flat
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
// The same for each division of argument 0, where the call may be flat; to be filled.
double * numberForEachDivision(FuncArgs const & args, FuncResult & result, PhysType physType);
