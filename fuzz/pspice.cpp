// Any bytes are a PSpice file.
#include "ImportTarget.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    fuzz::import(data, size, DATA_PSPICE);
    return 0;
}
