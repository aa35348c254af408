#include "Dfs/StreamWriter.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>

namespace {

constexpr std::size_t bufferBytes = 256;

// Where writers always are: not every compiler aligns what it checks on the stack.
std::unique_ptr<StreamWriter> makeWriter(StreamType type, std::size_t initialSize) {
    return std::make_unique<StreamWriter>(1, type, 1, initialSize);
}

std::string waiting(StreamWriter & writer) {
    auto const bytes = writer.waiting();
    return {bytes.data(), bytes.size()};
}

std::string pattern(std::size_t bytes, char first = 'a') {
    std::string text(bytes, '\0');
    for (std::size_t i = 0; i < bytes; ++i) text[i] = static_cast<char>(first + i % 23);
    return text;
}

TEST(StreamWriter, TakesWhatItsBufferHoldsAndNoMore) {
    auto const made = makeWriter(StreamType::bytes, bufferBytes);
    StreamWriter & writer = *made;
    std::string const whole = pattern(bufferBytes);
    EXPECT_FALSE(writer.take(whole.data(), bufferBytes + 1));
    EXPECT_EQ(writer.length(), 0u);
    EXPECT_TRUE(writer.take(whole.data(), bufferBytes));
    EXPECT_EQ(waiting(writer), whole);
    EXPECT_FALSE(writer.take("x", 1));
    EXPECT_TRUE(writer.take("x", 0));
    writer.clear();
    EXPECT_EQ(waiting(writer), "");
    EXPECT_TRUE(writer.take("x", 1));
    EXPECT_EQ(waiting(writer), "x");
}

// Every way of cutting the same bytes into pieces, looked at between them or not, gives the same bytes.
TEST(StreamWriter, KeepsBytesInOrderHoweverTheyCome) {
    std::mt19937 random(7);
    for (int round = 0; round < 500; ++round) {
        auto const made = makeWriter(StreamType::bytes, bufferBytes);
        StreamWriter & writer = *made;
        std::string const whole = pattern(bufferBytes, static_cast<char>('a' + round % 3));
        std::string expected;
        for (;;) {
            std::size_t const piece = random() % (round % 2 == 0 ? 20 : 150);
            bool const fits = expected.size() + piece <= bufferBytes;
            EXPECT_EQ(writer.take(whole.data() + (fits ? expected.size() : 0), piece), fits);
            if (!fits) break;
            expected += whole.substr(expected.size(), piece);
            if (random() % 4 == 0) {
                ASSERT_EQ(waiting(writer), expected);
            }
            ASSERT_EQ(writer.length(), expected.size());
        }
        ASSERT_EQ(waiting(writer), expected);
    }
}

TEST(StreamWriter, GrowsAndDropsWhatHasGone) {
    auto const made = makeWriter(StreamType::timeBuffered, 10);
    StreamWriter & writer = *made;
    std::mt19937 random(8);
    std::string expected;
    for (int round = 0; round < 300; ++round) {
        std::string const piece = pattern(random() % 200, static_cast<char>('A' + round % 26));
        writer.append(piece.data(), piece.size());
        expected += piece;
        std::size_t const gone = random() % (expected.size() + 1);
        writer.drop(gone);
        expected.erase(0, gone);
        ASSERT_EQ(waiting(writer), expected);
    }
}

TEST(StreamWriter, SeesWhatABorrowerHasAppended) {
    auto const made = makeWriter(StreamType::bytes, bufferBytes);
    StreamWriter & writer = *made;
    OpenEnd end, other;
    ASSERT_TRUE(writer.take("first", 5));
    ASSERT_TRUE(writer.lend(&end));
    EXPECT_FALSE(writer.lend(&other)) << "one at a time";
    EXPECT_TRUE(end.take("second", 6));
    EXPECT_EQ(waiting(writer), "firstsecond");
    while (end.take("x", 1)) {
    }
    EXPECT_EQ(writer.length(), StreamWriter::lineBytes) << "a line is full";
    EXPECT_TRUE(writer.take("third", 5));
    EXPECT_TRUE(end.take("fourth", 6));
    std::string const all = waiting(writer);
    EXPECT_EQ(all.substr(StreamWriter::lineBytes), "thirdfourth");
    writer.takeBack();
    EXPECT_EQ(waiting(writer), all);
    EXPECT_TRUE(writer.lend(&other));
}

TEST(StreamWriter, LendsNothingOfAStreamThatIsToBeToldWhenItChanges) {
    auto const made = makeWriter(StreamType::timeBuffered, bufferBytes);
    StreamWriter & writer = *made;
    OpenEnd end;
    EXPECT_FALSE(writer.lend(&end));
}

} // namespace
