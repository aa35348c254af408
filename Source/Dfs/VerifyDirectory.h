// Looks for the traces of a crash in a directory: the directory on disk may lag behind the data.
#pragma once

#include "Dfs/DfsDirectory.h"

enum class Damage {
    none = 0,
    clash = 6,        // two extents have one successor, or extents follow one another in a ring
    overlap = 7,      // two extents share bytes of a file
    missingNext = 8,  // an extent's successor is not in the directory: streams end early
    beyondTheEnd = 9, // an extent is not, or not wholly, in the file
};

// The gravest damage of all. `dataStart` is where the contents of the file begin: what lies before it, header and first
// block, belongs to no stream. Of extents in linked files the end is not looked at. Takes n log n time for n entries,
// and as long as a walk over the streams of the file, whatever the numbers in the entries are.
Damage verifyDirectory(DfsDirectory const & directory, std::uint64_t dataStart, std::uint64_t fileSize);
