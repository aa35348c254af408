// The vector directory of a data file.
#pragma once

#include "DataFiles/StreamClaims.h"
#include "Groups/Group.h"

// Enters the vectors in the group, whose labels are there already. Their values stay in the file. False when the
// directory is damaged.
bool readVectors(Group & group, YRef<DfsFile> const & file, std::int64_t stream, StreamClaims & claims);
// The last steps with a vector that has all its fields; `flags` are those of the file.
void finishRestoredVector(dvec & vector, std::uint16_t flags);
PhysType restoredPhysType(std::uint16_t stored) noexcept; // unknown for a number that stands for none
