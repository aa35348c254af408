#include "DataFiles/BootRecords.h"

#include "DataFiles/StreamBacking.h"
#include "DataFiles/VectorFileAccess.h"
#include "Dfs/RecordText.h"
#include "torvelan/Exceptions.h"

#include <unordered_map>
#include <vector>

namespace {

constexpr std::uint64_t copyBytes = 1 << 20;

// Writes one group. Blocks that go on in the file keep their memory until all of it has been written.
class BootWriter {
public:
    BootWriter(Group & group_, YRef<DfsFile> const & file_, BootWriting writing)
        : group(group_), file(file_), isRun(writing == BootWriting::run) {}

    bool write() {
        return makeStreams() && writeKeys() && writeHeader() && writeVectors() && writeLabels() && writeTraces() &&
               writeScripts() && flushAll();
    }

    // The data of the run are in the file only from now on.
    void keepBound() {
        for (NewDataBlock * block : bound) block->free();
        group.labelStream = static_cast<std::int32_t>(streams[BOOT_LABELS]);
        group.postProcStream = static_cast<std::int32_t>(streams[BOOT_SCRIPTS]);
        group.postProcPending.clear();
    }
    void unbind() {
        for (NewDataBlock * block : bound) block->detach();
        for (NewDataBlock * table : tables) table->detach();
    }

private:
    bool put(std::int64_t stream, RecordText const & record) {
        return file->write(stream, record.data(), record.size());
    }

    bool makeStreams() {
        if (!file->openStream(bootStream, StreamType::bytes)) return false;
        for (int i = 0; i < BOOT_STREAMS; ++i) {
            streams[i] = file->newStream(bootKeys[i].type);
            if (streams[i] < 1) return false;
        }
        return true;
    }

    bool writeKeys() {
        RecordText keys;
        keys.string(versionKey).number(bootVersion).string(revisionKey).number(bootRevision);
        for (int i = 0; i < BOOT_STREAMS; ++i)
            keys.string(bootKeys[i].word).number(static_cast<std::int32_t>(streams[i]));
        keys.string(endKey);
        return put(bootStream, keys);
    }

    bool writeHeader() {
        RecordText header;
        header.string(group.title).string(group.date).string(group.name);
        return put(streams[BOOT_HEADER], header);
    }

    bool writeVectors() {
        YArray<dvec *> const vectors = group.vectorsInOrder();
        RecordText record;
        record.number(static_cast<std::int32_t>(vectors.size()));
        bool written = put(streams[BOOT_VECTORS], record);
        for (dvec * vector : vectors) {
            record.clear();
            written = written && writeVector(*vector, record) && put(streams[BOOT_VECTORS], record);
        }
        return written;
    }

    bool writeVector(dvec & vector, RecordText & record) {
        bool const hasReference = !vector.ref.name().empty();
        record.string(vectorTag).number(static_cast<std::int32_t>(vector.flags));
        bool const written = writeNamed(vector, record);
        record.number(static_cast<std::uint8_t>(hasReference));
        return written && (!hasReference || writeNamed(vector.ref, record));
    }

    bool writeNamed(NamedVector & vector, RecordText & record) {
        VectorRep & rep = VectorFileAccess::record(vector);
        auto const [entry, isNew] = dataIds.try_emplace(&rep, dataIds.size() + 1);
        record.string(vector.name());
        record.number(static_cast<std::uint16_t>(rep.physType)).number(static_cast<std::uint64_t>(entry->second));
        if (isNew && !writeValues(rep, record)) return false;
        auto const view = VectorFileAccess::view(vector);
        record.number(view.firstDivision).number(view.endDivision);
        return true;
    }

    bool writeValues(VectorRep & rep, RecordText & record) {
        if (rep.type == VD_STRING) return writeStrings(rep, record);
        std::int64_t const data = file->newStream(StreamType::bytes);
        std::int64_t const divisions = file->newStream(StreamType::timeBuffered);
        bool const isComplex = rep.type == VD_COMPLEX;
        record.number(data).number(divisions);
        record.number(static_cast<std::int32_t>(isComplex ? VD_COMPLEX : VD_REAL)).number(rep.elements());
        record.number(static_cast<std::uint8_t>(rep.multiple));
        if (data < 1 || divisions < 1) return false;
        return isRun ? bind(rep, data, divisions) : copy(rep, data, divisions);
    }

    static bool writeStrings(VectorRep & rep, RecordText & record) {
        std::int64_t const n = rep.elements();
        record.number(std::int64_t{0}).number(std::int64_t{0}).number(std::int32_t{VD_STRING}).number(n);
        for (std::int64_t i = 0; i < n; ++i) {
            char const * const text = *rep.element<char *>(i);
            record.string(text != nullptr ? text : "");
        }
        return true;
    }

    bool bind(VectorRep & rep, std::int64_t data, std::int64_t divisions) {
        if (!rep.block || rep.block->isShared()) rep.ownBlock();
        rep.block->moveTo(std::make_unique<StreamBacking>(file, data));
        bound.push_back(rep.block.get());
        tables.push_back(rep.divisionIndex.moveTo(std::make_unique<StreamBacking>(file, divisions)));
        return file->flush(data);
    }

    // Piece by piece, without bringing what is in another file into memory.
    bool copy(VectorRep & rep, std::int64_t data, std::int64_t divisions) {
        std::uint64_t const bytes = byteCount(rep.elements(), rep.type); // a value may have been cut off
        std::vector<char> piece(std::min(copyBytes, bytes));
        for (std::uint64_t at = 0; at < bytes; at += piece.size()) {
            piece.resize(std::min<std::uint64_t>(piece.size(), bytes - at));
            if (rep.block->read(piece.data(), piece.size(), at) != piece.size()) return false;
            if (!file->write(data, piece.data(), piece.size())) return false;
        }
        return copyDivisions(rep, divisions) && file->flush(data);
    }

    // Those that have begun.
    bool copyDivisions(VectorRep & rep, std::int64_t stream) {
        std::int64_t const n = rep.divisions();
        RecordText table;
        for (std::int64_t i = 0; i < n && n > 1; ++i) table.number(rep.divisionIndex.entry(i));
        return put(stream, table);
    }

    bool writeLabels() {
        RecordText labels;
        for (YString const & label : *group.labels) labels.string(label);
        return put(streams[BOOT_LABELS], labels);
    }

    bool writeTraces() {
        RecordText record;
        record.number(static_cast<std::int32_t>(group.traces.size()));
        for (TraceDescription const & trace : group.traces) {
            record.string(trace.text1).string(trace.text2).number(static_cast<std::uint8_t>(trace.flag));
            record.number(static_cast<std::int32_t>(trace.properties.size()));
            for (auto const & property : trace.properties) record.string(property.name).string(property.value);
        }
        AnalysisInfo const & analysis = group.analysis;
        record.string(analysis.text1);
        for (bool flag : {analysis.flag2, analysis.flag3, analysis.flag1})
            record.number(static_cast<std::uint8_t>(flag));
        record.string(analysis.text2).number(analysis.value1).number(analysis.value2);
        return put(streams[BOOT_TRACES], record);
    }

    bool writeScripts() {
        RecordText scripts;
        for (YString const & script : group.postProcessScripts()) scripts.string(script);
        return put(streams[BOOT_SCRIPTS], scripts);
    }

    bool flushAll() {
        bool written = file->flush(bootStream);
        for (int i = 0; i < BOOT_STREAMS; ++i) written = file->flush(streams[i]) && written;
        return written && file->update() && !file->writeFailed();
    }

    Group & group;
    YRef<DfsFile> const & file;
    bool isRun;
    std::int64_t streams[BOOT_STREAMS] = {};
    std::unordered_map<VectorRep const *, std::uint64_t> dataIds;
    std::vector<NewDataBlock *> bound;  // elements
    std::vector<NewDataBlock *> tables; // of divisions, which stay in memory
};

} // namespace

bool writeBoot(Group & group, YRef<DfsFile> const & file, BootWriting writing) {
    BootWriter writer(group, file, writing);
    bool written = false;
    try {
        written = writer.write();
    } catch (FatalException const &) { // the file does not take the data
    } catch (...) {
        writer.unbind();
        throw;
    }
    if (!written)
        writer.unbind();
    else if (writing == BootWriting::run)
        writer.keepBound();
    return written;
}
