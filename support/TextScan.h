// Splitting texts.
#pragma once

#include "torvelan/YString.h"

#include <string_view>

// Splits at any of the separators into at most maxTokens tokens; runs of separators count as one. The answer is the
// number of tokens present, which may be maxTokens + 1 to say that there are more. Tokens are views into the text.
int sp_ScanLine(std::string_view text, std::string_view separators, std::string_view * tokens, int maxTokens);
