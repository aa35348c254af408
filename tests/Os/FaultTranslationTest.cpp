// Faults of the processor become exceptions while a guard lives.

#include "Os/Posix/FaultTranslation.h"

#include "torvelan/Exceptions.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

namespace {

// A page that nothing may touch.
class ForbiddenPage {
public:
    ForbiddenPage() : size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
        address_ = mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    }
    ~ForbiddenPage() { munmap(address_, size_); }
    ForbiddenPage(ForbiddenPage const &) = delete;
    ForbiddenPage & operator=(ForbiddenPage const &) = delete;
    int volatile * data() const { return static_cast<int volatile *>(address_); }

private:
    std::size_t size_;
    void * address_;
};

TORVELAN_MAY_FAULT void write(int volatile * place) {
    *place = 1;
}

// As the kernel reports a floating point fault of a given cause.
TORVELAN_MAY_FAULT void raiseFloatFault(int cause) {
    siginfo_t info{};
    info.si_signo = SIGFPE;
    info.si_code = cause;
    struct sigaction installed {};
    sigaction(SIGFPE, nullptr, &installed);
    ucontext_t context{};
    installed.sa_sigaction(SIGFPE, &info, &context);
}

OsException floatFault(int cause) {
    FaultTranslation const guard;
    try {
        raiseFloatFault(cause);
    } catch (OsException const & fault) {
        return fault;
    }
    ADD_FAILURE() << "nothing was thrown";
    return {OsException::unclassified, 0, nullptr, ""};
}

void ownHandler(int) {}

using Handler = void (*)(int);

Handler handlerOf(int signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

} // namespace

TEST(FaultTranslation, AnAccessViolationIsThrownWhereItHappened) {
    ForbiddenPage const page;
    FaultTranslation const guard;
    try {
        write(page.data());
        FAIL() << "nothing was thrown";
    } catch (OsException const & fault) {
        EXPECT_EQ(fault.kind, OsException::accessViolation);
        EXPECT_EQ(fault.status, 0xC0000005U);
        EXPECT_TRUE(std::string(fault.text).starts_with("An access violation occurred at "));
        EXPECT_EQ(std::string(fault.text).find("unknown"), std::string::npos) << fault.text;
    }
}

TEST(FaultTranslation, FaultsMayFollowEachOther) {
    ForbiddenPage const page;
    FaultTranslation const guard;
    int caught = 0;
    for (int i = 0; i < 3; ++i) {
        try {
            write(page.data());
        } catch (TorvelanException const &) {
            ++caught;
        }
    }
    EXPECT_EQ(caught, 3);
}

TEST(FaultTranslation, FloatingPointFaultsTellTheirCause) {
    EXPECT_EQ(floatFault(FPE_INTDIV).kind, OsException::integerDivideByZero);
    EXPECT_EQ(floatFault(FPE_INTDIV).status, 0xC0000094U);
    struct {
        int cause;
        std::uint32_t status;
    } const causes[] = {{FPE_FLTDIV, 0xC000008E}, {FPE_FLTINV, 0xC0000090}, {FPE_FLTOVF, 0xC0000091},
                        {FPE_FLTUND, 0xC0000093}, {FPE_FLTRES, 0xC00002B4}, {FPE_INTOVF, 0xC00002B4}};
    for (auto const & [cause, status] : causes) {
        OsException const fault = floatFault(cause);
        EXPECT_EQ(fault.kind, OsException::floatingPoint) << cause;
        EXPECT_EQ(fault.status, status) << cause;
    }
}

TEST(FaultTranslation, WhatWasInstalledComesBack) {
    std::signal(SIGFPE, ownHandler);
    Handler const segv = handlerOf(SIGSEGV), bus = handlerOf(SIGBUS);
    {
        FaultTranslation const outer;
        Handler const translating = handlerOf(SIGFPE);
        EXPECT_NE(translating, ownHandler);
        EXPECT_NE(handlerOf(SIGSEGV), segv);
        EXPECT_NE(handlerOf(SIGBUS), bus);
        { FaultTranslation const inner; }
        EXPECT_EQ(handlerOf(SIGFPE), translating);
    }
    EXPECT_EQ(handlerOf(SIGFPE), ownHandler);
    EXPECT_EQ(handlerOf(SIGSEGV), segv);
    EXPECT_EQ(handlerOf(SIGBUS), bus);
    std::signal(SIGFPE, SIG_DFL);
}

TEST(FaultTranslation, TheGuardEndsWithTheException) {
    ForbiddenPage const page;
    Handler const before = handlerOf(SIGSEGV);
    try {
        FaultTranslation const guard;
        write(page.data());
        FAIL();
    } catch (OsException const &) {
        EXPECT_EQ(handlerOf(SIGSEGV), before);
    }
}
