// The process-wide store of groups: the list, the three special groups, contexts, names and persistence.
#pragma once

#include "Groups/Group.h"

#include <functional>
#include <string_view>

// The groups that give an expression its names. Any of them may be null outside a session.
struct NameSpace {
    Group * local = nullptr;  // top of the context stack
    Group * global = nullptr; // the permanent tail of the list
    Group * current = nullptr;
};
NameSpace & nameSpace() noexcept;

// A vector name taken apart at its first ':'. ":x" has an empty group part, which means the current group.
struct SplitName {
    std::string_view group;
    std::string_view vector;
    bool hasGroup = false;
};
SplitName splitVectorName(std::string_view name) noexcept;

Group * groupListHead() noexcept;                           // the newest group
Group * findGroup(std::string_view name) noexcept;          // in any case; local contexts included; null when unknown
Group * findGroupOrCurrent(std::string_view name) noexcept; // an empty name is the current group
Group * localOrGlobal() noexcept;
// Visits all groups from the head. The callback may destroy the group that it is given.
void forEachGroup(std::function<void(Group &)> const & visit);

// The search of the evaluator. `wasQualified`, where given, says whether the name has a non-empty group part;
// `existsAsPlainName`, whether the whole text is the name of a vector of the local, global or current group.
dvec * findVector(std::string_view name, bool * wasQualified, bool skipCurrentGroup,
                  bool * existsAsPlainName = nullptr);

// A group that is named and listed at once.
Group * makeGroup(YString const & title, YString const & baseName, std::uint32_t runId);
// A group that is not listed yet, for a reader to fill; listGroup names it by `baseName` and a number and lists it,
// listRestoredGroup keeps the stored name under the rename rule and makes it current. discardGroup frees one, whether
// it has been listed or not.
Group * makeUnlistedGroup(YString const & title);
void listGroup(Group * group, YString const & baseName);
void listRestoredGroup(Group * group, YString const & storedName, bool quiet, MessageHandler & messages);
void discardGroup(Group * group);
struct DiscardGroup {
    void operator()(Group * group) const { discardGroup(group); }
};
using UnlistedGroup = std::unique_ptr<Group, DiscardGroup>;
// Destroys a listed group and mends the list and the special pointers.
void destroyGroup(Group * group);
void destroyAllGroups(); // but the protected and the local ones, newest first
void purgeByPersistence();
void setRunId(Group * group, std::uint32_t runId); // of a group that may be listed already
std::uint32_t newRunId();                          // strictly rising
bool anyGroupHasRealData() noexcept;

// Continues the vectors of a group with those of the same names of another, whose data file is linked into that of the
// first. Nothing happens unless there are two files. The source stays.
void appendGroup(Group & target, Group & source);
// Replaces what may be replaced of a group, and its labels, by copies of the vectors and by the labels of another.
void mergeGroup(Group & destination, Group & source);

// The data file that a run is to have. An empty path means a new one for temporary data.
struct SimulationFile {
    bool wanted = false;
    YString path;
    bool temporary = false; // goes with the group
};
// Gives a group that has none its data file; VEC_HAS_DATA_FILE, or the answer of the maker of files. A `temporary` file
// goes with the group.
VEC_ERROR createDataFile(Group & group, YString const & path, bool temporary, YRef<MessageHandler> const & messages);
// Makes a group ready for a run, and current. The answer is that of making the file.
VEC_ERROR initialiseRun(Group & group, SimulationFile const & file, YRef<MessageHandler> const & messages,
                        YString * path);

// A new local context on top of the stack; its end, with all its vectors. Calls are balanced by the caller.
Group * pushContext();
void popContext();

// Collections: groups made while one is open belong to it and bear its name in front of their own.
YString const & currentCollection() noexcept;         // empty when none is open
bool openCollection(YString const & name, bool flag); // false when it was known already; current either way
void closeCollection() noexcept;
bool collectionFlag(std::string_view name) noexcept; // false when unknown
