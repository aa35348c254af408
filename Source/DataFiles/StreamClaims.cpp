#include "DataFiles/StreamClaims.h"

#include <algorithm>

StreamClaims::StreamClaims(DfsFile const & file) : file_(file) {
    file.directory().forEach([this](DirectoryEntry const & entry) {
        if (entry.next > 0) successors_.push_back({entry.next, entry.next + entry.runLength});
    });
    auto const isBefore = [](Range const & a, Range const & b) { return a.first < b.first; };
    if (!std::is_sorted(successors_.begin(), successors_.end(), isBefore))
        std::sort(successors_.begin(), successors_.end(), isBefore);
}

bool StreamClaims::claim(std::int64_t id, StreamType type) {
    if (id <= DfsFile::settingsStream || id == DfsFile::firstBootStream) return false;
    if (!file_.isStream(id, type) || !isBegin(id) || taken_.findPlain(id) != ExtentIndex::none) return false;
    taken_.insertPlain(id, 0);
    return true;
}

bool StreamClaims::isBegin(std::int64_t id) const noexcept {
    auto const behind = std::upper_bound(successors_.begin(), successors_.end(), id,
                                         [](std::int64_t wanted, Range const & range) { return wanted < range.first; });
    return behind == successors_.begin() || std::prev(behind)->end <= id;
}
