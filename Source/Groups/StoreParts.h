// What the files of the group store share with one another and with nobody else.
#pragma once

#include "Groups/GroupStore.h"

// GroupNames.cpp
YString uniqueGroupName(YString const & base);    // base and a number that this process has not used before
YString freeRestoredName(YString const & stored); // the name that a restored group gets
void releaseGroupName(std::string_view name);     // a group has left the list

// Persistence.cpp: the listed groups of runs
void joinRun(Group * group);
void leaveRun(Group * group) noexcept;

// Contexts.cpp
void forgetContext(Group * group) noexcept; // a saved context that dies is null on the stack
void clearContexts() noexcept;

// Collections.cpp
void clearCollections() noexcept;

// GroupStore.cpp
void linkAtHead(Group * group); // named already
void linkAtTail(Group * group);
