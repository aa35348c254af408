#include "Import/TextNames.h"

#include <algorithm>
#include <string>

namespace {

constexpr CharacterSet illegal{"\"&+-*/^<>' @{}[]%!()"};

std::string legal(std::string_view text) {
    std::string name(text);
    std::replace_if(
        name.begin(), name.end(), [](char c) { return illegal.has(c); }, '_');
    return name;
}

struct KnownName {
    std::string_view word;
    PhysType type;
};
constexpr KnownName knownNames[] = {{"time", PT_TIME}, {"frequency", PT_FREQUENCY}, {"freq", PT_FREQUENCY}};

// 'v' or 'i' and, at the end, something in parentheses.
bool isProbe(std::string_view word) {
    return word.size() > 1 && word.back() == ')' && word.find('(') != word.npos &&
           std::string_view("vViI").find(word.front()) != std::string_view::npos;
}

// "v(out)" is "out", "vm(out)" is "m_out".
TextName probe(std::string_view word) {
    std::size_t const open = word.find('(', 1);
    std::string name = legal(word.substr(1, open - 1));
    if (!name.empty()) name += '_';
    name += legal(word.substr(open + 1, word.size() - open - 2));
    bool const isVoltage = (word.front() | 0x20) == 'v';
    return {YString(name), isVoltage ? PT_VOLTAGE : PT_CURRENT};
}

} // namespace

bool looksLikeNumber(std::string_view token) noexcept {
    if (token.empty()) return false;
    char const c = token.front();
    return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

YString withoutColons(std::string_view token, bool keepColons) {
    if (!keepColons) {
        std::size_t const colon = token.find(':');
        return YString(colon == token.npos ? token : token.substr(colon + 1));
    }
    std::string name(token);
    std::replace(name.begin(), name.end(), ':', '_');
    return YString(name);
}

TextName textName(YString const & word) {
    for (KnownName const & known : knownNames)
        if (equalNoCase(known.word, word)) return {word, known.type};
    return isProbe(word) ? probe(word) : TextName{YString(legal(word)), PT_UNKNOWN};
}
