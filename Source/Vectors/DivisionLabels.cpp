// Labels of divisions as text: the stored form keeps the value of a swept parameter to the last bit.
#include "Vectors/DivisionLabels.h"

#include "torvelan/Vectors.h"

#include "support/Numbers.h"
#include "torvelan/PhysType.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace {

constexpr char fieldSeparator = ';';
constexpr char partSeparator = '/';
constexpr int fieldCount = 3;
constexpr int displayDigits = 12;
constexpr std::string_view hexDigits = "0123456789ABCDEF";
constexpr std::size_t valueDigits = 2 * sizeof(double);

// The bytes of a double in memory order, two digits each.
std::string hexOf(double value) {
    unsigned char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    std::string text;
    for (unsigned char byte : bytes) {
        text += hexDigits[byte >> 4];
        text += hexDigits[byte & 15];
    }
    return text;
}

int digitValue(char c) noexcept {
    if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + 'A');
    std::size_t at = hexDigits.find(c);
    return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

// 0 for anything but exactly the digits of one double.
double valueOf(std::string_view text) noexcept {
    unsigned char bytes[sizeof(double)];
    if (text.size() != valueDigits) return 0;
    for (std::size_t i = 0; i < sizeof bytes; ++i) {
        int high = digitValue(text[2 * i]);
        int low = digitValue(text[2 * i + 1]);
        if (high < 0 || low < 0) return 0;
        bytes[i] = static_cast<unsigned char>(high * 16 + low);
    }
    double value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// Cuts the text up to the separator off the front; all of it when there is none.
std::string_view takeUpTo(std::string_view & text, char separator) noexcept {
    std::size_t at = std::min(text.find(separator), text.size());
    std::string_view token = text.substr(0, at);
    text.remove_prefix(std::min(at + 1, text.size()));
    return token;
}

DivisionLabelPart parsePart(std::string_view part) {
    if (std::ranges::count(part, fieldSeparator) != fieldCount - 1) return {.name = std::string(part)};
    DivisionLabelPart parsed{.name = std::string(takeUpTo(part, fieldSeparator)), .hasValue = true};
    parsed.value = valueOf(takeUpTo(part, fieldSeparator));
    parsed.physType = sp_GetPhysTypeFromString(YString(part));
    return parsed;
}

std::string displayed(DivisionLabelPart const & part) {
    if (!part.hasValue) return part.name;
    return part.name + "=" + std::string(sp_ConvertRealToJSEng(part.value, displayDigits, false));
}

} // namespace

YString vec_ComposeDivisionString(YString const & label, double value, PhysType physType) {
    std::string text(label.view());
    std::ranges::replace(text, fieldSeparator, '_');
    text += fieldSeparator;
    text += hexOf(value);
    text += fieldSeparator;
    text += sp_GetPhysTypeString(physType).view();
    return text;
}

std::vector<DivisionLabelPart> parseDivisionLabel(std::string_view stored) {
    std::vector<DivisionLabelPart> parts;
    for (auto left = std::ranges::count(stored, partSeparator) + 1; left > 0; --left)
        parts.push_back(parsePart(takeUpTo(stored, partSeparator)));
    return parts;
}

YString vec_ComposeDivisionLabel(YString const & stored) {
    std::string text;
    for (DivisionLabelPart const & part : parseDivisionLabel(stored.view())) text += displayed(part) + partSeparator;
    text.pop_back();
    return YString(text);
}
