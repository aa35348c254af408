#include "support/Streams.h"

#include "support/OpenForReading.h"
#include "torvelan/Exceptions.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fast_float/fast_float.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t blockSize = std::size_t{256} << 10; // fits the processor's own cache

// How far behind a number its extent can depend on: the tail of "infinity" behind "inf".
constexpr std::ptrdiff_t lookAhead = 8;

bool isWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

struct Parsed {
    char const * end;
    bool good;
};

Parsed parseNumber(char const * first, char const * last, int & value) {
    auto const result = std::from_chars(first, last, value);
    return {result.ptr, result.ec == std::errc()};
}

Parsed parseNumber(char const * first, char const * last, double & value) {
    auto const result = fast_float::from_chars(first, last, value);
    if (value == value) [[likely]]
        return {result.ptr, result.ec == std::errc()};
    return {first + (*first == '-' ? 4 : 3), true}; // a NaN without its payload, which has no bound
}

// A number that may have a sign of either kind, though not both.
template <class Number> Parsed parse(char const * first, char const * last, Number & value) {
    char const * const behindSign = first + (*first == '+' || *first == '-' ? 1 : 0);
    if (behindSign == last) return {last, false};
    if (*first == '+') {
        if (*behindSign == '-') return {behindSign, false};
        first = behindSign;
    }
    return parseNumber(first, last, value);
}

} // namespace

tvfstream::tvfstream(YString const & path, int mode, bool, bool) {
    if (mode == modeRead || mode == modeReadUntranslated) descriptor_ = openForReading(path);
}

tvfstream::~tvfstream() {
    if (descriptor_ >= 0) close(descriptor_);
    std::free(buffer_);
}

// One read of the file. A read that fails is an end.
std::size_t tvfstream::readBlock(char * dest, std::size_t n) {
    if (descriptor_ < 0) return 0;
    ssize_t count = 0;
    do count = ::read(descriptor_, dest, n);
    while (count < 0 && errno == EINTR);
    if (count <= 0) return 0;
    fileOffset_ += count;
    return static_cast<std::size_t>(count);
}

// At least half of the buffer becomes free behind the unread part, so that moving it costs no more than reading.
void tvfstream::makeRoom() {
    std::size_t const unread = end_ - begin_;
    if (unread > capacity_ / 2 || capacity_ == 0) {
        std::size_t const larger = std::max(capacity_ * 2, blockSize);
        auto * room = static_cast<char *>(std::malloc(larger));
        if (room == nullptr) throw MemoryException("Detected in tvfstream");
        if (unread != 0) std::memcpy(room, buffer_ + begin_, unread);
        std::free(buffer_);
        buffer_ = room;
        capacity_ = larger;
    } else if (unread != 0) {
        std::memmove(buffer_, buffer_ + begin_, unread);
    }
    begin_ = 0;
    end_ = unread;
}

bool tvfstream::refill() {
    if (begin_ == end_) begin_ = end_ = 0;
    if (capacity_ - end_ < (capacity_ + 1) / 2 || capacity_ == 0) makeRoom();
    std::size_t const count = readBlock(buffer_ + end_, capacity_ - end_);
    end_ += count;
    return count != 0;
}

bool tvfstream::ensure(std::size_t n) {
    while (end_ - begin_ < n)
        if (!refill()) return false;
    return true;
}

// The end of the file was met by a read that got all it wanted, or not.
bool tvfstream::meetEnd(bool satisfied) noexcept {
    eof_ = true;
    if (!satisfied) fail_ = true;
    return satisfied;
}

// From the buffer alone.
std::size_t tvfstream::take(char * dest, std::size_t n) noexcept {
    std::size_t const count = std::min(n, end_ - begin_);
    if (count != 0) std::memcpy(dest, buffer_ + begin_, count);
    begin_ += count;
    return count;
}

std::size_t tvfstream::read(char * dest, std::size_t n) {
    if (fail_) return 0;
    std::size_t moved = take(dest, n);
    while (n - moved >= blockSize) { // too much to pass through the buffer, which is empty here
        std::size_t const count = readBlock(dest + moved, n - moved);
        begin_ = end_ = 0; // what it held is no longer what stands before the file's position
        if (count == 0) break;
        moved += count;
    }
    while (moved != n) {
        if (!refill()) {
            meetEnd(false);
            break;
        }
        moved += take(dest + moved, n - moved);
    }
    return moved;
}

int tvfstream::getSlowly() {
    if (fail_) return -1;
    if (ensure(1)) return static_cast<unsigned char>(buffer_[begin_++]);
    meetEnd(false);
    return -1;
}

int tvfstream::peek() {
    return !fail_ && ensure(1) ? static_cast<unsigned char>(buffer_[begin_]) : -1;
}

// The next piece of a line in the buffer; true when it is the last, whose line feed is taken.
bool tvfstream::takeLine(std::string_view & piece) noexcept {
    char const * const start = buffer_ + begin_;
    std::size_t const unread = end_ - begin_;
    auto const * feed = static_cast<char const *>(std::memchr(start, '\n', unread));
    piece = {start, feed != nullptr ? static_cast<std::size_t>(feed - start) : unread};
    begin_ += piece.size() + (feed != nullptr ? 1 : 0);
    return feed != nullptr;
}

bool tvfstream::getline(YString * line) {
    line->assign({});
    if (fail_) return false;
    if (!ensure(1)) return meetEnd(false);
    std::string_view piece;
    if (takeLine(piece)) {
        line->assign(piece);
        return true;
    }
    do {
        *line += piece;
        if (!refill()) return meetEnd(true);
    } while (!takeLine(piece));
    *line += piece;
    return true;
}

bool tvfstream::getline(char * dest, std::size_t size) {
    if (size == 0) fail_ = true;
    if (size != 0) *dest = '\0';
    if (fail_) return false;
    std::size_t length = 0;
    for (;; ++length) {
        int const c = peek();
        if (c < 0) return meetEnd(length != 0);
        if (c != '\n' && length == size - 1) break;
        ++begin_;
        if (c == '\n') return true;
        dest[length] = static_cast<char>(c);
        dest[length + 1] = '\0';
    }
    fail_ = true;
    return false;
}

void tvfstream::seekg(std::int64_t offset, int origin) {
    eof_ = fail_ = false;
    std::int64_t target = offset;
    bool const tooFar = origin == 1 && __builtin_add_overflow(tellg(), offset, &target);
    std::int64_t const bufferStart = fileOffset_ - static_cast<std::int64_t>(end_);
    if (descriptor_ < 0 || tooFar || target < 0) {
        fail_ = true;
    } else if (target >= bufferStart && target <= fileOffset_) {
        begin_ = static_cast<std::size_t>(target - bufferStart);
    } else if (lseek(descriptor_, target, SEEK_SET) == target) {
        begin_ = end_ = 0;
        fileOffset_ = target;
    } else {
        fail_ = true;
    }
}

std::int64_t tvfstream::tellg() const {
    return descriptor_ < 0 ? -1 : fileOffset_ - static_cast<std::int64_t>(end_ - begin_);
}

std::uint64_t tvfstream::getFileSize() const {
    struct stat status {};
    return descriptor_ >= 0 && fstat(descriptor_, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

bool tvfstream::skipWhiteSpace() {
    for (;;) {
        while (begin_ != end_ && isWhiteSpace(buffer_[begin_])) ++begin_;
        if (begin_ != end_) return true;
        if (!refill()) return false;
    }
}

// The ordinary case: the number and what follows it stand in the buffer, and are read there.
template <class Number> tvfstream & tvfstream::extract(Number & value) {
    if (fail_) return *this;
    char const * p = buffer_ + begin_;
    char const * const last = buffer_ + end_;
    while (p != last && isWhiteSpace(*p)) ++p;
    Number number{};
    if (p != last) [[likely]] {
        Parsed const parsed = parse(p, last, number);
        if (parsed.good && last - parsed.end >= lookAhead) [[likely]] {
            value = number;
            begin_ = static_cast<std::size_t>(parsed.end - buffer_);
            return *this;
        }
    }
    extractAtEdge(value);
    return *this;
}

// What comes behind the buffer may belong to the number. It is read anew with twice as much text each time, so that the
// longest number costs no more than a few readings.
template <class Number> void tvfstream::extractAtEdge(Number & value) {
    if (!skipWhiteSpace()) {
        meetEnd(false);
        return;
    }
    Number number{};
    Parsed parsed{};
    bool more = true;
    for (;;) {
        number = {};
        parsed = parse(buffer_ + begin_, buffer_ + end_, number);
        if (!more || (buffer_ + end_) - parsed.end >= lookAhead) break;
        more = ensure((end_ - begin_) * 2 + static_cast<std::size_t>(lookAhead));
    }
    bool const atEnd = parsed.end == buffer_ + end_;
    if (parsed.good) {
        value = number;
        begin_ = static_cast<std::size_t>(parsed.end - buffer_);
    } else {
        fail_ = true;
    }
    if (atEnd) meetEnd(parsed.good);
}

tvfstream & tvfstream::operator>>(int & value) {
    return extract(value);
}

tvfstream & tvfstream::operator>>(double & value) {
    return extract(value);
}
