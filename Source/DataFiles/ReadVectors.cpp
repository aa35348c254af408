#include "DataFiles/ReadVectors.h"

#include "DataFiles/BootRecords.h"
#include "DataFiles/ContinuedVectors.h"
#include "DataFiles/StreamBacking.h"
#include "DataFiles/VectorFileAccess.h"
#include "Dfs/StreamReader.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_map>

namespace {

constexpr std::uint64_t leastVectorBytes = 47; // of a vector in the directory

class VectorReader {
public:
    VectorReader(Group & group_, YRef<DfsFile> const & file_, std::int64_t stream, StreamClaims & claims_)
        : group(group_), file(file_), reader(*file_, stream), claims(claims_) {}

    bool readAll() {
        std::int32_t count;
        if (!reader.readNumber(&count) || count < 0) return false;
        if (static_cast<std::uint64_t>(count) > reader.left() / leastVectorBytes) return false;
        for (; count > 0; --count)
            if (!readVector()) return false;
        if (file->isWritable() && !fillUpVectors(group, mostToFillUp())) return false;
        showCommonParts(group);
        return true;
    }

private:
    // A multiple of what the file has, so that a small one cannot fill a disk.
    std::uint64_t mostToFillUp() const {
        constexpr std::uint64_t always = 256 << 20, timesOfData = 8;
        std::uint64_t bytes = 0;
        for (auto const & [id, record] : records) bytes += record->bytes();
        return always + timesOfData * bytes;
    }

    bool readVector() {
        YString tag;
        std::int32_t flags;
        if (!reader.readString(&tag) || tag.view() != vectorTag || !reader.readNumber(&flags)) return false;
        auto vector = std::make_unique<dvec>(YString(), &group, PT_UNKNOWN);
        std::uint8_t hasReference;
        if (!readNamed(*vector) || !reader.readNumber(&hasReference)) return false;
        if (hasReference != 0 && !readNamed(vector->ref)) return false;
        if (group.vectors.contains(vector->name())) return false;
        finishRestoredVector(*vector, static_cast<std::uint16_t>(flags));
        vector.release()->enterGroup();
        return true;
    }

    bool readNamed(NamedVector & vector) {
        YString name;
        std::uint16_t physType;
        std::uint64_t dataId;
        if (!reader.readString(&name) || !reader.readNumber(&physType) || !reader.readNumber(&dataId)) return false;
        auto const [known, isNew] = records.try_emplace(dataId, nullptr);
        if (isNew && !readValues(known->second)) return false;
        if (known->second == nullptr) return false;
        VectorFileAccess::View view;
        if (!reader.readNumber(&view.firstDivision) || !reader.readNumber(&view.endDivision)) return false;
        vector.setName(name);
        VectorFileAccess::adopt(vector, *known->second);
        if (isNew)
            known->second->physType = restoredPhysType(physType);
        else
            vector.setPhysType(restoredPhysType(physType));
        VectorFileAccess::setView(vector, view);
        return true;
    }

    bool readValues(RecordHolder & record) {
        std::int64_t data, divisions, count;
        std::int32_t type;
        if (!reader.readNumber(&data) || !reader.readNumber(&divisions) || !reader.readNumber(&type) ||
            !reader.readNumber(&count))
            return false;
        record.reset(VectorRep::make());
        if (type == VD_STRING) return readStringElements(reader, sizeof(std::int32_t), count, *record);
        std::uint8_t multiple;
        if ((type != VD_REAL && type != VD_COMPLEX) || !reader.readNumber(&multiple)) return false;
        if (!claims.claim(data, StreamType::bytes)) return false;
        if (!claims.claim(divisions, StreamType::timeBuffered)) return false;
        record->type = static_cast<VD_type>(type);
        record->multiple = multiple != 0;
        attachStreams(*record, data, divisions);
        return true;
    }

    void attachStreams(VectorRep & record, std::int64_t data, std::int64_t divisions) {
        record.block = NewDataBlock::make();
        record.block->attach(std::make_unique<StreamBacking>(file, data));
        bool const hasDivisions = file->isWritable() || file->length(divisions) != 0;
        if (hasDivisions)
            record.divisionIndex.attach(std::make_unique<StreamBacking>(file, divisions), elementWidth(record.type),
                                        file->path());
        labelDivisions(record, record.divisionIndex.storedCount(), group);
    }

    Group & group;
    YRef<DfsFile> const & file;
    StreamReader reader;
    StreamClaims & claims;
    std::unordered_map<std::uint64_t, RecordHolder, SeededHash> records; // by dataId
};

std::int64_t commonDivisions(BaseVector const & a, BaseVector const & b) {
    std::int64_t const n = std::min(a.numDivisions(), b.numDivisions());
    std::int64_t i = 0;
    while (i < n && a.length(i) == b.length(i)) ++i;
    return i;
}

// One that shows some divisions only, over a reference that shows others, has been made so.
bool hasCommonPart(XYVector const & vector) {
    return !vector.ref.name().empty() && !vector.isString() && !vector.ref.isString() &&
           VectorFileAccess::view(vector) == VectorFileAccess::view(vector.ref);
}

void showCommonPart(XYVector & vector) {
    NamedVector & reference = vector.ref;
    if (!hasCommonPart(vector) || vector.totalLength() == reference.totalLength()) return;
    if (vector.numDivisions() == 1 && reference.numDivisions() == 1) {
        std::int64_t const n = std::min(vector.length(), reference.length());
        vector.limitLength(n);
        reference.limitLength(n);
        return;
    }
    std::int64_t const n = std::max<std::int64_t>(commonDivisions(vector, reference), 1);
    vector.limitDivisions(n);
    reference.limitDivisions(n);
    if (n > 1) return;
    std::int64_t const length = std::min(vector.length(), reference.length());
    vector.limitLength(length);
    reference.limitLength(length);
}

} // namespace

void labelDivisions(VectorRep & record, std::int64_t entries, Group const & group) {
    std::int64_t const divisions = std::max<std::int64_t>(entries, 1); // one has no table
    if (divisions == static_cast<std::int64_t>(group.labels->size())) record.setLabels(group.labels);
}

void finishRestoredVector(dvec & vector, std::uint16_t flags) {
    constexpr std::uint16_t ofAliases = VF_ALIAS | VF_REFALIAS;
    vector.flags = static_cast<std::uint16_t>(flags & (VF_READONLY | (vector.isString() ? ofAliases : 0)));
    if (!vector.ref.name().empty() || equalNoCase(vector.name(), "$$RunId")) vector.owner()->hasRealData = true;
}

void showCommonParts(Group & group) {
    group.forEachVector([](dvec & vector) { showCommonPart(vector); });
}

PhysType restoredPhysType(std::uint16_t stored) noexcept {
    return stored <= PT_LITERAL ? static_cast<PhysType>(stored) : PT_UNKNOWN;
}

bool readVectors(Group & group, YRef<DfsFile> const & file, std::int64_t stream, StreamClaims & claims) {
    return VectorReader(group, file, stream, claims).readAll();
}
