// Any bytes are a SPICE3 file: they are read, in part or whole, or refused, and the engine stays usable.
#include "torvelan/torvelan.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace {

// A file that lives in memory, with a path by which the reader can open it.
class MemoryFile {
public:
    MemoryFile(std::uint8_t const * data, std::size_t size) : descriptor_(memfd_create("input", 0)) {
        if (descriptor_ < 0 || write(descriptor_, data, size) != static_cast<ssize_t>(size)) std::abort();
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(MemoryFile const &) = delete;
    MemoryFile & operator=(MemoryFile const &) = delete;
    YString path() const { return YString("/proc/self/fd/" + std::to_string(descriptor_)); }

private:
    int descriptor_;
};

void require(bool condition) {
    if (!condition) std::abort();
}

// Looks at everything that came in: no vector may hold more than the file could have said.
void visitVectors(YString const & group, std::size_t size) {
    YList<YString> names;
    require(vec_GetVectorsInGroup(&names, group) == VEC_OK);
    for (YString const & name : names) {
        XYVector * vector = nullptr;
        require(vec_GetVector(group, name, &vector) == VEC_OK);
        (void)vector->getRange(true);
        require(vector->totalLength() <= 16 * static_cast<std::int64_t>(size) + (1 << 20));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    EngineSession const session(std::make_shared<NullMessageHandler>());
    YRef<MessageHandler> const silence = std::make_shared<NullMessageHandler>();
    MemoryFile const file(data, size);
    YString group;
    bool const read = vec_OpenForeignDataFile(file.path(), DATA_SPICE3, {}, &group, silence);
    if (read) visitVectors(group, size);
    double two = 0;
    require(vec_Evaluate(&two, YString("1+1"), ScpParseContext(silence)) == VEC_EVAL_OK && two == 2);
    return 0;
}
