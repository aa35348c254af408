#include "Dfs/ExtentIndex.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

constexpr std::size_t leastPages = 8;
constexpr unsigned wordBits = 64;

} // namespace

std::size_t ExtentIndex::home(std::int64_t number) const noexcept {
    return hash_(static_cast<std::uint64_t>(number)) >> shift_;
}

std::size_t ExtentIndex::search(std::int64_t number) const noexcept {
    std::size_t at = home(number);
    while (pages_[at].number >= 0 && pages_[at].number != number) at = next(at);
    return at;
}

ExtentIndex::Slot ExtentIndex::findPlain(std::int64_t id) const noexcept {
    if (pages_.empty() || id <= 0) return none;
    Page const & page = pages_[search(id >> pageBits)];
    return page.number >= 0 ? page.slots[static_cast<std::size_t>(id) % pageSize] : none;
}

ExtentIndex::Slot ExtentIndex::findRun(std::int64_t id) const noexcept {
    auto const behind = runs_.upper_bound(id);
    return behind != runs_.begin() ? std::prev(behind)->second : none;
}

void ExtentIndex::insertPlain(std::int64_t id, Slot slot) {
    reservePages(count_ + 1);
    Page & page = pages_[search(id >> pageBits)];
    if (page.number < 0) {
        page.number = id >> pageBits;
        std::fill_n(page.slots, pageSize, none);
        ++count_;
    }
    page.slots[static_cast<std::size_t>(id) % pageSize] = slot;
    ++page.used;
}

void ExtentIndex::erasePlain(std::int64_t id) noexcept {
    if (findPlain(id) == none) return;
    std::size_t const at = search(id >> pageBits);
    pages_[at].slots[static_cast<std::size_t>(id) % pageSize] = none;
    if (--pages_[at].used == 0) erasePage(at);
}

// The pages behind the gap move up, those of them that would not be found otherwise.
void ExtentIndex::erasePage(std::size_t gap) noexcept {
    std::size_t const mask = pages_.size() - 1;
    for (std::size_t at = next(gap); pages_[at].number >= 0; at = next(at)) {
        std::size_t const fromHome = (at - home(pages_[at].number)) & mask;
        if (fromHome < ((at - gap) & mask)) continue;
        pages_[gap] = pages_[at];
        gap = at;
    }
    pages_[gap] = {};
    --count_;
}

void ExtentIndex::reserve(std::size_t plainEntries) {
    reservePages(plainEntries / pageSize + 1);
}

void ExtentIndex::reservePages(std::size_t count) {
    if (count * 2 > pages_.size()) resize(std::max(leastPages, std::bit_ceil(count * 2)));
}

void ExtentIndex::resize(std::size_t pages) {
    std::vector<Page> const before = std::exchange(pages_, std::vector<Page>(pages));
    shift_ = wordBits - static_cast<unsigned>(std::countr_zero(pages));
    for (Page const & page : before)
        if (page.number >= 0) pages_[search(page.number)] = page;
}

void ExtentIndex::clear() {
    *this = {};
}
