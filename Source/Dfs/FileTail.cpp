#include "Dfs/FileTail.h"

#include <vector>

bool FileTail::append(OpenFile::Bytes first, OpenFile::Bytes second, std::int64_t * position) {
    if (!file_->writeAt(first, second, end_)) return false;
    *position = static_cast<std::int64_t>(end_);
    end_ += first.size() + second.size();
    return true;
}

bool FileTail::appendZeros(std::uint64_t bytes, std::int64_t * position) {
    std::vector<char> const zeros(bytes);
    return append(zeros, {}, position);
}

bool FileTail::alignFor(std::uint64_t bytes) {
    std::uint64_t const inPage = end_ % pageBytes;
    std::int64_t position;
    return inPage + bytes <= pageBytes || appendZeros(pageBytes - inPage, &position);
}
