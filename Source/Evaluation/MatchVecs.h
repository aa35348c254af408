// Operands of an operator made comparable.
#pragma once

#include "torvelan/Functions.h"

// Works on a frame of two arguments.
struct ArgumentMatcher {
    ArgumentMatcher(FuncArgs & frame, MessageHandler & handler) : args(frame), messages(handler) {}
    ~ArgumentMatcher();
    ArgumentMatcher(ArgumentMatcher const &) = delete;
    ArgumentMatcher & operator=(ArgumentMatcher const &) = delete;

    // For the current division, in which argument 0 is n0 long. False after an error, which has been reported.
    bool match(std::int64_t n0);
    // For all divisions at once, where at least one argument has several. False unless `match` would accept every
    // division without a word.
    bool matchFlat();
    void undoFlat(); // takes back what matchFlat and the handler did to the arguments

private:
    bool repeat(int i);
    bool matchEqual(std::int64_t n);
    bool interpolate();
    bool reportIncompatible();
    void dropReference(int i);
    bool canRepeatLazily(int i) const;
    void shareReference();
    bool hasReference(int i) const;
    bool sameReferences() const;
    bool flatReferencesAgree() const;
    YString fullName(int i) const;

    FuncArgs & args;
    MessageHandler & messages;
    FuncArgs::Argument before[2]; // the arguments as matchFlat found them; empty until then
};
