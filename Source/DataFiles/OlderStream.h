// OlderStream: reads a file of the versions before streams, and tells the blocks that have their bytes there when it
// ends.
#pragma once

#include "Groups/GroupDataFile.h"
#include "Vectors/BlockBacking.h"
#include "support/FileSystem.h"
#include "torvelan/Containers.h"

#include <cstdint>
#include <cstring>
#include <memory>

// Versions from which on something is otherwise than before.
constexpr int olderLinks = 11, olderDivisions = 40, olderCounts = 41, olderStrings = 45, olderWide = 60;

class OlderStream final : public OlderDataFile {
public:
    OlderStream(std::unique_ptr<OpenFile> file, YString path, int version);
    ~OlderStream() override;

    YString path() const override { return path_; }
    void deleteWhenClosed() override { deleteOnClose_ = true; }
    int version() const noexcept { return version_; }
    std::uint64_t size() const noexcept { return size_; }
    std::uint64_t left() const noexcept { return position_ < size_ ? size_ - position_ : 0; }
    std::uint64_t tell() const noexcept { return position_; }
    // False for a place that is not in the file.
    bool seek(std::int64_t position) noexcept;

    // False when the file ends before.
    template <class Number> bool readNumber(Number * value) {
        char bytes[sizeof(Number)];
        if (!read(bytes, sizeof bytes)) return false;
        std::memcpy(value, bytes, sizeof bytes);
        return true;
    }
    // A number that is 32 bits wide before a version and 64 from then on.
    bool readWidened(int wideFrom, std::int64_t * value);
    bool readString(YString * text);

    // A block of bytes that may lie in several pieces; the stream stands behind its first header and payload then. What
    // the file has lost is missing at the end. Null for one that no writer makes.
    std::unique_ptr<BlockBacking> readBlock();

private:
    struct BlockHeader;
    struct Piece {
        std::uint64_t position, bytes;
    };
    class Block;

    bool read(void * dest, std::size_t bytes);
    bool readHeader(std::uint64_t position, BlockHeader * header);
    bool takePiece(BlockHeader const & header, YVector<Piece> * pieces) const;

    std::shared_ptr<OpenFile> file_;
    YString path_;
    int version_;
    std::uint64_t size_;
    bool deleteOnClose_ = false;
    std::uint64_t position_ = 0;
    std::uint64_t inBlocks_ = 0; // bytes of all blocks that have been read, with their headers
    YVector<char> buffer_;       // bytes of the file from bufferStart_ on
    std::uint64_t bufferStart_ = 0;
};
