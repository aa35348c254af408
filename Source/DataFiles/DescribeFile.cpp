// How a data file is built, in words.
#include "DataFiles/DataFiles.h"

#include "DataFiles/BootRecords.h"
#include "Dfs/FileHeader.h"
#include "Dfs/StreamReader.h"

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

namespace {

struct StatusText {
    DfsStatus status;
    char const * text;
};
constexpr StatusText statusTexts[] = {
    {DfsStatus::good, "none"},
    {DfsStatus::unknownVersion, "version not recognised"},
    {DfsStatus::refusedVersion, "not a file of streams"},
    {DfsStatus::unreadable, "header or directory unreadable"},
    {DfsStatus::linkMissing, "a linked file is missing"},
    {DfsStatus::clash, "streams clash"},
    {DfsStatus::overlap, "extents overlap"},
    {DfsStatus::missingNext, "an extent is missing from the directory"},
    {DfsStatus::beyondTheEnd, "extents lie behind the end of the file"},
};

char const * textOf(DfsStatus status) noexcept {
    for (StatusText const & row : statusTexts)
        if (row.status == status) return row.text;
    return "unknown";
}

// What stands in the boot stream, as far as it can be read.
struct BootTable {
    std::vector<std::pair<YString, std::int32_t>> pairs;
    std::map<std::int64_t, YString> names; // of streams
    bool isWhole = false;
};

BootTable readBootTable(DfsFile & file) {
    BootTable table;
    table.names = {{DfsFile::linkStream, "links"}, {DfsFile::settingsStream, "settings"}, {bootStream, "boot"}};
    StreamReader reader(file, bootStream);
    YString word;
    std::int32_t value;
    while (reader.readString(&word)) {
        table.isWhole = word.view() == endKey;
        if (table.isWhole || !reader.readNumber(&value)) break;
        table.pairs.emplace_back(word, value);
        if (word.view() != versionKey && word.view() != revisionKey) table.names.emplace(value, word);
    }
    return table;
}

struct StreamFacts {
    StreamType type = StreamType::bytes;
    std::int64_t extents = 0;
    bool isLinked = false;
    bool endsEarly = false;
};

class Description {
public:
    Description(DfsFile & file_, MessageHandler & out_) : file(file_), out(out_) {}

    void tell(YString const & path, DfsStatus status) {
        out.info("File: %s", path);
        out.info("Damage: %s", textOf(status));
        tellDirectory();
        if (!isUsable(status)) return; // its streams may have no end
        tellLinks();
        tellBoot();
        tellStreams();
    }

private:
    static constexpr std::size_t mostStreams = 1'000'000;   // that are listed
    static constexpr std::int64_t mostExtents = 10'000'000; // that are counted of a stream

    void tellDirectory() {
        DfsDirectory const & directory = file.directory();
        std::int64_t runs = 0, extents = 0;
        directory.forEach([&](DirectoryEntry const & entry) {
            runs += entry.isRun;
            extents += entry.runLength;
        });
        out.info("Slot size: %d", file.timeBufferSize());
        out.info("Directory: %d entries in use, %d of them runs, for %d extents", directory.liveEntries(), runs,
                 extents);
        for (DfsDirectory::Block const & block : directory.blocks())
            out.info("  block at %d: %d entries", block.position, block.entryCount);
    }

    void tellLinks() {
        for (DfsFile::Link const & link : file.links()) out.info("Link: %s (%d bytes)", link.path, link.size);
    }

    void tellBoot() {
        BootTable const table = readBootTable(file);
        names = table.names;
        out.info("Boot records%s:", table.isWhole ? "" : " (damaged)");
        for (auto const & [word, value] : table.pairs) out.info("  %s %d", word, value);
    }

    // A stream is known by its first extent, which no other one has as its successor.
    void tellStreams() {
        std::vector<std::int64_t> heads = streamHeads();
        out.info("Streams: %d", static_cast<std::int64_t>(heads.size()));
        for (std::int64_t id : heads) {
            StreamFacts const facts = follow(id);
            auto const name = names.find(id);
            YString const remark =
                YString::joined(name != names.end() ? name->second : YString(),
                                {facts.isLinked ? " linked" : "", facts.endsEarly ? " cut off" : ""});
            YString const kind = facts.type == StreamType::bytes ? "bytes" : "slots";
            out.info(
                "  %d %s: %s", id, kind,
                YString::joined(YString(file.length(id)), {" bytes in ", YString(facts.extents), " extents ", remark}));
        }
    }

    std::vector<std::int64_t> streamHeads() const {
        struct Range {
            std::int64_t first, end;
        };
        std::vector<Range> claimed;
        file.directory().forEach([&](DirectoryEntry const & entry) {
            if (entry.next > 0) claimed.push_back({entry.next, entry.next + entry.runLength});
        });
        std::sort(claimed.begin(), claimed.end(), [](Range const & a, Range const & b) { return a.first < b.first; });
        std::vector<std::int64_t> heads;
        file.directory().forEach([&](DirectoryEntry const & entry) {
            if (entry.fileIndex != 0) return;
            for (std::int64_t id = entry.id; id < entry.endId(); ++id) {
                auto const behind = std::upper_bound(claimed.begin(), claimed.end(), id,
                                                     [](std::int64_t i, Range const & r) { return i < r.first; });
                bool const isClaimed = behind != claimed.begin() && std::prev(behind)->end > id;
                if (isClaimed)
                    id = std::prev(behind)->end - 1;
                else if (heads.size() < mostStreams)
                    heads.push_back(id);
                else
                    return;
            }
        });
        std::sort(heads.begin(), heads.end());
        return heads;
    }

    StreamFacts follow(std::int64_t id) const {
        StreamFacts facts;
        for (auto extent = file.directory().extent(id); extent && facts.extents < mostExtents;
             extent = file.directory().extent(extent->next)) {
            if (facts.extents++ == 0) facts.type = extent->type;
            facts.isLinked = facts.isLinked || extent->fileIndex != 0;
            facts.endsEarly = extent->next > 0 && !file.directory().extent(extent->next);
        }
        return facts;
    }

    DfsFile & file;
    MessageHandler & out;
    std::map<std::int64_t, YString> names;
};

} // namespace

bool vec_DescribeDataFile(YString const & path, YRef<MessageHandler> messages) {
    if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
    DfsFile file(path, DfsMode::read);
    if (!file.isOpen()) return tellWhyNotOpen(path, file.openError(), *messages);
    DfsStatus const status = file.openOrCreate(true);
    if (status == DfsStatus::refusedVersion || status == DfsStatus::unknownVersion || status == DfsStatus::unreadable)
        return tellLoadFailed(path, textOf(status), *messages);
    Description(file, *messages).tell(path, status);
    return true;
}
