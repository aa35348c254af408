// Values over their reference as tables.
#pragma once

#include "torvelan/Vectors.h"

#include <cstdint>
#include <vector>

struct TableOptions {
    std::int64_t rows = 0; // at most, evenly spaced; 0: all
    int precision = 6;
};

// A table for each division, on standard output.
void writeTables(std::vector<XYVector const *> const & values, TableOptions const & options);
