// Names of temporary data files.
#pragma once

#include "torvelan/YString.h"

// A new file in the directory of temporary data, named after a group; it is there already, and empty, so that no other
// process takes the name. Where 999 names are taken, the last of them.
YString makeTempDataFileName(YString const & groupName);
