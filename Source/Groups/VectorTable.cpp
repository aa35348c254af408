#include "Groups/VectorTable.h"

#include <bit>
#include <utility>

std::size_t VectorTable::search(HashedName const & name) const noexcept {
    std::size_t at = home(name.hash);
    for (; places[at].vector != nullptr; at = next(at))
        if (places[at].hash == name.hash && equalNoCase(places[at].name, name.text)) break;
    return at;
}

dvec * VectorTable::find(HashedName const & name) const noexcept {
    return places.empty() ? nullptr : places[search(name)].vector;
}

bool VectorTable::insert(YString const & name, dvec * vector) {
    if (2 * (count + 1) > places.size()) grow();
    HashedName const hashed(name);
    Place & place = places[search(hashed)];
    if (place.vector != nullptr) return false;
    place = {hashed.hash, name, vector};
    ++count;
    return true;
}

// What stands behind the place closes up, as far as it would be sought from there or before: no look-up meets a gap.
void VectorTable::erase(std::string_view name) noexcept {
    if (places.empty()) return;
    std::size_t gap = search(HashedName(name));
    if (places[gap].vector == nullptr) return;
    std::size_t const mask = places.size() - 1;
    for (std::size_t at = next(gap); places[at].vector != nullptr; at = next(at)) {
        if (((at - home(places[at].hash)) & mask) < ((at - gap) & mask)) continue;
        places[gap] = std::move(places[at]);
        gap = at;
    }
    places[gap] = Place();
    --count;
}

void VectorTable::grow() {
    constexpr std::size_t smallest = 8;
    YArray<Place> larger(places.empty() ? smallest : 2 * places.size());
    std::swap(places, larger);
    shift = static_cast<unsigned>(std::countl_zero(std::uint64_t{places.size()})) + 1;
    for (Place & place : larger) {
        if (place.vector == nullptr) continue;
        std::size_t at = home(place.hash);
        while (places[at].vector != nullptr) at = next(at);
        places[at] = std::move(place);
    }
}
