// First stage of the SPICE3 reader: the keyed lines ahead of the variable list.
#pragma once

#include "Import/Spice3.h"

#include "torvelan/YString.h"

class tvstream;

struct Spice3Header {
    static constexpr std::int32_t unseen = -1;

    std::int32_t numPoints = unseen;
    std::int32_t numVariables = unseen;
    bool isComplex = false;
    YString sweepVar; // name that the first variable must have; empty: any
    YString title;    // with the blanks that stand before it
    YString date;
    YString groupName; // "spice3_" and a number of its own in this process
};

// Reads up to and including the key "Variables"; `done`, `nothing` or `badHeader`.
Spice3Result readSpice3Header(tvstream & stream, Spice3Header & header);
