// Paths and directories.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/YString.h"

// A directory for temporary files that belongs to this user alone: "torvelan-UID" in TMPDIR or /tmp, made when it is
// missing. Where somebody else has taken the name, one of this process.
YString sp_GetTempPath();
// A path with the %-names in it expanded, in any case: %TEMPPATH%. Other names stay as they are.
YString sp_TranslateLogicalPath(YString const & path);

// The parts of a path; joined they are the path again.
struct PathName {
    YString drive;     // "c:", or empty
    YString directory; // up to and including the last separator of either kind
    YString name;
    YString extension; // from the last dot on
};
PathName sp_SplitPath(YString const & path);

YString sp_GetFullPath(YString const & path);    // from the root, without "." and ".."; need not exist
YString sp_GetDirFromPath(YString const & path); // "." for a name alone, without a slash at its end but for "/"
bool sp_IsRelativePath(YString const & path) noexcept;
// The way from a directory to a file, links on both ways followed as far as they exist; absolute when there is none.
YString sp_RelativePath(YString const & path, YString const & directory);
// What a path stands for, symbolic links followed, also when it is not there yet.
YString sp_FollowLinks(YString const & path);
YString sp_ConvertUnixToLocal(YString const & path); // with the separators of this system

bool sp_ExistPath(YString const & path); // a file, a directory or anything else
bool sp_ExistDir(YString const & path);
bool sp_MakeTree(YString const & path); // with all folders above it; new ones are for this user alone
// Whether files can be made in it.
bool sp_DirectoryIsWriteable(YString const & path);
// Whether a directory is this user's and no other may write in it, a symbolic link to one not counted.
bool isPrivateDirectory(YString const & path);
// Names, or with fullPaths paths, of what a pattern "folder/*.tvdat" matches, in order; '*' and '?' in the last part.
// Files only with filesOnly.
void sp_ListDirectory(YString const & pattern, YList<YString> * out, bool filesOnly, bool fullPaths);
bool unlink_utf8(YString const & path);

// The extension of files of a kind, without a dot: "Data" gives "tvdat". Empty for an unknown kind.
YString sp_GetTorvelanDefaultExtension(std::string_view kind);
