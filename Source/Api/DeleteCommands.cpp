// The commands that end vectors and groups.

#include "torvelan/Commands.h"

#include "Groups/GroupStore.h"

namespace {

// Null after a message.
Group * findNamed(std::string_view name, MessageHandler & messages) {
    Group * const group = findGroup(name);
    if (group == nullptr) messages.error("There is no group of name '%s'", name);
    return group;
}

bool destroy(Group * group, bool keepDataFile, char const * refusal, MessageHandler & messages) {
    if (group->isProtected()) {
        messages.error(refusal, group->name);
        return false;
    }
    if (keepDataFile) group->keepDataFile = true;
    destroyGroup(group);
    return true;
}

bool discardVector(YString const & word, MessageHandler & messages) {
    SplitName const split = splitVectorName(word);
    Group const * const group = split.group.empty() ? nameSpace().current : findGroup(split.group);
    if (group == nullptr) {
        messages.error("There is no group of name '%s'", split.group);
        return false;
    }
    dvec * const vector = group->find(split.vector);
    if (vector == nullptr) {
        messages.error("Cannot find vector '%s'", word);
        return false;
    }
    vector->leaveGroup();
    vector->release();
    return true;
}

bool discardGroup(YString const & word, bool isFirst, bool deleteDataFile, MessageHandler & messages) {
    Group * const current = word.empty() && isFirst ? nameSpace().current : nullptr;
    Group * const group = current != nullptr ? current : findNamed(word, messages);
    if (group == nullptr) return false;
    return destroy(group, !deleteDataFile, "The group '%s' is protected and cannot be destroyed", messages);
}

void keepAllDataFiles() {
    forEachGroup([](Group & group) { group.keepDataFile = true; });
}

} // namespace

bool vec_DiscardCommand(WordArray const & words, VecDiscardOptions options, MessageHandler & messages) {
    if (!options.groupMode) return discardVector(words[0], messages);
    std::size_t const count = words.empty() ? 1 : words.size();
    for (std::size_t i = 0; i < count; ++i)
        if (!discardGroup(words[i], i == 0, options.deleteDataFile, messages)) return false;
    return true;
}

bool vec_DelGroupCommand(YArray<YString> const & names, VecDelGroupOptions options, MessageHandler & messages) {
    if (options.all) {
        if (options.keepDataFile) keepAllDataFiles();
        destroyAllGroups();
        return true;
    }
    bool good = true;
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        Group * const group = findNamed(*name, messages);
        good &= group != nullptr &&
                destroy(group, options.keepDataFile, "The group '%s' is protected and cannot be deleted", messages);
    }
    return good;
}
