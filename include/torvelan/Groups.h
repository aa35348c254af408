// The group store: named sets of vectors, their contexts and collections. An empty group name stands for the current
// group where a comment says "name or current". Pointers to what is to be filled may be null.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/ResultCodes.h"
#include "torvelan/Vectors.h"

#include <cstdint>

// Copied between callers and files; the store gives the fields no meaning.
struct AnalysisInfo {
    std::uint64_t value1 = 0;
    std::uint64_t value2 = 0;
    bool flag1 = false;
    bool flag2 = false;
    bool flag3 = false;
    YString text1;
    YString text2;
};

struct TraceDescription {
    struct Property {
        YString name;
        YString value;
    };
    YString text1;
    YString text2;
    bool flag = false;
    YArray<Property> properties;
};

struct GroupInfo {
    YString dataFile;
    YString date;
    YString title;
    NameArray labels;  // always empty
    bool keep = false; // without run, local or protected: not subject to persistence
};

struct VecMakeGroupOptions {
    bool temporary = false;
    bool makeCurrent = false;
    std::uint32_t runId = 0; // 0: no run
};

// What vec_GetVectorsInGroup tells of a vector.
struct VectorInfo {
    YString name;
    VD_type type = VD_NONE;
    PhysType physType = PT_UNKNOWN;
    long long length = 0; // total
    long long numDivisions = 0;
    bool isAlias = false;
};

// --- groups
// A new group, named after `name` and a number, at the head of the list. Always VEC_OK.
TORVELAN_API VEC_ERROR vec_MakeGroup(YString const & title, YString const & name, VecMakeGroupOptions options);
TORVELAN_API VEC_ERROR vec_MakeGroup(YString const & title, YString const & name, YString & newName,
                                     std::uint32_t runId, AnalysisInfo const & analysis);
TORVELAN_API VEC_ERROR vec_SetCurrentGroup(YString const & name); // VEC_NO_GROUP when unknown
TORVELAN_API VEC_ERROR vec_GetCurrentGroupName(YString & name);
TORVELAN_API VEC_ERROR vec_GetCurrentGroupTitle(YString & title);
TORVELAN_API VEC_ERROR vec_GetLocalGroupName(YString * name); // local group, else global
TORVELAN_API VEC_ERROR vec_GetGroupTitle(YString const & nameOrCurrent, YString & title);
TORVELAN_API VEC_ERROR vec_EditGroupTitle(YString const & name, YString const & title); // protected: untouched, VEC_OK
TORVELAN_API VEC_ERROR vec_GetGroupInfo(YString const & nameOrCurrent, GroupInfo * info); // VEC_OK also when unknown
TORVELAN_API VEC_ERROR vec_GetGroupLabels(YString const & nameOrCurrent, NameArray * labels);
TORVELAN_API VEC_ERROR vec_AddGroupDivision(YString const & name, YString const & label); // VEC_OK also when unknown
TORVELAN_API VEC_ERROR vec_GetNumVectorsInGroup(YString const & nameOrCurrent, int * count);
TORVELAN_API VEC_ERROR vec_GetVectorsInGroup(YList<YString> * names, YString const & nameOrCurrent); // in name order
// Fills at most `capacity` records, in name order; the answer is the number filled, 0 for an unknown group.
TORVELAN_API int vec_GetVectorsInGroup(YString const & nameOrCurrent, VectorInfo * records, int capacity);
// Names of the groups that a list shows, newest first: not the local contexts.
TORVELAN_API void vec_GetGroups(YList<YString> * names);
TORVELAN_API VEC_ERROR vec_AddPostProc(YString const & name, YString const & script);
TORVELAN_API VEC_ERROR vec_GetPostProc(YString const & name, YArray<YString> * scripts);
TORVELAN_API VEC_ERROR vec_AddTraceToGroup(YString const & name, TraceDescription const & trace);
TORVELAN_API VEC_ERROR vec_GetTraces(YString const & name, YArray<TraceDescription> * traces);
TORVELAN_API VEC_ERROR vec_GetAnalysisInfo(YString const & name, AnalysisInfo * analysis);
// `groupName` points to a YString const. A proc that is listed already gets the new arg.
using GroupDeleteProc = void (*)(void * arg, void * groupName);
TORVELAN_API VEC_ERROR vec_InstallDeleteNotifyProc(YString const & nameOrCurrent, GroupDeleteProc proc, void * arg);
TORVELAN_API VEC_ERROR vec_KeepGroup(YString const & nameOrCurrent, bool keep);   // exempts from persistence
TORVELAN_API VEC_ERROR vec_DestroyGroup(YString const & name, bool keepDataFile); // protected: stays, VEC_OK
TORVELAN_API VEC_ERROR vec_DestroyAllGroups();
TORVELAN_API VEC_ERROR vec_FixGroup(YString const & name); // fits memory to size; VEC_OK also when unknown

// --- data files: a group of a run writes into one; other groups may be backed by the file that they were read from
// Makes a group ready for a run: it becomes the current one, gets a new data file if asked (a name of the temporary
// directory when `dataFile` is empty, handed out in *path), and its "$prev" and "$this" links to groups are resolved.
// VEC_NO_GROUP, or how the making of the file ended: VEC_OK, VEC_HAS_DATA_FILE, VEC_NO_DATA_FILE,
// VEC_BOOT_RECORD_FAILED. A `temporary` file goes with the group. `reserved` is not used; `path` may be null.
TORVELAN_API VEC_ERROR vec_InitialiseSimulationGroup(bool createDataFile, YString const & dataFile,
                                                     YString const & groupName, bool temporary, bool reserved,
                                                     YRef<MessageHandler> messages, YString * path);
TORVELAN_API VEC_ERROR vec_DataSent(YString const & name, bool unused); // what was appended reaches the file
TORVELAN_API VEC_ERROR vec_LinkDatafile(YString const & name, YString const & path); // queues a file
// Opens each queued file, appends its group to the named one and ends it; files that do not open are passed over.
TORVELAN_API VEC_ERROR vec_AppendLinkedDatafiles(YString const & name);
// Continues the vectors of one group with those of the same names of another, file to file; the source group stays.
// VEC_NO_GROUP unless both exist; VEC_OK, and nothing happens, unless both have data files.
TORVELAN_API VEC_ERROR vec_AppendGroup(YString const & target, YString const & source, YRef<MessageHandler> messages);

// --- contexts: each script procedure has its own local variables
TORVELAN_API VEC_ERROR vec_PushContext();
TORVELAN_API VEC_ERROR vec_PopContext(); // pushes and pops are balanced by the caller

// --- collections
TORVELAN_API VEC_ERROR vec_OpenCollection(YString const & name, bool flag); // VEC_EXISTS when known; current either way
TORVELAN_API VEC_ERROR vec_CloseCollection();
TORVELAN_API VEC_ERROR vec_GetCollectionName(YString const & nameOrCurrent, YString & collection);
// Groups of the current group's collection, oldest first, pushed on the front of `names`.
TORVELAN_API VEC_ERROR vec_GetGroupsInCollection(YList<YString> * names, bool * flag);
