// Lines of the body of a SPICE3 raw file.
#pragma once

#include "Import/BoundedLine.h"

using Spice3Line = BoundedLine<998>;
