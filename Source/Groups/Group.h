// Group: one named set of vectors, normally the result of one run or one opened file.
#pragma once

#include "Groups/GroupDataFile.h"
#include "Groups/VectorTable.h"
#include "torvelan/Groups.h"
#include "torvelan/dvec.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

enum GroupFlags : std::uint32_t {
    GROUP_LOCAL = 2,     // a local context: not shown, not saved
    GROUP_PROTECTED = 4, // the global group
};

// Owned by the group list; made by GroupStore.h's functions.
struct Group {
    explicit Group(YString groupName, YString groupTitle, std::uint32_t groupFlags = 0);
    ~Group(); // ends the group first, if that has not been done
    Group(Group const &) = delete;
    Group & operator=(Group const &) = delete;

    bool isLocal() const noexcept { return (flags & GROUP_LOCAL) != 0; }
    bool isProtected() const noexcept { return (flags & GROUP_PROTECTED) != 0; }

    // By name, and a name that begins with '$' also through the pseudonyms. Null when there is none.
    dvec * find(HashedName const & vectorName) const;
    dvec * find(std::string_view vectorName) const { return find(HashedName(vectorName)); }
    // Enters a vector; an internal error, and false, when the name is taken.
    bool enter(dvec * vector);
    void remove(dvec * vector); // from the table only
    // Moves a member's entry to a new name, before the vector itself takes it; as `enter` when the name is taken.
    bool rename(dvec * vector, YString const & newName);
    YArray<dvec *> vectorsInOrder() const; // sorted by name without regard to case
    YArray<YString> namesInOrder() const;
    // Visits the vectors in name order. The callback may delete any vector.
    void forEachVector(std::function<void(dvec &)> const & visit);

    void addLabel(YString const & label);        // of the next division; also to the data file
    void addPostProcess(YString const & script); // to the data file, or to wait for one
    YArray<YString> postProcessScripts() const;  // of the data file, and those that wait
    // Runs the delete notifications, deletes every vector, read-only or not, and closes a file of the older format. The
    // group is empty and only waits to be deleted afterwards; its temporary data file goes then.
    void end();

    // The pseudonym of a vector, made when it has none; a name that exists in no form is returned itself.
    YString pseudonymOf(YString const & vectorName);
    // The vector name behind a pseudonym; any other name as it is.
    YString resolvePseudonym(YString const & vectorName) const;

    std::uint32_t destroying = 0; // 1 from the beginning of end()
    std::uint32_t flags = 0;
    std::uint32_t pseudonymCounter = 0; // next number for "$n"
    std::uint32_t runId = 0;            // 0: kept, or of no run; exempt from persistence; see setRunId
    std::uint32_t savedRunId = 0;       // runId while the group is kept
    VectorTable vectors;
    NameTable<YString> pseudonyms;      // pseudonym to vector name
    NameTable<YString> pseudonymOfName; // the other way round
    Group * next = nullptr;             // older neighbour in the list
    Group * previous = nullptr;         // newer neighbour in the list
    bool listed = false;
    std::uint32_t timesSaved = 0;                             // on the stack of contexts
    std::size_t looseVectors = 0;                             // in the loose pool, made for this group
    std::multimap<std::uint32_t, Group *>::iterator runEntry; // valid while listed with a runId other than 0
    YString date;
    YString name; // does not change while the group is listed
    YString title;
    YString collection;
    std::shared_ptr<NameArray> labels; // never null; shared with vectors, replaced rather than written when shared
    struct DeleteNotify {
        GroupDeleteProc proc;
        void * arg;
    };
    YList<DeleteNotify> deleteNotify;
    std::int32_t labelStream = 0;    // of the data file, 0 if none
    std::int32_t postProcStream = 0; // of the data file, 0 if none
    std::unique_ptr<OlderDataFile> oldStream;
    YRef<GroupDataFile> dataFile;
    YArray<YString> linkedFiles;    // paths of files that are to continue this group
    bool keepDataFile = false;      // the file outlives the group even if temporary
    bool dataFileTemporary = false; // the file goes with the group
    YArray<TraceDescription> traces;
    YArray<YString> postProcPending; // post-process scripts that are not in the data file
    AnalysisInfo analysis;
    bool hasRealData = false; // has a "$$RunId", or a restored vector with a reference
};
