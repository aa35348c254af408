// Third stage of the SPICE3 reader: the values.
#pragma once

#include "Import/Spice3Header.h"

#include "torvelan/Containers.h"

class dvec;

// Finds the line "Values" and appends the points behind it to the vectors. `done`, also when the values end early,
// since those that were there are kept; `noValues`.
Spice3Result readSpice3Values(tvfstream & stream, Spice3Header const & header, YArray<dvec *> const & vectors);
