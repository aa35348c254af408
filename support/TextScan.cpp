#include "support/TextScan.h"

#include <algorithm>
#include <string>

int sp_ScanLine(std::string_view text, std::string_view separators, std::string_view * tokens, int maxTokens) {
    CharacterSet const set(separators);
    char const * p = text.data();
    char const * const end = p + text.size();
    for (int count = 0;; ++count) {
        while (p != end && set.has(*p)) ++p;
        if (p == end) return count;
        if (count >= maxTokens) return count + 1;
        char const * const start = p;
        while (p != end && !set.has(*p)) ++p;
        tokens[count] = {start, static_cast<std::size_t>(p - start)};
    }
}

bool sp_GetToken(std::string_view & rest, CharacterSet const & separators, std::string_view & token, char quote) {
    std::size_t first = 0;
    while (first != rest.size() && separators.has(rest[first])) ++first;
    rest.remove_prefix(first);
    token = {};
    if (rest.empty()) return false;
    bool const quoted = quote != '\0' && rest.front() == quote;
    if (quoted) rest.remove_prefix(1);
    std::size_t last = 0;
    if (quoted)
        last = std::min(rest.find(quote), rest.size());
    else
        while (last != rest.size() && !separators.has(rest[last])) ++last;
    token = rest.substr(0, last);
    rest.remove_prefix(std::min(last + 1, rest.size()));
    return true;
}

namespace {

struct Escape {
    char character, letter;
};
constexpr Escape escapes[] = {{'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {' ', 's'}};

// What stands behind the escape character, or NUL for a character that needs none.
char letterFor(char character, bool replaceSpaces, char escape) noexcept {
    if (character == escape) return escape;
    for (Escape const & row : escapes)
        if (row.character == character) return character != ' ' || replaceSpaces ? row.letter : '\0';
    return '\0';
}

char characterFor(char letter) noexcept {
    for (Escape const & row : escapes)
        if (row.letter == letter) return row.character;
    return letter;
}

} // namespace

YString sp_EscapeStringEncode(std::string_view text, bool replaceSpaces, char escape) {
    std::string out;
    out.reserve(text.size());
    for (char const character : text) {
        char const letter = letterFor(character, replaceSpaces, escape);
        if (letter != '\0') out += escape;
        out += letter != '\0' ? letter : character;
    }
    return YString(out);
}

YString sp_EscapeString(std::string_view text, char escape) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool const isEscape = text[i] == escape && i + 1 < text.size();
        out += isEscape ? characterFor(text[++i]) : text[i];
    }
    return YString(out);
}

YString sp_ResolveWireTemplate(std::string_view pattern, std::string_view bus, std::int64_t wire) {
    constexpr std::string_view busMark = "%BUSNAME%", wireMark = "%WIRENUM%";
    std::string const number = std::to_string(wire);
    std::string out;
    while (!pattern.empty()) {
        bool const isBus = equalNoCase(pattern.substr(0, busMark.size()), busMark);
        bool const isWire = equalNoCase(pattern.substr(0, wireMark.size()), wireMark);
        out += isBus ? bus : isWire ? std::string_view(number) : pattern.substr(0, 1);
        pattern.remove_prefix(isBus ? busMark.size() : isWire ? wireMark.size() : 1);
    }
    return YString(out);
}
