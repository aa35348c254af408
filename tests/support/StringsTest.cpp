#include "CNumbers.h"
#include "torvelan/Containers.h"
#include "torvelan/YString.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <gmock/gmock.h>
#include <limits>
#include <malloc.h>
#include <memory>
#include <random>
#include <vector>

namespace {

TEST(YString, NullTextIsEmpty) {
    YString const s(static_cast<char const *>(nullptr));
    EXPECT_TRUE(s.empty());
    EXPECT_EQ(s.length(), 0U);
    EXPECT_STREQ(s.c_str(), "");
    EXPECT_EQ(s.view(), "");
}

TEST(YString, KeepsNulBytes) {
    YString const s(std::string_view("a\0b", 3));
    EXPECT_EQ(s.length(), 3U);
    EXPECT_EQ(s[1], '\0');
    EXPECT_EQ(s.view(), std::string_view("a\0b", 3));
    EXPECT_EQ(YString("abc", 2), "ab");
}

TEST(YString, WholeNumbersOfEachType) {
    EXPECT_EQ(YString(0), "0");
    EXPECT_EQ(YString(INT_MIN), "-2147483648");
    EXPECT_EQ(YString(UINT_MAX), "4294967295");
    EXPECT_EQ(YString(LONG_MIN), "-9223372036854775808");
    EXPECT_EQ(YString(ULONG_MAX), "18446744073709551615");
    EXPECT_EQ(YString(LLONG_MAX), "9223372036854775807");
    EXPECT_EQ(YString(ULLONG_MAX), "18446744073709551615");
}

TEST(YString, RealsReadBackAndAreShort) {
    EXPECT_EQ(YString(0.1), "0.1");
    EXPECT_EQ(YString(-2.5), "-2.5");
    EXPECT_EQ(YString(1e300), "1e+300");
    EXPECT_EQ(YString(std::numeric_limits<double>::infinity()), "inf");
    std::mt19937_64 random(7);
    for (int i = 0; i < 2000; ++i) {
        double const value = std::bit_cast<double>(random());
        if (value != value) continue;
        YString const text(value);
        ASSERT_EQ(cToReal(text.c_str()), value) << text.c_str();
        ASSERT_LE(text.length(), 24U);
    }
}

TEST(YString, CopiesShareTheirCharacters) {
    YString const a("a text that is shared");
    YString const b = a;
    EXPECT_EQ(a.data(), b.data());
    EXPECT_EQ(a, b);
}

TEST(YString, SelfAssignmentKeepsTheText) {
    YString a("text");
    YString const & same = a;
    a = same;
    EXPECT_EQ(a, "text");
}

TEST(YString, MovedFromIsEmpty) {
    YString a("text");
    YString const b = std::move(a);
    EXPECT_EQ(b, "text");
    EXPECT_TRUE(a.empty()); // NOLINT(bugprone-use-after-move): that is what is tested
    EXPECT_STREQ(a.c_str(), "");
}

TEST(YString, AppendingToOneCopyLeavesTheOther) {
    YString a("abc");
    YString const b = a;
    a += "def";
    EXPECT_EQ(a, "abcdef");
    EXPECT_EQ(b, "abc");
    EXPECT_STREQ(b.c_str(), "abc");
    EXPECT_STREQ(a.c_str(), "abcdef");
}

TEST(YString, AppendsPartsOfItself) {
    YString a("ab");
    for (int i = 0; i < 10; ++i) a += a.view();
    EXPECT_EQ(a.length(), 2048U);
    EXPECT_EQ(a.view().substr(2046), "ab");
    YString const twice = YString::joined(a, {a.view(), a.view()});
    EXPECT_EQ(twice.length(), 3 * 2048U);
}

TEST(YString, JoinedLeavesItsParts) {
    YString const first("one");
    YString const both = YString::joined(first, {"+", "two"});
    YString const other = YString::joined(first, {"-", "three"});
    EXPECT_EQ(first, "one");
    EXPECT_EQ(both, "one+two");
    EXPECT_EQ(other, "one-three");
    EXPECT_EQ(YString::joined(YString(), {}), "");
    EXPECT_EQ(YString::joined(YString(), {"", "x"}), "x");
}

TEST(YString, JoinedGrowsInTheBufferOfItsFirstPart) {
    YString const a = YString::joined("1", {"+1"});
    YString const b = YString::joined(a, {"+1"});
    EXPECT_EQ(a.data(), b.data());
    EXPECT_EQ(a, "1+1");
    EXPECT_EQ(b, "1+1+1");
    // The tail is taken now, so that a second continuation of `a` moves away.
    YString const c = YString::joined(a, {"-2"});
    EXPECT_NE(c.data(), a.data());
    EXPECT_EQ(b, "1+1+1");
    EXPECT_EQ(c, "1+1-2");
}

TEST(YString, ChainOfSumsMovesEachCharacterAFewTimesOnly) {
    YString sum("1");
    std::size_t moved = 0;
    for (int i = 0; i < 20000; ++i) {
        YString next = YString::joined(sum, {"+", "1"});
        if (next.data() != sum.data()) moved += sum.length();
        sum = next;
    }
    EXPECT_EQ(sum.length(), 40001U);
    EXPECT_LE(moved, 3 * sum.length());
}

TEST(YString, SliceInsideABufferGetsItsOwnNul) {
    YString const a = YString::joined("1", {"+1"});
    YString const b = YString::joined(a, {"+1"});
    ASSERT_EQ(a.data(), b.data());
    EXPECT_STREQ(a.c_str(), "1+1");
    EXPECT_STREQ(b.c_str(), "1+1+1");
    EXPECT_NE(a.data(), b.data());
}

TEST(YString, SliceWhoseLongerHoldersAreGoneIsCutInPlace) {
    YString const a = YString::joined("1", {"+1"});
    { YString const b = YString::joined(a, {"+1"}); }
    char const * const before = a.data();
    EXPECT_STREQ(a.c_str(), "1+1");
    EXPECT_EQ(a.data(), before);
}

TEST(YString, TerminatedTextHandedOutSurvivesLaterJoins) {
    YString const name = YString::joined("a", {"b"});
    char const * const text = name.c_str();
    YString const longer = YString::joined(name, {"c"});
    EXPECT_STREQ(text, "ab");
    EXPECT_EQ(longer, "abc");
}

TEST(YString, AssignReusesUnsharedRoom) {
    YString line("a line of some length");
    char const * const room = line.data();
    line.assign("short");
    EXPECT_EQ(line, "short");
    EXPECT_EQ(line.data(), room);
    EXPECT_STREQ(line.c_str(), "short");
    line.assign(line.view().substr(2));
    EXPECT_EQ(line, "ort");
    YString const kept = line;
    line.assign("other");
    EXPECT_EQ(kept, "ort");
    EXPECT_EQ(line, "other");
    line.assign({});
    EXPECT_TRUE(line.empty());
    EXPECT_STREQ(line.c_str(), "");
}

TEST(YString, StripsCharactersOfASet) {
    YString s("  \tvalue \n");
    YString const whole = s;
    s.stripTrailing(" \n");
    EXPECT_EQ(s, "  \tvalue");
    EXPECT_STREQ(s.c_str(), "  \tvalue");
    s.stripLeading(" \t");
    EXPECT_EQ(s, "value");
    s.stripLeading("value");
    EXPECT_TRUE(s.empty());
    s.stripTrailing("x");
    EXPECT_TRUE(s.empty());
    EXPECT_EQ(whole, "  \tvalue \n");
}

TEST(YString, CopyBelongsToTheCaller) {
    YString const s = YString::joined("he", {"ap"});
    std::unique_ptr<char, decltype(&std::free)> const copy(s.copy(), std::free);
    EXPECT_STREQ(copy.get(), "heap");
    std::unique_ptr<char, decltype(&std::free)> const none(YString().copy(), std::free);
    EXPECT_STREQ(none.get(), "");
}

TEST(YString, UniqueUnshares) {
    YString a("text");
    YString const b = a;
    a.unique();
    EXPECT_NE(a.data(), b.data());
    EXPECT_EQ(a, b);
    EXPECT_EQ(a.data()[a.length()], '\0');
    YString none;
    none.unique();
    EXPECT_TRUE(none.empty());
}

TEST(YString, OrdersByBytes) {
    EXPECT_LT(YString("B"), YString("a"));
    EXPECT_LT(YString("a"), YString("ab"));
    EXPECT_TRUE(YString("abc").beginsWith("ab"));
    EXPECT_FALSE(YString("abc").beginsWith("b"));
}

TEST(YString, LengthBeyondTheAddressSpaceIsAMemoryException) {
    YString s("x");
    std::string_view const impossible(s.data(), std::numeric_limits<std::size_t>::max() / 2);
    EXPECT_THROW(s += impossible, MemoryException);
    EXPECT_THROW(YString::joined(s, {impossible, impossible, impossible}), MemoryException);
    EXPECT_THROW(YString{impossible}, MemoryException);
    EXPECT_EQ(s, "x");
}

// Against std::string, over random joins, appends, copies and cuts among a few strings.
TEST(YString, BehavesAsIndependentValues) {
    std::mt19937 random(42);
    std::vector<YString> strings(6);
    std::vector<std::string> models(6);
    for (int step = 0; step < 20000; ++step) {
        std::size_t const i = random() % 6, j = random() % 6;
        std::string const piece(random() % 9, static_cast<char>('a' + random() % 26));
        switch (random() % 8) {
        case 0: strings[i] = strings[j], models[i] = models[j]; break;
        case 1: strings[i] += piece, models[i] += piece; break;
        case 2:
            strings[i] = YString::joined(strings[j], {piece, strings[i].view()}),
            models[i] = models[j] + piece + models[i];
            break;
        case 3: strings[i].stripTrailing(piece), models[i].erase(models[i].find_last_not_of(piece) + 1); break;
        case 4: ASSERT_STREQ(strings[i].c_str(), models[i].c_str()); break;
        case 5: strings[i].assign(piece), models[i] = piece; break;
        case 6: strings[i] = YString::joined(strings[j], {piece}), models[i] = models[j] + piece; break;
        default: strings[i].unique(); break;
        }
        if (models[i].size() > 500) strings[i] = "", models[i] = "";
        for (std::size_t k = 0; k < 6; ++k) ASSERT_EQ(strings[k].view(), models[k]) << "step " << step;
    }
}

int sign(int value) {
    return (value > 0) - (value < 0);
}

TEST(NoCase, FoldsAsciiLettersAlone) {
    EXPECT_TRUE(equalNoCase("Vout_12345", "vOUT_12345"));
    EXPECT_FALSE(equalNoCase("a", "ab"));
    EXPECT_FALSE(equalNoCase("[", "{")); // neighbours of the letters, 32 apart
    EXPECT_FALSE(equalNoCase("@@@@@@@@", "````````"));
    EXPECT_FALSE(equalNoCase("\xC4", "\xE4"));
    EXPECT_TRUE(equalNoCase({}, ""));
}

TEST(NoCase, UnderscoreSortsBeforeLetters) {
    EXPECT_LT(compareNoCase("_a", "A"), 0);
    EXPECT_LT(compareNoCase("_a", "a"), 0);
    EXPECT_GT(compareNoCase("\xE4", "z"), 0); // bytes count as unsigned
    EXPECT_EQ(compareNoCase("ABC", "abc"), 0);
    EXPECT_LT(compareNoCase("AB", "abc"), 0);
    EXPECT_GT(compareNoCase("abc", "AB"), 0);
    EXPECT_EQ(compareNoCase({}, {}), 0);
}

std::string folded(std::string text) {
    for (char & c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return text;
}

TEST(NoCase, AgreesWithFoldingByteByByte) {
    std::mt19937 random(3);
    for (int i = 0; i < 20000; ++i) {
        std::string a(random() % 20, '\0');
        for (char & c : a) c = static_cast<char>(random());
        std::string b = a;
        for (char & c : b)
            if (random() % 4 == 0) c = static_cast<char>(c ^ 0x20);
        ASSERT_EQ(equalNoCase(a, b), folded(a) == folded(b));
        ASSERT_EQ(sign(compareNoCase(a, b)), sign(folded(a).compare(folded(b))));
        ASSERT_TRUE(folded(a) != folded(b) || hashNoCase(a) == hashNoCase(b));
        b.resize(random() % 20, 'b');
        ASSERT_EQ(sign(compareNoCase(a, b)), sign(folded(a).compare(folded(b))));
    }
}

TEST(NoCase, HashesTellNamesApart) {
    std::vector<std::size_t> hashes;
    for (int i = 0; i < 10000; ++i) hashes.push_back(YString::joined("name_", {YString(i)}).hashValue());
    hashes.push_back(hashNoCase({}));
    std::sort(hashes.begin(), hashes.end());
    EXPECT_EQ(std::adjacent_find(hashes.begin(), hashes.end()), hashes.end());
    EXPECT_EQ(YString("VOUT").hashValue(), YString("vout").hashValue());
}

TEST(NameArray, ComparesInOrderWithoutCase) {
    NameArray const a{"One", "Two"};
    EXPECT_TRUE(a.compare(NameArray{"ONE", "two"}));
    EXPECT_FALSE(a.compare(NameArray{"two", "one"}));
    EXPECT_FALSE(a.compare(NameArray{"one"}));
}

TEST(YVector, ExhaustedMemoryNamesTheContainer) {
    try {
        YVectorAllocator<double>().allocate(std::numeric_limits<std::size_t>::max() / 8);
        FAIL() << "no exception";
    } catch (MemoryException const & e) {
        EXPECT_EQ(e.errorClass, 5);
        EXPECT_STREQ(e.text, "*** Fatal error, out of memory ***\nDetected in YVector<d>::allocPrim");
    }
}

} // namespace
