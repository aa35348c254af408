// The numbers of a text table.
#pragma once

#include "torvelan/Containers.h"

class dvec;
class tvfstream;

// Appends the columns of each line to the vectors, in their order: 0 for a column that a line lacks, a pair in
// parentheses, or two numbers for a complex vector not called "frequency". True when a line that holds something else
// than numbers has been met, and the stream stands at its start; false at the end, or at a pair that is none.
bool readTextColumns(tvfstream & stream, YArray<dvec *> const & vectors);

// Appends every number of the rest of the file to one vector.
void readAllNumbers(tvfstream & stream, dvec & vector);
