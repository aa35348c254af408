// VectorTable: the vectors of a group by name. One array with the hash and the name in each place (open addressing with
// linear probing, at most half full), so that a look-up among tens of thousands waits for the memory of a place and of
// a name, and no more.
#pragma once

#include "Groups/NameTable.h"
#include "torvelan/Containers.h"

#include <cstdint>

class dvec;

class VectorTable {
public:
    dvec * find(HashedName const & name) const noexcept; // null when there is none
    dvec * find(std::string_view name) const noexcept { return find(HashedName(name)); }
    bool contains(std::string_view name) const noexcept { return find(name) != nullptr; }
    bool insert(YString const & name, dvec * vector); // false when the name is taken
    void erase(std::string_view name) noexcept;       // no-op when there is none
    std::size_t size() const noexcept { return count; }
    bool empty() const noexcept { return count == 0; }
    // In no order. The table does not change meanwhile.
    template <class Visit> void forEach(Visit visit) const {
        for (Place const & place : places)
            if (place.vector != nullptr) visit(*place.vector);
    }

private:
    struct Place {
        std::size_t hash = 0;
        YString name;
        dvec * vector = nullptr; // null: free
    };

    // Where a name of this hash is sought first. The product brings every bit of the hash to the top.
    std::size_t home(std::size_t hash) const noexcept {
        return static_cast<std::size_t>((std::uint64_t{hash} * 0x9E3779B97F4A7C15U) >> shift);
    }
    std::size_t next(std::size_t at) const noexcept { return (at + 1) & (places.size() - 1); }
    // Where the name stands or, when there is none, the free place for it. The table has places.
    std::size_t search(HashedName const & name) const noexcept;
    void grow();

    YArray<Place> places; // none, or a power of two
    unsigned shift = 64;  // 64 less its logarithm
    std::size_t count = 0;
};
