// Lines of the body of a SPICE3 raw file.
#pragma once

#include "support/Streams.h"

#include <string_view>

// One line at a time, of at most 998 characters; a longer one counts as the end of what can be read.
class Spice3Line {
public:
    // False when there is no further line, or one that is too long.
    bool read(tvstream & stream) { return stream.getline(buffer_, sizeof buffer_) && !stream.fail(); }
    std::string_view text() const noexcept { return buffer_; }

private:
    static constexpr int maxCharacters = 998;
    char buffer_[maxCharacters + 1] = {};
};
