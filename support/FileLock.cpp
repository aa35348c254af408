#include "support/FileLock.h"

#include "support/OpenForReading.h"

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int attemptInterval = 2; // milliseconds
constexpr timespec betweenAttempts{0, attemptInterval * 1'000'000};

enum class Outcome { taken, refused };

Outcome take(int descriptor, short kind) noexcept {
    struct flock whole {};
    whole.l_type = kind;
    whole.l_whence = SEEK_SET;
    if (fcntl(descriptor, F_OFD_SETLK, &whole) == 0) return Outcome::taken;
    return errno == EAGAIN || errno == EACCES ? Outcome::refused : Outcome::taken; // without locks: free
}

} // namespace

FileLock::~FileLock() {
    if (descriptor_ >= 0) close(descriptor_);
}

bool FileLock::lock(YString const & path) {
    int const descriptor = openForReading(path);
    if (descriptor < 0) return false;
    if (take(descriptor, F_RDLCK) == Outcome::refused) {
        close(descriptor);
        return false;
    }
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = descriptor;
    return true;
}

bool lockForWriting(int descriptor, int patience) {
    for (int waited = 0; waited < patience; waited += attemptInterval) {
        if (take(descriptor, F_WRLCK) == Outcome::taken) return true;
        nanosleep(&betweenAttempts, nullptr);
    }
    return false;
}
