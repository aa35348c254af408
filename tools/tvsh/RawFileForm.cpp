#include "RawFileForm.h"

#include "torvelan/YString.h"

#include <algorithm>
#include <cstdint>
#include <fstream>

namespace {

constexpr std::size_t longestLine = 4096; // kept of a line; the words looked for stand at its front

constexpr std::int64_t longestSkipped = std::int64_t{1} << 24; // a longer one ends the search

// A line without its end, or the front of a long one.
bool readLine(std::istream & in, std::string & line) {
    line.clear();
    constexpr int endOfFile = std::istream::traits_type::eof();
    int c;
    std::int64_t length = 0;
    while ((c = in.rdbuf()->sbumpc()) != endOfFile && c != '\n') {
        if (line.size() < longestLine) line += static_cast<char>(c);
        if (++length > longestSkipped) return false;
    }
    return c == '\n' || !line.empty();
}

std::string_view keyOf(std::string_view line) {
    auto const colon = line.find(':');
    if (colon == std::string_view::npos) return {};
    std::string_view const key = line.substr(0, colon);
    auto const first = std::min(key.find_first_not_of(" \t"), key.size());
    return key.substr(first);
}

bool isKey(std::string_view line, std::initializer_list<std::string_view> keys) {
    std::string_view const key = keyOf(line);
    return std::any_of(keys.begin(), keys.end(), [&](std::string_view k) { return equalNoCase(k, key); });
}

// The keyed lines of the header hold both counts, and only those keys that simulators write.
bool readHeader(std::istream & in, std::string & line) {
    int counts = 0;
    while (readLine(in, line)) {
        if (isKey(line, {"Variables"})) return counts == 2;
        if (keyOf(line).empty() && line.find_first_not_of(" \t\r") != std::string::npos) return false;
        if (isKey(line, {"No. Variables", "No. Points"})) ++counts;
    }
    return false;
}

} // namespace

RawFileForm rawFileForm(std::string const & path) {
    std::ifstream in(path, std::ios::binary);
    std::string line;
    in.peek();
    if (in.bad() || !in.is_open()) return RawFileForm::unreadable; // a folder opens, but cannot be read
    if (!readHeader(in, line)) return RawFileForm::other;
    while (readLine(in, line))
        if (isKey(line, {"Binary"}))
            return RawFileForm::binary;
        else if (isKey(line, {"Values"}))
            break;
    return RawFileForm::ascii;
}

int countDataSets(std::string const & path) {
    constexpr std::string_view mark = "\nVariables:"; // one in each header; only the mark's own bytes are carried over
    constexpr std::size_t pieceBytes = std::size_t{1} << 20;
    std::ifstream in(path, std::ios::binary);
    std::string piece = "\n";
    int count = 0;
    while (in) {
        std::size_t const kept = piece.size();
        piece.resize(kept + pieceBytes);
        in.read(piece.data() + kept, pieceBytes);
        piece.resize(kept + static_cast<std::size_t>(in.gcount()));
        for (auto at = piece.find(mark); at != std::string::npos; at = piece.find(mark, at + mark.size())) ++count;
        piece.erase(0, piece.size() - std::min(piece.size(), mark.size() - 1));
    }
    return count;
}
