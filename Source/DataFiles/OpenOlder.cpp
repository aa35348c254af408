// Files of the versions before streams: one group after the other, each vector with its values.
#include "DataFiles/DataFiles.h"

#include "DataFiles/OlderStream.h"
#include "DataFiles/ReadVectors.h"
#include "DataFiles/VectorFileAccess.h"
#include "Dfs/FileHeader.h"
#include "support/SeededHash.h"
#include "torvelan/Messages.h"

#include <cerrno>
#include <memory>
#include <unordered_map>

namespace {

constexpr std::uint16_t vectorMark = 1;

// Restores one group, from the place where its record begins.
class OlderGroup {
public:
    OlderGroup(OlderStream & stream_, Group & group_) : stream(stream_), group(group_) {}

    bool read(YString * name) {
        YString tag;
        return stream.readString(&tag) && tag.view() == "plot hdr" && stream.readString(&group.title) &&
               stream.readString(&group.date) && stream.readString(name) && readCollection(name) && readLabels() &&
               readVectors();
    }

private:
    bool has(int version) const noexcept { return stream.version() >= version; }

    bool readCollection(YString * name) {
        YString collection;
        if (has(olderLinks) && !stream.readString(&collection)) return false;
        if (collection.beginsWith("#")) collection = YString(collection.view().substr(1));
        if (collection.empty()) return true;
        group.collection = collection;
        *name = YString::joined(collection, {"_", *name});
        return true;
    }

    // Each label knows the place of the next. There are no more of them than bytes.
    bool readLabels() {
        std::int64_t next = 0;
        if (has(olderDivisions) && !stream.readNumber(&next)) return false;
        auto const back = static_cast<std::int64_t>(stream.tell());
        auto labels = std::make_shared<NameArray>();
        constexpr std::uint64_t leastBytes = sizeof(std::uint16_t) + sizeof(std::int64_t);
        for (std::uint64_t bytes = 0; next != 0;) {
            YString label;
            if (bytes > stream.size()) return false;
            if (!stream.seek(next) || !stream.readString(&label) || !stream.readNumber(&next)) return false;
            bytes += label.size() + leastBytes;
            labels->push_back(label);
        }
        if (!labels->empty()) group.labels = labels;
        return stream.seek(back);
    }

    bool readVectors() {
        std::int32_t count = 0;
        std::uint16_t shortCount = 0;
        if (has(olderCounts) ? !stream.readNumber(&count) : !stream.readNumber(&shortCount)) return false;
        if (!has(olderCounts)) count = shortCount;
        if (count <= 0) return false;
        for (; count > 0; --count)
            if (!readVector()) return false;
        showCommonParts(group);
        return true;
    }

    bool readVector() {
        std::uint16_t mark, flags;
        if (!stream.readNumber(&mark) || mark != vectorMark || !stream.readNumber(&flags)) return false;
        auto vector = std::make_unique<dvec>(YString(), &group, PT_UNKNOWN);
        if (!readNamed(*vector) || !readNamed(vector->ref) || group.vectors.contains(vector->name())) return false;
        finishRestoredVector(*vector, flags);
        vector.release()->enterGroup();
        return true;
    }

    bool readNamed(NamedVector & vector) {
        std::uint16_t physType;
        std::int64_t dataId;
        if (!stream.readNumber(&physType) || !stream.readWidened(olderWide, &dataId)) return false;
        auto const [known, isNew] = records.try_emplace(dataId, nullptr);
        if (isNew && !readValues(known->second)) return false;
        if (known->second == nullptr) return false;
        VectorFileAccess::View view;
        bool const hasView = has(olderDivisions);
        if (hasView &&
            !(stream.readWidened(olderWide, &view.firstDivision) && stream.readWidened(olderWide, &view.endDivision)))
            return false;
        YString name;
        if (!stream.readString(&name)) return false;
        vector.setName(name);
        VectorFileAccess::adopt(vector, *known->second);
        vector.setPhysType(restoredPhysType(physType));
        VectorFileAccess::setView(vector, view);
        return true;
    }

    bool readValues(RecordHolder & record) {
        YString tag;
        std::uint16_t type;
        std::int64_t count;
        if (!stream.readString(&tag) || tag.view() != "VecData" || !stream.readNumber(&type) ||
            !stream.readWidened(olderWide, &count))
            return false;
        record.reset(VectorRep::make());
        if (type == VD_STRING) return readStringElements(stream, sizeof(std::uint16_t), count, *record);
        if (type != VD_REAL && type != VD_COMPLEX) return false;
        record->type = static_cast<VD_type>(type);
        auto values = stream.readBlock();
        if (values == nullptr) return false;
        record->block = NewDataBlock::make();
        record->block->attach(std::move(values));
        return !has(olderDivisions) || readDivisions(*record);
    }

    bool readDivisions(VectorRep & record) {
        auto const table = stream.readBlock();
        std::uint8_t multiple;
        if (table == nullptr || !stream.readNumber(&multiple)) return false;
        record.multiple = multiple != 0;
        bool const isWide = has(olderWide);
        bool const read =
            isWide ? appendEntries<std::int64_t>(*table, record) : appendEntries<std::int32_t>(*table, record);
        if (read) labelDivisions(record, record.divisionIndex.count(), group);
        return read;
    }

    // Offsets of elements, the first one 0, that do not fall.
    template <class Entry> bool appendEntries(BlockBacking & table, VectorRep & record) {
        YVector<Entry> entries(table.length() / sizeof(Entry));
        std::uint64_t const bytes = entries.size() * sizeof(Entry);
        if (bytes != table.length() || table.read(entries.data(), bytes, 0) != bytes) return false;
        std::int64_t before = 0;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            std::int64_t const offset = entries[i];
            bool const isEntry = offset >= before &&
                                 offset % static_cast<std::int64_t>(elementWidth(record.type)) == 0 &&
                                 (i != 0 || offset == 0);
            if (!isEntry) return false;
            if (i != 0) record.divisionIndex.append(static_cast<std::uint64_t>(offset));
            before = offset;
        }
        return true;
    }

    OlderStream & stream;
    Group & group;
    std::unordered_map<std::int64_t, RecordHolder, SeededHash> records; // by dataId
};

// The stream of one group, at its record. *next is the place of the next group, 0 for the last one: groups stand one
// behind the other.
std::unique_ptr<OlderStream> openAt(YString const & path, std::int64_t position, VecOpenGroupOptions options,
                                    std::int64_t * next) {
    auto file = files().open(path, options.update ? FileMode::update : FileMode::read);
    FileHeader header;
    if (file == nullptr || readFileHeader(*file, &header) != HeaderResult::good) return nullptr;
    auto stream = std::make_unique<OlderStream>(std::move(file), path, header.version->code);
    std::int64_t const start = position != 0 ? position : static_cast<std::int64_t>(header.bytes);
    *next = 0;
    bool const read =
        stream->seek(start) && (header.version->code < olderLinks || stream->readWidened(INT32_MAX, next));
    bool const goesOn = *next > start && *next < static_cast<std::int64_t>(stream->size());
    return read && (*next == 0 || goesOn) ? std::move(stream) : nullptr;
}

} // namespace

bool openOlderFile(YString const & path, VecOpenGroupOptions options, NameArray * names, MessageHandler & messages) {
    std::int64_t position = 0;
    do {
        if (!files().open(path, options.update ? FileMode::update : FileMode::read))
            return tellWhyNotOpen(path, errno, messages);
        auto stream = openAt(path, position, options, &position);
        if (stream == nullptr) return tellLoadFailed(path, notRestoredWords, messages);
        UnlistedGroup group(makeUnlistedGroup(YString()));
        OlderStream & records = *stream;
        group->oldStream = std::move(stream);
        setFileStays(*group, !options.temporary);
        YString storedName;
        if (!OlderGroup(records, *group).read(&storedName)) return tellLoadFailed(path, notRestoredWords, messages);
        listRestoredGroup(group.get(), storedName, options.merge, messages);
        finishRestored(std::move(group), storedName, options, names);
    } while (position != 0);
    return true;
}
