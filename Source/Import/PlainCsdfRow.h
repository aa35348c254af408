// Rows of ordinary numbers, at speed.
#pragma once

#include "torvelan/Complex.h"

#include <cstddef>
#include <string_view>

struct PlainCsdfRow {
    std::size_t taken = 0; // characters
    int words = 0;         // of those that count for the yields
};

// Takes from the front of a text a sweep value, the number of values, which is n, n values, each with its index behind
// it or none, and "#C". Nothing is taken when that does not end within the text or anything in it is unusual; the
// values are unspecified then.
PlainCsdfRow parsePlainCsdfRow(std::string_view text, double & sweep, double * values, std::size_t n);
PlainCsdfRow parsePlainCsdfRow(std::string_view text, double & sweep, complex * values, std::size_t n);
