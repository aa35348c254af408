#include "Import/OutputFile.h"

#include "Groups/GroupStore.h"
#include "support/Streams.h"

#include <sys/stat.h>

namespace {

bool isNativeDataFile(YString const & path) {
    constexpr std::string_view magic("\x11\0\0\0Torvelan datafile", 21);
    char start[magic.size()];
    tvfstream stream(path, tvfstream::modeReadUntranslated, false, false);
    return std::string_view(start, stream.read(start, sizeof start)) == magic;
}

bool mayWrite(YString const & path, OutputFile::Replaces replaces) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) return true; // nothing there, or the maker of the file finds out
    return S_ISREG(status.st_mode) && (replaces == OutputFile::Replaces::any || isNativeDataFile(path));
}

} // namespace

void OutputFile::attachTo(Group & group) const {
    if (!isWanted()) return;
    if (mayWrite(path_, replaces_) && createDataFile(group, path_, false, messages_) == VEC_OK) return;
    messages_->warning("Cannot create data file '%s'. The data are kept in memory", path_);
}
