// Groups become data files.
#include "DataFiles/DataFiles.h"

#include "DataFiles/BootRecords.h"
#include "DataFiles/NativeDataFile.h"
#include "Groups/LoosePool.h"
#include "support/FileLock.h"
#include "support/Paths.h"
#include "support/ReportingMemory.h"

#include <cerrno>

namespace {

// A file that exists, kept from runs for as long as the object lives; null, with errno set, when it may not be written.
// One that a run writes or continues has EBUSY: the run would go on into a file that nobody finds.
std::unique_ptr<OpenFile> holdForReplacing(YString const & path) {
    auto file = files().open(path, FileMode::update);
    if (file == nullptr || lockForUpdating(file->descriptor())) return file;
    errno = EBUSY;
    return nullptr;
}

// What the name of a file beside another begins with: as much of that one's as leaves room for a number.
YString nameBeside(YString const & path) {
    constexpr std::size_t longestName = 255, room = 20;
    std::string_view const whole = path;
    std::size_t const nameStart = whole.rfind('/') + 1;
    bool const isCut = whole.size() - nameStart <= longestName; // a longer one is no name of a file
    return YString::joined(isCut ? YString(whole.substr(0, nameStart + longestName - room)) : path, {".new-"});
}

// Beside the file that it is to replace: that one is whole until the new one is. Nobody else has it, so that a run can
// always hold it.
YRef<DfsFile> makeBeside(YString const & path, DfsMode mode) {
    YString place;
    auto file = files().openUnique(nameBeside(sp_GetFullPath(path)), &place);
    if (file == nullptr) return nullptr;
    if (mode == DfsMode::create) lockForWriting(file->descriptor());
    try {
        return std::make_shared<DfsFile>(std::move(file), path, mode, place);
    } catch (...) {
        files().remove(place);
        throw;
    }
}

bool writeAll(Group & group, YRef<DfsFile> const & file) {
    return isUsable(file->openOrCreate(false)) && writeBoot(group, file, BootWriting::saving) && file->flushAll() &&
           file->sync() && file->close() && file->takeName();
}

bool tellNotSaved(YString const & path, MessageHandler & messages) {
    messages.error("Write failure to data file %s", path);
    return false;
}

// A path that does not open is not told of. Nor is, to one who wants to hold the new file, that somebody holds it.
bool save(Group & group, YString const & path, VecSaveGroupOptions options, MessageHandler & messages) {
    YString const target = sp_FollowLinks(path);
    auto const older = holdForReplacing(target);
    bool const isHeld = older == nullptr && errno == EBUSY;
    if (isHeld && !options.create) return tellNotSaved(path, messages);
    bool const exists = sp_ExistPath(target);
    if (exists && older == nullptr) return true;
    auto const file = makeBeside(target, DfsMode::replace);
    if (file == nullptr) return !exists || tellNotSaved(path, messages);
    return writeAll(group, file) || tellNotSaved(path, messages);
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

// What writes the old one may be vectors that nobody has any more.
bool mayReplaceRun(YString const & path) {
    if (!sp_ExistPath(path) || holdForReplacing(path) != nullptr) return true;
    LoosePool::sweep();
    return holdForReplacing(path) != nullptr;
}

[[maybe_unused]] bool const registered = (dataFileMakers() = {createDataFile, openGroupFile}, true);

} // namespace

YRef<DfsFile> createDataFileBeside(Group & group, YString const & unixPath) {
    YString const path = sp_ConvertUnixToLocal(unixPath);
    auto file = mayReplaceRun(path) ? makeBeside(path, DfsMode::create) : nullptr;
    if (file == nullptr || !isUsable(file->openOrCreate(false)) || !writeBoot(group, file, BootWriting::run))
        return nullptr;
    group.dataFile = std::make_shared<NativeDataFile>(file);
    return file;
}

bool vec_SaveGroup(YString const & path, VecSaveGroupOptions options, YRef<MessageHandler> messages) {
    Group * const group = nameSpace().current;
    if (group == nullptr) return false;
    if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
    return reportingMemory([&] { return save(*group, path, options, *messages); });
}
