// Points of ordinary numbers, at speed.
#pragma once

#include "torvelan/Complex.h"

#include <cstddef>
#include <string_view>

// Takes an index and n values from the front of a text: plain decimal numbers, each with white space before and behind
// it, and a comma between the parts of a complex one. The answer is the number of characters taken, or 0 when the point
// does not end within the text or has anything unusual in it; the values are unspecified then.
std::size_t parsePlainPoint(std::string_view text, double * values, std::size_t n);
std::size_t parsePlainPoint(std::string_view text, complex * values, std::size_t n);
