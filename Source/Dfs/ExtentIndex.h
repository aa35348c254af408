// ExtentIndex: which directory entry holds an extent. Plain entries stand in a hash table, runs in a map by their first
// extent; the ranges of ids never overlap.
#pragma once

#include "support/SeededHash.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

class ExtentIndex {
public:
    using Slot = std::int32_t; // place of an entry in the directory
    static constexpr Slot none = -1;

    Slot findPlain(std::int64_t id) const noexcept;
    // The run that may hold an extent: the one with the greatest first extent up to it.
    Slot findRun(std::int64_t id) const noexcept;
    void insertPlain(std::int64_t id, Slot slot); // which is not there
    void erasePlain(std::int64_t id) noexcept;    // no-op when it is not there
    void insertRun(std::int64_t firstId, Slot slot) { runs_.emplace(firstId, slot); }
    void reserve(std::size_t plainEntries);
    void clear();

private:
    // Ids follow one another closely, so that many of them share a page, and what is looked up in turn lies in turn.
    static constexpr unsigned pageBits = 4;
    static constexpr std::size_t pageSize = std::size_t{1} << pageBits;
    struct Page {
        std::int64_t number = -1; // of ids from number * pageSize on; negative: free
        std::int32_t used = 0;
        Slot slots[pageSize];
    };

    std::size_t home(std::int64_t number) const noexcept;
    std::size_t next(std::size_t at) const noexcept { return (at + 1) & (pages_.size() - 1); }
    std::size_t search(std::int64_t number) const noexcept; // where it stands, or would; there are pages
    void reservePages(std::size_t count);
    void resize(std::size_t pages);
    void erasePage(std::size_t gap) noexcept;

    SeededHash hash_;
    std::vector<Page> pages_; // none, or a power of two, at most half full
    unsigned shift_ = 64;     // 64 less its logarithm
    std::size_t count_ = 0;   // of pages in use
    std::map<std::int64_t, Slot> runs_;
};
