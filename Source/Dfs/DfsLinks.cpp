// Streams that go on in other files.
#include "Dfs/DfsFile.h"

#include "Dfs/FileHeader.h"
#include "Dfs/RecordText.h"
#include "Dfs/StreamReader.h"
#include "support/Paths.h"

#include <algorithm>

namespace {

constexpr std::size_t longestPath = 4096;

// Links name files from the place of the file that they are in.
bool isAcceptable(YString const & relativePath) noexcept {
    std::string_view const path = relativePath;
    return !path.empty() && path.size() <= longestPath && sp_IsRelativePath(relativePath) &&
           path.find('\0') == std::string_view::npos;
}

// Nothing but a data file of streams is linked, so that no other bytes of the machine can be had through a link.
bool isStreamFile(OpenFile & file) {
    FileHeader header;
    return readFileHeader(file, &header) == HeaderResult::good && header.version->code == streamVersion;
}

} // namespace

bool DfsFile::isKnown(FileIdentity const & identity) {
    return file_->identity() == identity ||
           std::any_of(links_.begin(), links_.end(), [&](Link const & link) { return link.identity == identity; });
}

bool DfsFile::openLink(YString const & relativePath) {
    if (links_.size() >= mostLinks || !isAcceptable(relativePath)) return false;
    auto file = files().open(YString::joined(sp_GetDirFromPath(path_), {"/", relativePath}), FileMode::read);
    if (file == nullptr || isKnown(file->identity()) || !isStreamFile(*file)) return false;
    FileIdentity const identity = file->identity();
    std::uint64_t const size = file->size();
    links_.push_back({std::move(file), relativePath, identity, size, 0});
    return true;
}

// --- reading the table

DfsStatus DfsFile::openLinks() {
    StreamReader reader(*this, linkStream);
    std::int32_t index;
    YString path;
    while (reader.readNumber(&index) && reader.readString(&path)) {
        bool const inOrder = index == static_cast<std::int32_t>(links_.size()) + 1;
        if (inOrder && openLink(path)) continue;
        links_.clear();
        return DfsStatus::linkMissing;
    }
    linksInTable_ = links_.size();
    return allLinkedBytesPresent() ? DfsStatus::good : DfsStatus::beyondTheEnd;
}

bool DfsFile::allLinkedBytesPresent() const {
    bool whole = true;
    directory_.forEach([&](DirectoryEntry const & entry) {
        if (entry.fileIndex == 0 || entry.size == 0) return;
        auto const end = static_cast<std::uint64_t>(entry.offset + entry.size * entry.runLength);
        whole = whole && entry.fileIndex <= links_.size() && end <= links_[entry.fileIndex - 1].size;
    });
    return whole;
}

// --- making links

// The files that the other one is linked with become links of this one.
bool DfsFile::openLinksTo(DfsFile const & other) {
    if (!openLink(sp_RelativePath(other.path_, sp_GetDirFromPath(path_)))) return false;
    for (Link const & theirs : other.links_) {
        YString const path = YString::joined(sp_GetDirFromPath(other.path_), {"/", theirs.path});
        if (!openLink(sp_RelativePath(path, sp_GetDirFromPath(path_)))) return false;
    }
    return true;
}

int DfsFile::addLink(DfsFile & other) {
    if (file_ == nullptr || other.file_ == nullptr || isKnown(other.file_->identity())) return alreadyLinked;
    if (!directory_.hasIdsFor(other.directory_)) return notLinkable;
    if (!other.flushAll()) return notLinkable; // what waits there would not be seen here
    std::size_t const before = links_.size();
    std::int64_t base = 0;
    try {
        auto const theirs = static_cast<std::uint32_t>(other.links_.size());
        if (openLinksTo(other)) {
            base = directory_.merge(other.directory_, theirs, static_cast<std::uint32_t>(before + 1), tail());
            if (base == 0) failed();
        }
    } catch (...) {
        links_.resize(before);
        throw;
    }
    if (base == 0) {
        links_.resize(before);
        return notLinkable;
    }
    links_[before].idBase = base;
    return static_cast<int>(before);
}

bool DfsFile::isLink(int link, DfsFile const & other) const {
    if (link < 0 || static_cast<std::size_t>(link) >= links_.size() || other.file_ == nullptr) return false;
    return links_[static_cast<std::size_t>(link)].identity == other.file_->identity();
}

bool DfsFile::spliceLinkedStream(std::int64_t id, int link, std::int64_t otherId) {
    if (link < 0 || static_cast<std::size_t>(link) >= links_.size() || !flush(id)) return false;
    auto last = lastExtent(id);
    std::int64_t const head = links_[static_cast<std::size_t>(link)].idBase + otherId;
    if (!last || !exists(head) || last->type != StreamType::bytes) return false;
    bool const isClosed = last->fileIndex != 0 || last->size > 0 || last->next > 0;
    if (isClosed && !chainNew(&*last)) return false;
    writers_.erase(id);
    last->next = head;
    return directory_.set(*last) || failed();
}

bool DfsFile::rewriteLinkTable() {
    if (!isWritable()) return false;
    RecordText table;
    for (std::size_t i = linksInTable_; i < links_.size(); ++i)
        table.number(static_cast<std::int32_t>(i + 1)).string(links_[i].path);
    if (table.size() != 0 && !(openStream(linkStream, StreamType::bytes) &&
                               write(linkStream, table.data(), table.size()) && flush(linkStream)))
        return false;
    linksInTable_ = links_.size();
    return flushByteStreams() && update();
}
