// StreamBacking: a stream of a data file as the backing of a block.
#pragma once

#include "Dfs/DfsFile.h"
#include "Vectors/BlockBacking.h"

class StreamBacking final : public BlockBacking {
public:
    StreamBacking(YRef<DfsFile> file, std::int64_t stream) noexcept : file_(std::move(file)), stream_(stream) {}
    ~StreamBacking() override { takeBack(); }

    std::uint64_t read(void * dest, std::uint64_t bytes, std::uint64_t offset) override;
    std::uint64_t length() override { return file_->length(stream_); }
    bool isWritten() const noexcept override { return file_->isWritable(); }
    void append(void const * data, std::uint64_t bytes) override;
    bool appendShared(SharedBlockManager & blocks, int block, std::uint64_t bytes) override;
    void flush() override;
    bool splice(int link, BlockBacking const & other) override;

private:
    void findWriter();

    YRef<DfsFile> file_;
    std::int64_t stream_;
};

// Throws the FatalException that a file gives which does not take what a run writes.
[[noreturn]] void throwWriteFailure(YString const & path);
