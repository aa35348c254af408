// The library reads without a word, so a timer looks where it stands in the file. What the timer's signal calls is safe
// at any moment: a few calls of the system, and no memory of its own.
#include "ReadingProgress.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

struct {
    struct stat file;
    char text[128]; // what stands ahead of the percentage
    std::size_t textBytes;
    volatile std::sig_atomic_t shown = -1; // percent; negative: the line is not there
} state;

void put(char const * bytes, std::size_t n) {
    [[maybe_unused]] ssize_t const written = write(STDERR_FILENO, bytes, n); // a line more or less
}

// Where the file is open, at any descriptor of the first few; -1 when it is not.
off_t placeInFile() {
    constexpr int mostDescriptors = 64;
    for (int descriptor = STDERR_FILENO + 1; descriptor < mostDescriptors; ++descriptor) {
        struct stat status;
        if (fstat(descriptor, &status) == 0 && status.st_dev == state.file.st_dev && status.st_ino == state.file.st_ino)
            return lseek(descriptor, 0, SEEK_CUR);
    }
    return -1;
}

void showPercent(int percent) {
    if (percent < 0 || percent > 100 || percent == state.shown) return;
    char const digits[] = {percent == 100 ? '1' : ' ', static_cast<char>('0' + percent / 10 % 10),
                           static_cast<char>('0' + percent % 10), ' ', '%'};
    put(state.text, state.textBytes);
    put(digits, sizeof digits);
    state.shown = percent;
}

void onTimer(int) {
    int const error = errno;
    auto const place = static_cast<double>(placeInFile());
    showPercent(place < 0 ? -1 : static_cast<int>(place * 100 / static_cast<double>(state.file.st_size)));
    errno = error;
}

void setTimer(suseconds_t interval) {
    itimerval const timer{{0, interval}, {0, interval}};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

} // namespace

ReadingProgress::ReadingProgress(std::string const & path) {
    constexpr suseconds_t interval = 100'000;
    constexpr off_t large = 16'000'000; // for which somebody will have to wait
    if (isatty(STDERR_FILENO) == 0 || stat(path.c_str(), &state.file) != 0 || state.file.st_size == 0) return;
    std::string const name = std::filesystem::path(path).filename().string();
    int const length = std::snprintf(state.text, sizeof state.text, "\r%.40s: reading %.1f MB, ", name.c_str(),
                                     static_cast<double>(state.file.st_size) / 1e6);
    state.textBytes = length > 0 ? static_cast<std::size_t>(length) : 0;
    struct sigaction action {};
    action.sa_handler = onTimer;
    action.sa_flags = SA_RESTART;
    sigaction(SIGALRM, &action, nullptr);
    if (state.file.st_size >= large) showPercent(0);
    setTimer(interval);
}

ReadingProgress::~ReadingProgress() {
    setTimer(0);
    giveWay();
}

void ReadingProgress::giveWay() noexcept {
    constexpr char clearLine[] = "\r\x1b[K";
    if (state.shown < 0) return;
    put(clearLine, sizeof clearLine - 1);
    state.shown = -1;
}
