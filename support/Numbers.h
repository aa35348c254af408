// Numbers and text, in the C locale whatever the process has set.
#pragma once

#include "torvelan/YString.h"

#include <cstdint>
#include <limits>
#include <string_view>

// A decimal number with optional exponent and optional engineering suffix (f p n u m k meg g t, any case; "meg" before
// "m") at *position, which is left behind the last character taken. *failed, and *position unmoved, when none stands
// there: "inf", "nan", ".", "e5" are none, "0x10" is 0, "1e" is 1.
double sp_GetEngToken(char ** position, bool * failed);
// The same from a plain text, with leading blanks and a sign; *end, where given, is the first character not taken. 0,
// and *end the start, when no number stands there.
double sp_ConvertEngToReal(char const * text, char const ** end);
// For a text without a NUL; *taken, where given, is the number of characters taken.
double sp_ConvertEngToReal(std::string_view text, std::size_t * taken);
// Engineering form with the suffixes that sp_GetEngToken reads, `digits` significant digits, no trailing zeros:
// 1000 is "1k", 0.0015 "1.5m", 1 "1". The flag keeps trailing zeros. What is beyond the suffixes has an exponent
// ("1e+15"); a NaN is "nan", an infinity "inf" or "-inf".
YString sp_ConvertRealToJSEng(double value, int digits, bool trailingZeros);
// As printf's "%.*g" or "%.*G" in the C locale.
YString sp_FormatG(double value, int precision, bool upperCase = false);

// As atoi: leading blanks, a sign, digits; clamped to the range of int, 0 when there are none.
int parseInt(std::string_view text) noexcept;

// A double as an integer: truncated, clamped to [low, high]; NaN gives 0 (or the bound nearest to it).
inline std::int64_t clampToInteger(double value, std::int64_t low = std::numeric_limits<std::int64_t>::min(),
                                   std::int64_t high = std::numeric_limits<std::int64_t>::max()) noexcept {
    if (!(value == value)) return low > 0 ? low : high < 0 ? high : 0;
    if (value <= static_cast<double>(low)) return low;
    if (value >= static_cast<double>(high)) return high;
    return static_cast<std::int64_t>(value);
}
