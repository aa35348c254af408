#include "support/TextScan.h"

#include <array>
#include <gmock/gmock.h>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string_view> scan(std::string_view text, std::string_view separators) {
    std::array<std::string_view, 8> tokens;
    int const count = sp_ScanLine(text, separators, tokens.data(), 8);
    return {tokens.begin(), tokens.begin() + count};
}

TEST(ScanLine, SplitsAtAnyOfTheSeparators) {
    EXPECT_THAT(scan("0\tv(out) voltage\r", " \t\r"), ElementsAre("0", "v(out)", "voltage"));
    EXPECT_THAT(scan("v(a)(b)", "()"), ElementsAre("v", "a", "b"));
}

TEST(ScanLine, RunsOfSeparatorsCountAsOne) {
    EXPECT_THAT(scan("  a \t b  ", " \t"), ElementsAre("a", "b"));
}

TEST(ScanLine, NothingOrSeparatorsAloneGiveNoToken) {
    EXPECT_THAT(scan("", " "), IsEmpty());
    EXPECT_THAT(scan({}, " "), IsEmpty());
    EXPECT_THAT(scan("   ", " "), IsEmpty());
}

TEST(ScanLine, WithoutSeparatorsTheTextIsOneToken) {
    EXPECT_THAT(scan("a b", ""), ElementsAre("a b"));
}

TEST(ScanLine, SaysThatThereAreMoreTokensThanRoom) {
    std::array<std::string_view, 3> tokens = {"", "", "untouched"};
    EXPECT_EQ(sp_ScanLine("a b", " ", tokens.data(), 2), 2);
    EXPECT_EQ(sp_ScanLine("a b c d e", " ", tokens.data(), 2), 3);
    EXPECT_THAT(tokens, ElementsAre("a", "b", "untouched"));
    EXPECT_EQ(sp_ScanLine("a", " ", nullptr, 0), 1);
    EXPECT_EQ(sp_ScanLine(" ", " ", nullptr, 0), 0);
}

TEST(ScanLine, BytesAboveTheAsciiRangeSeparateToo) {
    EXPECT_THAT(scan("a\xE4z\xFF", "\xE4\xFF"), ElementsAre("a", "z"));
}

TEST(ScanLine, TokensAreViewsOfTheText) {
    std::string_view const text = "ab cd";
    EXPECT_EQ(scan(text, " ")[1].data(), text.data() + 3);
}

std::vector<std::string_view> tokensOf(std::string_view text, char quote = '\0') {
    constexpr CharacterSet separators(" ,");
    std::vector<std::string_view> tokens;
    std::string_view token;
    while (sp_GetToken(text, separators, token, quote)) tokens.push_back(token);
    EXPECT_TRUE(token.empty() && text.empty());
    return tokens;
}

TEST(GetToken, GoesFromSeparatorToSeparator) {
    EXPECT_THAT(tokensOf(" a, bc ,,d"), ElementsAre("a", "bc", "d"));
    EXPECT_THAT(tokensOf(" , "), IsEmpty());
    EXPECT_THAT(tokensOf(""), IsEmpty());
}

TEST(GetToken, QuotesHoldSeparatorsWhereATokenBegins) {
    EXPECT_THAT(tokensOf("\"a, b\" c", '"'), ElementsAre("a, b", "c"));
    EXPECT_THAT(tokensOf("\"a\"b", '"'), ElementsAre("a", "b"));
    EXPECT_THAT(tokensOf("a\"b c\"", '"'), ElementsAre("a\"b", "c\""));
    EXPECT_THAT(tokensOf("\"\" x", '"'), ElementsAre("", "x"));
    EXPECT_THAT(tokensOf("\"a b\""), ElementsAre("\"a", "b\""));
}

TEST(GetToken, AnOpenQuoteTakesTheRest) {
    EXPECT_THAT(tokensOf("x \"a, b", '"'), ElementsAre("x", "a, b"));
    EXPECT_THAT(tokensOf("\"", '"'), ElementsAre(""));
}

} // namespace

TEST(EscapeString, KeepsATextOnOneLine) {
    EXPECT_EQ(sp_EscapeStringEncode("a b\n\tc\\", false), YString("a b\\n\\tc\\\\"));
    EXPECT_EQ(sp_EscapeStringEncode("a b", true), YString("a\\sb"));
    EXPECT_EQ(sp_EscapeStringEncode("a|b\\\n", false, '|'), YString("a||b\\|n"));
}

TEST(EscapeString, ComesBackAsItWas) {
    std::string const text = " x\r\n\t\\|snrt\\s ";
    for (char const escape : {'\\', '|'})
        for (bool const spaces : {false, true})
            EXPECT_EQ(sp_EscapeString(sp_EscapeStringEncode(text, spaces, escape).view(), escape), YString(text));
}

TEST(EscapeString, AnUnknownLetterStandsForItself) {
    EXPECT_EQ(sp_EscapeString("\\a\\\"b\\"), YString("a\"b\\"));
}

TEST(WireTemplate, PutsNameAndNumberInTheirPlaces) {
    EXPECT_EQ(sp_ResolveWireTemplate("%BUSNAME%#%WIRENUM%", "data", 7), YString("data#7"));
    EXPECT_EQ(sp_ResolveWireTemplate("x_%wirenum%_%BusName%%BUSNAME%", "d", -1), YString("x_-1_dd"));
    EXPECT_EQ(sp_ResolveWireTemplate("100%% %BUS", "d", 0), YString("100%% %BUS"));
    EXPECT_EQ(sp_ResolveWireTemplate("", "d", 0), YString());
    EXPECT_EQ(sp_ResolveWireTemplate("%BUSNAME%", "%WIRENUM%", 3), YString("%WIRENUM%")) << "what is put in stays";
}
