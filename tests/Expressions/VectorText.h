// Vectors written as text, for tests that read like documentation: elements separated by blanks, divisions by '|', a
// PhysType name behind ':'. "1 2 3 | 4 5 : voltage", "(1,2) (3,4)", "'a' 'b'".
#pragma once

#include "torvelan/Vectors.h"

#include <string>
#include <string_view>

// Fills an empty vector. Throws std::runtime_error on a text that is none.
void fillFromText(BaseVector & vector, std::string_view text);
// The vector as text: shortest numbers that read back, the PhysType when it is not unknown.
std::string textOf(BaseVector const & vector);
// Empty when the vector shows what the text says (numbers within a relative 1e-12), else both. The PhysType is compared
// only when the text names one.
std::string differenceFrom(BaseVector const & vector, std::string_view text);
