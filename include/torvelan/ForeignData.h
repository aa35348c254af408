// Import of other simulators' result files.
#pragma once

#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/YString.h"

enum DataFileType : int {
    DATA_NOT_RECOGNISED = 0,
    DATA_TEXT = 1,
    DATA_SPICE2 = 3,
    DATA_SPICE3 = 4,
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
// message, and nothing is left in the store. Types without a reader read nothing and answer true.
TORVELAN_API bool vec_OpenForeignDataFile(YString const & path, DataFileType type, VecOpenGroupOptions options,
                                          YString * groupName, YRef<MessageHandler> messages);
