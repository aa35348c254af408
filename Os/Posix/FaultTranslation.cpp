#include "Os/Posix/FaultTranslation.h"

#include "support/FaultRecord.h"

#include <cfenv>
#include <iterator>
#include <ucontext.h>

namespace {

// A floating point fault of no known cause counts as several at once.
std::uint32_t floatStatus(int cause) noexcept {
    switch (cause) {
    case FPE_INTDIV: return FAULT_INTEGER_DIVIDE_BY_ZERO;
    case FPE_FLTDIV: return FAULT_FLOAT_DIVIDE_BY_ZERO;
    case FPE_FLTINV: return FAULT_FLOAT_INVALID;
    case FPE_FLTOVF: return FAULT_FLOAT_OVERFLOW;
    case FPE_FLTUND: return FAULT_FLOAT_UNDERFLOW;
    default: return FAULT_FLOAT_MULTIPLE_FAULTS;
    }
}

std::uint32_t statusOf(int signal, siginfo_t const & info) noexcept {
    return signal == SIGFPE ? floatStatus(info.si_code) : FAULT_ACCESS_VIOLATION;
}

// The instruction that was being executed.
void const * instructionOf(siginfo_t const & info, [[maybe_unused]] void const * context) noexcept {
#if defined(__x86_64__)
    auto const address = static_cast<ucontext_t const *>(context)->uc_mcontext.gregs[REG_RIP];
    if (address != 0) return reinterpret_cast<void const *>(address);
#elif defined(__aarch64__)
    auto const address = static_cast<ucontext_t const *>(context)->uc_mcontext.pc;
    if (address != 0) return reinterpret_cast<void const *>(address);
#endif
    return info.si_addr;
}

extern "C" void translateFault(int signal, siginfo_t * info, void * context) {
    if (signal == SIGFPE) std::fesetenv(FE_DFL_ENV); // so that whoever catches can calculate
    throw faultException(statusOf(signal, *info), instructionOf(*info, context), info);
}

} // namespace

FaultTranslation::FaultTranslation() {
    struct sigaction action {};
    action.sa_sigaction = translateFault;
    action.sa_flags = SA_SIGINFO | SA_NODEFER; // the handler is left by an exception, which does not unblock signals
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < std::size(signals); ++i) sigaction(signals[i], &action, &previous_[i]);
}

FaultTranslation::~FaultTranslation() {
    for (std::size_t i = 0; i < std::size(signals); ++i) sigaction(signals[i], &previous_[i], nullptr);
}
