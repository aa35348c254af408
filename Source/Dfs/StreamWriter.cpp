#include "Dfs/StreamWriter.h"

#include <algorithm>

StreamWriter::StreamWriter(std::int64_t stream_, StreamType type_, std::int64_t extent_, std::size_t initialSize)
    : stream(stream_), type(type_), extent(extent_), buffer(initialSize),
      room(type_ == StreamType::bytes ? initialSize : 0) {}

void StreamWriter::append(void const * data, std::size_t bytes) {
    if (bytes > buffer.size() - length) buffer.resize(std::max(buffer.size() * 2, length + bytes));
    if (bytes != 0) std::memcpy(buffer.data() + length, data, bytes);
    length += bytes;
}

void StreamWriter::drop(std::size_t bytes) noexcept {
    std::memmove(buffer.data(), buffer.data() + bytes, length - bytes);
    length -= bytes;
    if (type == StreamType::bytes) room = buffer.size() - length;
}
