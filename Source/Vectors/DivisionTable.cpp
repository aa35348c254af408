#include "Vectors/DivisionTable.h"

#include "torvelan/Messages.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint64_t entryWidth = sizeof(std::uint64_t);

} // namespace

DivisionTable::DivisionTable(DivisionTable const & other)
    : entries((other.count(), other.entries)), order(other.order), lowBits(other.lowBits), cachedLive(other.cachedLive),
      cachedSize(other.cachedSize) {
    if (isWritten()) entries = entries->clone(entries->size());
}

DivisionTable & DivisionTable::operator=(DivisionTable other) noexcept {
    std::swap(entries, other.entries);
    std::swap(unread, other.unread);
    order = other.order;
    lowBits = other.lowBits;
    cachedLive = other.cachedLive;
    cachedSize = other.cachedSize;
    return *this;
}

std::int64_t DivisionTable::count() const {
    if (unread != nullptr) readIn();
    return storedCount();
}

std::int64_t DivisionTable::storedCount() const noexcept {
    return entries ? static_cast<std::int64_t>(entries->size() / entryWidth) : 0;
}

std::uint64_t const * DivisionTable::array() const {
    return reinterpret_cast<std::uint64_t const *>(entries->realise());
}

std::uint64_t DivisionTable::entry(std::int64_t i) const {
    return array()[i];
}

// --- files

void DivisionTable::attach(std::unique_ptr<BlockBacking> backing, std::uint64_t width, YString const & path) {
    clear();
    bool const isWritten = backing->isWritten();
    if (backing->length() == 0 && !isWritten) return;
    entries = NewDataBlock::make();
    entries->attach(std::move(backing));
    if (entries->size() != 0) unread = std::make_unique<Unread>(Unread{width, path});
    if (isWritten) count();
}

NewDataBlock * DivisionTable::moveTo(std::unique_ptr<BlockBacking> backing) {
    if (count() == 0) entries = NewDataBlock::make();
    if (entries->isShared()) entries = entries->clone(entries->size());
    entries->moveTo(std::move(backing));
    return entries.get();
}

// Entries are offsets of elements, the first one 0, and do not fall.
void DivisionTable::readIn() const {
    auto const known = std::exchange(unread, nullptr);
    std::uint64_t const n = entries->size() / entryWidth;
    std::uint64_t const * const all = array();
    bool isGood = entries->size() % entryWidth == 0 && all[0] == 0;
    for (std::uint64_t i = 1; i < n && isGood; ++i) {
        note(all[i], all[i - 1]);
        isGood = order != Order::none && all[i] <= INT64_MAX;
    }
    if (isGood && (lowBits & (known->width - 1)) == 0) return;
    defaultMessageHandler()->warning(
        "Data file '%s' has some damaged data. The divisions of some vectors are not known", known->path);
    order = Order::rising;
    lowBits = 0;
    entries = {};
}

std::int64_t DivisionTable::live(std::uint64_t size) const {
    std::int64_t n = count();
    if (n <= 1) return 1;
    if (entry(n - 1) < size) return n;
    if (cachedLive == 0 || cachedSize != size) {
        cachedLive = std::max<std::int64_t>(findLive(size), 1);
        cachedSize = size;
    }
    return cachedLive;
}

std::int64_t DivisionTable::findLive(std::uint64_t size) const {
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
    std::uint64_t const before = n > 0 ? entry(n - 1) : 0;
    entries->append(offset);
    if (n > 0) note(offset, before);
    cachedLive = 0;
}

void DivisionTable::note(std::uint64_t offset, std::uint64_t before) const noexcept {
    if (offset <= before) order = offset < before || order == Order::none ? Order::none : Order::notFalling;
    lowBits |= static_cast<std::uint8_t>(offset % 16);
}

void DivisionTable::own() {
    if (count() == 0 && !entries)
        entries = NewDataBlock::make();
    else if (entries->isShared())
        entries = entries->clone(entries->size());
    else if (!entries->isWritten())
        entries->prepareChange();
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
