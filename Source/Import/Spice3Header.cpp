#include "Import/Spice3Header.h"

#include "support/Numbers.h"
#include "support/Streams.h"

#include <string>

namespace {

constexpr int endOfFile = -1;
constexpr std::string_view blanks = " \t";

int nextGroupNumber = 1;

// What ended a word of the header.
enum class WordEnd { colon, line, file };

int getWithoutCr(tvstream & stream) {
    int c;
    do c = stream.get();
    while (c == '\r');
    return c;
}

// A NUL ends a text, here as wherever lines are read into plain arrays.
YString cutAtNul(std::string const & text) {
    return YString(text.c_str());
}

YString restOfLine(tvstream & stream) {
    std::string text;
    for (int c = getWithoutCr(stream); c != endOfFile && c != '\n'; c = getWithoutCr(stream))
        text += static_cast<char>(c);
    return cutAtNul(text);
}

void skipLine(tvstream & stream) {
    int c;
    do c = stream.get();
    while (c != endOfFile && c != '\n');
}

// The scanner of keys and values: blanks around the word are dropped, blanks within it kept, and a colon ahead of it is
// nothing. The word may be empty.
WordEnd scanWord(tvstream & stream, YString & word) {
    std::string text;
    WordEnd end = WordEnd::file;
    for (int c = getWithoutCr(stream); c != endOfFile; c = getWithoutCr(stream)) {
        if (c == '\n') {
            end = WordEnd::line;
            break;
        }
        if (c == ':') {
            if (text.empty()) continue;
            end = WordEnd::colon;
            break;
        }
        bool const leadingBlank = text.empty() && blanks.find(static_cast<char>(c)) != blanks.npos;
        if (!leadingBlank) text += static_cast<char>(c);
    }
    word = cutAtNul(text);
    word.stripTrailing(blanks);
    return end;
}

YString scanValue(tvstream & stream) {
    YString value;
    if (scanWord(stream, value) == WordEnd::colon) skipLine(stream);
    return value;
}

std::int32_t scanCount(tvstream & stream) {
    return parseInt(scanValue(stream));
}

using KeyAction = void (*)(tvstream & stream, Spice3Header & header);

struct KeyRow {
    std::string_view key;
    KeyAction action;
};

constexpr KeyRow keyRows[] = {
    {"Title", [](tvstream & s, Spice3Header & h) { h.title = restOfLine(s); }},
    {"Date", [](tvstream & s, Spice3Header & h) { h.date = restOfLine(s); }},
    {"Flags", [](tvstream & s, Spice3Header & h) { h.isComplex = equalNoCase(scanValue(s), "complex"); }},
    {"No. Variables", [](tvstream & s, Spice3Header & h) { h.numVariables = scanCount(s); }},
    {"No. Points", [](tvstream & s, Spice3Header & h) { h.numPoints = scanCount(s); }},
    {"Sweepvar", [](tvstream & s, Spice3Header & h) { h.sweepVar = scanValue(s); }},
};

void takeKey(tvstream & stream, YString const & key, Spice3Header & header) {
    for (KeyRow const & row : keyRows)
        if (equalNoCase(row.key, key)) return row.action(stream, header);
    skipLine(stream);
}

// Up to "Variables"; an end of the file before any key is fine, and leaves the counts unseen.
bool scanKeys(tvstream & stream, Spice3Header & header) {
    for (bool anyKey = false;;) {
        YString key;
        WordEnd const end = scanWord(stream, key);
        if (end == WordEnd::colon) {
            if (equalNoCase(key, "Variables")) break;
            takeKey(stream, key, header);
            anyKey = true;
        } else if (!key.empty()) {
            return false;
        } else if (end == WordEnd::file) {
            return !anyKey;
        }
    }
    header.groupName = YString::joined("spice3_", {YString(nextGroupNumber++)});
    return true;
}

} // namespace

Spice3Result readSpice3Header(tvstream & stream, Spice3Header & header) {
    if (!scanKeys(stream, header)) return Spice3Result::badHeader;
    if (header.numPoints == 0) header.numPoints = 1;
    if (header.numPoints == Spice3Header::unseen || header.numVariables == Spice3Header::unseen)
        return Spice3Result::nothing;
    return header.numVariables > 0 ? Spice3Result::done : Spice3Result::badHeader;
}
