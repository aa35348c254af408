// Reader of PSpice's binary data files, of five generations in two layouts.
#pragma once

#include "Import/BinaryPoints.h"
#include "torvelan/Containers.h"
#include "torvelan/Messages.h"

#include <cstdint>

class BinaryInput;
class dvec;
class tvfstream;
struct Group;

// Fills a group that is not listed yet, from behind the signature. True when the group has been listed under its final
// name; otherwise, without a message, it holds what had been made so far and is the caller's to dispose of.
bool readPSpice(tvfstream & stream, Group * group, MessageHandler & messages);

// --- the two layouts, from behind the marker. They name the group but do not list it.
bool readPSpiceFlat(tvfstream & stream, Group * group, std::uint8_t marker);
bool readPSpiceRecords(tvfstream & stream, Group * group, bool wideFrames, MessageHandler & messages);

// What a header says of the values.
struct PSpiceShape {
    std::size_t numVectors = 0;
    std::int64_t pointsAhead = 0; // for which memory is taken
    bool isComplex = false;

    BinaryPoints::Values valuesInFile() const noexcept {
        return isComplex ? BinaryPoints::Values::floatPairs : BinaryPoints::Values::floats;
    }
};
// Reads the names and makes the vectors in the group, in file order, the first being everybody's reference. False when
// a name is missing, too long or of no known form.
bool readPSpiceNames(BinaryInput & input, Group * group, PSpiceShape shape, YArray<dvec *> & vectors);

namespace PSpiceMarker {
inline constexpr std::uint8_t flat401 = 0xF3, flat404 = 0xF4, flat51 = 0xF6, records92 = 0xF8, records100 = 0xF9;
}
