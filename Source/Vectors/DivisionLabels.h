// What the labels of divisions say.
#pragma once

#include "torvelan/PhysType.h"

#include <string>
#include <string_view>
#include <vector>

// One swept parameter of a label. A part that does not have the stored form is a name alone.
struct DivisionLabelPart {
    std::string name;
    double value = 0;
    PhysType physType = PT_UNKNOWN;
    bool hasValue = false;
};

// The parts of a stored label, the outermost sweep first.
std::vector<DivisionLabelPart> parseDivisionLabel(std::string_view stored);
