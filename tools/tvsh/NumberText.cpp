#include "NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

// d.ddd x 10^exponent
struct Decimal {
    bool negative = false;
    std::string digits; // no trailing zeros, at least one digit
    int exponent = 0;
};

Decimal decimalOf(double value, int precision) {
    char text[64];
    auto const format = std::chars_format::scientific;
    auto const result = precision == shortestPrecision
                            ? std::to_chars(text, text + sizeof text, value, format)
                            : std::to_chars(text, text + sizeof text, value, format, std::clamp(precision, 1, 17) - 1);
    Decimal decimal;
    char const * p = text;
    if (*p == '-') {
        decimal.negative = true;
        ++p;
    }
    for (; *p != 'e'; ++p)
        if (*p != '.') decimal.digits += *p;
    p += p[1] == '+' ? 2 : 1;
    std::from_chars(p, result.ptr, decimal.exponent);
    decimal.digits.resize(std::max<std::size_t>(decimal.digits.find_last_not_of('0') + 1, 1));
    return decimal;
}

std::string fixedText(Decimal const & decimal) {
    std::string text = decimal.negative ? "-" : "";
    int const whole = decimal.exponent + 1; // digits ahead of the point
    auto const count = static_cast<int>(decimal.digits.size());
    if (whole <= 0) return text + "0." + std::string(static_cast<std::size_t>(-whole), '0') + decimal.digits;
    if (whole >= count) return text + decimal.digits + std::string(static_cast<std::size_t>(whole - count), '0');
    return text + decimal.digits.substr(0, static_cast<std::size_t>(whole)) + "." +
           decimal.digits.substr(static_cast<std::size_t>(whole));
}

std::string exponentText(Decimal decimal) {
    int const exponent = decimal.exponent;
    decimal.exponent = 0;
    std::string text = fixedText(decimal) + (exponent < 0 ? "e-" : "e+");
    int const size = std::abs(exponent);
    return text + (size < 10 ? "0" : "") + std::to_string(size);
}

std::string plainText(Decimal const & decimal) {
    bool const fixed = decimal.exponent >= -5 && decimal.exponent < 16;
    return fixed ? fixedText(decimal) : exponentText(decimal);
}

std::string notFinite(double value) {
    return std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf";
}

bool takesPrefix(std::string const & unit) {
    auto const isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return !unit.empty() && std::all_of(unit.begin(), unit.end(), isLetter);
}

constexpr int smallestPrefix = -18, greatestPrefix = 12;
constexpr char const * prefixes[] = {"a", "f", "p", "n", "u", "m", "", "k", "M", "G", "T"};

} // namespace

std::string plainNumber(double value, int precision) {
    return std::isfinite(value) ? plainText(decimalOf(value, precision)) : notFinite(value);
}

std::string engineeringNumber(double value, int precision, std::string const & unit) {
    std::string const behind = unit.empty() ? "" : " " + unit;
    if (!std::isfinite(value) || value == 0 || !takesPrefix(unit)) return plainNumber(value, precision) + behind;
    Decimal decimal = decimalOf(value, precision);
    int const power = static_cast<int>(std::floor(decimal.exponent / 3.0)) * 3;
    if (power < smallestPrefix || power > greatestPrefix) return plainText(decimal) + behind;
    decimal.exponent -= power;
    return fixedText(decimal) + " " + prefixes[(power - smallestPrefix) / 3] + unit;
}
