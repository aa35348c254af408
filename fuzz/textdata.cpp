// Any bytes are a text table, with colons cut and with colons kept.
#include "ImportTarget.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    constexpr std::int64_t gaps = 4 << 20; // what may be filled in whatever the size
    for (bool const keepColons : {false, true}) {
        VecOpenGroupOptions options;
        options.keepColons = keepColons;
        fuzz::import(data, size, DATA_TEXT, options, gaps);
    }
    return 0;
}
