// Splitting texts.
#pragma once

#include "torvelan/YString.h"

#include <cstdint>
#include <string_view>

// Splits at any of the separators into at most maxTokens tokens; runs of separators count as one. The answer is the
// number of tokens present, which may be maxTokens + 1 to say that there are more. Tokens are views into the text.
int sp_ScanLine(std::string_view text, std::string_view separators, std::string_view * tokens, int maxTokens);

// A text on one line: line feeds, carriage returns and tabs become the escape character and 'n', 'r', 't', the escape
// character itself is doubled, and with `replaceSpaces` a blank becomes 's' behind it.
YString sp_EscapeStringEncode(std::string_view text, bool replaceSpaces, char escape = '\\');
// The other way round. An escape character before any other one stands for that one.
YString sp_EscapeString(std::string_view text, char escape = '\\');

// The name of one wire of a bus: a pattern in which "%BUSNAME%" and "%WIRENUM%" stand for name and number, in any case.
YString sp_ResolveWireTemplate(std::string_view pattern, std::string_view bus, std::int64_t wire);
