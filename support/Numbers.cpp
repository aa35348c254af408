#include "support/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fast_float/fast_float.h>
#include <string>

namespace {

struct Suffix {
    std::string_view text;
    int exponent;
};

// What is read and what is written. "meg" stands before "m", so that it is tried first.
constexpr std::array<Suffix, 10> suffixes = {
    {{"", 0}, {"k", 3}, {"meg", 6}, {"m", -3}, {"u", -6}, {"n", -9}, {"p", -12}, {"f", -15}, {"g", 9}, {"t", 12}}};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// A decimal number in a text. The text ends at `last`, or at a NUL where last is null.
class EngReader {
public:
    EngReader(char const * first, char const * last) : first_(first), last_(last), p_(first) {}

    // False when no number stands at the start.
    bool read() {
        readDigits();
        if (at('.')) {
            ++p_;
            scale_ = -readDigits();
        }
        if (digits_ == 0) return false;
        mantissaEnd_ = p_;
        readExponent();
        plainEnd_ = p_;
        readSuffix();
        return true;
    }

    char const * end() const { return p_; }

    // Correctly rounded: the suffix counts as part of the exponent, it is no factor.
    double value() const {
        constexpr std::int64_t exactPower = 22; // the largest power of ten that a double holds exactly
        constexpr std::uint64_t exactWhole = std::uint64_t{1}
                                             << 53; // digits beyond those kept would be beyond this too
        std::int64_t const power = exponent_ + scale_;
        if (significand_ <= exactWhole && power >= -exactPower && power <= exactPower) {
            auto const whole = static_cast<double>(significand_);
            return power < 0 ? whole / powersOfTen[-power] : whole * powersOfTen[power];
        }
        return p_ == plainEnd_ ? convert(first_, p_) : convertWithSuffix();
    }

private:
    static constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                           1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                           1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

    char current() const { return p_ != last_ ? *p_ : '\0'; }
    bool at(char c) const { return current() == c; }

    std::int64_t readDigits() {
        char const * const start = p_;
        for (; isDigit(current()); ++p_) {
            if (significand_ != 0 || *p_ != '0') ++significant_;
            if (significant_ <= 19) significand_ = significand_ * 10 + static_cast<std::uint64_t>(*p_ - '0');
        }
        digits_ += p_ - start;
        return p_ - start;
    }

    void readExponent() {
        char const * const start = p_;
        if (!at('e') && !at('E')) return;
        ++p_;
        bool const negative = at('-');
        if (negative || at('+')) ++p_;
        if (!isDigit(current())) {
            p_ = start;
            return;
        }
        constexpr std::int64_t beyondAnyText = 1'000'000'000'000'000;
        for (; isDigit(current()); ++p_) exponent_ = std::min(exponent_ * 10 + (*p_ - '0'), beyondAnyText);
        if (negative) exponent_ = -exponent_;
    }

    void readSuffix() {
        if (!isLetter(current())) return;
        for (Suffix const & suffix : suffixes) {
            if (suffix.text.empty() || !startsWith(suffix.text)) continue;
            p_ += suffix.text.size();
            exponent_ += suffix.exponent;
            return;
        }
    }

    bool startsWith(std::string_view text) const {
        for (char const * q = p_; char const c : text)
            if (q == last_ || (*q++ | 0x20) != c) return false;
        return true;
    }

    static double convert(char const * first, char const * last) {
        double value = 0;
        fast_float::from_chars(first, last, value);
        return value;
    }

    double convertWithSuffix() const {
        std::string text(first_, mantissaEnd_);
        text.append("e").append(YString(exponent_).view());
        return convert(text.data(), text.data() + text.size());
    }

    char const * first_;
    char const * last_;
    char const * p_;
    char const * mantissaEnd_ = nullptr; // behind the digits
    char const * plainEnd_ = nullptr;    // behind the exponent
    std::int64_t digits_ = 0;            // digits in all
    std::int64_t significant_ = 0;       // digits from the first that is not 0
    std::uint64_t significand_ = 0;      // the first 19 significant digits
    std::int64_t scale_ = 0;             // power of ten of the last digit
    std::int64_t exponent_ = 0;          // as written, and that of the suffix
};

double convertSigned(char const * first, char const * last, char const ** end) {
    char const * p = first;
    while (p != last && isBlank(*p)) ++p;
    bool const negative = p != last && *p == '-';
    if (negative || (p != last && *p == '+')) ++p;
    EngReader reader(p, last);
    bool const found = reader.read();
    *end = found ? reader.end() : first;
    if (!found) return 0;
    return negative ? -reader.value() : reader.value();
}

// A magnitude in scientific form: its digits, the decimal exponent, and the exponent as text ("e-18").
struct Scientific {
    std::array<char, 64> room;
    std::string digits;
    int exponent = 0;
    std::string_view exponentText;

    Scientific(double magnitude, int digitCount) {
        char * const end = std::to_chars(room.data(), room.data() + room.size(), magnitude,
                                         std::chars_format::scientific, digitCount - 1)
                               .ptr;
        char * const mark = std::find(room.data(), end, 'e');
        std::remove_copy(room.data(), mark, std::back_inserter(digits), '.');
        std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, exponent);
        exponentText = {mark, static_cast<std::size_t>(end - mark)};
    }
};

// Digits with a point behind the first `whole` of them.
std::string placePoint(std::string digits, std::size_t whole, bool trailingZeros) {
    if (digits.size() <= whole) return digits.append(whole - digits.size(), '0');
    if (!trailingZeros) digits.resize(std::max(whole, digits.find_last_not_of('0') + 1));
    if (digits.size() > whole) digits.insert(whole, 1, '.');
    return digits;
}

std::string engineeringText(double magnitude, int digits, bool trailingZeros) {
    Scientific const number(magnitude, digits);
    int const place = ((number.exponent % 3) + 3) % 3; // digits before the point, less one
    for (Suffix const & suffix : suffixes)
        if (suffix.exponent == number.exponent - place)
            return placePoint(number.digits, static_cast<std::size_t>(place) + 1, trailingZeros).append(suffix.text);
    return placePoint(number.digits, 1, trailingZeros).append(number.exponentText);
}

} // namespace

double sp_GetEngToken(char ** position, bool * failed) {
    EngReader reader(*position, nullptr);
    *failed = !reader.read();
    if (*failed) return 0;
    *position += reader.end() - *position;
    return reader.value();
}

double sp_ConvertEngToReal(char const * text, char const ** end) {
    char const * behind = text;
    double const value = convertSigned(text, nullptr, &behind);
    if (end != nullptr) *end = behind;
    return value;
}

double sp_ConvertEngToReal(std::string_view text, std::size_t * taken) {
    char const * behind = text.data();
    double const value = convertSigned(text.data(), text.data() + text.size(), &behind);
    if (taken != nullptr) *taken = static_cast<std::size_t>(behind - text.data());
    return value;
}

YString sp_ConvertRealToJSEng(double value, int digits, bool trailingZeros) {
    constexpr int mostDigits = 40;
    if (value != value) return "nan";
    char const * const sign = value < 0 ? "-" : "";
    double const magnitude = std::fabs(value);
    if (magnitude > std::numeric_limits<double>::max()) return YString::joined(sign, {"inf"});
    return YString::joined(sign, {engineeringText(magnitude, std::clamp(digits, 1, mostDigits), trailingZeros)});
}

YString sp_FormatG(double value, int precision, bool upperCase) {
    constexpr int mostDigits = 800; // a double has no more, and "%g" shows no trailing zeros
    std::array<char, mostDigits + 40> room;
    char * const end = std::to_chars(room.data(), room.data() + room.size(), value, std::chars_format::general,
                                     precision < 0 ? 6 : std::min(precision, mostDigits))
                           .ptr;
    if (upperCase) std::transform(room.data(), end, room.data(), upper);
    return YString(room.data(), static_cast<std::size_t>(end - room.data()));
}

int parseInt(std::string_view text) noexcept {
    char const * p = text.data();
    char const * const last = p + text.size();
    while (p != last && isBlank(*p)) ++p;
    bool const negative = p != last && *p == '-';
    if (negative || (p != last && *p == '+')) ++p;
    constexpr std::int64_t limit = std::int64_t{1} << 31;
    std::int64_t value = 0;
    for (; p != last && isDigit(*p); ++p) value = std::min(value * 10 + (*p - '0'), limit);
    return static_cast<int>(negative ? -value : std::min(value, limit - 1));
}
