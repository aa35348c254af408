#include "support/FileSystem.h"

#include "support/OpenForReading.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr mode_t newFileMode = 0666; // within the umask
constexpr int mostTries = 100;

int refuse(int error) noexcept {
    errno = error;
    return -1;
}

bool holdsNul(YString const & path) noexcept {
    return path.view().find('\0') != std::string_view::npos;
}

// Calls that a signal interrupts are made again.
template <class Call> auto persistently(Call call) noexcept {
    for (;;) {
        auto const answer = call();
        if (answer >= 0 || errno != EINTR) return answer;
    }
}

class SystemFile final : public OpenFile {
public:
    ~SystemFile() override {
        if (descriptor_ >= 0) close(descriptor_);
    }
    void take(int descriptor) noexcept { descriptor_ = descriptor; }

    std::size_t readAt(void * dest, std::size_t bytes, std::uint64_t offset) override {
        std::size_t done = 0;
        while (done < bytes && offset + done <= INT64_MAX) {
            ssize_t const n = persistently([&] {
                return pread(descriptor_, static_cast<char *>(dest) + done, bytes - done,
                             static_cast<off_t>(offset + done));
            });
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        return done;
    }

    bool writeAt(Bytes first, Bytes second, std::uint64_t offset) override {
        while (!first.empty() || !second.empty()) {
            iovec pieces[2] = {piece(first), piece(second)};
            ssize_t const n = persistently([&] { return pwritev(descriptor_, pieces, 2, static_cast<off_t>(offset)); });
            if (n == 0) errno = ENOSPC;
            if (n <= 0) return false;
            auto const done = static_cast<std::size_t>(n);
            std::size_t const ofFirst = std::min(done, first.size());
            first = first.subspan(ofFirst);
            second = second.subspan(done - ofFirst);
            offset += done;
        }
        return true;
    }

    std::uint64_t size() override {
        struct stat status {};
        return fstat(descriptor_, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
    }

    bool truncate() override { return ftruncate(descriptor_, 0) == 0; }

    bool sync() override { return fdatasync(descriptor_) == 0; }

    FileIdentity identity() override {
        struct stat status {};
        if (fstat(descriptor_, &status) != 0) return {};
        return {status.st_dev, status.st_ino};
    }

    int descriptor() const noexcept override { return descriptor_; }

private:
    static iovec piece(Bytes bytes) noexcept { return {const_cast<char *>(bytes.data()), bytes.size()}; }

    int descriptor_ = -1;
};

// A pipe that nobody writes does not keep this waiting, and devices are not touched further.
int openRegular(YString const & path, int flags) {
    if (holdsNul(path)) return refuse(ENOENT);
    int const descriptor = open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, newFileMode);
    struct stat status {};
    if (descriptor < 0) return -1;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) return descriptor;
    close(descriptor);
    return refuse(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
}

class MachineFiles final : public FileSystem {
public:
    std::unique_ptr<OpenFile> open(YString const & path, FileMode mode) override {
        constexpr int flags[] = {O_RDONLY, O_RDWR, O_RDWR | O_CREAT};
        return openSystemFile(path, flags[static_cast<int>(mode)]);
    }

    std::unique_ptr<OpenFile> openUnique(YString const & prefix, YString * path) override {
        std::random_device random;
        for (int tried = 0; tried < mostTries; ++tried) {
            YString const name = YString::joined(prefix, {YString(random())});
            auto file = openSystemFile(name, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW);
            if (file != nullptr) *path = name;
            if (file != nullptr || errno != EEXIST) return file;
        }
        return nullptr;
    }

    bool replace(YString const & from, YString const & to) override {
        struct stat status {};
        if (holdsNul(to)) return false;
        if (stat(to.c_str(), &status) == 0 && chmod(from.c_str(), status.st_mode & 07777) != 0) return false;
        return rename(from.c_str(), to.c_str()) == 0;
    }

    bool remove(YString const & path) override { return !holdsNul(path) && unlink(path.c_str()) == 0; }

private:
    // All memory is there before anything happens to a file.
    static std::unique_ptr<OpenFile> openSystemFile(YString const & path, int flags) {
        auto file = std::make_unique<SystemFile>();
        file->take(openRegular(path, flags));
        return file->descriptor() >= 0 ? std::move(file) : nullptr;
    }
};

FileSystem *& inUse() noexcept {
    static FileSystem * layer = &systemFiles();
    return layer;
}

} // namespace

OpenFile::~OpenFile() = default;

FileSystem::~FileSystem() = default;

FileSystem & systemFiles() noexcept {
    static MachineFiles machine;
    return machine;
}

FileSystem & files() noexcept {
    return *inUse();
}

void removeFile(YString const & path, FileIdentity const & identity) noexcept {
    try {
        auto const there = files().open(path, FileMode::read);
        if (there != nullptr && there->identity() == identity) files().remove(path);
    } catch (...) { // without memory it stays
    }
}

FileSystemInUse::FileSystemInUse(FileSystem & layer) noexcept : before_(std::exchange(inUse(), &layer)) {}

FileSystemInUse::~FileSystemInUse() {
    inUse() = before_;
}
