// What the files of this room share.
#pragma once

#include "Dfs/DfsFile.h"
#include "Groups/GroupStore.h"
#include "torvelan/DataFiles.h"

// Why a file does not open, as an error; the errno of that says it where asking once more does not. EBUSY is for a file
// that somebody else writes. False.
bool tellWhyNotOpen(YString const & path, int error, MessageHandler & messages);
// "Data file '%s' load failed: " and the words, as an error. False.
bool tellLoadFailed(YString const & path, char const * words, MessageHandler & messages);

constexpr char const * unexpectedWords = "unexpected error, please contact support";
constexpr char const * notRestoredWords = "could not restore data. File may be corrupted";

// Whether the file of a group outlives it.
void setFileStays(Group & group, bool stays) noexcept;
// The last steps with a group that has been read from a file and listed: its run, and its name, which goes to *names.
void finishRestored(UnlistedGroup group, YString const & storedName, VecOpenGroupOptions options, NameArray * names);

// Opens a file in the default way; of several groups in it the last one stays. Null, and nothing stays, when that
// fails.
Group * openGroupFile(YString const & path, YRef<MessageHandler> const & messages);

// SaveGroup.cpp: makes the data file of a group that has none. What is appended to its vectors from now on goes there,
// but what stands at the path stays until the new file takes its name. Null when it cannot be, and the group has no
// file.
YRef<DfsFile> createDataFileBeside(Group & group, YString const & path);

// OpenOlder.cpp: files of the versions before streams.
bool openOlderFile(YString const & path, VecOpenGroupOptions options, NameArray * names, MessageHandler & messages);
