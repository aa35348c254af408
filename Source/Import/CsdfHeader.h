// The first two blocks of a section: the header, and the names of the nodes.
#pragma once

#include "Groups/NameTable.h"
#include "Import/Csdf.h"
#include "torvelan/Containers.h"

// Values by key.
using CsdfHeader = NameTable<YString>;

// From "#H" up to and including "#N"; `done`, or what went wrong. Sets `begun` once "#H" has been met.
CsdfResult readCsdfHeader(CsdfTokeniser & tokeniser, CsdfHeader & header, bool & begun);

// The names of each node, with ';' between them, up to and including "#C"; `done`, or what went wrong.
CsdfResult readCsdfNodes(CsdfTokeniser & tokeniser, YArray<std::string> & nodes);

YString const * findCsdfValue(CsdfHeader const & header, std::string_view key); // null when there is none
