// The life of the store in a session.

#include "Groups/DeleteTempData.h"
#include "Groups/LoosePool.h"
#include "Groups/StoreParts.h"

#include "torvelan/Host.h"

namespace {

void constructGlobals() {
    NameSpace & groups = nameSpace();
    if (groups.global == nullptr) {
        groups.global = new Group("global", "Global vars", GROUP_PROTECTED);
        linkAtTail(groups.global);
    }
    groups.local = groups.current = groups.global;
}

void makeConstants() {
    struct Constant {
        char const * name;
        double value;
    };
    constexpr Constant constants[] = {{"true", 1}, {"false", 0}, {"pi", 3.141592653589793}, {"e", 2.718281828459045}};
    for (Constant const & constant : constants) {
        auto * vector = new dvec(constant.name, nameSpace().global, PT_NONE);
        vector->addVal(constant.value);
        vector->enterGroup();
        vector->flags |= VF_READONLY;
    }
}

// Contexts that were never popped go with the global group; a later session starts with an empty store.
void destroyGlobals() {
    LoosePool::sweep();
    clearContexts();
    clearCollections();
    while (groupListHead() != nullptr) destroyGroup(groupListHead());
    nameSpace() = {};
}

void exitPlots() {
    destroyAllGroups();
    deleteTempDataOnExit();
}

AutoFunc const atInit("Init", constructGlobals, "constructGlobals", 10);
AutoFunc const atPostInit("PostInit", makeConstants, "vecInit", 10);
AutoFunc const atPreCli("PreCli", LoosePool::sweep, "vec_gc", 10);
AutoFunc const atExitCli("ExitCli", exitPlots, "exitPlots", 10);
AutoFunc const atExit("Exit", destroyGlobals, "destroyGlobals", 1000); // everything else may still need the store

} // namespace
