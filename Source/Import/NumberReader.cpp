#include "Import/NumberReader.h"

#include <algorithm>
#include <cstring>
#include <fast_float/fast_float.h>
#include <limits>

namespace {

bool isWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

char const * skipWhiteSpace(char const * p, char const * end) {
    while (p != end && isWhiteSpace(*p)) ++p;
    return p;
}

} // namespace

NumberReader::NumberReader(tvfstream & stream)
    : stream_(stream), block_(std::make_unique<char[]>(blockBytes)), cursor_(block_.get()), end_(cursor_),
      blockEnd_(stream.tellg()), fileSize_(static_cast<std::int64_t>(stream.getFileSize())) {}

NumberReader::~NumberReader() {
    if (!failed_) stream_.seekg(position());
}

bool NumberReader::real(double & value) {
    return read(value);
}

bool NumberReader::skipInteger() {
    int dropped;
    return read(dropped);
}

int NumberReader::get() {
    if (cursor_ != end_ || refill()) return static_cast<unsigned char>(*cursor_++);
    atEnd_ = true;
    return -1;
}

template <class Number> bool NumberReader::read(Number & value) {
    if (takePlain(value)) return true;
    if (failed_) return false;
    if (refill() && takePlain(value)) return true;
    return readThroughStream(value);
}

template <class Number> bool NumberReader::readThroughStream(Number & value) {
    stream_.seekg(position());
    Number read = 0;
    stream_ >> read;
    atEnd_ = stream_.eof();
    failed_ = stream_.fail();
    if (failed_) {
        end_ = cursor_;
        return false;
    }
    value = read;
    resumeAt(stream_.tellg());
    return true;
}

// A number that ends before the block does, so that its end is known. An 'e' behind it would be a broken exponent.
bool NumberReader::takePlain(double & value) {
    char const * const start = skipWhiteSpace(cursor_, end_);
    char const * first = start;
    if (first != end_ && *first == '+') ++first;
    char const * const digits = first != end_ && *first == '-' && first == start ? first + 1 : first;
    if (digits == end_ || !(isDigit(*digits) || *digits == '.')) return false;
    double parsed;
    auto const [behind, error] = fast_float::from_chars(first, end_, parsed);
    if (error != std::errc() || behind == end_ || *behind == 'e' || *behind == 'E') return false;
    value = parsed;
    cursor_ = behind;
    return true;
}

bool NumberReader::takePlain(int & value) {
    char const * p = skipWhiteSpace(cursor_, end_);
    if (p == end_ || !isDigit(*p)) return false;
    std::int64_t parsed = 0;
    for (; p != end_ && isDigit(*p); ++p) {
        parsed = parsed * 10 + (*p - '0');
        if (parsed > std::numeric_limits<int>::max()) return false;
    }
    if (p == end_) return false;
    value = static_cast<int>(parsed);
    cursor_ = p;
    return true;
}

bool NumberReader::refill() {
    auto const rest = static_cast<std::size_t>(end_ - cursor_);
    // Asks for no more than is there, so that the stream does not count this as meeting the end.
    auto const wanted = static_cast<std::size_t>(
        std::min<std::int64_t>(blockBytes - rest, std::max<std::int64_t>(fileSize_ - blockEnd_, 0)));
    if (rest > blockBytes / 2 || wanted == 0) return false;
    std::memmove(block_.get(), cursor_, rest);
    cursor_ = block_.get();
    end_ = cursor_ + rest;
    if (stream_.tellg() != blockEnd_) stream_.seekg(blockEnd_);
    std::size_t const moved = stream_.read(block_.get() + rest, wanted);
    end_ += moved;
    blockEnd_ += static_cast<std::int64_t>(moved);
    return moved > 0;
}

// The stream has moved on; what is left of the block stays in use when the new position lies in it.
void NumberReader::resumeAt(std::int64_t filePosition) {
    std::int64_t const left = blockEnd_ - filePosition;
    if (left >= 0 && left <= end_ - cursor_) {
        cursor_ = end_ - left;
    } else {
        cursor_ = end_ = block_.get();
        blockEnd_ = filePosition;
    }
}
