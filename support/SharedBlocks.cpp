// Pools of blocks in POSIX shared memory. What other processes may take away is never touched through an address: a
// read of the file behind it fails where an address would stop the process.
#include "torvelan/SharedBlocks.h"

#include "support/FileSystem.h"

#include <cstring>
#include <fcntl.h>
#include <map>
#include <string>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

// At the beginning of the memory; the states of the blocks follow, then, from a page edge on, the blocks.
struct PoolHeader {
    std::uint64_t mark = 0;
    std::uint64_t blockSize = 0;
    std::uint32_t blocks = 0;
    std::uint32_t unused = 0;
};
constexpr std::uint64_t poolMark = 0x6b636f6c426c7654; // "TvlBlock"
constexpr std::uint32_t isFree = 0, isInUse = 1;
constexpr std::uint64_t pageBytes = 4096;
constexpr std::uint64_t mostBytes = std::uint64_t{1} << 40;
constexpr int mostBlocks = 1 << 20;

std::uint64_t stateAt(std::uint32_t block) noexcept {
    return sizeof(PoolHeader) + std::uint64_t{block} * sizeof(std::uint32_t);
}
std::uint64_t firstBlockAt(std::uint32_t blocks) noexcept {
    return (stateAt(blocks) + pageBytes - 1) / pageBytes * pageBytes;
}

bool isPlausible(PoolHeader const & header) noexcept {
    return header.mark == poolMark && header.blockSize >= 1 && header.blocks >= 1 &&
           header.blocks <= std::uint32_t{mostBlocks} && header.blockSize <= mostBytes / header.blocks;
}

std::string randomName() {
    std::uint64_t number[2] = {};
    if (getrandom(number, sizeof number, 0) != sizeof number) return {};
    char text[64];
    std::snprintf(text, sizeof text, "/torvelan-%016lx%016lx", static_cast<unsigned long>(number[0]),
                  static_cast<unsigned long>(number[1]));
    return text;
}

bool isOwn(int descriptor, struct stat * status) noexcept {
    return fstat(descriptor, status) == 0 && status->st_uid == geteuid();
}

std::map<int, YRef<SharedBlockManager>> & tokens() {
    static std::map<int, YRef<SharedBlockManager>> table;
    return table;
}

} // namespace

struct SharedBlockManager::Pool {
    Pool(std::string poolName, int opened, bool made) : name(poolName), descriptor(opened), isMaker(made) {}
    ~Pool() {
        if (memory != nullptr) munmap(memory, total());
        close(descriptor);
        if (isMaker) shm_unlink(name.c_str());
    }
    Pool(Pool const &) = delete;
    Pool & operator=(Pool const &) = delete;

    std::uint64_t total() const noexcept { return firstBlockAt(header.blocks) + header.blockSize * header.blocks; }
    bool isBlock(int id) const noexcept { return id >= 0 && static_cast<std::uint32_t>(id) < header.blocks; }
    std::uint64_t blockAt(int id) const noexcept {
        return firstBlockAt(header.blocks) + static_cast<std::uint64_t>(id) * header.blockSize;
    }
    bool map() noexcept {
        void * const mapped = mmap(nullptr, total(), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        memory = mapped != MAP_FAILED ? static_cast<char *>(mapped) : nullptr;
        return memory != nullptr;
    }
    bool load(void * dest, std::uint64_t bytes, std::uint64_t at) const noexcept {
        return pread(descriptor, dest, bytes, static_cast<off_t>(at)) == static_cast<ssize_t>(bytes);
    }
    bool setState(int id, std::uint32_t state) const noexcept {
        auto const at = static_cast<off_t>(stateAt(static_cast<std::uint32_t>(id)));
        return pwrite(descriptor, &state, sizeof state, at) == sizeof state;
    }

    YString name;
    int descriptor;
    bool isMaker;
    PoolHeader header;
    char * memory = nullptr;
    std::uint32_t nextBlock = 0; // where the search for a free one begins
};

SharedBlockManager::SharedBlockManager(std::unique_ptr<Pool> pool) noexcept : pool_(std::move(pool)) {}

SharedBlockManager::~SharedBlockManager() = default;

YRef<SharedBlockManager> SharedBlockManager::create(std::uint64_t blockSize, int blocks) {
    PoolHeader const header{poolMark, blockSize, static_cast<std::uint32_t>(blocks), 0};
    std::string const name = randomName();
    if (blocks < 1 || !isPlausible(header) || name.empty()) return nullptr;
    int const descriptor = shm_open(name.c_str(), O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    if (descriptor < 0) return nullptr;
    auto pool = std::make_unique<Pool>(name, descriptor, true);
    pool->header = header;
    // Memory that is promised only, and not there when it is touched, would stop the process.
    bool const isThere = posix_fallocate(descriptor, 0, static_cast<off_t>(pool->total())) == 0;
    bool const isMarked = pwrite(descriptor, &header, sizeof header, 0) == sizeof header;
    if (!isThere || !isMarked || !pool->map()) return nullptr;
    return YRef<SharedBlockManager>(new SharedBlockManager(std::move(pool)));
}

YRef<SharedBlockManager> SharedBlockManager::open(YString const & name) {
    int const descriptor = shm_open(YString(name).c_str(), O_RDWR, 0);
    if (descriptor < 0) return nullptr;
    auto pool = std::make_unique<Pool>(std::string(name.view()), descriptor, false);
    struct stat status {};
    PoolHeader header;
    bool const readable = isOwn(descriptor, &status) && pool->load(&header, sizeof header, 0);
    pool->header = header;
    bool const fits =
        readable && isPlausible(header) && pool->total() <= static_cast<std::uint64_t>(status.st_size) && pool->map();
    return fits ? YRef<SharedBlockManager>(new SharedBlockManager(std::move(pool))) : nullptr;
}

YString const & SharedBlockManager::name() const noexcept {
    return pool_->name;
}

std::uint64_t SharedBlockManager::getBlockSize() const noexcept {
    return pool_->header.blockSize;
}

int SharedBlockManager::blockCount() const noexcept {
    return static_cast<int>(pool_->header.blocks);
}

int SharedBlockManager::allocate() {
    for (std::uint32_t tried = 0; tried < pool_->header.blocks; ++tried) {
        std::uint32_t const block = pool_->nextBlock++ % pool_->header.blocks;
        std::uint32_t state = isInUse;
        if (!pool_->load(&state, sizeof state, stateAt(block)) || state != isFree) continue;
        return pool_->setState(static_cast<int>(block), isInUse) ? static_cast<int>(block) : -1;
    }
    return -1;
}

SharedBlockManagerError SharedBlockManager::get(char ** pointer, int id) {
    if (!pool_->isBlock(id)) return SHARED_BLOCK_UNKNOWN;
    *pointer = pool_->memory + pool_->blockAt(id);
    return SHARED_BLOCK_OK;
}

void SharedBlockManager::release(int) noexcept {}

SharedBlockManagerError SharedBlockManager::free(int id) {
    if (!pool_->isBlock(id)) return SHARED_BLOCK_UNKNOWN;
    return pool_->setState(id, isFree) ? SHARED_BLOCK_OK : SHARED_BLOCK_LOST;
}

SharedBlockManagerError SharedBlockManager::read(int id, void * dest, std::uint64_t bytes) {
    if (!pool_->isBlock(id) || bytes > pool_->header.blockSize) return SHARED_BLOCK_UNKNOWN;
    return pool_->load(dest, bytes, pool_->blockAt(id)) ? SHARED_BLOCK_OK : SHARED_BLOCK_LOST;
}

char const * SharedBlockManager::address(int id) const noexcept {
    return pool_->isBlock(id) ? pool_->memory + pool_->blockAt(id) : nullptr;
}

SharedBlockToken::SharedBlockToken(YRef<SharedBlockManager> manager) {
    static int lastNumber = 0;
    number_ = ++lastNumber;
    tokens()[number_] = std::move(manager);
}

YRef<SharedBlockManager> SharedBlockToken::get() const {
    auto const known = tokens().find(number_);
    return known != tokens().end() ? known->second : nullptr;
}

void SharedBlockToken::destroy() {
    tokens().erase(number_);
}
