#include "Import/PSpiceSignature.h"

#include "support/Streams.h"

#include <algorithm>

bool testPSpiceSignature(tvstream & stream) {
    constexpr char mark = '\xFF';
    constexpr int marks = 6, bytes = 7;
    char signature[bytes] = {};
    stream.read(signature, bytes);
    if (std::all_of(signature, signature + marks, [](char c) { return c == mark; })) return true;
    stream.seekg(0);
    return false;
}
