// Reader of CSDF files, a text format of sections: a header, the names of the nodes, and rows of values.
#pragma once

#include "torvelan/Messages.h"

#include <cstdint>

class CsdfTokeniser;
class OutputFile;
struct Group;

enum class [[nodiscard]] CsdfResult : int{
    ended = 0, // within a section; becomes nothing or unfinished
    nothing = 1,     noHeader = 2,        badHeader = 3,      noNodes = 4, unknownBlock = 5,
    badNode = 6,     unexpectedNodes = 7, wrongNodeCount = 8, badData = 9, missingData = 10,
    unfinished = 11, // the group is good all the same
    done = 12,
};

// What is wrong, in words for a message.
char const * csdfReason(CsdfResult result) noexcept;

// Reads the section that begins at the tokeniser's position into a group that is not listed yet. With `done` and
// `unfinished` the group has been listed under its final name; otherwise it holds what had been made so far and is the
// caller's to dispose of. `bufferBytes` is the budget for the buffers of all vectors together. Nothing is reported.
CsdfResult readCsdfSection(CsdfTokeniser & tokeniser, Group * group, OutputFile & output, std::int64_t bufferBytes,
                           MessageHandler & messages);
