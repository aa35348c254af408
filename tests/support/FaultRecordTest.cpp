// Exceptions that stand for faults of the processor.

#include "support/FaultRecord.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <string>

namespace {

struct Wanted {
    std::uint32_t status;
    OsException::Kind kind;
    char const * description;
};

Wanted const wantedFaults[] = {
    {0xC0000005, OsException::accessViolation, "An access violation"},
    {0xC000008D, OsException::floatingPoint, "A floating point exception (denormal operation)"},
    {0xC000008E, OsException::floatingPoint, "A floating point exception (divide by zero)"},
    {0xC000008F, OsException::other, "An unexpected exception"}, // an inexact result
    {0xC0000090, OsException::floatingPoint, "A floating point exception (invalid operation)"},
    {0xC0000091, OsException::floatingPoint, "A floating point exception (overflow)"},
    {0xC0000092, OsException::floatingPoint, "A floating point exception (stack)"},
    {0xC0000093, OsException::floatingPoint, "A floating point exception (underflow)"},
    {0xC00002B4, OsException::floatingPoint, "A floating point exception"},
    {0xC00002B5, OsException::floatingPoint, "A floating point exception"},
    {0xC0000094, OsException::integerDivideByZero, "An integer divide by zero exception"},
    {0xC00000FD, OsException::other, "An unexpected exception"},
    {0, OsException::other, "An unexpected exception"},
};

void const * here() {
    return reinterpret_cast<void const *>(&here);
}

} // namespace

TEST(FaultRecord, EveryStatusHasItsKindAndWords) {
    for (Wanted const & wanted : wantedFaults) {
        int record = 0;
        OsException const fault = faultException(wanted.status, here(), &record);
        EXPECT_EQ(fault.kind, wanted.kind) << wanted.description;
        EXPECT_EQ(fault.status, wanted.status);
        EXPECT_EQ(fault.record, &record);
        EXPECT_TRUE(std::string(fault.text).starts_with(std::string(wanted.description) + " occurred at "));
    }
}

TEST(FaultRecord, TheTextNamesAddressModuleAndBase) {
    OsException const fault = faultException(FAULT_ACCESS_VIOLATION, here(), nullptr);
    char address[32];
    std::snprintf(address, sizeof address, "%" PRIxPTR, reinterpret_cast<std::uintptr_t>(here()));
    std::string const text = fault.text, start = std::string("An access violation occurred at ") + address + " in ";
    ASSERT_TRUE(text.starts_with(start)) << text;
    std::size_t const end = text.find(" base ", start.size());
    ASSERT_NE(end, std::string::npos) << text;
    std::string const module = text.substr(start.size(), end - start.size());
    EXPECT_FALSE(module.empty());
    EXPECT_EQ(module.find('/'), std::string::npos);
    EXPECT_NE(module, "unknown");
    EXPECT_LE(std::stoull(text.substr(end + 6), nullptr, 16), reinterpret_cast<std::uintptr_t>(here()));
}

TEST(FaultRecord, AnAddressOutsideEveryModuleIsUnknown) {
    auto const * nowhere = reinterpret_cast<void const *>(std::uintptr_t{16});
    EXPECT_STREQ(faultException(FAULT_ACCESS_VIOLATION, nowhere, nullptr).text,
                 "An access violation occurred at 10 in unknown base 0");
    EXPECT_STREQ(faultException(0, nullptr, nullptr).text, "An unexpected exception occurred at 0 in unknown base 0");
}

TEST(FaultRecord, AnIntegerDivisionByZeroIsThrown) {
    try {
        throwIntegerDivideByZero(here());
        FAIL();
    } catch (TorvelanException const & exception) {
        auto const & fault = dynamic_cast<OsException const &>(exception);
        EXPECT_EQ(fault.kind, OsException::integerDivideByZero);
        EXPECT_EQ(fault.status, 0xC0000094U);
        EXPECT_EQ(fault.record, nullptr);
    }
}
