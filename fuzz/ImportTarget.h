// What the fuzz targets of import share: any bytes as a file, which is read in part or whole, or refused, and the
// engine stays usable.
#pragma once

#include "torvelan/torvelan.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace fuzz {

inline void require(bool condition) {
    if (!condition) std::abort();
}

// A file that lives in memory, with a path by which the reader can open it.
class MemoryFile {
public:
    MemoryFile(std::uint8_t const * data, std::size_t size) : descriptor_(memfd_create("input", 0)) {
        require(descriptor_ >= 0 && write(descriptor_, data, size) == static_cast<ssize_t>(size));
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(MemoryFile const &) = delete;
    MemoryFile & operator=(MemoryFile const &) = delete;
    YString path() const { return YString("/proc/self/fd/" + std::to_string(descriptor_)); }

private:
    int descriptor_;
};

// Looks at everything that came in: no vector may hold more than the file could have said.
inline void visitVectors(std::int64_t mostValues) {
    YList<YString> groups;
    vec_GetGroups(&groups);
    for (YString const & group : groups) {
        YList<YString> names;
        require(vec_GetVectorsInGroup(&names, group) == VEC_OK);
        for (YString const & name : names) {
            XYVector * vector = nullptr;
            require(vec_GetVector(group, name, &vector) == VEC_OK);
            (void)vector->getRange(true);
            (void)vector->ref.getRange(true);
            require(vector->totalLength() <= mostValues);
        }
    }
}

// `read` is given the path of the file; `always` is what a vector may hold whatever the size of the file.
template <class Read>
void importBy(Read read, std::uint8_t const * data, std::size_t size, std::int64_t always = 1 << 20) {
    EngineSession const session(std::make_shared<NullMessageHandler>());
    YRef<MessageHandler> const silence = std::make_shared<NullMessageHandler>();
    MemoryFile const file(data, size);
    read(file.path(), silence);
    visitVectors(16 * static_cast<std::int64_t>(size) + always);
    double two = 0;
    require(vec_Evaluate(&two, YString("1+1"), ScpParseContext(silence)) == VEC_EVAL_OK && two == 2);
}

inline void import(std::uint8_t const * data, std::size_t size, DataFileType type, VecOpenGroupOptions options = {},
                   std::int64_t always = 1 << 20) {
    auto const read = [=](YString const & path, YRef<MessageHandler> const & messages) {
        (void)vec_OpenForeignDataFile(path, type, options, nullptr, messages);
    };
    importBy(read, data, size, always);
}

// All data sets, into memory, since there is no place for data files.
inline void importSets(std::uint8_t const * data, std::size_t size, VecOpenRawFileOptions options) {
    auto const read = [=](YString const & path, YRef<MessageHandler> const & messages) {
        (void)vec_OpenRawFile(path, "/nonexistent/x", options, messages);
    };
    importBy(read, data, size);
}

} // namespace fuzz
