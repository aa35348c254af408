#include "support/Paths.h"

#include <gtest/gtest.h>

namespace {

std::string split(char const * path) {
    PathName const parts = sp_SplitPath(path);
    std::string const text(
        YString::joined(parts.drive, {"|", parts.directory, "|", parts.name, "|", parts.extension}).view());
    return text;
}

TEST(Paths, AreSplitAtSeparatorsOfEitherKind) {
    EXPECT_EQ(split("/home/me/x.tvdat"), "|/home/me/|x|.tvdat");
    EXPECT_EQ(split("c:\\data\\x.tvdat"), "c:|\\data\\|x|.tvdat");
    EXPECT_EQ(split("D:x"), "D:||x|");
    EXPECT_EQ(split("a.b/c"), "|a.b/|c|");
    EXPECT_EQ(split("a.b\\c.d.e"), "|a.b\\|c.d|.e");
    EXPECT_EQ(split("/"), "|/||");
    EXPECT_EQ(split(""), "|||");
    EXPECT_EQ(split("1:x"), "||1:x|");
}

} // namespace
