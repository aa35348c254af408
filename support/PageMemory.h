// Memory straight from the operating system, by whole pages.
#pragma once

#include <cstddef>

inline constexpr std::size_t pageBytes = 4096;                // granule of the sizes below
inline constexpr std::size_t hugePageBytes = 2 * 1024 * 1024; // of the processor's large pages

// Zeroed pages, or null. Several MiB or more start at a huge page, and huge pages are advised for them.
// `bytes` is a multiple of pageBytes, here and below.
void * sp_MapPages(std::size_t bytes) noexcept;
// The same memory with another size, perhaps at another address, without copying; null, and the old as it was, when
// that cannot be.
void * sp_RemapPages(void * pages, std::size_t oldBytes, std::size_t newBytes) noexcept;
void sp_UnmapPages(void * pages, std::size_t bytes) noexcept;

std::size_t sp_PhysicalMemory() noexcept;    // bytes of the machine
std::size_t sp_AddressSpaceLimit() noexcept; // bytes that this process may map at all
