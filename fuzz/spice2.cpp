// Any bytes are a SPICE2 file.
#include "ImportTarget.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    fuzz::import(data, size, DATA_SPICE2);
    return 0;
}
