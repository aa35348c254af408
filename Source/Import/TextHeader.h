// The lines ahead of a block of a text table: comments, and what division the block is.
#pragma once

#include "torvelan/YString.h"

class tvstream;

struct TextHeader {
    YString label;     // of the division; empty: none
    int division = -1; // 1 or more: the block continues the vectors of those names
    YString firstLine; // of the block itself; empty when the file has ended

    bool continues() const noexcept { return division > 0; }
};

TextHeader readTextHeader(tvstream & stream);
