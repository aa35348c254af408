// The exported operations on the data files of groups.

#include "Groups/GroupStore.h"

#include <utility>

namespace {

Group * openedQuietly(YString const & path) {
    auto const open = dataFileMakers().open;
    return open != nullptr ? open(path, std::make_shared<NullMessageHandler>()) : nullptr;
}

} // namespace

VEC_ERROR vec_InitialiseSimulationGroup(bool createDataFile, YString const & dataFile, YString const & groupName,
                                        bool temporary, bool, YRef<MessageHandler> messages, YString * path) {
    Group * group = findGroup(groupName);
    if (group == nullptr) return VEC_NO_GROUP;
    if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
    return initialiseRun(*group, {createDataFile, dataFile, temporary}, messages, path);
}

VEC_ERROR vec_DataSent(YString const & name, bool) {
    Group const * group = findGroup(name);
    if (group == nullptr) return VEC_NO_GROUP;
    if (group->dataFile != nullptr) group->dataFile->update();
    return VEC_OK;
}

VEC_ERROR vec_LinkDatafile(YString const & name, YString const & path) {
    Group * group = findGroup(name);
    if (group == nullptr) return VEC_NO_GROUP;
    group->linkedFiles.push_back(path);
    return VEC_OK;
}

VEC_ERROR vec_AppendGroup(YString const & target, YString const & source, YRef<MessageHandler>) {
    Group * to = findGroup(target);
    Group * from = findGroup(source);
    if (to == nullptr || from == nullptr) return VEC_NO_GROUP;
    appendGroup(*to, *from);
    return VEC_OK;
}

// Opening a file may purge old runs, the group itself among them, so the group is sought anew for each file.
VEC_ERROR vec_AppendLinkedDatafiles(YString const & name) {
    Group * group = findGroup(name);
    if (group == nullptr) return VEC_NO_GROUP;
    for (YString const & path : std::exchange(group->linkedFiles, {})) {
        Group * opened = openedQuietly(path);
        if (opened == nullptr) continue;
        if (Group * target = findGroup(name)) appendGroup(*target, *opened);
        destroyGroup(opened);
    }
    return VEC_OK;
}
