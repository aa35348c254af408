// Any bytes are a CSDF file.
#include "ImportTarget.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    VecOpenRawFileOptions options;
    options.csdf = true;
    fuzz::importSets(data, size, options);
    return 0;
}
