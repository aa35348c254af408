// The operator new of this test program: its n-th call fails.
#pragma once

#include <cstdint>

namespace failingNew {

void failAt(std::uint64_t n, bool everAfter) noexcept; // counted from now
bool stop() noexcept;                                  // nothing fails any more; whether something has

} // namespace failingNew
