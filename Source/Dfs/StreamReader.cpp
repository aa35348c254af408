#include "Dfs/StreamReader.h"

#include "Dfs/DfsFile.h"

#include <algorithm>

bool StreamReader::refill() {
    if (buffer_.empty()) buffer_.resize(readAhead);
    begin_ = 0;
    end_ = file_.readAt(stream_, buffer_.data(), buffer_.size(), position_);
    position_ += end_;
    return end_ != 0;
}

// Large reads go past the buffer.
std::size_t StreamReader::read(void * dest, std::size_t bytes) {
    auto * to = static_cast<char *>(dest);
    std::size_t done = std::min(bytes, end_ - begin_);
    std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_), done, to);
    begin_ += done;
    if (bytes - done >= readAhead) {
        std::size_t const direct = file_.readAt(stream_, to + done, bytes - done, position_);
        position_ += direct;
        return done + direct;
    }
    while (done < bytes && refill()) {
        std::size_t const part = std::min(bytes - done, end_);
        std::copy_n(buffer_.begin(), part, to + done);
        begin_ = part;
        done += part;
    }
    return done;
}

std::uint64_t StreamReader::left() {
    if (length_ == UINT64_MAX) length_ = file_.length(stream_);
    std::uint64_t const at = position_ - (end_ - begin_);
    return length_ > at ? length_ - at : 0;
}

bool StreamReader::readString(YString * text) {
    std::int32_t length;
    if (!readNumber(&length) || length < 0 || static_cast<std::uint64_t>(length) > left()) return false;
    auto const bytes = static_cast<std::size_t>(length);
    if (bytes <= end_ - begin_) { // without a copy
        *text = YString(buffer_.data() + begin_, bytes);
        begin_ += bytes;
        return true;
    }
    YVector<char> whole(bytes);
    if (read(whole.data(), bytes) != bytes) return false;
    *text = YString(whole.data(), bytes);
    return true;
}
