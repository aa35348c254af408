#include "support/FaultRecord.h"

#include <cstdio>
#include <cstring>
#include <dlfcn.h>

namespace {

struct FaultClass {
    std::uint32_t status;
    OsException::Kind kind;
    char const * description;
};

constexpr FaultClass classes[] = {
    {FAULT_ACCESS_VIOLATION, OsException::accessViolation, "An access violation"},
    {FAULT_FLOAT_DENORMAL, OsException::floatingPoint, "A floating point exception (denormal operation)"},
    {FAULT_FLOAT_DIVIDE_BY_ZERO, OsException::floatingPoint, "A floating point exception (divide by zero)"},
    {FAULT_FLOAT_INVALID, OsException::floatingPoint, "A floating point exception (invalid operation)"},
    {FAULT_FLOAT_OVERFLOW, OsException::floatingPoint, "A floating point exception (overflow)"},
    {FAULT_FLOAT_STACK, OsException::floatingPoint, "A floating point exception (stack)"},
    {FAULT_FLOAT_UNDERFLOW, OsException::floatingPoint, "A floating point exception (underflow)"},
    {FAULT_FLOAT_MULTIPLE_FAULTS, OsException::floatingPoint, "A floating point exception"},
    {FAULT_FLOAT_MULTIPLE_TRAPS, OsException::floatingPoint, "A floating point exception"},
    {FAULT_INTEGER_DIVIDE_BY_ZERO, OsException::integerDivideByZero, "An integer divide by zero exception"},
};
constexpr FaultClass unexpected = {0, OsException::other, "An unexpected exception"};

FaultClass const & classify(std::uint32_t status) noexcept {
    for (FaultClass const & row : classes)
        if (row.status == status) return row;
    return unexpected;
}

struct Module {
    char const * name = "unknown";
    void const * base = nullptr;
};

Module moduleOf(void const * address) noexcept {
    Dl_info info{};
    if (address == nullptr || dladdr(address, &info) == 0 || info.dli_fname == nullptr) return {};
    char const * const slash = std::strrchr(info.dli_fname, '/');
    return {slash != nullptr ? slash + 1 : info.dli_fname, info.dli_fbase};
}

unsigned long long number(void const * address) noexcept {
    return reinterpret_cast<std::uintptr_t>(address);
}

} // namespace

// Formats into a buffer of its own: a fault may have struck in the allocator.
OsException faultException(std::uint32_t status, void const * address, void const * record) noexcept {
    FaultClass const & fault = classify(status);
    Module const module = moduleOf(address);
    char text[1001];
    std::snprintf(text, sizeof text, "%s occurred at %llx in %s base %llx", fault.description, number(address),
                  module.name, number(module.base));
    return OsException(fault.kind, status, record, text);
}

void throwIntegerDivideByZero(void const * address) {
    throw faultException(FAULT_INTEGER_DIVIDE_BY_ZERO, address, nullptr);
}
