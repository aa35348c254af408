// Reader of SPICE3 raw files, the ASCII form. A file may hold several data sets, one behind the other; a call reads the
// one that starts at the stream's position.
#pragma once

#include "torvelan/Messages.h"

#include <cstdint>

class OutputFile;
class tvfstream;
struct Group;

enum class [[nodiscard]] Spice3Result : int{
    done = 0,
    nothing = 1,           // the header lacks a count: also what the clean end of a file of several data sets gives
    referenceError = 2,    // the sweep variable is not the first one; reported
    variableListError = 3, // reported
    badHeader = 4,
    noValues = 5, // the end came before "Values", as in the binary form
};

// Fills a group that is not listed yet. With `done` the group has been listed under its final name; otherwise it holds
// what had been made so far and is the caller's to dispose of. `bufferBytes` is the budget for the buffers of all
// vectors together; memory is taken ahead only for values that go to no file.
Spice3Result readSpice3(tvfstream & stream, Group * group, OutputFile & output, std::int32_t bufferBytes,
                        MessageHandler & messages);
