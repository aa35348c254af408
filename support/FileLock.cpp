#include "support/FileLock.h"

#include "support/OpenForReading.h"

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int attemptInterval = 2; // milliseconds
constexpr timespec betweenAttempts{0, attemptInterval * 1'000'000};
constexpr int directoryPatience = 1000;

// What is locked: bytes that no file reaches stand for all but its contents.
struct Part {
    off_t start;
    off_t length;
};
constexpr off_t beyondContents = off_t{1} << 62;
constexpr Part contents{0, beyondContents};
constexpr Part directory{beyondContents, 1};
constexpr Part changes{beyondContents + 1, 1};

enum class Outcome { taken, refused };

Outcome set(int descriptor, short kind, Part part) noexcept {
    struct flock range {};
    range.l_type = kind;
    range.l_whence = SEEK_SET;
    range.l_start = part.start;
    range.l_len = part.length;
    if (fcntl(descriptor, F_OFD_SETLK, &range) == 0) return Outcome::taken;
    return errno == EAGAIN || errno == EACCES ? Outcome::refused : Outcome::taken; // without locks: free
}

bool take(int descriptor, short kind, Part part, int patience) {
    for (int waited = 0; waited < patience; waited += attemptInterval) {
        if (set(descriptor, kind, part) == Outcome::taken) return true;
        nanosleep(&betweenAttempts, nullptr);
    }
    return false;
}

} // namespace

FileLock::~FileLock() {
    if (descriptor_ >= 0) close(descriptor_);
}

bool FileLock::lock(YString const & path) {
    int const descriptor = openForReading(path);
    if (descriptor < 0) return false;
    if (set(descriptor, F_RDLCK, contents) == Outcome::refused) {
        close(descriptor);
        return false;
    }
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = descriptor;
    return true;
}

bool lockForWriting(int descriptor, int patience) {
    return lockForUpdating(descriptor, patience) && take(descriptor, F_WRLCK, contents, patience);
}

bool lockForUpdating(int descriptor, int patience) {
    return take(descriptor, F_WRLCK, changes, patience);
}

DirectoryLock::DirectoryLock(int descriptor, Purpose purpose) : descriptor_(descriptor) {
    short const kind = purpose == Purpose::writing ? F_WRLCK : F_RDLCK;
    if (descriptor >= 0) take(descriptor, kind, directory, directoryPatience);
}

DirectoryLock::~DirectoryLock() {
    if (descriptor_ >= 0) set(descriptor_, F_UNLCK, directory);
}
