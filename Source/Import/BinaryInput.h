// Fields of a binary file, one behind the other; integers are little-endian.
#pragma once

#include "support/Streams.h"

#include <bit>
#include <cstring>
#include <string>

static_assert(std::endian::native == std::endian::little, "values are taken from files as they stand");

// Once a field was not there in whole, it has failed for good, and every further field is zero or empty.
class BinaryInput {
public:
    explicit BinaryInput(tvfstream & stream) : stream_(stream) {}

    std::uint8_t byte() { return number<std::uint8_t>(); }
    std::uint16_t word() { return number<std::uint16_t>(); }
    std::uint32_t longWord() { return number<std::uint32_t>(); }
    // Without its zero, which is among the `most` bytes.
    YString text(std::size_t most);
    std::string bytes(std::size_t n); // in memory for those that are there
    void skip(std::int64_t n) {
        if (!failed_) stream_.seekg(n, 1);
    }
    bool failed() const noexcept { return failed_; }

private:
    template <class T> T number() {
        char room[sizeof(T)] = {};
        T value = 0;
        failed_ = failed_ || stream_.read(room, sizeof room) != sizeof room;
        if (!failed_) std::memcpy(&value, room, sizeof room);
        return value;
    }

    tvfstream & stream_;
    bool failed_ = false;
};

inline YString BinaryInput::text(std::size_t most) {
    std::string gathered;
    for (std::size_t n = 0; n < most && !failed_; ++n) {
        int const c = stream_.get();
        if (c == 0) return YString(gathered);
        if (c < 0) break;
        gathered += static_cast<char>(c);
    }
    failed_ = true;
    return {};
}

inline std::string BinaryInput::bytes(std::size_t n) {
    constexpr std::size_t piece = std::size_t{64} << 10;
    std::string gathered;
    while (gathered.size() < n && !failed_) {
        std::size_t const old = gathered.size();
        std::size_t const wanted = std::min(piece, n - old);
        gathered.resize(old + wanted);
        std::size_t const got = stream_.read(gathered.data() + old, wanted);
        failed_ = got != wanted;
    }
    return failed_ ? std::string() : gathered;
}
