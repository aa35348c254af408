// Blocks of shared memory by which a simulator hands its data over without copying them. One process makes a pool of
// blocks of one size and tells the other its name; the simulator takes a block, fills it, and tells the number; whoever
// has used it gives it back.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/Export.h"

#include <cstdint>
#include <memory>

enum SharedBlockManagerError : int {
    SHARED_BLOCK_OK = 0,
    SHARED_BLOCK_UNKNOWN = 1, // no block of this number
    SHARED_BLOCK_LOST = 2,    // the memory is not there any more
};

// A pool of blocks. The memory goes when the process that made the pool lets it go; other processes keep what they have
// opened. A process that takes the memory away from under others does them no harm: they are told that it is lost.
class TORVELAN_API SharedBlockManager {
public:
    // A new pool, for this user only, under a name that nobody can guess. Null when there is no such memory.
    static YRef<SharedBlockManager> create(std::uint64_t blockSize, int blocks);
    // That of another process of the same user. Null when there is none, or it is no pool.
    static YRef<SharedBlockManager> open(YString const & name);
    ~SharedBlockManager();
    SharedBlockManager(SharedBlockManager const &) = delete;
    SharedBlockManager & operator=(SharedBlockManager const &) = delete;

    YString const & name() const noexcept;
    std::uint64_t getBlockSize() const noexcept;
    int blockCount() const noexcept;

    // A block that nobody uses, as in use from now on; -1 when there is none. For the one process that fills blocks.
    int allocate();
    // Address of a block, for writing by the process that allocated it.
    SharedBlockManagerError get(char ** pointer, int id);
    void release(int id) noexcept;        // the address is not needed any more
    SharedBlockManagerError free(int id); // the block may be used anew

    // Copies the first bytes of a block, at most getBlockSize().
    SharedBlockManagerError read(int id, void * dest, std::uint64_t bytes);
    // The same, as an address for the operating system alone: to be handed to a call that writes from it.
    char const * address(int id) const noexcept; // null when there is no such block

private:
    struct Pool;
    explicit SharedBlockManager(std::unique_ptr<Pool> pool) noexcept;
    std::unique_ptr<Pool> pool_;
};

// A number that stands for a pool within this process, as it goes over a channel of texts.
class TORVELAN_API SharedBlockToken {
public:
    SharedBlockToken() noexcept = default;
    explicit SharedBlockToken(YRef<SharedBlockManager> manager); // enters the pool
    void copy(int number) noexcept { number_ = number; }
    int number() const noexcept { return number_; }
    YRef<SharedBlockManager> get() const; // null for a number that stands for nothing
    void destroy();                       // the number stands for nothing from now on

private:
    int number_ = 0;
};
