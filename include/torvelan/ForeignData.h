// Import of other simulators' result files.
#pragma once

#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/YString.h"

// The kind of a file; only SPICE3 files can be read so far, the others are refused with a message.
enum DataFileType : int {
    DATA_NOT_RECOGNISED = 0,
    DATA_TEXT = 1,
    DATA_SPICE2 = 3,
    DATA_SPICE3 = 4, // the ASCII form
    DATA_PSPICE = 5,
    DATA_QUADREL = 6,
    DATA_CANNOT_OPEN = 8,
};

// Byte flags for opening files.
struct VecOpenGroupOptions {
    bool merge = false;
    bool quiet = false;
    bool keepColons = false;
    bool ignoreLock = false;
};

// Reads a file into a new group. True on success, and *groupName (where given) is the group's name; false with a
// message, and nothing is left in the store. The two values that are no file type, and any other number, read nothing
// and answer true. Of a file with several data sets the first is read.
TORVELAN_API bool vec_OpenForeignDataFile(YString const & path, DataFileType type, VecOpenGroupOptions options,
                                          YString * groupName, YRef<MessageHandler> messages);
