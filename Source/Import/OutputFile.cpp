#include "Import/OutputFile.h"

#include "Dfs/FileHeader.h"
#include "Groups/GroupStore.h"

#include <sys/stat.h>

namespace {

bool isNativeDataFile(YString const & path) {
    auto const file = files().open(path, FileMode::read);
    FileHeader header;
    return file != nullptr && readFileHeader(*file, &header) != HeaderResult::notDataFile;
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
