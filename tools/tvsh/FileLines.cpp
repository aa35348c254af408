#include "FileLines.h"

#include "torvelan/YString.h"

#include <algorithm>

bool readLine(std::istream & in, std::string & line) {
    constexpr std::size_t longestKept = 4096;                      // the words looked for stand at the front
    constexpr std::int64_t longestSkipped = std::int64_t{1} << 24; // a longer one ends the search
    constexpr int endOfFile = std::istream::traits_type::eof();
    line.clear();
    int c;
    std::int64_t length = 0;
    while ((c = in.rdbuf()->sbumpc()) != endOfFile && c != '\n') {
        if (line.size() < longestKept) line += static_cast<char>(c);
        if (++length > longestSkipped) return false;
    }
    return c == '\n' || !line.empty();
}

std::string_view keyOf(std::string_view line) {
    auto const colon = line.find(':');
    if (colon == std::string_view::npos) return {};
    std::string_view const key = line.substr(0, colon);
    auto const first = std::min(key.find_first_not_of(" \t"), key.size());
    return key.substr(first, key.find_last_not_of(" \t") + 1 - first);
}

bool isKey(std::string_view line, std::initializer_list<std::string_view> keys) {
    std::string_view const key = keyOf(line);
    return std::any_of(keys.begin(), keys.end(), [&](std::string_view k) { return equalNoCase(k, key); });
}

std::vector<std::string_view> wordsOf(std::string_view line, std::string_view separators) {
    std::vector<std::string_view> words;
    for (auto first = line.find_first_not_of(separators); first != line.npos;) {
        auto const last = std::min(line.find_first_of(separators, first), line.size());
        words.push_back(line.substr(first, last - first));
        first = line.find_first_not_of(separators, last);
    }
    return words;
}
