#include "support/PageMemory.h"

#include <algorithm>
#include <cstdint>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr std::size_t hugeFrom = 2 * hugePageBytes; // below this the alignment costs more than the pages save
constexpr std::size_t userAddressSpace = std::size_t{1} << 47;

void * map(std::size_t bytes) noexcept {
    void * pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

// Maps more than asked and gives back both ends.
void * mapAligned(std::size_t bytes) noexcept {
    auto * start = static_cast<char *>(map(bytes + hugePageBytes));
    if (!start) return map(bytes);
    std::size_t misaligned = reinterpret_cast<std::uintptr_t>(start) % hugePageBytes;
    std::size_t head = misaligned ? hugePageBytes - misaligned : 0;
    if (head) munmap(start, head);
    if (head < hugePageBytes) munmap(start + head + bytes, hugePageBytes - head);
    return start + head;
}

} // namespace

void * sp_MapPages(std::size_t bytes) noexcept {
    if (bytes < hugeFrom) return map(bytes);
    if (bytes > userAddressSpace) return nullptr;
    void * pages = mapAligned(bytes);
    if (pages) madvise(pages, bytes, MADV_HUGEPAGE);
    return pages;
}

void * sp_RemapPages(void * pages, std::size_t oldBytes, std::size_t newBytes) noexcept {
    void * moved = mremap(pages, oldBytes, newBytes, MREMAP_MAYMOVE);
    if (moved == MAP_FAILED) return nullptr;
    if (newBytes >= hugeFrom) madvise(moved, newBytes, MADV_HUGEPAGE);
    return moved;
}

void sp_UnmapPages(void * pages, std::size_t bytes) noexcept {
    munmap(pages, bytes);
}

std::size_t sp_PhysicalMemory() noexcept {
    long pages = sysconf(_SC_PHYS_PAGES);
    long size = sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0 ? static_cast<std::size_t>(pages) * static_cast<std::size_t>(size) : 0;
}

std::size_t sp_AddressSpaceLimit() noexcept {
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return userAddressSpace;
    return std::min<std::size_t>(limit.rlim_cur, userAddressSpace);
}
