// The exceptions of the library: exhausted memory, fatal conditions, and faults translated from the processor.
// Everything else that can fail answers a code and speaks through a MessageHandler.
#pragma once

#include "torvelan/Export.h"

#include <cstdint>
#include <string_view>

// Fixed record that a fatal path fills: a class number and a text of at most 999 characters and a NUL.
struct TORVELAN_API FatalRecord {
    int errorClass = 0;
    char text[1000] = {};

    FatalRecord(int errorClass_, std::string_view text_) noexcept;
};

// Exhausted memory (class 5). Caught around function handlers and turned into a message.
struct TORVELAN_API MemoryException : FatalRecord {
    // The text becomes "*** Fatal error, out of memory ***\n" followed by `detail`.
    explicit MemoryException(std::string_view detail) noexcept;
};

// A condition after which the run cannot go on (class 6), such as a failed write to the data file of a simulation.
// It passes through the call frame to the host.
struct TORVELAN_API FatalException : FatalRecord {
    // The text becomes "*** Fatal error ***\n" followed by `detail`.
    explicit FatalException(std::string_view detail) noexcept;
};

// Base of the exceptions that the call frame reports by their text.
struct TORVELAN_API TorvelanException {
    char text[1001] = {};

    explicit TorvelanException(std::string_view text_) noexcept;
    virtual ~TorvelanException() = default;
    TorvelanException(TorvelanException const &) = default;
    TorvelanException & operator=(TorvelanException const &) = default;
};

// A fault of the processor, translated.
struct TORVELAN_API OsException : TorvelanException {
    enum Kind : std::uint32_t {
        accessViolation = 0,
        floatingPoint = 1,
        integerDivideByZero = 3,
        other = 4,
        unclassified = 9,
    };
    Kind kind = unclassified;
    std::uint32_t status = 0;      // status code of the fault, 0xC0000005 for an access violation and so on
    void const * record = nullptr; // the operating system's record of the fault; valid only inside the translator

    OsException(Kind kind_, std::uint32_t status_, void const * record_, std::string_view text_) noexcept;
};
