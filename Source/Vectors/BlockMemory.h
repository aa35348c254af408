// The one allocator of element data. An expression makes and drops arrays of the same few sizes over and over; fresh
// memory costs a page fault for every 4 KiB, which is more than the arithmetic on it. So freed arrays are kept for
// reuse, up to a bound. It counts what it holds.
#pragma once

#include <cstddef>
#include <cstdint>

class BlockMemory {
public:
    // A piece of memory, aligned to 64 bytes. `bytes` is what may be used, at least what was asked for.
    struct Piece {
        char * data = nullptr;
        std::size_t bytes = 0;
    };

    static constexpr std::size_t alignment = 64;
    static constexpr std::size_t keepFrom = 64 * 1024; // pieces below this size are kept in small number only

    // Uninitialised memory; a request for 0 bytes gives an empty piece. Throws MemoryException, with the text "Vector
    // allocation failed", when there is no such memory.
    static Piece allocate(std::uint64_t bytes);
    // The same contents, the first `used` bytes of them, in a piece of another size. When it throws, the old piece is
    // as it was.
    static Piece resize(Piece piece, std::size_t used, std::uint64_t bytes);
    static void release(Piece piece) noexcept;

    static std::size_t bytesInUse() noexcept; // handed out
    static std::size_t peakBytes() noexcept;  // greatest bytesInUse since resetPeak
    static void resetPeak() noexcept;
    static std::size_t bytesKept() noexcept; // freed and kept for reuse
    static void dropKept() noexcept;         // back to the system
    // Bound of bytesKept; what is above it is dropped, oldest first. 0 keeps nothing. The answer is the former bound.
    static std::size_t setKeepLimit(std::size_t bytes) noexcept;

    // For tests: the n-th request from now fails, and with `everAfter` all that follow. 0 ends this.
    static void failAt(std::uint64_t n, bool everAfter = false) noexcept;
};

// For exhausted memory anywhere in the vector model.
[[noreturn]] void throwVectorAllocationFailed();
