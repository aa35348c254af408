// Data files: groups on disk. A file can be read while the process that runs a simulation still writes it.
#pragma once

#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/ResultCodes.h"
#include "torvelan/YString.h"

#include <cstdint>

// How files are opened.
struct VecOpenGroupOptions {
    bool assignRunId = false; // a group without a run gets one, so that it goes with old runs
    bool merge = false;       // no note of a new name, and an existing group of the stored name is replaced
    bool keepColons = false;  // of the reader of text tables
    bool reserved = false;
    bool temporary = false;  // the file goes with the group
    bool update = false;     // to be continued, and not only read
    bool ignoreLock = false; // also while another process writes the file
};

struct VecSaveGroupOptions {
    std::uint32_t unused[2] = {};
    bool create = false; // leaves a file that somebody writes without a word; else that is an error
};

// Opens a data file of any version as one group, or each group of an older file; the last becomes the current one. The
// values stay in the file until they are used. True on success, and *groupName (where given) is the name of the group;
// false after an error, and nothing is left of the group. A file that has lost data opens with a warning.
TORVELAN_API bool vec_OpenGroup(YString const & path, VecOpenGroupOptions options, YString * groupName,
                                YRef<MessageHandler> messages);
// Saves the current group. The file is complete or, after an error and with the answer false, as it was before. True
// and no word when the path cannot be opened for writing at all.
TORVELAN_API bool vec_SaveGroup(YString const & path, VecSaveGroupOptions options, YRef<MessageHandler> messages);

// The latest version that there is a name of, "7.1" and 71; files that are written have an earlier one.
TORVELAN_API void vec_GetCurrentDataFileVersion(YString * name, int * code);
// The code of a version by its name. VEC_NOT_DONE, and code 0, for an unknown one.
TORVELAN_API VEC_ERROR vec_GetDataVersionCode(YString const & name, int * code);

// Tells how a data file is built, and what damage there is, as information, line by line: its streams, extents, the
// records of the group and the links. False, after an error, when it is no data file of streams.
TORVELAN_API bool vec_DescribeDataFile(YString const & path, YRef<MessageHandler> messages);
