// A group that a reader fills.
#pragma once

#include "Groups/GroupStore.h"

#include <memory>

// It goes unless it has been listed.
struct EndOfReading {
    void operator()(Group * group) const {
        if (!group->listed) return discardGroup(group);
        group->vectors.forEach([group](dvec const & vector) {
            if (!vector.ref.name().empty()) group->hasRealData = true;
        });
    }
};
using GroupBeingRead = std::unique_ptr<Group, EndOfReading>;

// Lists it, under its name or one near to that, when the reader is through with it.
inline void listAsRead(Group * group, MessageHandler & messages) {
    listRestoredGroup(group, YString(group->name), false, messages);
}
