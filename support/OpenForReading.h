// The one way by which the support layer opens a file that it reads.
#pragma once

#include "torvelan/YString.h"

// A file descriptor, or -1 with errno set. What is no regular file (directories, pipes, devices) and names that hold a
// NUL are refused.
int openForReading(YString const & path) noexcept;
