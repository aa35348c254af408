#include "Dfs/DirectoryEntry.h"

#include "Dfs/LittleEndian.h"

#include <cstring>
#include <limits>

namespace {

// Places within the record.
constexpr int atFileIndex = 0, atType = 4, atIsRun = 5, atId = 8, atOffset = 16, atSize = 24, atRunLength = 28,
              atNext = 32;
constexpr std::int32_t longestRun = 0x7fffffff;
constexpr std::int64_t greatestId = std::int64_t{1} << 62; // far from where sums of ids overflow

// The place of the last extent of a run is a number too.
bool runFits(DirectoryEntry const & run) noexcept {
    std::int64_t const extents = run.runLength;
    std::int64_t end;
    return extents >= 2 && run.size > 0 && run.next >= 0 && !__builtin_mul_overflow(extents, run.size, &end) &&
           !__builtin_add_overflow(end, run.offset, &end);
}

bool extentFits(DirectoryEntry const & entry) noexcept {
    return entry.size >= 0 && entry.offset >= 0 && entry.size <= INT64_MAX - entry.offset && entry.id <= greatestId &&
           entry.next <= greatestId;
}

} // namespace

DirectoryEntry DirectoryEntry::extent(std::int64_t extentId) const noexcept {
    std::int64_t const k = extentId - id;
    DirectoryEntry plain = *this;
    plain.isRun = false;
    plain.runLength = 1;
    plain.id = extentId;
    plain.offset = offset + k * size;
    plain.next = next != 0 ? next + k : 0;
    return plain;
}

// Only closed extents: an open one has no successor yet.
bool DirectoryEntry::isContinuedBy(DirectoryEntry const & other) const noexcept {
    std::int64_t const k = runLength;
    return other.id == id + k && other.fileIndex == fileIndex && other.type == type && other.size == size && size > 0 &&
           size <= std::numeric_limits<std::int32_t>::max() && runLength < longestRun - 1 && next > 0 &&
           other.next == next + k && other.offset == offset + k * size;
}

DirectoryEntry::Decoded DirectoryEntry::decode(char const * from, DirectoryEntry * to) noexcept {
    DirectoryEntry entry;
    entry.id = loadNumber<std::int64_t>(from + atId);
    if (!entry.isLive()) {
        *to = {};
        return Decoded::good;
    }
    auto const type = loadNumber<std::uint8_t>(from + atType);
    auto const isRun = loadNumber<std::uint8_t>(from + atIsRun);
    if (type > 1 || isRun > 1) return Decoded::unknownForm;
    entry.fileIndex = loadNumber<std::uint32_t>(from + atFileIndex);
    entry.type = static_cast<StreamType>(type);
    entry.isRun = isRun != 0;
    entry.offset = loadNumber<std::int64_t>(from + atOffset);
    entry.next = loadNumber<std::int64_t>(from + atNext);
    entry.size = entry.isRun ? loadNumber<std::int32_t>(from + atSize) : loadNumber<std::int64_t>(from + atSize);
    if (entry.isRun) entry.runLength = loadNumber<std::int32_t>(from + atRunLength);
    *to = entry;
    bool const fits = extentFits(entry) && (!entry.isRun || runFits(entry));
    return fits ? Decoded::good : Decoded::impossible;
}

void DirectoryEntry::encode(char * to) const noexcept {
    std::memset(to, 0, bytes);
    if (!isLive()) return;
    storeNumber(to + atFileIndex, fileIndex);
    storeNumber(to + atType, static_cast<std::uint8_t>(type));
    storeNumber(to + atIsRun, static_cast<std::uint8_t>(isRun));
    storeNumber(to + atId, id);
    storeNumber(to + atOffset, offset);
    if (isRun) {
        storeNumber(to + atSize, static_cast<std::int32_t>(size));
        storeNumber(to + atRunLength, runLength);
    } else {
        storeNumber(to + atSize, size);
    }
    storeNumber(to + atNext, next);
}
