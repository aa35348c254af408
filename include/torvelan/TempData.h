// The directory in which runs leave their data when the user names no file. Its files go when the options say so: at
// the start of a session ("OnStart"), at its end ("OnClose", "OnDelete"), or never; which option counts is told by the
// host's identity (see below). A file that a running process holds stays.
#pragma once

#include "torvelan/Export.h"
#include "torvelan/YString.h"

// The host's identity, registered by MakeDynamicFunction under "dyn_IdentifyBinary" (see Host.h): "Torvelan" chooses
// the option DataGroupDelete, "TVL" TvlDataGroupDelete, "TVL2" Tvl2DataGroupDelete; any other host deletes nothing.
using HostIdentity = char const * (*)();

// Finds the directory, and makes it where it is missing: the option TempDataDir, else "%TEMPPATH%/TorvelanTempData",
// else the user's temporary directory. Only a directory of this user in which no other may write is taken.
TORVELAN_API YString vec_ResolveTempDataDir();
TORVELAN_API YString vec_GetTempDataDir();                 // as it was found when the session began
TORVELAN_API void vec_DeleteTempData(YString const & dir); // the data files in it that nobody writes
