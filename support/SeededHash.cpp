#include "support/SeededHash.h"

#include <random>

namespace {

std::uint64_t makeSeed() {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
}

} // namespace

std::uint64_t hashSeed() noexcept {
    static std::uint64_t const seed = makeSeed();
    return seed;
}
