#include "Dfs/SlotAllocator.h"

// The last slot of exactly the size that is left stays free.
std::int64_t SlotAllocator::allocate(std::int32_t size, FileTail & tail) {
    std::int64_t position;
    if (size > largestSlot) {
        tail.appendZeros(static_cast<std::uint64_t>(size), &position);
        return -1;
    }
    for (auto region = regions_.rbegin(); region != regions_.rend(); ++region) {
        if (region->capacity - region->used <= size) continue;
        position = region->position + region->used;
        region->used += size;
        return position;
    }
    if (!tail.appendZeros(regionBytes, &position)) return -1;
    regions_.push_back({position, regionBytes, size});
    return position;
}
