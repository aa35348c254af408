// Lines of files whose lines have a greatest length.
#pragma once

#include "support/Streams.h"

#include <string_view>

// One line at a time, of at most so many characters; a longer one counts as the end of what can be read. A NUL ends a
// line's text.
template <int maxCharacters> class BoundedLine {
public:
    // False when there is no further line, or one that is too long.
    bool read(tvstream & stream) { return stream.getline(buffer_, sizeof buffer_) && !stream.fail(); }
    std::string_view text() const noexcept { return buffer_; }

private:
    char buffer_[maxCharacters + 1] = {};
};
