// Numbers as they lie in files: little-endian, at any address.
#pragma once

#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "numbers in files are copied as they lie in memory");

template <class T> T loadNumber(char const * from) noexcept {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <class T> void storeNumber(char * to, T value) noexcept {
    std::memcpy(to, &value, sizeof value);
}
