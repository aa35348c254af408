// Questions to the file system.
#pragma once

#include "torvelan/YString.h"

// Why a file does not open, in words that name the path: "Cannot open file 'x.raw': No such file or directory".
// False, and no text, when it opens.
bool sp_FileOpenForensicMsg(YString const & path, int mode, YString * text);
YString fileOpenFailureText(YString const & path, int error); // the same words for an errno
bool sp_ExistFile(YString const & path);
