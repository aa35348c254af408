#include "torvelan/ForeignData.h"

#include "Import/GroupBeingRead.h"
#include "Import/OutputFile.h"
#include "Import/PSpice.h"
#include "Import/PSpiceSignature.h"
#include "Import/Quadrel.h"
#include "Import/Spice2.h"
#include "Import/Spice3.h"
#include "Import/TextData.h"
#include "support/Files.h"
#include "support/ReportingMemory.h"
#include "support/Streams.h"

namespace {

// Fills the group, and lists it if it is not listed yet; false on failure.
using Reader = bool (*)(tvfstream & stream, Group * group, VecOpenGroupOptions options, MessageHandler & messages);

bool readTextFile(tvfstream & stream, Group * group, VecOpenGroupOptions options, MessageHandler & messages) {
    return readTextData(stream, group, options.keepColons, messages);
}

bool readSpice2File(tvfstream & stream, Group * group, VecOpenGroupOptions, MessageHandler & messages) {
    OutputFile none;
    return readSpice2(stream, group, none, messages);
}

bool readSpice3File(tvfstream & stream, Group * group, VecOpenGroupOptions, MessageHandler & messages) {
    constexpr std::int32_t bufferBytes = 1024;
    OutputFile none;
    return readSpice3(stream, group, none, bufferBytes, messages) == Spice3Result::done;
}

bool readPSpiceFile(tvfstream & stream, Group * group, VecOpenGroupOptions, MessageHandler & messages) {
    return testPSpiceSignature(stream) && readPSpice(stream, group, messages);
}

bool readQuadrelFile(tvfstream & stream, Group * group, VecOpenGroupOptions, MessageHandler &) {
    return readQuadrel(stream, group);
}

struct ReaderRow {
    DataFileType type;
    char const * baseName; // of a group that is listed before the file is opened, and stays; null: listed by the reader
    Reader read;
    char const * failure; // said in addition to what the reader says; null: the reader says it all
};

constexpr ReaderRow readerRows[] = {
    {DATA_TEXT, "text", readTextFile, nullptr},
    {DATA_SPICE2, nullptr, readSpice2File, "Spice2 raw data file read failed because of incorrect format"},
    {DATA_SPICE3, nullptr, readSpice3File, "SPICE3 raw data file read failed because of incorrect format"},
    {DATA_PSPICE, nullptr, readPSpiceFile, "PSpice data file read failed because of incorrect format"},
    {DATA_QUADREL, "quadrel", readQuadrelFile, "Quadrel data file read failed. Possibly incorrect format"},
};

ReaderRow const * findReader(DataFileType type) {
    for (ReaderRow const & row : readerRows)
        if (row.type == type) return &row;
    return nullptr;
}

// The group that is read into.
GroupBeingRead makeGroupFor(ReaderRow const * row, YString const & path) {
    bool const atOnce = row != nullptr && row->baseName != nullptr;
    return GroupBeingRead(atOnce ? makeGroup(path, row->baseName, 0) : makeUnlistedGroup(YString()));
}

bool openStream(tvfstream const & stream, YString const & path, MessageHandler & messages) {
    if (stream) return true;
    YString reason;
    sp_FileOpenForensicMsg(path, 0, &reason);
    messages.error("%s", reason);
    return false;
}

bool open(YString const & path, DataFileType type, VecOpenGroupOptions options, YString * groupName,
          MessageHandler & messages) {
    ReaderRow const * const row = findReader(type);
    GroupBeingRead const group = makeGroupFor(row, path);
    tvfstream stream(path, tvfstream::modeReadUntranslated, false, false);
    if (!openStream(stream, path, messages)) return false;
    if (row == nullptr) return true;
    if (!row->read(stream, group.get(), options, messages)) {
        if (row->failure != nullptr) messages.error("%s", row->failure);
        return false;
    }
    if (groupName != nullptr) *groupName = group->name;
    return true;
}

} // namespace

bool vec_OpenForeignDataFile(YString const & path, DataFileType type, VecOpenGroupOptions options, YString * groupName,
                             YRef<MessageHandler> messages) {
    return reportingMemory([&] {
        if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
        return open(path, type, options, groupName, *messages);
    });
}

DataFileType vec_TestDataFileType(YString const & path) {
    tvfstream stream(path, tvfstream::modeReadUntranslated, false, false);
    if (!stream) return DATA_CANNOT_OPEN;
    return testPSpiceSignature(stream) ? DATA_PSPICE : DATA_NOT_RECOGNISED;
}
