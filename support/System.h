// The machine and the process.
#pragma once

#include "torvelan/YString.h"

#include <cstddef>
#include <cstdint>

// Bytes of stack left for the calling thread.
std::size_t sp_StackAvail() noexcept;
// Bytes of memory of the machine; 0 when unknown.
std::uint64_t sp_GetSystemRamSize() noexcept;
// Lets the host handle what waits for it, in the midst of long work: calls its dynamic function "ProcessEvents", if it
// has registered one. Anything may have happened to the store then.
void sp_ProcessEvents();
// File of the module that holds an address; empty when unknown.
YString sp_GetRunningDllPath(void const * address);

// A seed moved by sp_Random: a full-period 31-bit generator, values from 0 to 2147483647.
struct RandomSeed {
    unsigned value = 1;
};
int sp_Random(RandomSeed & seed) noexcept;
