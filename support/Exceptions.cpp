#include "torvelan/Exceptions.h"

#include <algorithm>
#include <initializer_list>

namespace {

// Fixed room and no allocation: these records are filled when memory has run out.
template <std::size_t size> void fill(char (&room)[size], std::initializer_list<std::string_view> parts) noexcept {
    char * p = room;
    for (std::string_view const part : parts)
        p = std::copy_n(part.begin(), std::min(part.size(), static_cast<std::size_t>(room + size - 1 - p)), p);
    *p = '\0';
}

} // namespace

FatalRecord::FatalRecord(int errorClass_, std::string_view text_) noexcept : errorClass(errorClass_) {
    fill(text, {text_});
}

MemoryException::MemoryException(std::string_view detail) noexcept : FatalRecord(5, {}) {
    fill(text, {"*** Fatal error, out of memory ***\n", detail});
}

FatalException::FatalException(std::string_view detail) noexcept : FatalRecord(6, {}) {
    fill(text, {"*** Fatal error ***\n", detail});
}

TorvelanException::TorvelanException(std::string_view text_) noexcept {
    fill(text, {text_});
}

OsException::OsException(Kind kind_, std::uint32_t status_, void const * record_, std::string_view text_) noexcept
    : TorvelanException(text_), kind(kind_), status(status_), record(record_) {}
