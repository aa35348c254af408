// The numbers of a text table.
#pragma once

#include "torvelan/Containers.h"

#include <cstdint>

class dvec;
class tvfstream;

// What may be filled in for columns that lines lack: a few lines of a very wide table could otherwise ask for any
// amount of memory.
struct GapBudget {
    explicit GapBudget(tvfstream const & stream);
    std::uint64_t left; // values
};

enum class ColumnsEnd {
    finished,    // the file has ended, or a pair is none
    newBlock,    // a line holds something else than numbers, and the stream stands at its start
    tooManyGaps, // the budget does not do
};

// Appends the columns of each line to the vectors, in their order: 0 for a column that a line lacks, a pair in
// parentheses, or two numbers for a complex vector not called "frequency".
ColumnsEnd readTextColumns(tvfstream & stream, YArray<dvec *> const & vectors, GapBudget & gaps);
ColumnsEnd readTextColumns(tvfstream & stream, YArray<dvec *> const & vectors); // a table by itself

// Appends every number of the rest of the file to one vector.
void readAllNumbers(tvfstream & stream, dvec & vector);
