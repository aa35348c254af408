#include "Words.h"

#include <algorithm>

namespace {

constexpr std::string_view blanks = " \t\r";

bool isBlank(char c) noexcept {
    return blanks.find(c) != std::string_view::npos;
}

} // namespace

std::optional<std::vector<std::string>> splitWords(std::string_view line, WordKind kind) {
    std::vector<std::string> words;
    bool inWord = false;
    char quote = '\0';
    for (char const c : line) {
        if (quote == '\0' && isBlank(c)) {
            inWord = false;
            continue;
        }
        if (!inWord) words.emplace_back();
        inWord = true;
        bool const closes = c == quote, opens = quote == '\0' && (c == '\'' || c == '"');
        if (closes || opens) quote = opens ? c : '\0';
        if ((!closes && !opens) || (c == '\'' && kind == WordKind::expressions)) words.back() += c;
    }
    if (quote != '\0') return std::nullopt;
    return words;
}

std::string_view trimmed(std::string_view text) {
    std::size_t const start = std::min(text.find_first_not_of(blanks), text.size());
    text.remove_prefix(start);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::string_view behindFirstWord(std::string_view line) {
    line = trimmed(line);
    return trimmed(line.substr(std::min(line.find_first_of(blanks), line.size())));
}

bool isComment(std::string_view line) {
    line = trimmed(line);
    return line.empty() || line.front() == '#';
}
