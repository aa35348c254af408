#include "Dfs/StreamWriter.h"

#include "support/ObjectPool.h"
#include "support/StreamingCopy.h"

#include <algorithm>
#include <new>
#include <utility>

namespace {

ObjectPool<sizeof(StreamWriter)> freeWriters;

} // namespace

void * StreamWriter::operator new(std::size_t) {
    void * const memory = freeWriters.take();
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void StreamWriter::operator delete(void * memory) noexcept {
    freeWriters.give(memory);
}

StreamWriter::StreamWriter(std::int64_t stream_, StreamType type_, std::int64_t extent_, std::size_t initialSize)
    : stream(stream_), type(type_), extent(extent_), buffer((initialSize + lineBytes - 1) / lineBytes) {
    openLine(0);
}

// There is no line where the buffer is full.
void StreamWriter::openLine(std::size_t filled) noexcept {
    *end = {line.bytes + filled, line.bytes + std::min(lineBytes, buffer.size() * lineBytes - whole)};
}

void StreamWriter::completeLine() noexcept {
    sp_CopyPastCache(bytes() + whole, line.bytes, lineBytes);
    whole += lineBytes;
    openLine(0);
}

bool StreamWriter::take(void const * data, std::size_t bytesGiven) noexcept {
    if (bytesGiven > room()) return false;
    auto const * from = static_cast<char const *>(data);
    std::size_t const first = std::min(bytesGiven, end->room());
    end->take(from, first);
    std::size_t const left = bytesGiven - first;
    if (left == 0) return true;
    completeLine();
    std::size_t const lines = left / lineBytes * lineBytes;
    std::memcpy(bytes() + whole, from + first, lines);
    whole += lines;
    openLine(0);
    return end->take(from + first + lines, left - lines);
}

void StreamWriter::append(void const * data, std::size_t bytesGiven) {
    if (bytesGiven > room()) {
        std::size_t const filled = length() - whole;
        buffer.resize(std::max(buffer.size() * 2, (length() + bytesGiven + lineBytes - 1) / lineBytes));
        openLine(filled);
    }
    take(data, bytesGiven);
}

std::span<char const> StreamWriter::waiting() noexcept {
    std::memcpy(bytes() + whole, line.bytes, length() - whole);
    return {bytes(), length()};
}

void StreamWriter::drop(std::size_t bytesGone) noexcept {
    std::size_t const left = length() - bytesGone;
    if (left != 0) std::memmove(bytes(), waiting().data() + bytesGone, left);
    whole = left / lineBytes * lineBytes;
    std::memcpy(line.bytes, bytes() + whole, left - whole);
    openLine(left - whole);
}

bool StreamWriter::lend(OpenEnd * borrower) noexcept {
    if (type != StreamType::bytes) return false; // is to be told when it changes
    if (end == &ownEnd) *borrower = *std::exchange(end, borrower);
    return end == borrower;
}

void StreamWriter::takeBack() noexcept {
    ownEnd = *std::exchange(end, &ownEnd);
}
