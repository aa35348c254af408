// The last block of a section: rows of values.
#pragma once

#include "Import/Csdf.h"
#include "torvelan/Containers.h"

class dvec;

struct CsdfVectors {
    YArray<dvec *> sweep; // one, or none: sweep values are dropped
    YArray<dvec *> nodes;
    bool isComplex = false; // the nodes
};

// From behind the first "#C" to the end of the section, or of the input. Rows may end before the last node.
CsdfResult readCsdfRows(CsdfTokeniser & tokeniser, CsdfVectors const & vectors);
