// BlockBacking: where the bytes of a block lie when they are not, or not only, in memory. The layer of data files
// implements it.
#pragma once

#include "Dfs/StreamWriter.h"

#include <cstdint>
#include <utility>

class SharedBlockManager;

class BlockBacking {
public:
    virtual ~BlockBacking();
    // Bytes moved; fewer at the end.
    virtual std::uint64_t read(void * dest, std::uint64_t bytes, std::uint64_t offset) = 0;
    virtual std::uint64_t length() = 0;
    // Whether what is appended to the block goes here too. The rest is for such backings only.
    virtual bool isWritten() const noexcept { return false; }
    virtual void append(void const *, std::uint64_t) {} // throws FatalException when it cannot
    // A block of shared memory; false when it is refused, and nothing has been appended.
    virtual bool appendShared(SharedBlockManager &, int, std::uint64_t) { return false; }
    virtual void flush() {} // throws FatalException when it cannot
    // Goes on with the bytes of another one, which lies in the linked file of this number.
    virtual bool splice(int, BlockBacking const &) { return false; }

    // Appends without a virtual call, where there is room for it in memory.
    bool take(void const * data, std::uint64_t bytes) noexcept {
        return writer != nullptr && writer->take(data, bytes);
    }
    // The open end of what is written, where there is one and nobody else has it, for a borrower that appends to it in
    // person; empty otherwise. The other calls keep it up to date, until it is given back.
    void lend(OpenEnd * end) noexcept {
        bool const isLent = writer != nullptr && writer->lend(end);
        borrower = isLent ? end : nullptr;
        if (!isLent) *end = {};
    }
    void takeBack() noexcept {
        if (borrower == nullptr) return;
        writer->takeBack();
        *std::exchange(borrower, nullptr) = {};
    }

protected:
    StreamWriter * writer = nullptr;

private:
    OpenEnd * borrower = nullptr;
};
