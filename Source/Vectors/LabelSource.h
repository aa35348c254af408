// Where the labels of divisions come from. A vector of a run knows the name of its group only, and the group store lies
// above the vectors; so this one step upwards is a callback, set by the group store before the first vector is made.
#pragma once

#include "torvelan/Containers.h"

#include <memory>

// Gives the labels of a group, shared with it. False, and *labels untouched, when there is no such group. May be null.
extern bool (*fetchGroupLabels)(YString const & group, std::shared_ptr<NameArray const> * labels);
