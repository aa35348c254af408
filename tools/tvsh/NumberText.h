// Numbers for people, in the C locale.
#pragma once

#include <string>

constexpr int shortestPrecision = 0; // as many digits as read back the same number

// 1500, 0.333, 1.5e+20; "nan", "inf", "-inf".
std::string plainNumber(double value, int precision);
// With its unit, scaled to suit: "1.5 mV", "-3 kHz". A number without unit, or with one that takes no prefix, stays
// plain: "0.0015", "0.0015 V^2".
std::string engineeringNumber(double value, int precision, std::string const & unit);
