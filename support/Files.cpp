#include "support/Files.h"

#include "support/OpenForReading.h"
#include "support/Paths.h"
#include "support/Streams.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isDirectory(struct stat const & status) {
    return S_ISDIR(status.st_mode);
}

bool holdsNul(YString const & path) {
    return path.view().find('\0') != std::string_view::npos;
}

int refuse(int error) {
    errno = error;
    return -1;
}

int readError(YString const & path) {
    int const descriptor = openForReading(path);
    if (descriptor < 0) return errno;
    close(descriptor);
    return 0;
}

// Asks without touching the file: a new one can be made where its directory can be written.
int writeError(YString const & path) {
    struct stat status {};
    if (holdsNul(path)) return ENOENT;
    if (stat(path.c_str(), &status) != 0)
        return errno == ENOENT && access(sp_GetDirFromPath(path).c_str(), W_OK | X_OK) == 0 ? 0 : errno;
    if (isDirectory(status)) return EISDIR;
    return access(path.c_str(), W_OK) == 0 ? 0 : errno;
}

} // namespace

int openForReading(YString const & path) noexcept {
    if (holdsNul(path)) return refuse(ENOENT);
    int const descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); // a pipe would wait for a writer
    struct stat status {};
    if (descriptor < 0) return -1;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) return descriptor;
    close(descriptor);
    return refuse(isDirectory(status) ? EISDIR : ESPIPE);
}

bool sp_FileOpenForensicMsg(YString const & path, int mode, YString * text) {
    bool const reads = mode == tvfstream::modeRead || mode == tvfstream::modeReadUntranslated;
    int const error = reads ? readError(path) : writeError(path);
    if (error != 0) *text = fileOpenFailureText(path, error);
    return error != 0;
}

YString fileOpenFailureText(YString const & path, int error) {
    char const * const reason = strerrordesc_np(error); // the untranslated text
    return YString::joined("Cannot open file '", {path, "': ", reason != nullptr ? reason : "unknown error"});
}

bool sp_ExistFile(YString const & path) {
    struct stat status {};
    return !holdsNul(path) && stat(path.c_str(), &status) == 0 && !isDirectory(status);
}
