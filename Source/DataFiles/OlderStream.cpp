#include "DataFiles/OlderStream.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t bufferBytes = 65536;

} // namespace

struct OlderStream::BlockHeader {
    std::uint64_t position = 0;
    std::uint64_t bytes = 0; // of the header itself
    std::int64_t next = 0;
    std::int64_t blockBytes = 0; // with the header
    std::int64_t totalBytes = 0; // 0: not known when it was written

    std::int64_t payload() const noexcept { return blockBytes - static_cast<std::int64_t>(bytes); }
};

// Reads as long as the stream is there.
class OlderStream::Block final : public BlockBacking {
public:
    Block(std::weak_ptr<OpenFile> file, YVector<Piece> pieces, std::uint64_t total)
        : file_(std::move(file)), pieces_(std::move(pieces)), total_(total) {}

    std::uint64_t length() override { return total_; }
    std::uint64_t read(void * dest, std::uint64_t bytes, std::uint64_t offset) override {
        auto const file = file_.lock();
        std::uint64_t done = 0;
        for (Piece const & piece : pieces_) {
            if (file == nullptr || done == bytes) break;
            std::uint64_t const from = std::min(offset, piece.bytes);
            std::uint64_t const n = std::min(piece.bytes - from, bytes - done);
            std::uint64_t const got = file->readAt(static_cast<char *>(dest) + done, n, piece.position + from);
            done += got;
            if (got != n) break;
            offset -= from;
        }
        return done;
    }

private:
    std::weak_ptr<OpenFile> file_;
    YVector<Piece> pieces_;
    std::uint64_t total_;
};

OlderStream::OlderStream(std::unique_ptr<OpenFile> file, YString path, int version)
    : file_(std::move(file)), path_(std::move(path)), version_(version), size_(file_->size()) {}

OlderStream::~OlderStream() {
    if (deleteOnClose_) removeFile(path_, file_->identity());
}

bool OlderStream::seek(std::int64_t position) noexcept {
    if (position < 0 || static_cast<std::uint64_t>(position) > size_) return false;
    position_ = static_cast<std::uint64_t>(position);
    return true;
}

bool OlderStream::read(void * dest, std::size_t bytes) {
    if (bytes > left()) return false;
    bool const isBuffered = position_ >= bufferStart_ && position_ + bytes <= bufferStart_ + buffer_.size();
    if (!isBuffered && bytes > bufferBytes / 2) {
        bool const whole = file_->readAt(dest, bytes, position_) == bytes;
        position_ += bytes;
        return whole;
    }
    if (!isBuffered) {
        buffer_.resize(std::min<std::uint64_t>(bufferBytes, left()));
        bufferStart_ = position_;
        buffer_.resize(file_->readAt(buffer_.data(), buffer_.size(), position_));
        if (bytes > buffer_.size()) return false;
    }
    std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(position_ - bufferStart_), bytes,
                static_cast<char *>(dest));
    position_ += bytes;
    return true;
}

bool OlderStream::readWidened(int wideFrom, std::int64_t * value) {
    if (version_ >= wideFrom) return readNumber(value);
    std::int32_t narrow;
    if (!readNumber(&narrow)) return false;
    *value = narrow;
    return true;
}

bool OlderStream::readString(YString * text) {
    std::int64_t length = 0;
    std::uint16_t shortLength = 0;
    bool const counted = version_ >= olderStrings ? readWidened(INT32_MAX, &length) : readNumber(&shortLength);
    if (version_ < olderStrings) length = shortLength;
    if (!counted || length < 0 || static_cast<std::uint64_t>(length) > left()) return false;
    YVector<char> bytes(static_cast<std::size_t>(length));
    if (!read(bytes.data(), bytes.size())) return false;
    *text = YString(bytes.data(), bytes.size());
    return true;
}

bool OlderStream::readHeader(std::uint64_t position, BlockHeader * header) {
    std::int64_t unused;
    header->position = position;
    if (!seek(static_cast<std::int64_t>(position)) || !readWidened(olderDivisions, &header->next)) return false;
    bool read;
    if (version_ < olderDivisions)
        read = readWidened(olderWide, &header->blockBytes) && readWidened(olderWide, &unused);
    else
        read = readNumber(&unused) && readWidened(olderWide, &header->blockBytes);
    if (!read || !readWidened(olderWide, &header->totalBytes)) return false;
    header->bytes = tell() - position;
    return header->payload() >= 0 && header->totalBytes >= 0 && header->next >= 0;
}

// The payload behind a header, as far as it is in the file.
bool OlderStream::takePiece(BlockHeader const & header, YVector<Piece> * pieces) const {
    std::uint64_t const start = header.position + header.bytes;
    auto const payload = static_cast<std::uint64_t>(header.payload());
    std::uint64_t const present = std::min(payload, size_ - start);
    if (present != 0) pieces->push_back({start, present});
    return present == payload;
}

// Without a total the pieces of the chain are it, up to one that knows the total of the rest. Blocks do not share
// bytes, so that all of them have no more than the file.
std::unique_ptr<BlockBacking> OlderStream::readBlock() {
    BlockHeader header;
    if (!readHeader(tell(), &header)) return nullptr;
    std::int64_t const behind = static_cast<std::int64_t>(header.position) + header.blockBytes;
    YVector<Piece> pieces;
    std::uint64_t gathered = 0;
    std::uint64_t wanted = header.totalBytes != 0 ? static_cast<std::uint64_t>(header.totalBytes) : UINT64_MAX;
    for (;;) {
        bool const whole = takePiece(header, &pieces);
        gathered += static_cast<std::uint64_t>(header.payload());
        inBlocks_ += header.bytes + static_cast<std::uint64_t>(header.payload());
        if (!whole || header.next == 0 || gathered >= wanted) break;
        if (inBlocks_ > size_ || !readHeader(static_cast<std::uint64_t>(header.next), &header)) return nullptr;
        if (wanted == UINT64_MAX && header.totalBytes != 0)
            wanted = gathered + static_cast<std::uint64_t>(header.totalBytes);
    }
    std::uint64_t present = 0;
    for (Piece const & piece : pieces) present += piece.bytes;
    seek(std::min(behind, static_cast<std::int64_t>(size_)));
    return std::make_unique<Block>(file_, std::move(pieces), std::min(present, wanted));
}
