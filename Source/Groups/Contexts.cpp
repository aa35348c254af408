// The stack of local contexts. A context is a group, but none of a run or of a collection.

#include "Groups/StoreParts.h"

#include <algorithm>

namespace {

YArray<Group *> & savedContexts() {
    static auto & stack = *new YArray<Group *>;
    return stack;
}

} // namespace

Group * pushContext() {
    Group * group = new Group(uniqueGroupName("local"), "Local", GROUP_LOCAL);
    linkAtHead(group);
    savedContexts().push_back(nameSpace().local);
    return nameSpace().local = group;
}

void popContext() {
    if (Group * group = nameSpace().local) destroyGroup(group);
    auto & saved = savedContexts();
    nameSpace().local = saved.empty() ? nullptr : saved.back();
    if (!saved.empty()) saved.pop_back();
}

void forgetContext(Group const * group) noexcept {
    std::replace(savedContexts().begin(), savedContexts().end(), const_cast<Group *>(group),
                 static_cast<Group *>(nullptr));
}

void clearContexts() noexcept {
    savedContexts().clear();
}
