// DivisionTable: where each division of a vector starts, as byte offsets into its data. A vector of one division has no
// table. Copies share the entries until one of them changes.
#pragma once

#include "Vectors/NewDataBlock.h"

#include <cstdint>

class DivisionTable {
public:
    bool exists() const noexcept { return static_cast<bool>(entries); }
    std::int64_t count() const noexcept; // entries, live or announced; 0 without table
    std::uint64_t entry(std::int64_t i) const noexcept;
    // Divisions of data of `size` bytes, at least 1. Entries at the end that do not lie before `size` were announced
    // and have not been filled: they do not exist yet. Constant time for entries that rise, as all but foreign ones do.
    std::int64_t live(std::uint64_t size) const noexcept;
    // Every entry is greater than the one before, by a multiple of `width`, which is a power of two up to 16.
    bool risesBy(std::uint64_t width) const noexcept { return order == Order::rising && (lowBits & (width - 1)) == 0; }
    bool sharesEntries(DivisionTable const & other) const noexcept { return entries == other.entries; }

    // Entry 0, for the first division, is put in with the first one appended. Throws MemoryException.
    void append(std::uint64_t offset);
    void reserve(std::int64_t more);
    void cut(std::int64_t n); // keeps n entries; a table of 1 or none is dropped
    void clear() noexcept;
    void shrink();

private:
    enum class Order : std::uint8_t { rising, notFalling, none };

    std::uint64_t const * array() const noexcept;
    void own();
    void push(std::uint64_t offset);
    std::int64_t findLive(std::uint64_t size) const noexcept;

    BlockRef entries;
    Order order = Order::rising;
    std::uint8_t lowBits = 0; // those of all entries together
    // Last answer of findLive; 0 when there is none.
    mutable std::int64_t cachedLive = 0;
    mutable std::uint64_t cachedSize = 0;
};
