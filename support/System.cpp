#include "support/System.h"

#include "torvelan/Host.h"

#include <cstdint>
#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

namespace {

// Lowest address of the calling thread's stack; 0 when the system does not say.
std::uintptr_t stackBottom() noexcept {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
    void * bottom = nullptr;
    std::size_t size = 0;
    if (pthread_attr_getstack(&attributes, &bottom, &size) != 0) bottom = nullptr;
    pthread_attr_destroy(&attributes);
    return reinterpret_cast<std::uintptr_t>(bottom);
}

} // namespace

std::size_t sp_StackAvail() noexcept {
    static thread_local std::uintptr_t const bottom = stackBottom(); // costly to find out
    auto const here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    return here > bottom ? here - bottom : 0;
}

std::uint64_t sp_GetSystemRamSize() noexcept {
    long const pages = sysconf(_SC_PHYS_PAGES);
    long const pageSize = sysconf(_SC_PAGE_SIZE);
    return pages > 0 && pageSize > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize) : 0;
}

void sp_ProcessEvents() {
    if (DynamicFunction const process = support_GetDynamicFunction("ProcessEvents")) process();
}

YString sp_GetRunningDllPath(void const * address) {
    Dl_info info{};
    if (address == nullptr || dladdr(address, &info) == 0) return {};
    return YString(info.dli_fname);
}

// A linear congruential sequence modulo 2^31, whose low bits alone are poor: the answer is a one-to-one scrambling of
// the state, which keeps the period (constants from Knuth and from the MurmurHash finaliser).
int sp_Random(RandomSeed & seed) noexcept {
    constexpr std::uint32_t mask = 0x7FFFFFFFU;
    seed.value = (seed.value * 1664525U + 1013904223U) & mask;
    std::uint32_t mixed = seed.value;
    mixed ^= mixed >> 16;
    mixed = (mixed * 0x85EBCA6BU) & mask;
    mixed ^= mixed >> 13;
    mixed = (mixed * 0xC2B2AE35U) & mask;
    mixed ^= mixed >> 16;
    return static_cast<int>(mixed);
}
