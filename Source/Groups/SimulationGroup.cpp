// A group that is about to receive a run.

#include "Groups/GroupStore.h"
#include "Groups/ManageTempData.h"

namespace {

// A name is a file at once, so none is made for a group that will get no file.
YString nameFor(Group const & group) {
    bool const getsFile = group.dataFile == nullptr && dataFileMakers().create != nullptr;
    return getsFile ? makeTempDataFileName(group.name) : YString();
}

Group const * previousRun(Group const & group) noexcept {
    Group const * earlier = group.next;
    while (earlier != nullptr && (earlier->isLocal() || earlier->isProtected())) earlier = earlier->next;
    return earlier;
}

// A vector of the group that names a group in words gets the group's name. The first of all runs keeps the words, also
// those for itself.
void nameGroupMeant(Group & group, std::string_view vectorName) {
    dvec * vector = group.find(vectorName);
    char const * words = vector != nullptr ? vector->getString(0) : nullptr;
    Group const * previous = words != nullptr ? previousRun(group) : nullptr;
    if (previous == nullptr) return;
    Group const * meant = words == std::string_view("$prev")   ? previous
                          : words == std::string_view("$this") ? &group
                                                               : nullptr;
    if (meant != nullptr) vector->setString(meant->name.c_str(), 0);
}

} // namespace

VEC_ERROR createDataFile(Group & group, YString const & path, bool temporary, YRef<MessageHandler> const & messages) {
    if (group.dataFile != nullptr) return VEC_HAS_DATA_FILE;
    auto const create = dataFileMakers().create;
    VEC_ERROR const answer = create != nullptr ? create(group, path, messages) : VEC_NO_DATA_FILE;
    if (answer == VEC_OK) group.dataFileTemporary = temporary;
    return answer;
}

VEC_ERROR initialiseRun(Group & group, SimulationFile const & file, YRef<MessageHandler> const & messages,
                        YString * path) {
    nameSpace().current = &group;
    VEC_ERROR answer = VEC_OK;
    if (file.wanted) {
        YString const name = file.path.empty() ? nameFor(group) : file.path;
        if (path != nullptr) *path = name;
        answer = createDataFile(group, name, file.temporary, messages);
    }
    nameGroupMeant(group, "DCopGroup");
    nameGroupMeant(group, "POPGroup");
    return answer;
}
