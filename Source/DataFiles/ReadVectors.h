// The vector directory of a data file.
#pragma once

#include "DataFiles/StreamClaims.h"
#include "Groups/Group.h"
#include "Vectors/VectorRep.h"

#include <memory>

struct ReleaseRecord {
    void operator()(VectorRep * rep) const noexcept { rep->release(); }
};
using RecordHolder = std::unique_ptr<VectorRep, ReleaseRecord>;

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

// The elements of a vector of strings, which stand in the records themselves, each behind its length of `lengthBytes`.
// False when there are fewer.
template <class Reader>
bool readStringElements(Reader & reader, std::size_t lengthBytes, std::int64_t count, VectorRep & record) {
    if (count < 0 || static_cast<std::uint64_t>(count) > reader.left() / lengthBytes) return false;
    record.resize(count, VD_STRING);
    for (std::int64_t i = 0; i < count; ++i) {
        YString text;
        if (!reader.readString(&text)) return false;
        *record.element<char *>(i) = duplicateString(text.c_str());
    }
    return true;
}
