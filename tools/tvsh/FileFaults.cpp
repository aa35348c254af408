#include "FileFaults.h"

#include "FileLines.h"

#include "torvelan/YString.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <optional>

namespace {

constexpr std::string_view blanks = " \t\r";

// A stretch of a file as it may be shown.
std::string shown(std::string_view text) {
    constexpr std::size_t most = 40;
    std::string result = "'";
    for (char const c : text.substr(0, most)) result += c >= ' ' && c < '\x7f' ? c : '?';
    return result + (text.size() > most ? "...'" : "'");
}

std::string atLine(long number, std::string const & words) {
    return "line " + std::to_string(number) + ": " + words;
}

// Reads on and counts.
class NumberedLines {
public:
    explicit NumberedLines(std::string const & path) : in_(path, std::ios::binary) {}
    bool next() {
        if (!readLine(in_, line_)) return false;
        ++number_;
        return true;
    }
    std::string const & line() const noexcept { return line_; }
    long number() const noexcept { return number_; }
    std::string fault(std::string const & words) const { return number_ == 0 ? words : atLine(number_, words); }
    bool isBlank() const { return line_.find_first_not_of(blanks) == std::string::npos; }

private:
    std::ifstream in_;
    std::string line_;
    long number_ = 0;
};

std::optional<long> countIn(std::string_view line) {
    auto const words = wordsOf(line.substr(line.find(':') + 1), blanks);
    long count = 0;
    if (words.empty()) return {};
    auto const result = std::from_chars(words[0].data(), words[0].data() + words[0].size(), count);
    return result.ec == std::errc() && result.ptr == words[0].data() + words[0].size() ? std::optional(count)
                                                                                       : std::nullopt;
}

// Up to "Variables:"; the number of variables, or what is wrong.
std::string headerFault(NumberedLines & lines, long & variables) {
    std::optional<long> counts[2];
    while (lines.next()) {
        if (isKey(lines.line(), {"Variables"})) {
            if (!counts[0]) return lines.fault("'No. Variables' has not come before it");
            if (!counts[1]) return lines.fault("'No. Points' has not come before it");
            variables = *counts[0];
            return {};
        }
        if (keyOf(lines.line()).empty() && !lines.isBlank())
            return lines.fault("found " + shown(lines.line()) + ", where a key and a colon are expected");
        for (int i = 0; i < 2; ++i)
            if (isKey(lines.line(), {i == 0 ? "No. Variables" : "No. Points"})) {
                counts[i] = countIn(lines.line());
                if (!counts[i] || *counts[i] < 1 - i)
                    return lines.fault("found " + shown(lines.line()) + ", where a number is expected");
            }
    }
    return lines.fault("the file ends in its header");
}

std::string variableFault(NumberedLines & lines, long variables) {
    for (long i = 0; i < variables;) {
        if (!lines.next()) return lines.fault("the file ends in the list of variables");
        if (lines.isBlank()) continue;
        auto const words = wordsOf(lines.line(), blanks);
        if (words.size() < 3 || words[0] != std::to_string(i))
            return lines.fault("found " + shown(lines.line()) + ", where variable " + std::to_string(i) +
                               " is expected: its number, name and type");
        ++i;
    }
    return {};
}

std::string spice3Fault(std::string const & path) {
    NumberedLines lines(path);
    long variables = 0;
    std::string fault = headerFault(lines, variables);
    if (fault.empty()) fault = variableFault(lines, variables);
    if (!fault.empty()) return fault;
    while (lines.next())
        if (isKey(lines.line(), {"Values"})) return {};
    return lines.fault("the file ends before 'Values:'");
}

std::string spice2Fault(std::string const & path) {
    constexpr std::size_t names = 100;
    std::ifstream in(path, std::ios::binary);
    unsigned char head[names] = {};
    in.read(reinterpret_cast<char *>(head), sizeof head);
    auto const size = static_cast<std::size_t>(in.gcount());
    if (size < names) return "the file ends at byte " + std::to_string(size) + ", within the first 100, the header";
    unsigned const variables = head[96] | static_cast<unsigned>(head[97]) << 8;
    unsigned const format = head[98] | static_cast<unsigned>(head[99]) << 8;
    if (variables == 0) return "byte 96: the number of variables is 0";
    if (format != 4) return "byte 98: found format " + std::to_string(format) + ", where 4 is expected";
    return "byte 100: there are not as many names of 8 bytes as variables (" + std::to_string(variables) + ")";
}

// The last line below which numbers are missing.
std::string textFault(std::string const & path) {
    NumberedLines lines(path);
    std::string last;
    long number = 0;
    while (lines.next())
        if (!lines.isBlank()) {
            last = lines.line();
            number = lines.number();
        }
    if (number == 0) return "the file has no line that is not blank";
    return atLine(number, "found " + shown(last) + " at the end; numbers are expected below names and comments");
}

} // namespace

std::string faultOf(FileForm form, std::string const & path) {
    switch (form) {
    case FileForm::spice3: return spice3Fault(path);
    case FileForm::spice2: return spice2Fault(path);
    case FileForm::text: return textFault(path);
    default: return {};
    }
}
