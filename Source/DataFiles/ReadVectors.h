// The vector directory of a data file.
#pragma once

#include "DataFiles/StreamClaims.h"
#include "Groups/Group.h"
#include "Vectors/VectorRep.h"

// Enters the vectors in the group, whose labels are there already. Their values stay in the file. False when the
// directory is damaged.
bool readVectors(Group & group, YRef<DfsFile> const & file, std::int64_t stream, StreamClaims & claims);
// With a vector that has all its fields; `flags` are those of the file.
void finishRestoredVector(dvec & vector, std::uint16_t flags);
// When all vectors are there: where one and its reference are not equally long, because the run was cut off, both show
// what both have.
void showCommonParts(Group & group);
// Gives a record the labels of the group if there are as many as divisions; `entries` are those of its table.
void labelDivisions(VectorRep & record, std::int64_t entries, Group const & group);
PhysType restoredPhysType(std::uint16_t stored) noexcept; // unknown for a number that stands for none
