// Import of other simulators' result files.
#pragma once

#include "torvelan/DataFiles.h"
#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/YString.h"

#include <cstdint>

// The kind of a file.
enum DataFileType : int {
    DATA_NOT_RECOGNISED = 0,
    DATA_TEXT = 1,
    DATA_SPICE2 = 3,
    DATA_SPICE3 = 4, // the ASCII form
    DATA_PSPICE = 5,
    DATA_QUADREL = 6,
    DATA_CANNOT_OPEN = 8,
};

// Reads a file into a new group. True on success, and *groupName (where given) is the group's name; false with a
// message otherwise. The group of a text table or a Quadrel file is made before anything is read, and stays with what
// came in; of the other types nothing is left in the store after a failure. The two values that are no file type, and
// any other number, read nothing and answer true. Of a file with several data sets the first is read.
TORVELAN_API bool vec_OpenForeignDataFile(YString const & path, DataFileType type, VecOpenGroupOptions options,
                                          YString * groupName, YRef<MessageHandler> messages);

// DATA_PSPICE for a file that begins as those of PSpice do, else DATA_NOT_RECOGNISED: every other type is for the
// caller to know. DATA_CANNOT_OPEN when it does not open.
TORVELAN_API DataFileType vec_TestDataFileType(YString const & path);

// How a raw file is opened; with neither `spice2` nor `csdf` it is a SPICE3 file.
struct VecOpenRawFileOptions {
    bool reserved0 = false;
    bool spice2 = false;
    bool stampGroups = false; // the groups get a run id of their own, later than any before
    bool reserved3 = false;
    bool csdf = false;
    std::int32_t ramPercent = 0; // budget for the buffers of the vectors, of the machine's memory
};

// Reads every data set of a raw file into a group of its own, whose values go to a native data file: the first to
// `outputPath`, the next to the same with "_1" before the extension, and so on. False, with a message, when the file
// does not open or a data set is bad; the groups of those before it stay. A SPICE2 file that is bad has its message
// too, but the answer is true. Where a data file cannot be made, the values stay in memory, with a warning.
TORVELAN_API bool vec_OpenRawFile(YString const & path, YString const & outputPath, VecOpenRawFileOptions options,
                                  YRef<MessageHandler> messages);
