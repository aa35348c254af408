// Copies that leave the caches alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

// As memcpy. The lines that are written in whole go past the cache, where the processor can: nothing is read that will
// only be overwritten, and what the cache holds stays. It pays for pieces of results that are larger than the cache. In
// the thread that copies, whoever reads finds the bytes.
inline void sp_CopyPastCache(char * to, char const * from, std::size_t bytes) noexcept {
#if defined(__x86_64__)
    constexpr std::size_t line = 64, lane = sizeof(__m128i);
    std::size_t const head = (line - reinterpret_cast<std::uintptr_t>(to) % line) % line;
    if (bytes >= head + line) {
        std::memcpy(to, from, head);
        to += head;
        from += head;
        bytes -= head;
        for (; bytes >= line; to += line, from += line, bytes -= line)
            for (std::size_t i = 0; i < line; i += lane)
                _mm_stream_si128(reinterpret_cast<__m128i *>(to + i),
                                 _mm_loadu_si128(reinterpret_cast<__m128i const *>(from + i)));
    }
#endif
    std::memcpy(to, from, bytes);
}
