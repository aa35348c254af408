#include "Import/OutputFile.h"

#include "DataFiles/DataFiles.h"
#include "DataFiles/StreamBacking.h"
#include "Dfs/FileHeader.h"

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

void OutputFile::attachTo(Group & group) {
    if (!isWanted()) return;
    if (mayWrite(path_, replaces_)) file_ = createDataFileBeside(group, path_);
    if (file_ == nullptr) messages_->warning("Cannot create data file '%s'. The data are kept in memory", path_);
}

void OutputFile::finish() {
    if (file_ != nullptr && !file_->takeName()) throwWriteFailure(file_->path());
}
