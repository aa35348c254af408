// A group that a reader fills.
#pragma once

#include "Groups/GroupStore.h"

#include <memory>

// It goes unless it has been listed, and its data file with it.
struct DiscardUnlisted {
    void operator()(Group * group) const {
        if (group->listed) return;
        if (group->dataFile != nullptr) group->dataFile->deleteWhenClosed();
        discardGroup(group);
    }
};
using GroupBeingRead = std::unique_ptr<Group, DiscardUnlisted>;
