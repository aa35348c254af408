// The exported operations on the data files of groups.

#include "Groups/GroupStore.h"
#include "support/ReportingMemory.h"

#include <utility>

namespace {

Group * openedQuietly(YString const & path) {
    auto const open = dataFileMakers().open;
    return open != nullptr ? open(path, std::make_shared<NullMessageHandler>()) : nullptr;
}

// Goes with the object, unless a purge has taken it before.
class OpenedGroup {
public:
    explicit OpenedGroup(Group & group) : name_(group.name) {}
    ~OpenedGroup() {
        if (Group * group = findGroup(name_)) destroyGroup(group);
    }
    OpenedGroup(OpenedGroup const &) = delete;
    OpenedGroup & operator=(OpenedGroup const &) = delete;

private:
    YString name_;
};

// Opening a file may purge old runs, the group itself among them, so the group is sought anew for each file.
void appendFile(YString const & name, YString const & path) {
    Group * const opened = openedQuietly(path);
    if (opened == nullptr) return;
    OpenedGroup const open(*opened);
    if (Group * target = findGroup(name)) appendGroup(*target, *opened);
}

} // namespace

VEC_ERROR vec_InitialiseSimulationGroup(bool createDataFile, YString const & dataFile, YString const & groupName,
                                        bool temporary, bool, YRef<MessageHandler> messages, YString * path) {
    Group * group = findGroup(groupName);
    if (group == nullptr) return VEC_NO_GROUP;
    if (messages == nullptr) messages = std::make_shared<NullMessageHandler>();
    return reportingMemory([&] {
        return initialiseRun(*group, {createDataFile, dataFile, temporary}, messages, path);
    });
}

VEC_ERROR vec_DataSent(YString const & name, bool) {
    Group const * group = findGroup(name);
    if (group == nullptr) return VEC_NO_GROUP;
    if (group->dataFile != nullptr) reportingMemory([&] { group->dataFile->update(); });
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
    reportingMemory([&] { appendGroup(*to, *from); });
    return VEC_OK;
}

VEC_ERROR vec_AppendLinkedDatafiles(YString const & name) {
    Group * group = findGroup(name);
    if (group == nullptr) return VEC_NO_GROUP;
    reportingMemory([&] {
        for (YString const & path : std::exchange(group->linkedFiles, {})) appendFile(name, path);
    });
    return VEC_OK;
}
