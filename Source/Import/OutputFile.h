// Where the values of a data set go as they are read.
#pragma once

#include "torvelan/Messages.h"
#include "torvelan/YString.h"

class DfsFile;
struct Group;

// A native data file to be, or, made by default, none: the values stay in memory.
class OutputFile {
public:
    enum class Replaces { any, nativeOnly }; // what else may stand in its place

    OutputFile() = default;
    OutputFile(YString path, Replaces replaces, YRef<MessageHandler> messages)
        : path_(std::move(path)), replaces_(replaces), messages_(std::move(messages)) {}

    bool isWanted() const noexcept { return messages_ != nullptr; }
    // Makes the file, for a group that has its name and its vectors; what is appended to them from now on goes there.
    // Where that cannot be, they stay in memory, with a warning. Nothing is written through a symbolic link.
    void attachTo(Group & group);
    // The data set is whole: only now does the file replace the one that stood in its place. Throws FatalException when
    // it cannot. A file that is never finished goes with its group.
    void finish();

private:
    YString path_;
    Replaces replaces_ = Replaces::any;
    YRef<MessageHandler> messages_;
    YRef<DfsFile> file_;
};
