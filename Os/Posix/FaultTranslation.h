// Turns faults of the processor into exceptions.
#pragma once

#include <csignal>

// While one of these lives, an access violation or a floating point or integer fault of this process is thrown as an
// OsException from where it happened; what was installed before comes back at the end. Guards nest, innermost last.
//
// Meant for the outermost handler of a message: a fault leaves data half changed, and what was being done has to be
// given up. Only code whose unwind tables cover the faulting instruction can be left: a function that has anything to
// clean up, or that catches, must be compiled with -fnon-call-exceptions (see TORVELAN_MAY_FAULT) or fault in a
// function that it calls.
class FaultTranslation {
public:
    FaultTranslation();
    ~FaultTranslation();
    FaultTranslation(FaultTranslation const &) = delete;
    FaultTranslation & operator=(FaultTranslation const &) = delete;

private:
    static constexpr int signals[] = {SIGSEGV, SIGBUS, SIGFPE};
    struct sigaction previous_[3];
};

// For a function in which a fault is expected: its callers may then catch it.
#if defined(__GNUC__) && !defined(__clang__)
#define TORVELAN_MAY_FAULT __attribute__((noinline, optimize("non-call-exceptions")))
#else
#define TORVELAN_MAY_FAULT __attribute__((noinline))
#endif
