// How far the reading of a file has come.
#pragma once

#include <string>

// Shows it, while it lives, in a line on the terminal behind standard error that is renewed in place; where that is no
// terminal, nothing. At most one at a time.
class ReadingProgress {
public:
    explicit ReadingProgress(std::string const & path);
    ~ReadingProgress();             // the line goes
    static void giveWay() noexcept; // to other words on standard error; the line comes again
    ReadingProgress(ReadingProgress const &) = delete;
    ReadingProgress & operator=(ReadingProgress const &) = delete;
};
