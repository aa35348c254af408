#include "torvelan/ForeignData.h"

#include "Groups/GroupStore.h"
#include "Import/Spice3.h"
#include "support/Files.h"
#include "support/Streams.h"

#include <memory>

namespace {

// Fills the unlisted group and lists it; false, and the group left unlisted, on failure.
using Reader = bool (*)(tvfstream & stream, Group * group, VecOpenGroupOptions options, MessageHandler & messages);

bool readSpice3File(tvfstream & stream, Group * group, VecOpenGroupOptions, MessageHandler & messages) {
    constexpr std::int32_t bufferBytes = 1024;
    return readSpice3(stream, group, bufferBytes, messages) == Spice3Result::done;
}

struct ReaderRow {
    DataFileType type;
    Reader read;          // null: no reader for this type yet
    char const * failure; // said in addition to what the reader says
};

constexpr ReaderRow readerRows[] = {
    {DATA_TEXT, nullptr, "Reading text data files is not supported yet"},
    {DATA_SPICE2, nullptr, "Reading SPICE2 raw files is not supported yet"},
    {DATA_SPICE3, readSpice3File, "SPICE3 raw data file read failed because of incorrect format"},
    {DATA_PSPICE, nullptr, "Reading PSpice data files is not supported yet"},
    {DATA_QUADREL, nullptr, "Reading Quadrel data files is not supported yet"},
};

ReaderRow const * findReader(DataFileType type) {
    for (ReaderRow const & row : readerRows)
        if (row.type == type) return &row;
    return nullptr;
}

bool openStream(tvfstream const & stream, YString const & path, MessageHandler & messages) {
    if (stream) return true;
    YString reason;
    sp_FileOpenForensicMsg(path, 0, &reason);
    messages.error("%s", reason);
    return false;
}

struct DiscardGroup {
    void operator()(Group * group) const { discardGroup(group); }
};

bool readGroup(ReaderRow const & row, tvfstream & stream, VecOpenGroupOptions options, YString * groupName,
               MessageHandler & messages) {
    std::unique_ptr<Group, DiscardGroup> group(makeUnlistedGroup(YString()));
    if (row.read == nullptr || !row.read(stream, group.get(), options, messages)) {
        messages.error("%s", row.failure);
        return false;
    }
    if (groupName != nullptr) *groupName = group->name;
    group.release(); // the store's own from now on
    return true;
}

} // namespace

bool vec_OpenForeignDataFile(YString const & path, DataFileType type, VecOpenGroupOptions options, YString * groupName,
                             YRef<MessageHandler> messages) {
    if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
    tvfstream stream(path, tvfstream::modeReadUntranslated, false, false);
    if (!openStream(stream, path, *messages)) return false;
    ReaderRow const * const row = findReader(type);
    return row == nullptr || readGroup(*row, stream, options, groupName, *messages);
}
