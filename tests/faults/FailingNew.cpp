#include "faults/FailingNew.h"

#include <cstdlib>
#include <new>

namespace {

std::uint64_t callsLeft = 0; // 0: none fails
bool failsOn = false;
bool failed = false;

bool fails() noexcept {
    if (failed && failsOn) return true;
    if (callsLeft == 0 || --callsLeft != 0) return false;
    failed = true;
    return true;
}

} // namespace

void failingNew::failAt(std::uint64_t n, bool everAfter) noexcept {
    callsLeft = n;
    failsOn = everAfter;
    failed = false;
}

bool failingNew::stop() noexcept {
    callsLeft = 0;
    failsOn = false;
    return failed;
}

void * operator new(std::size_t size, std::nothrow_t const &) noexcept {
    return fails() ? nullptr : std::malloc(size != 0 ? size : 1);
}

void * operator new(std::size_t size) {
    if (void * memory = operator new(size, std::nothrow)) return memory;
    throw std::bad_alloc();
}

void operator delete(void * memory) noexcept {
    std::free(memory);
}

void operator delete(void * memory, std::size_t) noexcept {
    std::free(memory);
}
