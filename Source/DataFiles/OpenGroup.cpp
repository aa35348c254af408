// Data files become groups.
#include "DataFiles/DataFiles.h"

#include "DataFiles/BootRecords.h"
#include "DataFiles/NativeDataFile.h"
#include "Dfs/FileHeader.h"
#include "support/FileLock.h"
#include "support/Files.h"
#include "support/ReportingMemory.h"
#include "torvelan/Evaluate.h"

#include <cerrno>
#include <cmath>

namespace {

HeaderResult readVersion(YString const & path, FileVersion const ** version, int * openError) {
    auto const file = files().open(path, FileMode::read);
    *openError = file == nullptr ? errno : 0;
    if (file == nullptr) return HeaderResult::notDataFile;
    FileHeader header;
    HeaderResult const result = readFileHeader(*file, &header);
    *version = header.version;
    return result;
}

char const * headerWords(HeaderResult result) noexcept {
    switch (result) {
    case HeaderResult::notDataFile: return "file is not a Torvelan data file";
    case HeaderResult::unknownVersion: return "version not recognised. Possibly created by a later program version";
    case HeaderResult::refusedVersion: return "file version is a format that is no longer supported";
    default: return nullptr;
    }
}

// A writer holds its file; this asks only.
bool isBeingWritten(YString const & path) {
    FileLock lock;
    return !lock.lock(path);
}

char const * statusWords(DfsStatus status) noexcept {
    switch (status) {
    case DfsStatus::unreadable: return "could not read file header. File may be corrupted";
    case DfsStatus::linkMissing: return "one or more linked data files are missing or could not be opened";
    case DfsStatus::clash:
    case DfsStatus::overlap: return "inconsistent data. File may be corrupted";
    default: return isUsable(status) ? nullptr : unexpectedWords;
    }
}

bool setUp(DfsFile & file, YString const & path, MessageHandler & messages) {
    DfsStatus const status = file.openOrCreate(true);
    if (char const * words = statusWords(status)) return tellLoadFailed(path, words, messages);
    if (status != DfsStatus::good)
        messages.warning(
            "Data file '%s' has some missing data. Some vectors may be truncated or missing. This may have "
            "been caused by an abnormal simulation termination",
            path);
    return true;
}

// Words for a group that has not been restored; null when it has.
char const * bootWords(BootResult result) noexcept {
    switch (result) {
    case BootResult::good:
    case BootResult::laterRevision: return nullptr;
    case BootResult::laterVersion: return "file created with a later program version";
    case BootResult::notRestored: return notRestoredWords;
    }
    return unexpectedWords;
}

// The number of the run that the current group has stored.
bool evaluateRunId(double * value) {
    return vec_Evaluate(value, ":$$RunId", ScpParseContext(nullptr)) == VEC_EVAL_OK;
}

bool knowsItsRun() {
    double value;
    return evaluateRunId(&value);
}

// 0 when there is none.
std::uint32_t storedRunId() {
    double value = 0;
    bool const isRunId = evaluateRunId(&value) && std::isfinite(value) && value >= 1 && value <= UINT32_MAX;
    return isRunId ? static_cast<std::uint32_t>(value) : 0;
}

bool restore(YRef<DfsFile> const & file, YString const & path, VecOpenGroupOptions options, NameArray * names,
             MessageHandler & messages) {
    UnlistedGroup group(makeUnlistedGroup(YString()));
    group->dataFile = std::make_shared<NativeDataFile>(file);
    setFileStays(*group, !options.temporary);
    YString storedName;
    BootResult const result = readBoot(*group, file, options.merge, &storedName, messages);
    if (char const * words = bootWords(result)) return tellLoadFailed(path, words, messages);
    if (result == BootResult::laterRevision)
        messages.warning("Data file '%s': file created with a later program version. Some data may be missing", path);
    if (!options.assignRunId && !knowsItsRun()) group->hasRealData = true;
    finishRestored(std::move(group), storedName, options, names);
    return true;
}

bool openCurrentFile(YString const & path, VecOpenGroupOptions options, NameArray * names, MessageHandler & messages) {
    auto const file = std::make_shared<DfsFile>(path, options.update ? DfsMode::update : DfsMode::read);
    if (!file->isOpen()) return tellWhyNotOpen(path, file->openError(), messages);
    return setUp(*file, path, messages) && restore(file, path, options, names, messages);
}

bool openAny(YString const & path, VecOpenGroupOptions options, NameArray * names, MessageHandler & messages) {
    FileVersion const * version = nullptr;
    int openError = 0;
    HeaderResult const header = readVersion(path, &version, &openError);
    if (openError != 0) return tellWhyNotOpen(path, openError, messages);
    if (char const * words = headerWords(header)) return tellLoadFailed(path, words, messages);
    if (!options.ignoreLock && isBeingWritten(path)) return tellWhyNotOpen(path, EBUSY, messages);
    auto const open = version->code < streamVersion ? openOlderFile : openCurrentFile;
    return open(path, options, names, messages);
}

void assignRun(Group * group) {
    std::uint32_t const stored = storedRunId();
    setRunId(group, stored != 0 ? stored : newRunId());
    group->hasRealData = true;
}

// In place of the group that has the stored name. Answers the one that is left.
Group * mergeInto(UnlistedGroup & group, YString const & storedName) {
    Group * const known = group->name == storedName ? nullptr : findGroup(storedName);
    if (known == nullptr) return group.get();
    mergeGroup(*known, *group);
    group.reset();
    return known;
}

bool openFile(YString const & path, VecOpenGroupOptions options, NameArray * names, YRef<MessageHandler> messages) {
    if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
    return reportingMemory([&] { return openAny(path, options, names, *messages); });
}

} // namespace

bool tellWhyNotOpen(YString const & path, int error, MessageHandler & messages) {
    YString reason;
    if (error == EBUSY)
        messages.error("Cannot read data file '%s' as it is currently being updated", path);
    else if (sp_FileOpenForensicMsg(path, 0, &reason))
        messages.error("%s", reason);
    else
        messages.error("%s", fileOpenFailureText(path, error));
    return false;
}

bool tellLoadFailed(YString const & path, char const * words, MessageHandler & messages) {
    messages.error("Data file '%s' load failed: %s", path, words);
    return false;
}

void setFileStays(Group & group, bool stays) noexcept {
    group.keepDataFile = stays;
    group.dataFileTemporary = !stays;
}

void finishRestored(UnlistedGroup group, YString const & storedName, VecOpenGroupOptions options, NameArray * names) {
    if (options.assignRunId) assignRun(group.get());
    Group const * const left = options.merge ? mergeInto(group, storedName) : group.get();
    names->push_back(left->name);
    group.release();
}

bool vec_OpenGroup(YString const & path, VecOpenGroupOptions options, YString * groupName,
                   YRef<MessageHandler> messages) {
    NameArray names;
    bool const opened = openFile(path, options, &names, messages);
    if (groupName != nullptr && !names.empty()) *groupName = names.back();
    return opened;
}

Group * openGroupFile(YString const & path, YRef<MessageHandler> const & messages) {
    NameArray names;
    bool const opened = openFile(path, VecOpenGroupOptions(), &names, messages);
    Group * const last = opened ? findGroup(names.back()) : nullptr;
    for (YString const & name : names)
        if (Group * const group = findGroup(name); group != nullptr && group != last) destroyGroup(group);
    return last;
}
