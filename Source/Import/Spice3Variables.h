// Second stage of the SPICE3 reader: the variable list becomes vectors.
#pragma once

#include "Import/Spice3Header.h"

#include "torvelan/Containers.h"
#include "torvelan/PhysType.h"

class dvec;

// Name and type of a vector, from the words of its line.
YString spice3VectorName(std::string_view token, int index);
PhysType spice3PhysType(std::string_view word);

// Buffer for each vector, in bytes: what one and a half times its points need, within an equal share of the budget.
std::int32_t spice3BufferBytes(Spice3Header const & header, std::int32_t budget);

struct Spice3Memory {
    std::int32_t bufferBytes; // for the buffers of all vectors together
    bool takeAhead;           // for the points announced, as far as the rest of the file can hold them
};

// Reads the list and makes the vectors in the group, in file order, the first being everybody's reference. `done`,
// `variableListError` or `referenceError`, which have been reported.
Spice3Result readSpice3Variables(tvfstream & stream, Group * group, Spice3Header const & header, Spice3Memory memory,
                                 YArray<dvec *> & vectors, MessageHandler & messages);
