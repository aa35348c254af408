#include "support/Streams.h"

#include "CNumbers.h"
#include "TemporaryFile.h"

#include <bit>
#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <vector>

namespace {

constexpr std::size_t blockSize = std::size_t{256} << 10;

// A stream over given bytes.
struct Source {
    explicit Source(std::string_view bytes) : file(bytes), stream(file.path(), 129, false, false) {}
    TemporaryFile file;
    tvfstream stream;
};

TEST(FileStream, AFileThatIsNotThereIsNotOpen) {
    tvfstream stream("/nowhere/at/all", 129, false, false);
    EXPECT_FALSE(static_cast<bool>(stream));
    char c = 'x';
    EXPECT_EQ(stream.read(&c, 1), 0U);
    EXPECT_EQ(stream.get(), -1);
    EXPECT_EQ(stream.getFileSize(), 0U);
    EXPECT_EQ(stream.tellg(), -1);
    stream.seekg(0);
    EXPECT_TRUE(stream.fail());
}

TEST(FileStream, DirectoriesNulNamesAndWritingModesAreRefused) {
    EXPECT_FALSE(static_cast<bool>(tvfstream("/tmp", 129, false, false)));
    TemporaryFile const file("x");
    YString const cut = YString::joined(file.path(), {std::string_view("\0y", 2)});
    EXPECT_FALSE(static_cast<bool>(tvfstream(cut, 129, false, false)));
    EXPECT_FALSE(static_cast<bool>(tvfstream(file.path(), 386, false, false)));
    EXPECT_TRUE(static_cast<bool>(tvfstream(file.path(), 0, false, false)));
}

TEST(FileStream, EndFlagIsSetByTheReadThatMeetsTheEndAndNotBefore) {
    Source source("ab");
    EXPECT_EQ(source.stream.get(), 'a');
    EXPECT_EQ(source.stream.get(), 'b');
    EXPECT_FALSE(source.stream.eof());
    EXPECT_EQ(source.stream.get(), -1);
    EXPECT_TRUE(source.stream.eof());
    EXPECT_TRUE(source.stream.fail());
    EXPECT_FALSE(static_cast<bool>(source.stream));
}

TEST(FileStream, BytesAreUnsignedAndUntranslated) {
    Source source("\xFF\r\n\x1A");
    EXPECT_EQ(source.stream.get(), 0xFF);
    EXPECT_EQ(source.stream.get(), '\r');
    EXPECT_EQ(source.stream.get(), '\n');
    EXPECT_EQ(source.stream.get(), 0x1A);
}

TEST(FileStream, PeekTouchesNothing) {
    Source source("a");
    EXPECT_EQ(source.stream.peek(), 'a');
    EXPECT_EQ(source.stream.tellg(), 0);
    EXPECT_EQ(source.stream.get(), 'a');
    EXPECT_EQ(source.stream.peek(), -1);
    EXPECT_FALSE(source.stream.eof());
    EXPECT_FALSE(source.stream.fail());
}

TEST(FileStream, ReadOfTheExactRestDoesNotMeetTheEnd) {
    Source source("abcd");
    char room[8] = {};
    EXPECT_EQ(source.stream.read(room, 4), 4U);
    EXPECT_FALSE(source.stream.eof());
    source.stream.seekg(0);
    EXPECT_EQ(source.stream.read(room, 5), 4U);
    EXPECT_TRUE(source.stream.eof());
    EXPECT_TRUE(source.stream.fail());
    EXPECT_EQ(source.stream.read(room, 1), 0U);
}

std::string randomBytes(std::size_t n) {
    std::mt19937_64 random(n);
    std::string bytes(n, '\0');
    for (char & c : bytes) c = static_cast<char>(random());
    return bytes;
}

TEST(FileStream, ReadsOfAnySizeGiveTheFile) {
    std::string const bytes = randomBytes(3 * blockSize + 77);
    Source source(bytes);
    EXPECT_EQ(source.stream.getFileSize(), bytes.size());
    std::mt19937 random(1);
    std::string got;
    while (source.stream) {
        std::string piece(random() % 4 == 0 ? random() % (2 * blockSize) : random() % 1000, '\0');
        piece.resize(source.stream.read(piece.data(), piece.size()));
        got += piece;
        ASSERT_EQ(source.stream.tellg(), static_cast<std::int64_t>(got.size()));
    }
    EXPECT_TRUE(got == bytes);
}

TEST(FileStream, SeeksAnywhere) {
    std::string const bytes = randomBytes(2 * blockSize + 5);
    Source source(bytes);
    std::mt19937 random(2);
    for (int i = 0; i < 3000; ++i) {
        auto const target = static_cast<std::int64_t>(random() % bytes.size());
        bool const relative = random() % 2 == 0;
        source.stream.seekg(relative ? target - source.stream.tellg() : target, relative ? 1 : 0);
        ASSERT_EQ(source.stream.tellg(), target);
        ASSERT_EQ(source.stream.get(), static_cast<unsigned char>(bytes[static_cast<std::size_t>(target)]));
    }
}

TEST(FileStream, SeeksBackAfterAReadThatPassedTheBufferBy) {
    std::string const bytes = randomBytes(3 * blockSize);
    Source source(bytes);
    std::string room(2 * blockSize, '\0');
    source.stream.get();
    ASSERT_EQ(source.stream.read(room.data(), room.size()), room.size());
    source.stream.seekg(-10, 1);
    EXPECT_EQ(source.stream.get(), static_cast<unsigned char>(bytes[room.size() - 9]));
}

TEST(FileStream, SeekClearsTheFlags) {
    Source source("ab");
    char room[3];
    source.stream.read(room, 3);
    ASSERT_TRUE(source.stream.eof() && source.stream.fail());
    source.stream.seekg(-1, 1);
    EXPECT_FALSE(source.stream.eof());
    EXPECT_FALSE(source.stream.fail());
    EXPECT_EQ(source.stream.get(), 'b');
}

TEST(FileStream, SeekBeforeTheStartIsRefused) {
    Source source("abc");
    source.stream.get();
    source.stream.seekg(-2, 1);
    EXPECT_TRUE(source.stream.fail());
    EXPECT_EQ(source.stream.tellg(), 1);
    source.stream.seekg(INT64_MAX, 1);
    EXPECT_TRUE(source.stream.fail());
    source.stream.seekg(0);
    EXPECT_EQ(source.stream.get(), 'a');
}

TEST(FileStream, SeekBehindTheEndMeetsItAtTheNextRead) {
    Source source("abc");
    source.stream.seekg(100);
    EXPECT_TRUE(static_cast<bool>(source.stream));
    EXPECT_EQ(source.stream.get(), -1);
    EXPECT_TRUE(source.stream.eof());
}

TEST(FileStream, LinesLoseTheirFeedAndKeepTheReturn) {
    Source source("one\r\n\ntwo\n");
    YString line;
    EXPECT_TRUE(source.stream.getline(&line));
    EXPECT_EQ(line, "one\r");
    EXPECT_TRUE(source.stream.getline(&line));
    EXPECT_EQ(line, "");
    EXPECT_TRUE(source.stream.getline(&line));
    EXPECT_EQ(line, "two");
    EXPECT_FALSE(source.stream.eof());
    EXPECT_FALSE(source.stream.getline(&line));
    EXPECT_EQ(line, "");
    EXPECT_TRUE(source.stream.eof());
    EXPECT_TRUE(source.stream.fail());
}

TEST(FileStream, ALastLineWithoutFeedMeetsTheEnd) {
    Source source("a b");
    YString line;
    EXPECT_TRUE(source.stream.getline(&line));
    EXPECT_EQ(line, "a b");
    EXPECT_TRUE(source.stream.eof());
    EXPECT_FALSE(source.stream.fail());
    EXPECT_FALSE(source.stream.getline(&line));
}

TEST(FileStream, LinesAcrossBlocksAreWhole) {
    std::vector<std::string> lines;
    std::mt19937 random(4);
    std::string text;
    for (std::size_t const length :
         {blockSize - 1, std::size_t{0}, blockSize, 3 * blockSize + 1, std::size_t{7}, blockSize - 9}) {
        lines.emplace_back(length, static_cast<char>('a' + random() % 26));
        text += lines.back() + "\n";
    }
    Source source(text);
    YString line;
    for (std::string const & expected : lines) {
        ASSERT_TRUE(source.stream.getline(&line));
        ASSERT_TRUE(line.view() == expected);
    }
    EXPECT_FALSE(source.stream.getline(&line));
}

TEST(FileStream, LineKeptFromBeforeIsNotChanged) {
    Source source("one\ntwo\n");
    YString line;
    source.stream.getline(&line);
    YString const kept = line;
    source.stream.getline(&line);
    EXPECT_EQ(kept, "one");
    EXPECT_EQ(line, "two");
}

TEST(FileStream, BoundedLineFits) {
    Source source("abc\ndef");
    char room[4];
    EXPECT_TRUE(source.stream.getline(room, 4));
    EXPECT_STREQ(room, "abc");
    EXPECT_FALSE(source.stream.eof());
    EXPECT_TRUE(source.stream.getline(room, 4));
    EXPECT_STREQ(room, "def");
    EXPECT_TRUE(source.stream.eof());
    EXPECT_FALSE(source.stream.fail());
    EXPECT_FALSE(source.stream.getline(room, 4));
    EXPECT_STREQ(room, "");
}

TEST(FileStream, ALongerLineFailsAndLeavesTheRest) {
    Source source("abcdef\n");
    char room[4];
    EXPECT_FALSE(source.stream.getline(room, 4));
    EXPECT_STREQ(room, "abc");
    EXPECT_TRUE(source.stream.fail());
    EXPECT_FALSE(source.stream.eof());
    EXPECT_FALSE(source.stream.getline(room, 4)); // and nothing more comes
    EXPECT_EQ(source.stream.tellg(), 3);
    source.stream.seekg(0, 1);
    EXPECT_TRUE(source.stream.getline(room, 4));
    EXPECT_STREQ(room, "def");
}

TEST(FileStream, BoundedLineWithoutRoomFails) {
    Source source("a\n");
    char c = 'x';
    EXPECT_FALSE(source.stream.getline(&c, 0));
    EXPECT_EQ(c, 'x');
    source.stream.seekg(0);
    EXPECT_FALSE(source.stream.getline(&c, 1));
    EXPECT_EQ(c, '\0');
}

TEST(Extraction, NumbersBetweenWhiteSpace) {
    Source source(" 1\t2.5\r\n\v\f-3e2,7");
    int i = 0;
    double a = 0, b = 0, c = 0;
    source.stream >> i >> a >> b;
    EXPECT_EQ(source.stream.get(), ',');
    source.stream >> c;
    EXPECT_EQ(i, 1);
    EXPECT_EQ(a, 2.5);
    EXPECT_EQ(b, -300.0);
    EXPECT_EQ(c, 7.0);
}

double extracted(std::string_view text, bool * good = nullptr) {
    Source source(text);
    double value = -99;
    source.stream >> value;
    if (good != nullptr) *good = !source.stream.fail();
    return value;
}

TEST(Extraction, FormsOfADouble) {
    EXPECT_EQ(extracted("+1.5"), 1.5);
    EXPECT_EQ(extracted(".5"), 0.5);
    EXPECT_EQ(extracted("5."), 5.0);
    EXPECT_EQ(extracted("1E+2"), 100.0);
    EXPECT_EQ(extracted("-0"), 0.0);
    EXPECT_EQ(extracted("inf"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(extracted("-Infinity"), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(extracted("nan")));
    EXPECT_EQ(extracted("1e999"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(extracted("1e-999"), 0.0);
}

TEST(Extraction, FailureLeavesTheVariable) {
    for (char const * text : {"", " \n", "x", "-", "+", ".", "+-1", "--1", "e5", "k", "-x", "+.e", "in", "\xFF"}) {
        bool good = true;
        EXPECT_EQ(extracted(text, &good), -99.0) << text;
        EXPECT_FALSE(good) << text;
        EXPECT_EQ(extracted(std::string(text) + " behind it stands more", &good), -99.0) << text;
        EXPECT_FALSE(good) << text;
    }
}

TEST(Extraction, AfterAFailureNothingIsReadUntilASeek) {
    Source source("x 5");
    double value = -99;
    source.stream >> value >> value;
    EXPECT_EQ(value, -99);
    EXPECT_EQ(source.stream.get(), -1);
    source.stream.seekg(1);
    source.stream >> value;
    EXPECT_EQ(value, 5);
}

TEST(Extraction, SaysWhetherTheEndWasMet) {
    double value = 0;
    Source open("1.5");
    open.stream >> value;
    EXPECT_TRUE(open.stream.eof());
    EXPECT_FALSE(open.stream.fail());
    Source closed("1.5\n");
    closed.stream >> value;
    EXPECT_FALSE(closed.stream.eof());
    closed.stream >> value;
    EXPECT_TRUE(closed.stream.eof());
    EXPECT_TRUE(closed.stream.fail());
    Source sign("-");
    sign.stream >> value;
    EXPECT_TRUE(sign.stream.eof());
    Source word("x");
    word.stream >> value;
    EXPECT_FALSE(word.stream.eof());
    EXPECT_TRUE(word.stream.fail());
}

TEST(Extraction, WhatFollowsANumberIsLeft) {
    Source source("1e 2.5.5 3k 0x10 nan(1)");
    double value = 0;
    source.stream >> value;
    EXPECT_EQ(value, 1);
    EXPECT_EQ(source.stream.get(), 'e');
    source.stream >> value;
    EXPECT_EQ(value, 2.5);
    source.stream >> value;
    EXPECT_EQ(value, 0.5);
    source.stream >> value;
    EXPECT_EQ(value, 3);
    EXPECT_EQ(source.stream.get(), 'k');
    source.stream >> value;
    EXPECT_EQ(value, 0);
    EXPECT_EQ(source.stream.get(), 'x');
    source.stream >> value;
    EXPECT_EQ(value, 10);
    source.stream >> value;
    EXPECT_TRUE(std::isnan(value));
    EXPECT_EQ(source.stream.get(), '(');
}

TEST(Extraction, WholeNumbers) {
    Source source("12 -7 +3 2147483647 -2147483648 1e9 4.5");
    std::vector<int> values;
    for (int i = 0; i < 7; ++i) {
        int value = -99;
        source.stream >> value;
        values.push_back(value);
        if (i != 5) continue;
        EXPECT_EQ(source.stream.get(), 'e');
        EXPECT_EQ(source.stream.get(), '9');
    }
    EXPECT_EQ(values, (std::vector<int>{12, -7, 3, INT_MAX, INT_MIN, 1, 4}));
}

TEST(Extraction, WholeNumbersBeyondIntFail) {
    for (char const * text : {"2147483648", "-2147483649", "99999999999999999999", "", "-", ".5", "x", "+-1"}) {
        Source source(text);
        int value = -99;
        source.stream >> value;
        EXPECT_TRUE(source.stream.fail()) << text;
        EXPECT_EQ(value, -99) << text;
    }
}

// Every number of a text of several blocks, with the text shifted so that the block edges fall everywhere.
TEST(Extraction, NumbersAcrossBlockEdgesAreWhole) {
    std::mt19937_64 random(6);
    std::vector<double> expected;
    std::string text;
    while (text.size() < 2 * blockSize + 1000) {
        double const value = std::bit_cast<double>(random());
        if (value != value) continue;
        expected.push_back(value);
        text += random() % 50 == 0 && std::isinf(value) ? "infinity" : cFormat("%.17g", value);
        text += random() % 3 == 0 ? "\r\n" : " ";
    }
    for (std::size_t shift = 0; shift < 40; ++shift) {
        Source source(std::string(shift, ' ') + text);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            double value = 0;
            source.stream >> value;
            ASSERT_EQ(value, expected[i]) << "shift " << shift << " index " << i;
        }
    }
}

TEST(Extraction, ShortTextsAtABlockEdgeReadAsAnywhere) {
    for (char const * text :
         {"1e-5", "-infinity", "+inf", "12345678", "-1.5e+300", "1e", "nan(xyz)", "0x1", "infin", "-", "1.5e"}) {
        bool goodThere = false;
        double const there = extracted(std::string(text) + " 1 2 3 4 5 6", &goodThere);
        for (std::size_t before = blockSize - 12; before <= blockSize; ++before) {
            Source source(std::string(before, ' ') + text + " 1 2 3 4 5 6");
            double value = -99;
            source.stream >> value;
            EXPECT_EQ(!source.stream.fail(), goodThere) << text;
            EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(there))
                << text << ' ' << before;
        }
    }
}

// What a stream says while a text behind `before` blanks is read number by number, stepping over what is none.
std::vector<std::string> readings(std::string const & text, std::size_t before) {
    Source source(std::string(before, ' ') + text);
    tvfstream & stream = source.stream;
    std::vector<std::string> log;
    for (;;) {
        double value = -99;
        stream >> value;
        auto const place = stream.tellg() - static_cast<std::int64_t>(before);
        log.push_back(
            cFormat("%.17g %d %d %ld", value, int(stream.fail()), int(stream.eof()), static_cast<long>(place)));
        if (stream.eof()) return log;
        if (stream.fail()) stream.seekg(1, 1);
    }
}

TEST(Extraction, RandomTextsReadTheSameAcrossABlockEdge) {
    std::mt19937 random(8);
    std::string_view const alphabet = "0123456789..--++eEinfaty(x) \t\n";
    for (int i = 0; i < 300; ++i) {
        std::string text(1 + random() % 30, ' ');
        for (char & c : text) c = alphabet[random() % alphabet.size()];
        ASSERT_EQ(readings(text, blockSize - random() % 32), readings(text, 0)) << text;
    }
}

TEST(Extraction, NumbersOfMillionsOfDigits) {
    std::string const zeros(5'000'000, '0');
    EXPECT_EQ(extracted("0." + zeros + "1"), 0.0);
    EXPECT_EQ(extracted("0." + zeros + "1e5000001"), 1.0);
    EXPECT_EQ(extracted("1" + zeros), std::numeric_limits<double>::infinity());
    EXPECT_EQ(extracted("9007199254740993." + zeros + "1 "), 9007199254740994.0);
    EXPECT_EQ(extracted("1e" + zeros + "2"), 100.0);
    bool good = true;
    EXPECT_EQ(extracted(std::string(1'000'000, '-'), &good), -99.0);
    EXPECT_FALSE(good);
    Source source(zeros + "7 8");
    int value = 0;
    source.stream >> value;
    EXPECT_EQ(value, 7);
    source.stream >> value;
    EXPECT_EQ(value, 8);
}

TEST(Extraction, LongWhiteSpaceIsSkipped) {
    Source source(std::string(3 * blockSize, ' ') + "4");
    double value = 0;
    source.stream >> value;
    EXPECT_EQ(value, 4);
    EXPECT_TRUE(source.stream.eof());
}

TEST(Stream, PipeIsRefusedAtOnce) {
    std::string const path = testing::TempDir() + "torvelanPipe" + std::to_string(getpid());
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(tvfstream(YString(path), 129, false, false));
    unlink(path.c_str());
}

} // namespace
