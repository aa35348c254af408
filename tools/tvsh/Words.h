// Command lines taken apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The words of a line: blanks part them, unless they stand within quotes, single or double, which are taken off. Where
// the words are expressions single quotes stay, for they are those of strings. Nothing when a quote is not closed.
enum class WordKind { names, expressions };
std::optional<std::vector<std::string>> splitWords(std::string_view line, WordKind kind = WordKind::names);
// What stands behind the first word, without the blanks around it.
std::string_view behindFirstWord(std::string_view line);
std::string_view trimmed(std::string_view text);
// Whether a line is blank, or a comment: '#' is its first character.
bool isComment(std::string_view line);
