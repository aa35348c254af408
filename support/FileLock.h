// Locks between processes: a file that is being written is held by its writer.
#pragma once

#include "torvelan/YString.h"

// Tests whether a writer holds a file, and keeps writers out of it until the object ends. Locks belong to open files,
// so that closing another descriptor of the process does not end them, and end with the process. Where the file system
// has no locks a file counts as free.
class FileLock {
public:
    FileLock() noexcept = default;
    ~FileLock();
    FileLock(FileLock const &) = delete;
    FileLock & operator=(FileLock const &) = delete;

    bool lock(YString const & path); // false when a writer holds the file, or it cannot be read
    bool locked() const noexcept { return descriptor_ >= 0; }

private:
    int descriptor_ = -1;
};

// Holds an open file as being written, until the last descriptor of this opening closes. A test of another process is
// over in a moment and is waited for. False when another writer still holds the file after so many milliseconds.
bool lockForWriting(int descriptor, int patience = 200);
