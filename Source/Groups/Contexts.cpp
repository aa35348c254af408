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
    Group * outer = nameSpace().local;
    savedContexts().push_back(outer);
    if (outer != nullptr) ++outer->timesSaved;
    return nameSpace().local = group;
}

void popContext() {
    if (Group * group = nameSpace().local) destroyGroup(group);
    auto & saved = savedContexts();
    Group * outer = saved.empty() ? nullptr : saved.back();
    if (!saved.empty()) saved.pop_back();
    if (outer != nullptr) --outer->timesSaved;
    nameSpace().local = outer;
}

void forgetContext(Group * group) noexcept {
    for (auto & saved = savedContexts(); group->timesSaved != 0; --group->timesSaved)
        *std::find(saved.rbegin(), saved.rend(), group) = nullptr;
}

void clearContexts() noexcept {
    for (Group * group : savedContexts())
        if (group != nullptr) group->timesSaved = 0;
    savedContexts().clear();
}
