#include "Vectors/DivisionTable.h"

#include <algorithm>

namespace {

constexpr std::uint64_t entryWidth = sizeof(std::uint64_t);

} // namespace

std::int64_t DivisionTable::count() const noexcept {
    return entries ? static_cast<std::int64_t>(entries->size() / entryWidth) : 0;
}

std::uint64_t const * DivisionTable::array() const noexcept {
    return reinterpret_cast<std::uint64_t const *>(entries->realise());
}

std::uint64_t DivisionTable::entry(std::int64_t i) const noexcept {
    return array()[i];
}

std::int64_t DivisionTable::live(std::uint64_t size) const noexcept {
    std::int64_t n = count();
    if (n <= 1) return 1;
    if (entry(n - 1) < size) return n;
    if (cachedLive == 0 || cachedSize != size) {
        cachedLive = std::max<std::int64_t>(findLive(size), 1);
        cachedSize = size;
    }
    return cachedLive;
}

std::int64_t DivisionTable::findLive(std::uint64_t size) const noexcept {
    std::int64_t n = count();
    if (order != Order::none) return std::lower_bound(array(), array() + n, size) - array();
    while (n > 0 && entry(n - 1) >= size) --n;
    return n;
}

void DivisionTable::append(std::uint64_t offset) {
    reserve(2);
    if (count() == 0) push(0);
    push(offset);
}

void DivisionTable::reserve(std::int64_t more) {
    own();
    entries->makeRoom(static_cast<std::uint64_t>(more) * entryWidth);
}

void DivisionTable::push(std::uint64_t offset) {
    std::int64_t n = count();
    if (n > 0 && offset <= entry(n - 1)) {
        bool falls = offset < entry(n - 1);
        order = falls || order == Order::none ? Order::none : Order::notFalling;
    }
    entries->append(offset);
    lowBits |= static_cast<std::uint8_t>(offset % 16);
    cachedLive = 0;
}

void DivisionTable::own() {
    if (!entries)
        entries = NewDataBlock::make();
    else if (entries->isShared())
        entries = entries->clone(entries->size());
}

void DivisionTable::cut(std::int64_t n) {
    if (n >= count()) return;
    if (n <= 1) return clear();
    std::uint64_t bytes = static_cast<std::uint64_t>(n) * entryWidth;
    if (entries->isShared())
        entries = entries->clone(bytes);
    else
        entries->resize(bytes);
    cachedLive = 0;
}

void DivisionTable::clear() noexcept {
    *this = {};
}

void DivisionTable::shrink() {
    if (entries) entries->shrink();
}
