// Points of ordinary numbers, at speed.
#pragma once

#include "torvelan/Complex.h"

#include <cstddef>
#include <span>
#include <string_view>

// Takes an index and n values from the front of a text: plain decimal numbers, each with white space before and behind
// it, and a comma between the parts of a complex one. The answer is the number of characters taken, or 0 when the point
// does not end within the text or has anything unusual in it; the values are unspecified then.
std::size_t parsePlainPoint(std::string_view text, double * values, std::size_t n);
std::size_t parsePlainPoint(std::string_view text, complex * values, std::size_t n);

// Takes n numbers, and what else the line holds, from the front of a text: plain decimal numbers with blanks, tabs,
// commas or carriage returns between them. The answer is the number of characters taken, the line feed included, or 0
// when the line is not whole, has fewer, or has anything unusual among them; the values are unspecified then.
std::size_t parsePlainRow(std::string_view text, double * values, std::size_t n);
// The same of a table with complex columns, each of which takes two numbers, in parentheses or not.
enum class PlainColumn : unsigned char { number, pair };
std::size_t parsePlainRow(std::string_view text, complex * values, std::span<PlainColumn const> columns);

// Takes such numbers, at most `most`, from however many lines they stand on. The one that the text ends with is left,
// since it may go on.
struct PlainNumbers {
    std::size_t count = 0;
    std::size_t taken = 0; // characters
};
PlainNumbers parsePlainNumbers(std::string_view text, double * values, std::size_t most);
