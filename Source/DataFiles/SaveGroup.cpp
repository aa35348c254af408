// Groups become data files.
#include "DataFiles/DataFiles.h"

#include "DataFiles/BootRecords.h"
#include "DataFiles/NativeDataFile.h"
#include "Groups/LoosePool.h"
#include "support/FileLock.h"
#include "support/Paths.h"

#include <new>

namespace {

// Whether a file that exists may be written. One that a run writes may not, if asked.
bool mayReplace(YString const & path, bool refuseHeld) {
    auto const file = files().open(path, FileMode::update);
    return file != nullptr && (!refuseHeld || lockForWriting(file->descriptor()));
}

bool writeAll(Group & group, YRef<DfsFile> const & file) {
    return isUsable(file->openOrCreate(false)) && writeBoot(group, file, BootWriting::saving) && file->flushAll() &&
           file->sync() && file->close();
}

bool tellNotSaved(YString const & path, MessageHandler & messages) {
    messages.error("Write failure to data file %s", path);
    return false;
}

// Beside the file that it is to replace: that one is whole until the new one is.
bool saveBeside(Group & group, YString const & path, std::unique_ptr<OpenFile> file, YString const & beside,
                MessageHandler & messages) {
    auto const streams = std::make_shared<DfsFile>(std::move(file), beside, DfsMode::replace);
    bool saved = false;
    try {
        saved = writeAll(group, streams) && files().replace(beside, path);
    } catch (...) {
        streams->close();
        files().remove(beside);
        throw;
    }
    if (saved) return true;
    streams->close();
    files().remove(beside);
    return tellNotSaved(path, messages);
}

bool save(Group & group, YString const & path, bool refuseHeld, MessageHandler & messages) {
    YString const target = sp_FollowLinks(path);
    bool const exists = sp_ExistPath(target);
    if (exists && !mayReplace(target, refuseHeld)) return true;
    YString beside;
    auto file = files().openUnique(YString::joined(target, {".new-"}), &beside);
    if (file != nullptr) return saveBeside(group, target, std::move(file), beside, messages);
    return !exists || tellNotSaved(path, messages);
}

// Makes the data file of a run.
VEC_ERROR createDataFile(Group & group, YString const & unixPath, YRef<MessageHandler> const &) {
    YString const path = sp_ConvertUnixToLocal(unixPath);
    if (group.dataFile != nullptr) return VEC_HAS_DATA_FILE;
    auto file = std::make_shared<DfsFile>(path, DfsMode::create);
    if (!file->isOpen()) {
        LoosePool::sweep(); // vectors that nobody has any more may hold the file
        file = std::make_shared<DfsFile>(path, DfsMode::create);
    }
    if (!file->isOpen() || !isUsable(file->openOrCreate(false))) return VEC_NO_DATA_FILE;
    if (!writeBoot(group, file, BootWriting::run)) return VEC_BOOT_RECORD_FAILED;
    group.dataFile = std::make_shared<NativeDataFile>(file);
    return VEC_OK;
}

[[maybe_unused]] bool const registered = (dataFileMakers() = {createDataFile, openGroupFile}, true);

} // namespace

bool vec_SaveGroup(YString const & path, VecSaveGroupOptions options, YRef<MessageHandler> messages) {
    Group * const group = nameSpace().current;
    if (group == nullptr) return false;
    if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
    try {
        return save(*group, path, options.create, *messages);
    } catch (std::bad_alloc const &) {
        throw MemoryException("Vector allocation failed");
    }
}
