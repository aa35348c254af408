// Values as JSON, for programs.
#pragma once

#include "Console.h"
#include "Evaluation.h"

// {"expr":...,"ok":...,"code":...,"messages":[...],"values":[...]} and a line feed, on standard output. Numbers have 17
// significant digits; "nan", "inf" and "-inf" are strings.
void writeJson(std::string const & expression, Evaluation const & evaluation, RecordedMessages const & messages);

// A text as a JSON string. Bytes that are not UTF-8 become U+FFFD.
std::string jsonString(std::string_view text);
