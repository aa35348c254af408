// SlotAllocator: slots for time-buffered streams, carved from regions so that those of streams that grow together lie
// together.
#pragma once

#include "Dfs/FileTail.h"

#include <cstdint>
#include <vector>

class SlotAllocator {
public:
    static constexpr std::int32_t regionBytes = 0x20000;
    static constexpr std::int32_t largestSlot = 65536;

    // Position of a slot, all zeros; -1 for one that is too large, or when the file cannot grow.
    std::int64_t allocate(std::int32_t size, FileTail & tail);

private:
    struct Region {
        std::int64_t position;
        std::int32_t capacity;
        std::int32_t used;
    };
    std::vector<Region> regions_;
};
