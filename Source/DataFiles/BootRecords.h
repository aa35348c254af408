// The records of a group in its data file: what it is called, which vectors it has, where their data are.
#pragma once

#include "Dfs/DfsFile.h"
#include "Groups/Group.h"

// The streams that the boot stream names, in its order.
enum BootStream { BOOT_HEADER, BOOT_VECTORS, BOOT_LABELS, BOOT_TRACES, BOOT_SCRIPTS, BOOT_STREAMS };

struct BootKey {
    std::string_view word;
    StreamType type;
};
constexpr std::string_view versionKey = "version", revisionKey = "revision", endKey = "endboot";
constexpr BootKey bootKeys[BOOT_STREAMS] = {
    {"header", StreamType::bytes}, {"vecdir", StreamType::bytes},   {"divlabel", StreamType::timeBuffered},
    {"trace", StreamType::bytes},  {"postproc", StreamType::bytes}, // from version 2 on
};
constexpr std::int32_t bootVersion = 2, bootRevision = 1;
constexpr std::int64_t bootStream = 100;

// Words of the vector directory.
constexpr std::string_view vectorTag = "vecstart";

enum class BootWriting {
    run,    // what the vectors of the group receive goes to the file from now on
    saving, // a copy
};
// False when the file does not take all of it. The vectors have their data as before then.
bool writeBoot(Group & group, YRef<DfsFile> const & file, BootWriting writing);

enum class BootResult { good = 0, laterRevision = 1, laterVersion = 2, notRestored = 3 };
// Fills a group that is not listed, and lists it. With `quiet` the rename of a group whose name is taken is not told.
// The name that the file has goes to *storedName.
BootResult readBoot(Group & group, YRef<DfsFile> const & file, bool quiet, YString * storedName,
                    MessageHandler & messages);
