#include "Dfs/VerifyDirectory.h"

#include <algorithm>
#include <vector>

namespace {

// [first, end) of ids or of bytes. Ids that are claimed as successors know the first of the ids that claim them.
struct Range {
    std::int64_t first;
    std::int64_t end;
    std::int64_t claimant = 0;
    std::uint32_t file = 0; // that has the bytes
    friend bool operator<(Range const & a, Range const & b) noexcept {
        if (a.file != b.file) return a.file < b.file;
        return a.first != b.first ? a.first < b.first : a.end < b.end;
    }
};
using Ranges = std::vector<Range>;

void sort(Ranges & ranges) {
    if (!std::is_sorted(ranges.begin(), ranges.end())) std::sort(ranges.begin(), ranges.end());
}

bool anyOverlap(Ranges const & sorted) noexcept {
    for (std::size_t i = 1; i < sorted.size(); ++i)
        if (sorted[i].file == sorted[i - 1].file && sorted[i].first < sorted[i - 1].end) return true;
    return false;
}

// The range that holds a number, or null.
Range const * holderOf(Ranges const & sorted, std::int64_t number) noexcept {
    auto const behind = std::upper_bound(sorted.begin(), sorted.end(), number,
                                         [](std::int64_t n, Range const & range) { return n < range.first; });
    return behind != sorted.begin() && std::prev(behind)->end > number ? &*std::prev(behind) : nullptr;
}

// Every number of `claimed` is in one of `present`; both are sorted, and neither overlaps itself.
bool covers(Ranges const & present, Ranges const & claimed) noexcept {
    auto have = present.begin();
    for (Range range : claimed) {
        while (range.first < range.end) {
            while (have != present.end() && have->end <= range.first) ++have;
            if (have == present.end() || have->first > range.first) return false;
            range.first = std::min(range.end, have->end);
        }
    }
    return true;
}

class Verification {
public:
    Verification(DfsDirectory const & directory_, std::uint64_t dataStart, std::uint64_t fileSize_)
        : directory(directory_), fileSize(static_cast<std::int64_t>(fileSize_)) {
        bytes.push_back({0, static_cast<std::int64_t>(dataStart)});
        directory.forEach([this](DirectoryEntry const & entry) { note(entry); });
        for (DfsDirectory::Block const & block : directory.blocks()) note(block);
        sort(ids);
        sort(claims);
        sort(bytes);
    }

    Damage find() const {
        if (anyOverlap(claims) || hasRing()) return Damage::clash;
        if (anyOverlap(bytes)) return Damage::overlap;
        if (directory.missingBlock() != 0 || !covers(ids, claims)) return Damage::missingNext;
        if (beyond) return Damage::beyondTheEnd;
        return Damage::none;
    }

private:
    void note(DirectoryEntry const & entry) {
        ids.push_back({entry.id, entry.endId()});
        if (entry.next > 0) claims.push_back({entry.next, entry.next + entry.runLength, entry.id});
        rising = rising && (entry.next <= 0 || entry.next > entry.id);
        noteBytes(entry.offset, entry.offset + entry.size * entry.runLength, entry.fileIndex);
    }

    void note(DfsDirectory::Block const & block) {
        DirectoryEntry const & link = directory.chainEntry(block);
        if (link.offset > 0) noteBytes(link.offset, link.offset + link.size, 0);
    }

    void noteBytes(std::int64_t first, std::int64_t end, std::uint32_t file) {
        if (first == end) return;
        bytes.push_back({first, end, 0, file});
        beyond = beyond || (file == 0 && end > fileSize);
    }

    // Where successors always have greater ids, as writers give them, there is no ring. Otherwise the extents that hold
    // bytes of the file are walked: each has one predecessor at most, so what no walk from a first one meets lies in a
    // ring. There are no more of them than the file has bytes and the directory has entries.
    bool hasRing() const {
        if (rising) return false;
        bool tooMany = false; // to be walked
        Ranges const present = presentExtents(&tooMany);
        if (tooMany) return true;
        std::int64_t met = 0;
        std::int64_t total = 0;
        for (Range const & range : present) {
            total += range.end - range.first;
            for (std::int64_t id = range.first; id < range.end; ++id)
                if (isFirst(id, present)) met += stepsFrom(id, present);
        }
        return met != total;
    }

    // Of linked files, whose sizes are not known here, so many in all.
    Ranges presentExtents(bool * tooMany) const {
        std::int64_t linked = 1 << 20;
        Ranges present;
        directory.forEach([&](DirectoryEntry const & entry) {
            std::int64_t n = entry.runLength;
            if (entry.fileIndex != 0)
                linked -= n;
            else if (entry.isRun)
                n = std::clamp<std::int64_t>((fileSize - entry.offset + entry.size - 1) / entry.size, 0, n);
            if (n > 0) present.push_back({entry.id, entry.id + n});
        });
        *tooMany = linked < 0;
        sort(present);
        return present;
    }

    // No extent that is there has it as its successor.
    bool isFirst(std::int64_t id, Ranges const & present) const {
        Range const * claim = holderOf(claims, id);
        return claim == nullptr || holderOf(present, claim->claimant + (id - claim->first)) == nullptr;
    }

    std::int64_t stepsFrom(std::int64_t id, Ranges const & present) const {
        std::int64_t steps = 0;
        for (; holderOf(present, id) != nullptr; id = directory.extent(id)->next) ++steps;
        return steps;
    }

    DfsDirectory const & directory;
    std::int64_t fileSize;
    Ranges ids, claims, bytes;
    bool rising = true;
    bool beyond = false;
};

} // namespace

Damage verifyDirectory(DfsDirectory const & directory, std::uint64_t dataStart, std::uint64_t fileSize) {
    return Verification(directory, dataStart, fileSize).find();
}
