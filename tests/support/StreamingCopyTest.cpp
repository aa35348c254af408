#include "support/StreamingCopy.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

TEST(StreamingCopy, CopiesAnyBytesToAnyPlaceAndNoMore) {
    constexpr std::size_t most = 300, room = 64;
    std::vector<char> source(most + room);
    std::iota(source.begin(), source.end(), '\0');
    for (std::size_t shift = 0; shift < room; shift += 7)
        for (std::size_t n = 0; n <= most; ++n) {
            std::vector<char> dest(most + 2 * room, '\x55');
            std::vector<char> expected = dest;
            std::copy_n(source.begin() + 1, n, expected.begin() + static_cast<std::ptrdiff_t>(shift));
            sp_CopyPastCache(dest.data() + shift, source.data() + 1, n);
            ASSERT_EQ(dest, expected) << n << " to " << shift;
        }
}

} // namespace
