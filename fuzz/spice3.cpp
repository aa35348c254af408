// Any bytes are a SPICE3 file.
#include "ImportTarget.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    fuzz::import(data, size, DATA_SPICE3);
    return 0;
}
