// FileSystem: the one way by which the engine reaches data files. Behind it stands the operating system or, in tests, a
// layer that records what is written, fails it, or shows what a killed process leaves.
#pragma once

#include "torvelan/YString.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

// How a file is opened. The numbers stand for the same ways in the modes of streams: 129, 147, 387.
enum class FileMode {
    read,   // a regular file that exists
    update, // the same, to read and write
    create, // the same, made where there is none; what it holds stays until it is truncated
};

// Which file of the machine it is, whatever its name.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    friend bool operator==(FileIdentity const &, FileIdentity const &) = default;
};

// One opening of a file. It closes with the object, and its locks end then.
class OpenFile {
public:
    using Bytes = std::span<char const>;

    virtual ~OpenFile();
    // Bytes moved: fewer than asked for at the end of the file, and after an error.
    virtual std::size_t readAt(void * dest, std::size_t bytes, std::uint64_t offset) = 0;
    // Writes two pieces, one behind the other. False, with errno set, when they are not there as a whole.
    virtual bool writeAt(Bytes first, Bytes second, std::uint64_t offset) = 0;
    bool writeAt(Bytes bytes, std::uint64_t offset) { return writeAt(bytes, {}, offset); }
    virtual std::uint64_t size() = 0; // now
    virtual bool truncate() = 0;      // to nothing
    virtual bool sync() = 0;          // on the disk, as far as the machine can tell
    virtual FileIdentity identity() = 0;
    // For FileLock.h's functions; -1 for a file that has none.
    virtual int descriptor() const noexcept = 0;
};

class FileSystem {
public:
    virtual ~FileSystem();
    // Null, with errno set, when it does not open: also a directory, a device or a pipe.
    virtual std::unique_ptr<OpenFile> open(YString const & path, FileMode mode) = 0;
    // A new file of a name that begins with `prefix`; the name goes to *path. Null as above.
    virtual std::unique_ptr<OpenFile> openUnique(YString const & prefix, YString * path) = 0;
    // Gives a file another name, which no other file has from then on, and the permissions of the file that had it.
    virtual bool replace(YString const & from, YString const & to) = 0;
    virtual bool remove(YString const & path) = 0;
};

FileSystem & systemFiles() noexcept; // those of the machine
FileSystem & files() noexcept;       // those in use
// Removes a file, unless another one has taken its name since.
void removeFile(YString const & path, FileIdentity const & identity) noexcept;
// Puts another layer in place for the life of the object. For tests.
class FileSystemInUse {
public:
    explicit FileSystemInUse(FileSystem & layer) noexcept;
    ~FileSystemInUse();
    FileSystemInUse(FileSystemInUse const &) = delete;
    FileSystemInUse & operator=(FileSystemInUse const &) = delete;

private:
    FileSystem * before_;
};
