// Values for people.
#pragma once

#include "torvelan/Vectors.h"

#include <string>

// One element with its unit: "1.5 mV", "(1 V, -2 V)", a text as it stands.
std::string elementText(BaseVector const & vector, std::int64_t i, std::int64_t division, int precision);

// The name without the ':' that stands before names of the current group.
std::string displayName(YString const & name);

// "name = value", a line for each division; long vectors by their first and last elements. Without a precision a single
// number has as many digits as it needs, and several have six each.
std::string valueText(XYVector const & vector, int precision);
