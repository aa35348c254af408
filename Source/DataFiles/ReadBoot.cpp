#include "DataFiles/BootRecords.h"

#include "DataFiles/ReadVectors.h"
#include "Dfs/StreamReader.h"
#include "Groups/GroupStore.h"

#include <algorithm>

namespace {

struct BootNumbers {
    std::int32_t version = 0;
    std::int32_t revision = 0;
    std::int64_t streams[BOOT_STREAMS] = {};
};

bool readKey(StreamReader & reader, std::string_view key, std::int32_t * value) {
    YString word;
    return reader.readString(&word) && word.view() == key && reader.readNumber(value);
}

// What a later version adds behind the known keys.
bool skipToEnd(StreamReader & reader) {
    YString word;
    std::int32_t value;
    while (reader.readString(&word)) {
        if (word.view() == endKey) return true;
        if (!reader.readNumber(&value)) return false;
    }
    return false;
}

bool readKeys(DfsFile & file, BootNumbers * boot) {
    StreamReader reader(file, bootStream);
    if (!readKey(reader, versionKey, &boot->version)) return false;
    if (boot->version > bootVersion) return true; // nothing more is known of it
    if (!readKey(reader, revisionKey, &boot->revision)) return false;
    int const known = boot->version >= bootVersion ? BOOT_STREAMS : BOOT_SCRIPTS;
    for (int i = 0; i < known; ++i) {
        std::int32_t id;
        if (!readKey(reader, bootKeys[i].word, &id)) return false;
        boot->streams[i] = id;
    }
    return skipToEnd(reader);
}

// The records are streams of their own: each exists, and none is used twice. The first version had no scripts.
bool claimStreams(BootNumbers const & boot, StreamClaims & claims) {
    int const known = boot.version >= bootVersion ? BOOT_STREAMS : BOOT_SCRIPTS;
    for (int i = 0; i < known; ++i)
        if (!claims.claim(boot.streams[i], bootKeys[i].type)) return false;
    return true;
}

bool readHeader(DfsFile & file, std::int64_t stream, Group & group, YString * name) {
    StreamReader reader(file, stream);
    return reader.readString(&group.title) && reader.readString(&group.date) && reader.readString(name);
}

void readLabels(DfsFile & file, std::int64_t stream, Group & group) {
    auto labels = std::make_shared<NameArray>();
    StreamReader reader(file, stream);
    for (YString label; reader.readString(&label);) labels->push_back(label);
    if (!labels->empty()) group.labels = std::move(labels);
}

bool readFlag(StreamReader & reader, bool * flag) {
    std::uint8_t value;
    if (!reader.readNumber(&value)) return false;
    *flag = value != 0;
    return true;
}

bool readTrace(StreamReader & reader, TraceDescription * trace) {
    std::int32_t count;
    if (!reader.readString(&trace->text1) || !reader.readString(&trace->text2) || !readFlag(reader, &trace->flag) ||
        !reader.readNumber(&count))
        return false;
    for (; count > 0; --count) {
        TraceDescription::Property property;
        if (!reader.readString(&property.name) || !reader.readString(&property.value)) return false;
        trace->properties.push_back(property);
    }
    return true;
}

// As far as they are there: a run that has been cut off may have none.
void readTraces(DfsFile & file, std::int64_t stream, Group & group) {
    StreamReader reader(file, stream);
    std::int32_t count = 0;
    reader.readNumber(&count);
    for (TraceDescription trace; count > 0 && readTrace(reader, &trace); --count) {
        group.traces.push_back(trace);
        trace = {};
    }
    AnalysisInfo analysis;
    bool const whole = count <= 0 && reader.readString(&analysis.text1) && readFlag(reader, &analysis.flag2) &&
                       readFlag(reader, &analysis.flag3) && readFlag(reader, &analysis.flag1) &&
                       reader.readString(&analysis.text2) && reader.readNumber(&analysis.value1) &&
                       reader.readNumber(&analysis.value2);
    if (whole) group.analysis = analysis;
}

} // namespace

BootResult readBoot(Group & group, YRef<DfsFile> const & file, bool quiet, YString * storedName,
                    MessageHandler & messages) {
    BootNumbers boot;
    if (!readKeys(*file, &boot)) return BootResult::notRestored;
    if (boot.version > bootVersion) return BootResult::laterVersion;
    StreamClaims claims(*file);
    if (!claimStreams(boot, claims) || !readHeader(*file, boot.streams[BOOT_HEADER], group, storedName))
        return BootResult::notRestored;
    readLabels(*file, boot.streams[BOOT_LABELS], group);
    if (!readVectors(group, file, boot.streams[BOOT_VECTORS], claims)) return BootResult::notRestored;
    group.labelStream = static_cast<std::int32_t>(boot.streams[BOOT_LABELS]);
    group.postProcStream = static_cast<std::int32_t>(boot.streams[BOOT_SCRIPTS]);
    listRestoredGroup(&group, *storedName, quiet, messages);
    readTraces(*file, boot.streams[BOOT_TRACES], group);
    return boot.revision > bootRevision ? BootResult::laterRevision : BootResult::good;
}
