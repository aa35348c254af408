// Curves drawn with characters.
#pragma once

#include "torvelan/Vectors.h"

#include <string>
#include <vector>

struct PlotOptions {
    int width = 72, height = 16; // characters within the frame
};

// Each value over its reference (over the numbers of its elements where it has none), all divisions, complex ones by
// magnitude. Every sample is drawn, however many share a column. Strings and what is no finite number are left out.
std::string plotText(std::vector<XYVector const *> const & values, PlotOptions const & options);
