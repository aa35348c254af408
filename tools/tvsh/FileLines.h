// Lines of a file that may be anything.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

// A line without its end, or the front of a long one. False at the end of the file, and in a line beyond any measure.
bool readLine(std::istream & in, std::string & line);

// The text before the first colon, without the blanks around it; empty when there is no colon.
std::string_view keyOf(std::string_view line);
bool isKey(std::string_view line, std::initializer_list<std::string_view> keys);

std::vector<std::string_view> wordsOf(std::string_view line, std::string_view separators);
