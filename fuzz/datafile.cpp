// Any bytes are a data file, of any version.
#include "DataFileTarget.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    fuzz::openBytes(std::string(reinterpret_cast<char const *>(data), size));
    return 0;
}
