// What a group asks of the file that backs it, and how such files come about. The layer of data files implements the
// one and registers the other; in a store without it, groups have no files.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/Messages.h"
#include "torvelan/ResultCodes.h"

struct Group;

// A native data file. Held by its group and by the vectors whose data lie in it; it closes with its last holder.
class GroupDataFile {
public:
    virtual ~GroupDataFile();
    virtual YString path() const = 0; // full
    // Appends a text to a stream of texts; false when the file does not take it.
    virtual bool appendText(int stream, YString const & text) = 0;
    virtual void readTexts(int stream, YArray<YString> * out) = 0; // appends all texts of a stream
    virtual void update() = 0;                                     // what was appended can be read by others
    // Makes the data of another file part of this one, by reference. The answer is the number by which appendVector of
    // IfVector knows the link, or one that copies the data if there can be none; -1 when the file is linked already.
    virtual int link(GroupDataFile & other) = 0;
    virtual void writeLinks() = 0; // the table of links as it stands
    virtual void deleteWhenClosed() = 0;
};

// A file of the older format, from which the vectors of a group are read. Owned by the group.
class OlderDataFile {
public:
    virtual ~OlderDataFile();
    virtual YString path() const = 0; // full
    virtual void deleteWhenClosed() = 0;
};

// How files come about.
struct DataFileMakers {
    // Makes the file of a group that has none, and enters it and its streams in the group. VEC_OK, VEC_NO_DATA_FILE or
    // VEC_BOOT_RECORD_FAILED; the group has no file then.
    VEC_ERROR (*create)(Group & group, YString const & path, YRef<MessageHandler> const & messages) = nullptr;
    // Opens a file, in the default way, as a new group of the list. Null when that fails.
    Group * (*open)(YString const & path, YRef<MessageHandler> const & messages) = nullptr;
};
// The ones in use, for the layer of data files to set before a session begins. Any of them may be null.
DataFileMakers & dataFileMakers() noexcept;
