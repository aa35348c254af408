// Opening and closing.
#include "Dfs/DfsFile.h"

#include "Dfs/FileHeader.h"
#include "Dfs/RecordText.h"
#include "Dfs/StreamReader.h"
#include "Dfs/VerifyDirectory.h"
#include "support/FileLock.h"
#include "support/Paths.h"
#include "support/Timers.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

constexpr std::string_view slotSizeName = "TimeBufferedBufferSize";

FileMode fileMode(DfsMode mode) noexcept {
    switch (mode) {
    case DfsMode::read: return FileMode::read;
    case DfsMode::update: return FileMode::update;
    default: return FileMode::create;
    }
}

// A file that somebody else writes does not open for writing. A new one is emptied only when it is held.
std::unique_ptr<OpenFile> openHeld(YString const & path, DfsMode mode) {
    auto file = files().open(path, fileMode(mode));
    if (file == nullptr) return nullptr;
    bool const held = mode == DfsMode::create   ? lockForWriting(file->descriptor())
                      : mode == DfsMode::update ? lockForUpdating(file->descriptor())
                                                : true;
    if (!held) errno = EBUSY;
    bool const isNew = mode == DfsMode::create || mode == DfsMode::replace;
    return held && (!isNew || file->truncate()) ? std::move(file) : nullptr;
}

} // namespace

DfsFile::DfsFile(YString const & path, DfsMode mode) : DfsFile(openHeld(path, mode), path, mode) {}

DfsFile::DfsFile(std::unique_ptr<OpenFile> file, YString const & path, DfsMode mode, YString const & place)
    : openError_(file == nullptr ? errno : 0), mode_(mode), path_(sp_GetFullPath(path)), place_(place),
      file_(std::move(file)) {}

DfsFile::~DfsFile() {
    FileIdentity const own = deleteOnClose_ && file_ != nullptr ? file_->identity() : FileIdentity();
    close();
    if (!place_.empty())
        files().remove(place_);
    else if (deleteOnClose_)
        removeFile(path_, own);
}

bool DfsFile::takeName() {
    bool const mustStay = file_ != nullptr && files().open(path_, FileMode::read) != nullptr; // one closed is synced
    if (!flushAll() || (mustStay && !sync()) || writeFailed_ || !files().replace(place_, path_)) return false;
    place_ = YString();
    return true;
}

// Without memory the file is not complete.
bool DfsFile::close() noexcept {
    if (file_ == nullptr) return !writeFailed_;
    try {
        flushAll();
    } catch (...) {
        failed();
    }
    isReady_ = false;
    file_.reset();
    return !writeFailed_;
}

DfsStatus DfsFile::openOrCreate(bool verify) {
    bool const isNew = mode_ == DfsMode::create || mode_ == DfsMode::replace;
    DfsStatus const status = isNew ? create() : read(verify);
    isReady_ = isUsable(status);
    return status;
}

// --- a new file

DfsStatus DfsFile::create() {
    tail_.emplace(*file_, 0);
    std::string const header = makeFileHeader(*findVersion("7.0"));
    std::int64_t position;
    isReady_ = tail_->append(header, {}, &position) && directory_.create(*tail_) && writeSettings() && flushDirectory();
    if (isReady_) return DfsStatus::good;
    failed();
    return DfsStatus::unreadable;
}

bool DfsFile::writeSettings() {
    isReady_ = true;
    RecordText settings;
    settings.string(slotSizeName).number(timeBufferSize_);
    return openStream(settingsStream, StreamType::bytes) && write(settingsStream, settings.data(), settings.size()) &&
           flush(settingsStream);
}

// --- an existing one

DfsStatus DfsFile::read(bool verify) {
    DfsStatus const own = readDirectory(verify);
    if (!isUsable(own)) return own;
    if (!readSettings()) return DfsStatus::unreadable;
    DfsStatus const linked = openLinks();
    if (!isUsable(linked)) return linked;
    if (mode_ == DfsMode::update && !prepareUpdate(own)) return DfsStatus::overlap;
    return own != DfsStatus::good ? own : linked;
}

// While nobody writes the directory; the data that it tells of are in the file already.
DfsStatus DfsFile::readDirectory(bool verify) {
    DirectoryLock const lock(file_->descriptor(), DirectoryLock::Purpose::reading);
    FileHeader header;
    switch (readFileHeader(*file_, &header)) {
    case HeaderResult::good: break;
    case HeaderResult::unknownVersion: return DfsStatus::unknownVersion;
    case HeaderResult::refusedVersion: return DfsStatus::refusedVersion;
    default: return DfsStatus::unreadable;
    }
    if (header.version->code != streamVersion) return DfsStatus::refusedVersion;
    switch (directory_.load(*file_, header.bytes)) {
    case DfsDirectory::LoadResult::unreadable: return DfsStatus::unreadable;
    case DfsDirectory::LoadResult::overlap: return DfsStatus::clash;
    case DfsDirectory::LoadResult::impossibleExtent: return DfsStatus::overlap;
    case DfsDirectory::LoadResult::good: break;
    }
    fileSize_ = file_->size();
    DfsDirectory::Block const & first = directory_.blocks().front();
    auto const dataStart = static_cast<std::uint64_t>(first.position) +
                           static_cast<std::uint64_t>(first.entryCount) * DirectoryEntry::bytes;
    return verify ? static_cast<DfsStatus>(verifyDirectory(directory_, dataStart, fileSize_)) : DfsStatus::good;
}

bool DfsFile::readSettings() {
    StreamReader reader(*this, settingsStream);
    YString name;
    if (!reader.readString(&name) || name != YString(slotSizeName)) return false;
    return reader.readNumber(&timeBufferSize_) && timeBufferSize_ >= 1 && timeBufferSize_ <= SlotAllocator::largestSlot;
}

// What is written must not come to lie where lost data were, nor may a slot be larger than slots are.
bool DfsFile::prepareUpdate(DfsStatus own) {
    if (own == DfsStatus::beyondTheEnd) return false;
    bool slotsFit = true;
    bool allPresent = true;
    directory_.forEach([&](DirectoryEntry const & entry) {
        bool const isOpenSlot = entry.type == StreamType::timeBuffered && entry.fileIndex == 0 && entry.next <= 0;
        slotsFit = slotsFit && !(isOpenSlot && entry.size > timeBufferSize_);
        auto const end = static_cast<std::uint64_t>(entry.offset + entry.size * entry.runLength);
        allPresent = allPresent && (entry.fileIndex != 0 || entry.size == 0 || end <= fileSize_);
    });
    for (DfsDirectory::Block const & block : directory_.blocks()) {
        auto const bytes = static_cast<std::uint64_t>(block.entryCount) * DirectoryEntry::bytes;
        auto const position = static_cast<std::uint64_t>(block.position);
        allPresent = allPresent && bytes <= fileSize_ && position <= fileSize_ - bytes;
    }
    if (slotsFit && allPresent) tail_.emplace(*file_, fileSize_);
    return tail_.has_value();
}

// --- writing at large

bool DfsFile::failed() noexcept {
    writeFailed_ = true;
    return false;
}

bool DfsFile::flushDirectory() {
    DirectoryLock const lock(file_->descriptor(), DirectoryLock::Purpose::writing);
    return directory_.flush(*file_) || failed();
}

bool DfsFile::flushAll() {
    return !isWritable() || (writeChangedSlots() && flushByteStreams() && flushDirectory());
}

bool DfsFile::sync() {
    return (file_ != nullptr && file_->sync()) || failed();
}

bool DfsFile::update() {
    TvTimer const timer("update");
    return isWritable() && writeChangedSlots() && flushDirectory();
}

bool DfsFile::flushByteStreams() {
    std::vector<StreamWriter *> waiting;
    for (auto & [id, writer] : writers_)
        if (writer->type == StreamType::bytes && writer->length() != 0) waiting.push_back(writer.get());
    std::sort(waiting.begin(), waiting.end(),
              [](StreamWriter const * a, StreamWriter const * b) { return a->stream < b->stream; });
    bool whole = true;
    for (StreamWriter * writer : waiting) whole = writeExtent(*writer, {}) && whole;
    return whole;
}

bool DfsFile::writeChangedSlots() {
    std::sort(changed_.begin(), changed_.end(), [this](StreamWriter const * a, StreamWriter const * b) {
        return directory_.extent(a->extent)->offset < directory_.extent(b->extent)->offset;
    });
    for (StreamWriter * writer : changed_)
        if (!writeSlots(*writer)) return failed();
    for (StreamWriter * writer : changed_) writer->changed = false;
    changed_.clear();
    return true;
}
