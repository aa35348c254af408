#include "Groups/GroupDataFile.h"

GroupDataFile::~GroupDataFile() = default;

OlderDataFile::~OlderDataFile() = default;

DataFileMakers & dataFileMakers() noexcept {
    static constinit DataFileMakers makers;
    return makers;
}
