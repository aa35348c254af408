// The exceptions into which faults of the processor are turned.
#pragma once

#include "torvelan/Exceptions.h"

#include <cstdint>

// Status codes that a fault record carries, whatever the processor and the operating system.
enum FaultStatus : std::uint32_t {
    FAULT_ACCESS_VIOLATION = 0xC0000005,
    FAULT_FLOAT_DENORMAL = 0xC000008D,
    FAULT_FLOAT_DIVIDE_BY_ZERO = 0xC000008E,
    FAULT_FLOAT_INEXACT = 0xC000008F,
    FAULT_FLOAT_INVALID = 0xC0000090,
    FAULT_FLOAT_OVERFLOW = 0xC0000091,
    FAULT_FLOAT_STACK = 0xC0000092,
    FAULT_FLOAT_UNDERFLOW = 0xC0000093,
    FAULT_INTEGER_DIVIDE_BY_ZERO = 0xC0000094,
    FAULT_FLOAT_MULTIPLE_FAULTS = 0xC00002B4,
    FAULT_FLOAT_MULTIPLE_TRAPS = 0xC00002B5,
};

// The exception for a fault with this status at an instruction: its kind, and a text that says what happened, where,
// and in which module. `record` is the operating system's own record of the fault, or null.
OsException faultException(std::uint32_t status, void const * address, void const * record) noexcept;

// For code that finds an integer divisor of 0 before the processor does. `address` is in the function at fault.
[[noreturn]] void throwIntegerDivideByZero(void const * address);
