// The exported operations on groups, contexts and collections: each finds its group and asks the store.

#include "Groups/GroupStore.h"

#include <algorithm>
#include <utility>

namespace {

template <class Use> VEC_ERROR withGroup(Group * group, Use use) {
    if (group == nullptr) return VEC_NO_GROUP;
    use(*group);
    return VEC_OK;
}

// A caller that does not want an answer gives a null place for it.
template <class T> void give(T * place, T value) {
    if (place != nullptr) *place = std::move(value);
}

YString pathOfDataFile(Group const & group) {
    if (group.dataFile != nullptr) return group.dataFile->path();
    return group.oldStream != nullptr ? group.oldStream->path() : YString();
}

VectorInfo describe(dvec const & vector) {
    return {vector.name(),        vector.type(),         vector.physType(),
            vector.totalLength(), vector.numDivisions(), vector.isAlias()};
}

} // namespace

// --- making, choosing and ending groups

VEC_ERROR vec_MakeGroup(YString const & title, YString const & name, VecMakeGroupOptions options) {
    Group * group = makeGroup(title, name, options.runId);
    group->keepDataFile = !options.temporary;
    if (options.makeCurrent) nameSpace().current = group;
    return VEC_OK;
}

VEC_ERROR vec_MakeGroup(YString const & title, YString const & name, YString & newName, std::uint32_t runId,
                        AnalysisInfo const & analysis) {
    Group * group = makeGroup(title, name, runId);
    group->analysis = analysis;
    newName = group->name;
    return VEC_OK;
}

VEC_ERROR vec_SetCurrentGroup(YString const & name) {
    return withGroup(findGroup(name), [](Group & group) { nameSpace().current = &group; });
}

VEC_ERROR vec_InstallDeleteNotifyProc(YString const & nameOrCurrent, GroupDeleteProc proc, void * arg) {
    return withGroup(findGroupOrCurrent(nameOrCurrent), [proc, arg](Group & group) {
        if (proc == nullptr) return;
        auto & list = group.deleteNotify;
        auto const known =
            std::find_if(list.begin(), list.end(), [proc](Group::DeleteNotify const & n) { return n.proc == proc; });
        if (known != list.end())
            known->arg = arg;
        else
            list.push_front({proc, arg});
    });
}

VEC_ERROR vec_KeepGroup(YString const & nameOrCurrent, bool keep) {
    return withGroup(findGroupOrCurrent(nameOrCurrent), [keep](Group & group) {
        if (keep && group.runId == 0) return;
        if (keep) group.savedRunId = group.runId;
        setRunId(&group, keep ? 0 : group.savedRunId);
    });
}

VEC_ERROR vec_DestroyGroup(YString const & name, bool keepDataFile) {
    return withGroup(findGroup(name), [keepDataFile](Group & group) {
        if (group.isProtected()) return;
        if (keepDataFile) group.keepDataFile = true;
        destroyGroup(&group);
    });
}

VEC_ERROR vec_DestroyAllGroups() {
    destroyAllGroups();
    return VEC_OK;
}

VEC_ERROR vec_FixGroup(YString const & name) {
    Group * const group = findGroup(name);
    if (group == nullptr) return VEC_OK;
    group->forEachVector([](dvec & vector) {
        vector.shrinkReal();
        if (!vector.ref.name().empty()) vector.ref.shrinkReal(); // it may be nobody else's
    });
    return VEC_OK;
}

// --- what a group tells

VEC_ERROR vec_GetCurrentGroupName(YString & name) {
    return withGroup(nameSpace().current, [&name](Group const & group) { name = group.name; });
}

VEC_ERROR vec_GetCurrentGroupTitle(YString & title) {
    return withGroup(nameSpace().current, [&title](Group const & group) { title = group.title; });
}

VEC_ERROR vec_GetLocalGroupName(YString * name) {
    return withGroup(localOrGlobal(), [name](Group const & group) { give(name, group.name); });
}

VEC_ERROR vec_GetGroupTitle(YString const & nameOrCurrent, YString & title) {
    return withGroup(findGroupOrCurrent(nameOrCurrent), [&title](Group const & group) { title = group.title; });
}

VEC_ERROR vec_EditGroupTitle(YString const & name, YString const & title) {
    return withGroup(findGroup(name), [&title](Group & group) {
        if (!group.isProtected()) group.title = title;
    });
}

VEC_ERROR vec_GetGroupInfo(YString const & nameOrCurrent, GroupInfo * info) {
    Group const * group = findGroupOrCurrent(nameOrCurrent);
    if (group == nullptr) return VEC_OK;
    bool const keep = group->runId == 0 || group->isLocal() || group->isProtected();
    give(info, {pathOfDataFile(*group), group->date, group->title, NameArray(), keep});
    return VEC_OK;
}

void vec_GetGroups(YList<YString> * names) {
    forEachGroup([names](Group const & group) {
        if (names != nullptr && !group.isLocal()) names->push_back(group.name);
    });
}

VEC_ERROR vec_GetGroupLabels(YString const & nameOrCurrent, NameArray * labels) {
    return withGroup(findGroupOrCurrent(nameOrCurrent), [labels](Group const & group) { give(labels, *group.labels); });
}

VEC_ERROR vec_AddGroupDivision(YString const & name, YString const & label) {
    if (Group * group = findGroup(name)) group->addLabel(label);
    return VEC_OK;
}

VEC_ERROR vec_GetNumVectorsInGroup(YString const & nameOrCurrent, int * count) {
    return withGroup(findGroupOrCurrent(nameOrCurrent),
                     [count](Group const & group) { give(count, static_cast<int>(group.vectors.size())); });
}

VEC_ERROR vec_GetVectorsInGroup(YList<YString> * names, YString const & nameOrCurrent) {
    return withGroup(findGroupOrCurrent(nameOrCurrent), [names](Group const & group) {
        if (names == nullptr) return;
        for (YString const & name : group.namesInOrder()) names->push_back(name);
    });
}

int vec_GetVectorsInGroup(YString const & nameOrCurrent, VectorInfo * records, int capacity) {
    int filled = 0;
    withGroup(findGroupOrCurrent(nameOrCurrent), [&](Group const & group) {
        if (records == nullptr) return;
        for (dvec const * vector : group.vectorsInOrder())
            if (filled < capacity) records[filled++] = describe(*vector);
    });
    return filled;
}

// --- records that the front end keeps with a group

VEC_ERROR vec_AddPostProc(YString const & name, YString const & script) {
    return withGroup(findGroup(name), [&script](Group & group) { group.addPostProcess(script); });
}

VEC_ERROR vec_GetPostProc(YString const & name, YArray<YString> * scripts) {
    return withGroup(findGroup(name), [scripts](Group const & group) { give(scripts, group.postProcessScripts()); });
}

VEC_ERROR vec_AddTraceToGroup(YString const & name, TraceDescription const & trace) {
    return withGroup(findGroup(name), [&trace](Group & group) { group.traces.push_back(trace); });
}

VEC_ERROR vec_GetTraces(YString const & name, YArray<TraceDescription> * traces) {
    return withGroup(findGroup(name), [traces](Group const & group) { give(traces, group.traces); });
}

VEC_ERROR vec_GetAnalysisInfo(YString const & name, AnalysisInfo * analysis) {
    return withGroup(findGroup(name), [analysis](Group const & group) { give(analysis, group.analysis); });
}

// --- contexts

VEC_ERROR vec_PushContext() {
    pushContext();
    return VEC_OK;
}

VEC_ERROR vec_PopContext() {
    popContext();
    return VEC_OK;
}

// --- collections

VEC_ERROR vec_OpenCollection(YString const & name, bool flag) {
    return openCollection(name, flag) ? VEC_OK : VEC_EXISTS;
}

VEC_ERROR vec_CloseCollection() {
    closeCollection();
    return VEC_OK;
}

VEC_ERROR vec_GetCollectionName(YString const & nameOrCurrent, YString & collection) {
    return withGroup(findGroupOrCurrent(nameOrCurrent),
                     [&collection](Group const & group) { collection = group.collection; });
}

VEC_ERROR vec_GetGroupsInCollection(YList<YString> * names, bool * flag) {
    if (flag != nullptr) *flag = false;
    return withGroup(nameSpace().current, [names, flag](Group const & current) {
        if (flag != nullptr) *flag = collectionFlag(current.collection);
        if (names == nullptr || current.collection.empty()) return;
        forEachGroup([&](Group const & group) {
            if (equalNoCase(group.collection, current.collection)) names->push_front(group.name);
        });
    });
}
