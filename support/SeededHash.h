// A hash of numbers that come from files. Whoever makes a file cannot choose numbers that fall on one place: each table
// has a seed that no other process has.
#pragma once

#include <cstddef>
#include <cstdint>

std::uint64_t hashSeed() noexcept; // of this process

class SeededHash {
public:
    std::size_t operator()(std::uint64_t number) const noexcept {
        constexpr std::uint64_t factor = 0x9E3779B97F4A7C15; // odd, near 2^64 divided by the golden ratio
        std::uint64_t mixed = (number ^ seed_) * factor;
        mixed ^= mixed >> 32;
        return mixed * factor;
    }

private:
    std::uint64_t seed_ = hashSeed();
};
