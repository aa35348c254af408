// Vector names and types from the names that simulators give their signals.
#pragma once

#include "torvelan/PhysType.h"
#include "torvelan/YString.h"

struct SignalName {
    YString name; // of at most 256 characters
    PhysType type = PT_UNKNOWN;
};

// The text as it stands; "time", "frequency" and the first letter tell the type.
SignalName plainSignalName(std::string_view text);

// "v(out)" is the voltage `out`, "i(r1)" the current `r1#p`, "ic(q1)" the current `q1#c`, "vdb(out)" `out#vdb`. Of
// several names of one signal, with ';' between them, the first of the form "x(...)" without a ':' counts, else the
// first. False, and nothing in `signal`, for a text without a '('.
bool convertSignalName(std::string_view text, SignalName & signal);
