// Command lines taken apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The words of a line: blanks part them, unless they stand within quotes, single or double, which are taken off.
// Nothing when a quote is not closed.
std::optional<std::vector<std::string>> splitWords(std::string_view line);
// What stands behind the first word, without the blanks around it.
std::string_view behindFirstWord(std::string_view line);
std::string_view trimmed(std::string_view text);
// Whether a line is blank, or a comment: '#' is its first character.
bool isComment(std::string_view line);
