// Locks between processes: a file that is being written is held by its writer, and its directory for moments by whoever
// writes or reads it. Locks belong to open files, so that closing another descriptor of the process does not end them,
// and end with the process. Where the file system has no locks a file counts as free.
#pragma once

#include "torvelan/YString.h"

// Tests whether a writer holds a file, and keeps writers out of it until the object ends.
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
// Holds an open file against others that would change it, but not against readers. False when somebody else has it.
bool lockForUpdating(int descriptor, int patience = 200);

// Keeps the writing of a file's directory and the reading of it by other processes apart, for the life of the object. A
// partner that does not let go is waited for a second at most: nobody may stop a simulation.
class DirectoryLock {
public:
    enum class Purpose { reading, writing };

    DirectoryLock(int descriptor, Purpose purpose);
    ~DirectoryLock();
    DirectoryLock(DirectoryLock const &) = delete;
    DirectoryLock & operator=(DirectoryLock const &) = delete;

private:
    int descriptor_;
};
