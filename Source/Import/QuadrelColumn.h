// What a line of a Quadrel file says of a column.
#pragma once

#include "torvelan/PhysType.h"
#include "torvelan/YString.h"

enum class QuadrelPart { whole, real, imaginary };

struct QuadrelColumn {
    YString name;
    PhysType type = PT_UNKNOWN;
    QuadrelPart part = QuadrelPart::whole;
    YString negativeName; // of the current the other way round; empty for no current
};

// False for a line that describes no column.
bool parseQuadrelColumn(std::string_view line, QuadrelColumn & column);
