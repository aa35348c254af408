// OpenEnd: where the next bytes of something that grows will lie in memory, and where the room for them stops.
#pragma once

#include <cstddef>
#include <cstring>

struct OpenEnd {
    char * next = nullptr;
    char * limit = nullptr;

    std::size_t room() const noexcept { return static_cast<std::size_t>(limit - next); }
    // False, and nothing is taken, when there is no room.
    bool take(void const * data, std::size_t bytes) noexcept {
        if (bytes > room()) return false;
        std::memcpy(next, data, bytes);
        next += bytes;
        return true;
    }
};
