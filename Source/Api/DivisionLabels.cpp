// The stored form of a division label, and the form for people. A stored label is three fields joined by ';': text,
// the eight bytes of the value in memory order as hexadecimal digits, and the stored form of its PhysType. The labels
// of a nested sweep are several of these joined by '/'.

#include "support/Numbers.h"
#include "torvelan/Groups.h"

#include <cstring>
#include <string>

namespace {

constexpr char hexDigits[] = "0123456789ABCDEF";

int hexValue(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

std::string toHex(double value) {
    unsigned char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    std::string text;
    for (unsigned char const byte : bytes) {
        text += hexDigits[byte >> 4];
        text += hexDigits[byte & 15];
    }
    return text;
}

// 0 for anything but exactly 16 digits.
double fromHex(std::string_view text) noexcept {
    unsigned char bytes[sizeof(double)];
    if (text.size() != 2 * sizeof bytes) return 0;
    for (std::size_t i = 0; i < sizeof bytes; ++i) {
        int const high = hexValue(text[2 * i]);
        int const low = hexValue(text[2 * i + 1]);
        if (high < 0 || low < 0) return 0;
        bytes[i] = static_cast<unsigned char>(high << 4 | low);
    }
    double value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// "name=value"; a part that has not three fields stands for itself.
std::string shownPart(std::string_view part) {
    std::size_t const first = part.find(';');
    std::size_t const second = first == part.npos ? part.npos : part.find(';', first + 1);
    if (second == part.npos || part.find(';', second + 1) != part.npos) return std::string(part);
    double const value = fromHex(part.substr(first + 1, second - first - 1));
    std::string shown(part.substr(0, first));
    return shown.append("=").append(sp_ConvertRealToJSEng(value, 12, false).view());
}

} // namespace

YString vec_ComposeDivisionString(YString const & label, double value, PhysType physType) {
    std::string text(label.view());
    for (char & c : text)
        if (c == ';') c = '_';
    return YString(text.append(";").append(toHex(value)).append(";").append(sp_GetPhysTypeString(physType).view()));
}

YString vec_ComposeDivisionLabel(YString const & stored) {
    std::string_view rest = stored;
    std::string shown;
    for (;;) {
        std::size_t const end = rest.find('/');
        shown += shownPart(rest.substr(0, end));
        if (end == rest.npos) return YString(shown);
        shown += '/';
        rest.remove_prefix(end + 1);
    }
}
