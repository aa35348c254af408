// DivisionTable: where each division of a vector starts, as byte offsets into its data. A vector of one division has no
// table. Copies share the entries until one of them changes; those that a file is written with have no second holder.
#pragma once

#include "Vectors/NewDataBlock.h"
#include "torvelan/YString.h"

#include <cstdint>
#include <memory>

class DivisionTable {
public:
    DivisionTable() noexcept = default;
    DivisionTable(DivisionTable const & other);
    DivisionTable(DivisionTable && other) noexcept = default;
    DivisionTable & operator=(DivisionTable other) noexcept;
    ~DivisionTable() = default;

    bool exists() const noexcept { return entries && entries->size() != 0; }
    std::int64_t count() const; // entries, live or announced; 0 without table
    std::uint64_t entry(std::int64_t i) const;
    std::int64_t storedCount() const noexcept; // entries, not looked at yet, of a table from a file
    // Divisions of data of `size` bytes, at least 1. Entries at the end that do not lie before `size` were announced
    // and have not been filled: they do not exist yet. Constant time for entries that rise, as all but foreign ones do.
    std::int64_t live(std::uint64_t size) const;
    // Every entry is greater than the one before, by a multiple of `width`, which is a power of two up to 16.
    bool risesBy(std::uint64_t width) const {
        count();
        return order == Order::rising && (lowBits & (width - 1)) == 0;
    }
    bool sharesEntries(DivisionTable const & other) const noexcept { return entries == other.entries; }

    // Entry 0, for the first division, is put in with the first one appended. Throws MemoryException.
    void append(std::uint64_t offset);
    void reserve(std::int64_t more);
    void cut(std::int64_t n); // keeps n entries; a table of 1 or none is dropped
    void clear() noexcept;
    void shrink();

    // --- files
    // Takes a table from a file, read when somebody asks: entries of elements of `width` bytes. One that no data can
    // have is reported, with the name of the file, and counts as none.
    void attach(std::unique_ptr<BlockBacking> backing, std::uint64_t width, YString const & path);
    // Puts its entries into an empty backing that is written, and goes on there, with a copy in memory. Throws
    // FatalException. The answer is the block of entries, the table's own.
    NewDataBlock * moveTo(std::unique_ptr<BlockBacking> backing);
    bool isWritten() const noexcept { return entries && entries->isWritten(); }

private:
    enum class Order : std::uint8_t { rising, notFalling, none };
    struct Unread { // what is to be known of a table that has not been read
        std::uint64_t width;
        YString path;
    };

    std::uint64_t const * array() const;
    void readIn() const;
    void own();
    void push(std::uint64_t offset);
    void note(std::uint64_t offset, std::uint64_t before) const noexcept;
    std::int64_t findLive(std::uint64_t size) const;

    mutable BlockRef entries;
    mutable std::unique_ptr<Unread> unread;
    mutable Order order = Order::rising;
    mutable std::uint8_t lowBits = 0; // those of all entries together
    // Last answer of findLive; 0 when there is none.
    mutable std::int64_t cachedLive = 0;
    mutable std::uint64_t cachedSize = 0;
};
