// Any bytes are a Quadrel file.
#include "ImportTarget.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    fuzz::import(data, size, DATA_QUADREL);
    return 0;
}
