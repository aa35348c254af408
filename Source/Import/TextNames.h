// The words of a text table: separators, numbers, names of vectors.
#pragma once

#include "support/TextScan.h"
#include "torvelan/PhysType.h"

inline constexpr CharacterSet textSeparators{" ,\t\r"};

// Whether a word counts as a number by its first character. An empty one does not.
bool looksLikeNumber(std::string_view token) noexcept;

// What precedes and includes the first colon goes; or, with `keepColons`, all colons become '_'.
YString withoutColons(std::string_view token, bool keepColons);

struct TextName {
    YString name;
    PhysType type = PT_UNKNOWN;
};
// Name and type of a vector: "time", "freq" and probes such as "v(out)" are known; what may not stand in a name is '_'.
TextName textName(YString const & word);
