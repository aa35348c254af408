#include "Dfs/ExtentIndex.h"

#include <bit>
#include <utility>

namespace {

constexpr std::size_t leastPlaces = 64;
constexpr unsigned wordBits = 64;

} // namespace

std::size_t ExtentIndex::home(std::int64_t id) const noexcept {
    return hash_(static_cast<std::uint64_t>(id)) >> shift_;
}

std::size_t ExtentIndex::search(std::int64_t id) const noexcept {
    std::size_t at = home(id);
    while (places_[at].id != 0 && places_[at].id != id) at = next(at);
    return at;
}

ExtentIndex::Slot ExtentIndex::findPlain(std::int64_t id) const noexcept {
    if (places_.empty() || id <= 0) return none;
    Place const & place = places_[search(id)];
    return place.id == id ? place.slot : none;
}

ExtentIndex::Slot ExtentIndex::findRun(std::int64_t id) const noexcept {
    auto const behind = runs_.upper_bound(id);
    return behind != runs_.begin() ? std::prev(behind)->second : none;
}

void ExtentIndex::insertPlain(std::int64_t id, Slot slot) {
    reserve(count_ + 1);
    places_[search(id)] = {id, slot};
    ++count_;
}

// The entries behind the gap move up, those of them that would not be found otherwise.
void ExtentIndex::erasePlain(std::int64_t id) noexcept {
    if (findPlain(id) == none) return;
    std::size_t gap = search(id);
    std::size_t const mask = places_.size() - 1;
    for (std::size_t at = next(gap); places_[at].id != 0; at = next(at)) {
        std::size_t const fromHome = (at - home(places_[at].id)) & mask;
        if (fromHome < ((at - gap) & mask)) continue;
        places_[gap] = places_[at];
        gap = at;
    }
    places_[gap] = {};
    --count_;
}

void ExtentIndex::reserve(std::size_t plainEntries) {
    if (plainEntries * 2 > places_.size()) resize(std::max(leastPlaces, std::bit_ceil(plainEntries * 2)));
}

void ExtentIndex::resize(std::size_t places) {
    std::vector<Place> const before = std::exchange(places_, std::vector<Place>(places));
    shift_ = wordBits - static_cast<unsigned>(std::countr_zero(places));
    for (Place const & place : before)
        if (place.id != 0) places_[search(place.id)] = place;
}

void ExtentIndex::clear() {
    *this = {};
}
