// Splitting texts.
#pragma once

#include "torvelan/YString.h"

#include <array>
#include <cstdint>
#include <string_view>

// Membership in constant time, since data lines are scanned by the million.
class CharacterSet {
public:
    explicit constexpr CharacterSet(std::string_view members) {
        for (char const c : members) has_[static_cast<unsigned char>(c)] = true;
    }
    constexpr bool has(char c) const noexcept { return has_[static_cast<unsigned char>(c)]; }

private:
    std::array<bool, 256> has_{};
};

// Splits at any of the separators into at most maxTokens tokens; runs of separators count as one. The answer is the
// number of tokens present, which may be maxTokens + 1 to say that there are more. Tokens are views into the text.
int sp_ScanLine(std::string_view text, std::string_view separators, std::string_view * tokens, int maxTokens);

// Takes the next token, and the separator behind it, off the front of a text; false when only separators are left, and
// the token is empty then. A token that begins with `quote` goes to the next one, or to the end of the text, and stands
// without them.
bool sp_GetToken(std::string_view & rest, CharacterSet const & separators, std::string_view & token, char quote = '\0');

// A text on one line: line feeds, carriage returns and tabs become the escape character and 'n', 'r', 't', the escape
// character itself is doubled, and with `replaceSpaces` a blank becomes 's' behind it.
YString sp_EscapeStringEncode(std::string_view text, bool replaceSpaces, char escape = '\\');
// The other way round. An escape character before any other one stands for that one.
YString sp_EscapeString(std::string_view text, char escape = '\\');

// The name of one wire of a bus: a pattern in which "%BUSNAME%" and "%WIRENUM%" stand for name and number, in any case.
YString sp_ResolveWireTemplate(std::string_view pattern, std::string_view bus, std::int64_t wire);
