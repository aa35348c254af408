// The records of a data file, in good streams: the first byte of each piece says which stream it goes to.
#include "DataFileTarget.h"
#include "Dfs/DfsFile.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    constexpr std::size_t pieceBytes = 64;
    fuzz::session();
    MemoryFiles disk;
    FileSystemInUse const inUse(disk);
    {
        DfsFile file(fuzz::fileName, DfsMode::create);
        file.openOrCreate(false);
        file.openStream(DfsFile::firstBootStream, StreamType::bytes);
        std::int64_t streams[6] = {DfsFile::firstBootStream};
        for (int i = 1; i < 6; ++i) streams[i] = file.newStream(i == 3 ? StreamType::timeBuffered : StreamType::bytes);
        for (; size > 1; data += std::min(size, pieceBytes), size -= std::min(size, pieceBytes))
            file.write(streams[data[0] % 6], data + 1, std::min(size, pieceBytes) - 1);
    }
    fuzz::openDataFile(false);
    return 0;
}
