// Vectors of a file that is to be continued, after a run that was killed.
#pragma once

#include "Groups/Group.h"

// What waits for a file when a run dies is lost, of one vector more than of another. Here vectors and their references
// become equally long again: what is lost of the one but not of the other becomes no number, at its place, so that what
// is appended from now on keeps its partner. Those whose divisions contradict each other stay as they are. False when
// more than `mostBytes` would be needed, the references of references go on too long, or the file does not take it.
bool fillUpVectors(Group & group, std::uint64_t mostBytes);
